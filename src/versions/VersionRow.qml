import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// One version on the history's timeline: the rail with its dot, and the card with the number,
// the note and the date. While the pointer is over it, or it is the list's current row with
// the keyboard in the list, it offers View and, unless it is the latest, Restore.
Item {
    id: row

    required property int index
    required property string versionId
    required property int versionNumber
    required property string note
    required property string relativeTime
    required property string formattedDate
    required property bool isLatest
    required property int rowCount
    readonly property bool showsActions: hover.hovered || (ListView.isCurrentItem && ListView.view !== null
                                                              && ListView.view.activeFocus)

    signal viewRequested
    signal restoreRequested

    readonly property color accent: isLatest ? Theme.green : Theme.cyan

    implicitHeight: card.implicitHeight + 6
    // The row reads as one item, by this name; its labels are hidden from assistive technology.
    Accessible.role: Accessible.ListItem
    Accessible.name: "v" + versionNumber + (isLatest ? ", " + Tr.t("Latest", "最新", "最新") : "") + ", " + note
                     + ", " + formattedDate
    Accessible.onPressAction: row.viewRequested()

    HoverHandler {
        id: hover
    }

    // The rail: a line through the rows, a dot on it at each card's top.
    Item {
        id: rail

        width: 20
        height: parent.height

        Rectangle {
            visible: row.rowCount > 1
            x: (parent.width - width) / 2
            y: row.index === 0 ? 16 : 0
            width: 2
            height: parent.height - (row.index === 0 ? 16 : 0) - (row.index === row.rowCount - 1 ? parent.height - 16 : 0)
            color: Theme.withOpacity(Theme.cyan, 0.2)
        }
        Rectangle {
            x: (parent.width - width) / 2
            y: 12
            width: 8
            height: 8
            radius: 4
            color: row.isLatest ? Theme.green : Theme.withOpacity(Theme.cyan, 0.5)

            Rectangle {
                visible: row.isLatest
                anchors.centerIn: parent
                width: 3
                height: 3
                radius: 1.5
                color: "white"
            }
        }
    }

    Rectangle {
        id: card

        x: rail.width + 6
        y: 3
        width: row.width - x - 10
        implicitHeight: content.implicitHeight + 20
        radius: 8
        color: Theme.withOpacity(Theme.controlBackground, row.showsActions ? 1 : 0.5)

        Behavior on color {
            ColorAnimation {
                duration: 150
                easing.type: Easing.InOutQuad
            }
        }
        border.width: row.ListView.isCurrentItem && row.ListView.view !== null && row.ListView.view.activeFocus ? 2 : 0
        border.color: Theme.withOpacity(Theme.cyan, 0.8)

        ColumnLayout {
            id: content

            x: 10
            y: 10
            width: parent.width - 20
            spacing: 6

            RowLayout {
                Layout.fillWidth: true
                spacing: 6

                Label {
                    Accessible.ignored: true
                    text: "v" + row.versionNumber
                    font.pixelSize: Theme.captionSize
                    font.weight: Font.DemiBold
                    color: row.accent
                    leftPadding: 6
                    rightPadding: 6
                    topPadding: 2
                    bottomPadding: 2
                    background: Rectangle {
                        radius: height / 2
                        color: Theme.withOpacity(row.accent, 0.15)
                    }
                }
                Label {
                    Accessible.ignored: true
                    visible: row.isLatest
                    text: Tr.t("Latest", "最新", "最新")
                    font.pixelSize: Theme.caption2Size
                    font.weight: Font.Medium
                    color: "white"
                    leftPadding: 4
                    rightPadding: 4
                    topPadding: 1
                    bottomPadding: 1
                    background: Rectangle {
                        radius: height / 2
                        color: Theme.green
                    }
                }
                Item {
                    Layout.fillWidth: true
                }
                Label {
                    Accessible.ignored: true
                    text: row.relativeTime
                    font.pixelSize: Theme.caption2Size
                    color: Theme.tertiaryLabel
                }
            }
            Label {
                Accessible.ignored: true
                visible: row.note !== ""
                Layout.fillWidth: true
                text: row.note
                wrapMode: Text.Wrap
                font.pixelSize: Theme.bodySize
                color: Theme.label
            }
            Label {
                Accessible.ignored: true
                text: row.formattedDate
                font.pixelSize: Theme.caption2Size
                color: Theme.tertiaryLabel
            }
            Row {
                visible: opacity > 0
                opacity: row.showsActions ? 1 : 0
                topPadding: 2
                spacing: 8

                Behavior on opacity {
                    NumberAnimation {
                        duration: 150
                        easing.type: Easing.InOutQuad
                    }
                }

                CodeBlockFrame.HeaderButton {
                    objectName: "viewButton"
                    iconName: "eye"
                    text: Tr.t("View", "查看", "表示")
                    tint: Theme.cyan
                    onClicked: row.viewRequested()
                }
                CodeBlockFrame.HeaderButton {
                    objectName: "restoreButton"
                    visible: !row.isLatest
                    iconName: "arrow.uturn.backward"
                    text: Tr.t("Restore", "恢复", "復元")
                    tint: Theme.orange
                    onClicked: row.restoreRequested()
                }
            }
        }
    }
}
