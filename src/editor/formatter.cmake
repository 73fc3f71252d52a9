add_library(varnholt_sqlformat STATIC ${CMAKE_CURRENT_LIST_DIR}/sqlformatter_placeholder.cpp)
target_include_directories(varnholt_sqlformat PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(varnholt_sqlformat PUBLIC Qt6::Core)
