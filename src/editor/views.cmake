# The editor's views and their C++ backing, built into the application's QML module.
list(APPEND VARNHOLT_VIEW_QML
    ${CMAKE_CURRENT_LIST_DIR}/EditableDocumentName.qml
    ${CMAKE_CURRENT_LIST_DIR}/FindBar.qml
    ${CMAKE_CURRENT_LIST_DIR}/GoToLinePopup.qml
    ${CMAKE_CURRENT_LIST_DIR}/PanelToggleButton.qml
    ${CMAKE_CURRENT_LIST_DIR}/PanelToggleGroup.qml
    ${CMAKE_CURRENT_LIST_DIR}/SaveVersionSheet.qml
    ${CMAKE_CURRENT_LIST_DIR}/SQLEditorView.qml
    ${CMAKE_CURRENT_LIST_DIR}/SQLTextEditor.qml
)
list(APPEND VARNHOLT_VIEW_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/sqleditorcontroller.cpp ${CMAKE_CURRENT_LIST_DIR}/sqleditorcontroller.h
    ${CMAKE_CURRENT_LIST_DIR}/sqleditoritem.cpp ${CMAKE_CURRENT_LIST_DIR}/sqleditoritem.h
    ${CMAKE_CURRENT_LIST_DIR}/sqleditoraccessible.cpp ${CMAKE_CURRENT_LIST_DIR}/sqleditoraccessible.h
    ${CMAKE_CURRENT_LIST_DIR}/editorqmltypes.h
)
list(APPEND VARNHOLT_VIEW_LIBRARIES varnholt_sqlformat varnholt_sqlcolour varnholt_editor)
