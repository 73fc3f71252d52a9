add_executable(bench_store store/bench_store.cpp)
target_link_libraries(bench_store PRIVATE varnholt_store)
target_compile_definitions(bench_store PRIVATE VARNHOLT_BENCH_CORPUS="${VARNHOLT_BENCH_CORPUS}")
