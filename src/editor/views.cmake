# The editor's views and their C++ backing, built into the application's QML module.
list(APPEND VARNHOLT_VIEW_QML
    ${CMAKE_CURRENT_LIST_DIR}/SQLEditorView.qml
)
list(APPEND VARNHOLT_VIEW_SOURCES
)
