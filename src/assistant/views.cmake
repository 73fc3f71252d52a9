# The assistant panel's views and their view-side C++, built into the application's QML module.
list(APPEND VARNHOLT_VIEW_QML
    ${CMAKE_CURRENT_LIST_DIR}/AIAssistantView.qml
    ${CMAKE_CURRENT_LIST_DIR}/CodeBlockFrame.qml
    ${CMAKE_CURRENT_LIST_DIR}/CodeBlockView.qml
    ${CMAKE_CURRENT_LIST_DIR}/ContextDisclosure.qml
    ${CMAKE_CURRENT_LIST_DIR}/ErrorInputPanel.qml
    ${CMAKE_CURRENT_LIST_DIR}/GenericCodeBlockView.qml
    ${CMAKE_CURRENT_LIST_DIR}/HeaderIconButton.qml
    ${CMAKE_CURRENT_LIST_DIR}/LearnedFactsLine.qml
    ${CMAKE_CURRENT_LIST_DIR}/LoadingIndicator.qml
    ${CMAKE_CURRENT_LIST_DIR}/MarkdownContentView.qml
    ${CMAKE_CURRENT_LIST_DIR}/MarkdownTextView.qml
    ${CMAKE_CURRENT_LIST_DIR}/MessageBubble.qml
    ${CMAKE_CURRENT_LIST_DIR}/QuickActionButton.qml
    ${CMAKE_CURRENT_LIST_DIR}/StreamingMessageBubble.qml
)
list(APPEND VARNHOLT_VIEW_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/assistantqmltypes.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlcodecolouring.cpp ${CMAKE_CURRENT_LIST_DIR}/sqlcodecolouring.h
)
list(APPEND VARNHOLT_VIEW_LIBRARIES varnholt_assistant varnholt_sqlcolour)
