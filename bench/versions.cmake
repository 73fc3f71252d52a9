find_package(Qt6 REQUIRED COMPONENTS Test)
add_executable(bench_versionviews versions/bench_versionviews.cpp)
target_link_libraries(bench_versionviews PRIVATE varnholt_views varnholt_viewsplugin varnholt_versions Qt6::Test)
target_include_directories(bench_versionviews PRIVATE ${PROJECT_SOURCE_DIR}/tests/common)
