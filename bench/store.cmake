add_executable(bench_store store/bench_store.cpp)
target_link_libraries(bench_store PRIVATE varnholt_store)
