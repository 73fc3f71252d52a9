add_library(varnholt_markdown STATIC ${CMAKE_CURRENT_LIST_DIR}/markdown_placeholder.cpp)
target_include_directories(varnholt_markdown PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(varnholt_markdown PUBLIC Qt6::Core PRIVATE PkgConfig::MD4C)
