import QtQuick
import Varnholt

// The two switches of the right-hand panels; opening one closes the other, pressing the
// open one closes it.
Rectangle {
    id: group

    required property bool showAIAssistant
    required property bool showVersionHistory
    property real buttonSize: 28
    property real iconSize: 13

    signal showAIAssistantRequested(bool show)
    signal showVersionHistoryRequested(bool show)

    implicitWidth: row.implicitWidth + 6
    implicitHeight: row.implicitHeight + 6
    radius: 8
    color: Theme.withOpacity(Theme.controlBackground, 0.6)
    border.color: Theme.separator

    Row {
        id: row

        anchors.centerIn: parent
        spacing: 1

        PanelToggleButton {
            objectName: "assistantToggle"
            width: group.buttonSize
            iconSize: group.iconSize
            isActive: group.showAIAssistant
            iconName: "wand.and.stars"
            activeColor: Theme.purple
            helpText: Tr.t("AI Assistant", "AI 助手", "AI アシスタント")
            onClicked: group.showAIAssistantRequested(!group.showAIAssistant)
        }
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 1
            height: 16
            color: Theme.separator
        }
        PanelToggleButton {
            objectName: "versionsToggle"
            width: group.buttonSize
            iconSize: group.iconSize
            isActive: group.showVersionHistory
            iconName: "clock.arrow.circlepath"
            activeColor: Theme.cyan
            helpText: Tr.t("Version History", "版本历史", "バージョン履歴")
            onClicked: group.showVersionHistoryRequested(!group.showVersionHistory)
        }
    }
}
