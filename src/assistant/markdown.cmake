# Markdown of assistant replies: splitting into prose and code, and prose as safe rich text.
# Qt Core only; md4c does the inline parsing.
add_library(varnholt_markdown STATIC
    ${CMAKE_CURRENT_LIST_DIR}/markdownblock.cpp ${CMAKE_CURRENT_LIST_DIR}/markdownblock.h
    ${CMAKE_CURRENT_LIST_DIR}/markdownsplitter.cpp ${CMAKE_CURRENT_LIST_DIR}/markdownsplitter.h
    ${CMAKE_CURRENT_LIST_DIR}/markdownrichtextwriter.cpp ${CMAKE_CURRENT_LIST_DIR}/markdownrichtextwriter.h
    ${CMAKE_CURRENT_LIST_DIR}/inlinemarkdown.cpp ${CMAKE_CURRENT_LIST_DIR}/inlinemarkdown.h
)
target_include_directories(varnholt_markdown PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(varnholt_markdown PUBLIC Qt6::Core PRIVATE PkgConfig::MD4C)
