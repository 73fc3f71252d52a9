find_package(Qt6 REQUIRED COMPONENTS Test)
add_executable(bench_window shell/bench_window.cpp)
target_link_libraries(bench_window PRIVATE varnholt_views varnholt_viewsplugin Qt6::Test)
target_include_directories(bench_window PRIVATE ${PROJECT_SOURCE_DIR}/tests/common)
