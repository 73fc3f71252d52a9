# The settings window's views and their view-side C++, built into the application's QML module.
list(APPEND VARNHOLT_VIEW_QML
    ${CMAKE_CURRENT_LIST_DIR}/AboutView.qml
    ${CMAKE_CURRENT_LIST_DIR}/FormTextField.qml
    ${CMAKE_CURRENT_LIST_DIR}/KnowledgeEditSheet.qml
    ${CMAKE_CURRENT_LIST_DIR}/KnowledgeItemRow.qml
    ${CMAKE_CURRENT_LIST_DIR}/KnowledgeSettingsView.qml
    ${CMAKE_CURRENT_LIST_DIR}/MainSettingsView.qml
    ${CMAKE_CURRENT_LIST_DIR}/ModelPicker.qml
    ${CMAKE_CURRENT_LIST_DIR}/SegmentedPicker.qml
    ${CMAKE_CURRENT_LIST_DIR}/ServerConnectionForm.qml
    ${CMAKE_CURRENT_LIST_DIR}/SettingsSectionBox.qml
    ${CMAKE_CURRENT_LIST_DIR}/SettingsView.qml
    ${CMAKE_CURRENT_LIST_DIR}/SettingsWindow.qml
)
list(APPEND VARNHOLT_VIEW_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/aiconnectioncontroller.cpp ${CMAKE_CURRENT_LIST_DIR}/aiconnectioncontroller.h
    ${CMAKE_CURRENT_LIST_DIR}/knowledgelistmodel.cpp ${CMAKE_CURRENT_LIST_DIR}/knowledgelistmodel.h
    ${CMAKE_CURRENT_LIST_DIR}/settingsqmltypes.h
)
list(APPEND VARNHOLT_VIEW_LIBRARIES varnholt_ai)
