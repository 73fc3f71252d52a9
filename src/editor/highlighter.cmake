add_library(varnholt_sqlhighlight STATIC ${CMAKE_CURRENT_LIST_DIR}/sqlhighlighter_placeholder.cpp)
target_include_directories(varnholt_sqlhighlight PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(varnholt_sqlhighlight PUBLIC Qt6::Core Qt6::Gui)
