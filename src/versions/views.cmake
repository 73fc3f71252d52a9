# The version history panel and reading sheet, built into the application's QML module.
list(APPEND VARNHOLT_VIEW_QML
    ${CMAKE_CURRENT_LIST_DIR}/TextComparisonView.qml
    ${CMAKE_CURRENT_LIST_DIR}/VersionDetailSheet.qml
    ${CMAKE_CURRENT_LIST_DIR}/VersionHistoryView.qml
    ${CMAKE_CURRENT_LIST_DIR}/VersionRow.qml
)
list(APPEND VARNHOLT_VIEW_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/versionlistmodel.cpp ${CMAKE_CURRENT_LIST_DIR}/versionlistmodel.h
    ${CMAKE_CURRENT_LIST_DIR}/versiontextlines.cpp ${CMAKE_CURRENT_LIST_DIR}/versiontextlines.h
    ${CMAKE_CURRENT_LIST_DIR}/textdiffmodel.cpp ${CMAKE_CURRENT_LIST_DIR}/textdiffmodel.h
)
list(APPEND VARNHOLT_VIEW_LIBRARIES varnholt_versions)
