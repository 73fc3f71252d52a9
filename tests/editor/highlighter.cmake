# Colouring engine tests.
varnholt_add_test(tst_sqlhighlighter
    SOURCES highlighter/tst_sqlhighlighter.cpp highlighter/sqlhighlightreference.cpp
    LIBRARIES varnholt_sqlhighlight ICU::i18n ICU::uc)
target_compile_definitions(tst_sqlhighlighter PRIVATE VARNHOLT_BENCH_CORPUS="${VARNHOLT_SHARED_DIR}/bench-corpus")
varnholt_add_test(tst_sqlhighlightdriver SOURCES highlighter/tst_sqlhighlightdriver.cpp LIBRARIES varnholt_sqlhighlight)
