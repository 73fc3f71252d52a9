# Colouring engine benchmarks: the whole-text passes against the rules run literally (the
# reference colourings of the tests), and the incremental driver per keystroke and idle slice.
add_executable(bench_highlighter
    sqlcolour/bench_highlighter.cpp
    ${PROJECT_SOURCE_DIR}/tests/sqlcolour/sqlhighlightreference.cpp)
target_include_directories(bench_highlighter PRIVATE ${PROJECT_SOURCE_DIR}/tests/sqlcolour)
target_link_libraries(bench_highlighter PRIVATE varnholt_sqlcolour ICU::i18n ICU::uc)
