# Markdown tests: splitting replies into blocks, and prose as safe rich text.
varnholt_add_test(tst_markdownsplitter SOURCES ${CMAKE_CURRENT_LIST_DIR}/markdown/tst_markdownsplitter.cpp
    LIBRARIES varnholt_markdown)
varnholt_add_test(tst_inlinemarkdown SOURCES ${CMAKE_CURRENT_LIST_DIR}/markdown/tst_inlinemarkdown.cpp
    LIBRARIES varnholt_markdown Qt6::Gui)
