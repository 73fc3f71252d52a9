import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The settings: three tabs on a fixed area of 520 by 520 that does not follow its content.
Rectangle {
    id: settings

    component SettingsTab: TabButton {
        id: tab

        required property string iconName

        implicitHeight: 52
        focusPolicy: Qt.StrongFocus
        Accessible.name: text
        // Qt offers a tab no action of its own; Press opens it, as a click does.
        Accessible.onPressAction: TabBar.tabBar.setCurrentIndex(TabBar.index)

        contentItem: Column {
            spacing: 3

            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                name: tab.iconName
                color: tab.checked ? Theme.blue : Theme.secondaryLabel
                size: 18
            }
            Label {
                anchors.horizontalCenter: parent.horizontalCenter
                text: tab.text
                font.pixelSize: Theme.captionSize
                font.weight: tab.checked ? Font.DemiBold : Font.Normal
                color: tab.checked ? Theme.blue : Theme.secondaryLabel
            }
        }
        background: Rectangle {
            color: tab.checked ? Theme.withOpacity(Theme.label, 0.06) : "transparent"
            border.width: tab.visualFocus ? 2 : 0
            border.color: Theme.withOpacity(Theme.cyan, 0.8)
            radius: 6
        }
    }

    width: 520
    height: 520
    color: Theme.windowBackground

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        TabBar {
            id: tabs

            objectName: "settingsTabs"
            Accessible.name: Tr.t("Settings", "设置", "設定")
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 6
            spacing: 4
            background: null

            SettingsTab {
                width: 110
                text: Tr.t("Settings", "设置", "設定")
                iconName: "gearshape"
            }
            SettingsTab {
                width: 110
                text: Tr.t("Knowledge Base", "知识库", "ナレッジベース")
                iconName: "brain.head.profile"
            }
            SettingsTab {
                width: 110
                text: Tr.t("About", "关于", "について")
                iconName: "info.circle"
            }
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.topMargin: 6
            implicitHeight: 1
            color: Theme.separator
        }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: tabs.currentIndex

            MainSettingsView {
                objectName: "mainSettingsView"
            }
            KnowledgeSettingsView {
                objectName: "knowledgeSettingsView"
            }
            AboutView {
                objectName: "aboutView"
            }
        }
    }
}
