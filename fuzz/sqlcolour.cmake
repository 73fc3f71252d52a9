# The colouring engine against the rules' expressions run literally on ICU's engine, and the
# incremental driver against the whole-text pass. The engine's sources are built into the fuzzer
# so that they are instrumented too. Run, for example:
#   fuzz_highlighter -max_len=4096 -timeout=10 -dict=<source>/fuzz/sqlcolour/highlighter.dict corpus/
get_target_property(sqlhighlight_sources varnholt_sqlcolour SOURCES)
get_target_property(_dir varnholt_sqlcolour SOURCE_DIR)
list(TRANSFORM sqlhighlight_sources PREPEND "${_dir}/")
varnholt_add_fuzzer(fuzz_highlighter
    SOURCES sqlcolour/fuzz_highlighter.cpp
            ${PROJECT_SOURCE_DIR}/tests/sqlcolour/sqlhighlightreference.cpp
            ${sqlhighlight_sources}
    LIBRARIES Qt6::Core Qt6::Gui ICU::i18n ICU::uc)
target_include_directories(fuzz_highlighter PRIVATE ${PROJECT_SOURCE_DIR}/src/sqlcolour
                                                    ${PROJECT_SOURCE_DIR}/tests/sqlcolour)
