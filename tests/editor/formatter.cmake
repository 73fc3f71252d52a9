# Formatter tests: the rules, golden files, and the command-line tool run as a process.
varnholt_add_test(tst_sqlformatter SOURCES formatter/tst_sqlformatter.cpp LIBRARIES varnholt_sqlformat)
target_compile_definitions(tst_sqlformatter PRIVATE VARNHOLT_BENCH_CORPUS="${VARNHOLT_SHARED_DIR}/bench-corpus")

varnholt_add_test(tst_sqlformattergolden SOURCES formatter/tst_sqlformattergolden.cpp LIBRARIES varnholt_sqlformat)

varnholt_add_test(tst_varnholtfmt SOURCES formatter/tst_varnholtfmt.cpp LIBRARIES Qt6::Core)
target_compile_definitions(tst_varnholtfmt PRIVATE VARNHOLT_FMT="$<TARGET_FILE:varnholt-fmt>")
add_dependencies(tst_varnholtfmt varnholt-fmt)
