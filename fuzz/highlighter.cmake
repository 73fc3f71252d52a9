# The colouring engine against the rules' expressions run literally on ICU's engine, and the
# incremental driver against the whole-text pass. The engine's sources are built into the fuzzer
# so that they are instrumented too. Run, for example:
#   fuzz_highlighter -max_len=4096 -timeout=10 -dict=<source>/fuzz/highlighter/highlighter.dict corpus/
get_target_property(sqlhighlight_sources varnholt_sqlhighlight SOURCES)
varnholt_add_fuzzer(fuzz_highlighter
    SOURCES highlighter/fuzz_highlighter.cpp
            ${PROJECT_SOURCE_DIR}/tests/editor/highlighter/sqlhighlightreference.cpp
            ${sqlhighlight_sources}
    LIBRARIES Qt6::Core Qt6::Gui ICU::i18n ICU::uc)
target_include_directories(fuzz_highlighter PRIVATE ${PROJECT_SOURCE_DIR}/src/editor
                                                    ${PROJECT_SOURCE_DIR}/tests/editor/highlighter)
