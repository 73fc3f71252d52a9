import QtQuick
import QtQuick.Controls
import Varnholt

// The middle pane. Its interface to the main window: the two panel states come in, requests
// to change them and the edited text go out.
Rectangle {
    id: editor

    required property bool showVersionHistory
    required property bool showAIAssistant

    signal showVersionHistoryRequested(bool show)
    signal showAIAssistantRequested(bool show)
    signal currentContentEdited(string text)

    color: Theme.textBackground

    Row {
        anchors.right: parent.right
        anchors.rightMargin: 12
        y: 12
        spacing: 4

        Button {
            text: Tr.t("AI Assistant", "AI 助手", "AI アシスタント")
            checkable: true
            checked: editor.showAIAssistant
            onClicked: editor.showAIAssistantRequested(!editor.showAIAssistant)
        }
        Button {
            text: Tr.t("Version History", "版本历史", "バージョン履歴")
            checkable: true
            checked: editor.showVersionHistory
            onClicked: editor.showVersionHistoryRequested(!editor.showVersionHistory)
        }
    }
}
