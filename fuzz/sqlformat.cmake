# The formatter against the tests' reader of five SQL dialects. The formatter's sources are
# built into the fuzzer itself so that they are instrumented too. Run, for example:
#   fuzz_formatter -max_len=4096 -timeout=5 -dict=<source>/fuzz/sqlformat/formatter.dict corpus/
get_target_property(sqlformat_sources varnholt_sqlformat SOURCES)
get_target_property(_dir varnholt_sqlformat SOURCE_DIR)
list(TRANSFORM sqlformat_sources PREPEND "${_dir}/")
varnholt_add_fuzzer(fuzz_formatter
    SOURCES sqlformat/fuzz_formatter.cpp ${PROJECT_SOURCE_DIR}/tests/sqlformat/sqldialectreader.cpp
            ${sqlformat_sources}
    LIBRARIES Qt6::Core)
target_include_directories(fuzz_formatter PRIVATE ${PROJECT_SOURCE_DIR}/src/sqlformat
                                                  ${PROJECT_SOURCE_DIR}/tests/sqlformat)
