# The formatter against a reference reading of its rules. The formatter's sources are built into
# the fuzzer itself so that they are instrumented too. Run, for example:
#   fuzz_formatter -max_len=4096 -timeout=5 -dict=<source>/fuzz/formatter/formatter.dict corpus/
get_target_property(sqlformat_sources varnholt_sqlformat SOURCES)
varnholt_add_fuzzer(fuzz_formatter
    SOURCES formatter/fuzz_formatter.cpp formatter/referenceformatter.cpp formatter/referenceformatter.h
            ${sqlformat_sources}
    LIBRARIES Qt6::Core ICU::uc)
target_include_directories(fuzz_formatter PRIVATE ${PROJECT_SOURCE_DIR}/src/editor)
