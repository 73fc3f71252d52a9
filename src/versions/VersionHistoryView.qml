import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The right-hand panel of the selected document's versions, newest on top: open one in the
// reading sheet, restore one, clear them all. The window restores (restoreRequested) and
// reloads the editor; the list follows the store.
Rectangle {
    id: panel

    // Index of the version in the reading sheet, or -1.
    property int viewingIndex: -1
    property string versionToRestore: ""
    property int versionNumberToRestore: 0
    readonly property alias versionCount: versions.count
    // The editor's text, which the reading sheet can compare a version with.
    property string currentText: ""

    signal closeRequested
    signal restoreRequested(string versionId)

    function askToRestore(versionId: string, versionNumber: int) {
        versionToRestore = versionId
        versionNumberToRestore = versionNumber
        restoreAlert.open()
    }

    color: Theme.windowBackground

    VersionListModel {
        id: versions
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.minimumHeight: 28
            Layout.leftMargin: 8
            Layout.rightMargin: 8
            Layout.topMargin: 12
            Layout.bottomMargin: 6
            spacing: 8

            Icon {
                name: "clock.arrow.circlepath"
                color: Theme.cyan
                size: 14
            }
            Label {
                text: Tr.t("Version History", "版本历史", "バージョン履歴")
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
                color: Theme.label
                Accessible.role: Accessible.Heading
            }
            Item {
                Layout.fillWidth: true
            }
            Label {
                objectName: "versionCount"
                text: versions.count + " " + Tr.t("versions", "个版本", "件のバージョン")
                font.pixelSize: Theme.captionSize
                color: Theme.tertiaryLabel
                leftPadding: 8
                rightPadding: 8
                topPadding: 3
                bottomPadding: 3
                background: Rectangle {
                    radius: height / 2
                    color: Theme.withOpacity(Theme.controlBackground, 0.6)
                }
            }
            HeaderIconButton {
                objectName: "clearButton"
                visible: versions.count > 0
                iconName: "trash"
                iconSize: 11
                circled: true
                text: Tr.t("Clear All Versions", "清空所有版本", "すべてのバージョンをクリア")
                onClicked: clearAlert.open()
            }
            HeaderIconButton {
                objectName: "closeButton"
                iconName: "xmark"
                iconSize: 11
                circled: true
                text: Tr.t("Close Panel", "关闭面板", "パネルを閉じる")
                onClicked: panel.closeRequested()
            }
        }

        ColumnLayout {
            objectName: "emptyState"
            visible: versions.count === 0
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 12

            Item {
                Layout.fillHeight: true
            }
            Icon {
                Layout.alignment: Qt.AlignHCenter
                name: "clock.badge.questionmark"
                color: Theme.quaternaryLabel
                size: 32
            }
            Label {
                Layout.alignment: Qt.AlignHCenter
                text: Tr.t("No versions", "暂无版本", "バージョンなし")
                font.pixelSize: Theme.subheadlineSize
                color: Theme.secondaryLabel
            }
            Label {
                Layout.alignment: Qt.AlignHCenter
                Layout.maximumWidth: panel.width - 32
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: Tr.t("Save a version to show here", "保存版本后显示在此", "バージョンを保存するとここに表示されます")
                font.pixelSize: Theme.captionSize
                color: Theme.tertiaryLabel
            }
            Item {
                Layout.fillHeight: true
            }
        }

        ListView {
            id: list

            objectName: "versionList"
            visible: versions.count > 0
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.margins: 8
            clip: true
            model: versions
            activeFocusOnTab: true
            keyNavigationEnabled: true
            boundsBehavior: Flickable.StopAtBounds
            // Only the cards in view are made.
            reuseItems: true
            ScrollBar.vertical: ScrollBar {
                Accessible.name: Tr.t("Version History", "版本历史", "バージョン履歴")
            }
            Accessible.role: Accessible.List
            Accessible.name: Tr.t("Version History", "版本历史", "バージョン履歴")
            Keys.onReturnPressed: panel.viewingIndex = currentIndex
            Keys.onEnterPressed: panel.viewingIndex = currentIndex

            delegate: VersionRow {
                width: ListView.view.width
                rowCount: versions.count
                onViewRequested: panel.viewingIndex = index
                onRestoreRequested: panel.askToRestore(versionId, versionNumber)
            }
        }
    }

    ConfirmationAlert {
        id: restoreAlert

        objectName: "restoreAlert"
        title: Tr.t("Confirm Restore", "确认恢复", "復元の確認")
        message: Tr.t("Restore current content to this version. This will create a new version record.",
                      "将当前内容恢复到此版本，此操作会创建一个新的版本记录。",
                      "現在の内容をこのバージョンに復元します。新しいバージョン記録が作成されます。")
        confirmText: Tr.t("Restore to this version", "恢复到此版本", "このバージョンに復元")
        onConfirmed: {
            if (panel.versionToRestore !== "")
                panel.restoreRequested(panel.versionToRestore)
        }
    }

    ConfirmationAlert {
        id: clearAlert

        objectName: "clearAlert"
        title: Tr.t("Clear All Versions", "清空所有版本", "すべてのバージョンをクリア")
        message: Tr.t("Are you sure you want to clear all version history for this document? This action cannot be undone.",
                      "确定要清空当前文档的所有版本历史吗？此操作不可恢复。",
                      "このドキュメントのすべてのバージョン履歴をクリアしますか？この操作は元に戻せません。")
        confirmText: Tr.t("Clear All Versions", "清空所有版本", "すべてのバージョンをクリア")
        onConfirmed: versions.clearAll()
    }

    // The reading sheet, made while a version is open.
    Loader {
        active: panel.viewingIndex >= 0 && panel.viewingIndex < versions.count
        sourceComponent: VersionDetailSheet {
            objectName: "versionSheet"
            index: panel.viewingIndex
            total: versions.count
            version: versions.versionAt(panel.viewingIndex)
            currentText: panel.currentText
            previousText: panel.viewingIndex + 1 < versions.count ? versions.versionAt(panel.viewingIndex + 1).content : ""
            onCloseRequested: panel.viewingIndex = -1
            onOlderRequested: {
                if (panel.viewingIndex + 1 < versions.count)
                    ++panel.viewingIndex
            }
            onNewerRequested: {
                if (panel.viewingIndex > 0)
                    --panel.viewingIndex
            }
            onRestoreRequested: {
                const versionId = version.id
                panel.viewingIndex = -1
                panel.restoreRequested(versionId)
            }
        }
    }
}
