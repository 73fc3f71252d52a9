find_package(Qt6 REQUIRED COMPONENTS Test)
add_executable(bench_assistant assistant/bench_assistant.cpp ${PROJECT_SOURCE_DIR}/tests/ai/chattestserver.cpp)
target_link_libraries(bench_assistant PRIVATE varnholt_views varnholt_viewsplugin Qt6::Test Qt6::Network)
target_include_directories(bench_assistant PRIVATE ${PROJECT_SOURCE_DIR}/tests/common ${PROJECT_SOURCE_DIR}/tests/ai)
