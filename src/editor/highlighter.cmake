# The colouring engine: the editor and read-only passes and the incremental driver that keeps a
# text document coloured. Text and formats only, no Qt Quick.
add_library(varnholt_sqlhighlight STATIC
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightchars.cpp
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightchars.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightdriver.cpp
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightdriver.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlighter.cpp
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlighter.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightformats.cpp
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightformats.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightrules.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightspan.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightwords.cpp
    ${CMAKE_CURRENT_LIST_DIR}/sqlhighlightwords.h)
target_include_directories(varnholt_sqlhighlight PUBLIC ${CMAKE_CURRENT_LIST_DIR})
# ICU gives the character properties the rules' expressions were written against.
target_link_libraries(varnholt_sqlhighlight PUBLIC Qt6::Core Qt6::Gui PRIVATE ICU::uc)
