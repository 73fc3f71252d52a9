import QtQuick
import QtQuick.Controls
import Varnholt

// Under a reply: what it taught the knowledge store, one quiet line a fact, each with Undo while
// the store still holds what the reply wrote.
Column {
    id: line

    // [{itemId, isNew, content, isUndone, canUndo}]
    required property var facts

    signal undoRequested(string itemId)

    spacing: 2

    Repeater {
        model: line.facts

        Row {
            id: fact

            required property var modelData

            spacing: 6

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                name: "lightbulb"
                color: Theme.tertiaryLabel
                size: 11
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, line.width - 80)
                elide: Text.ElideRight
                text: (fact.modelData.isNew ? Tr.t("Learned: ", "已记住：", "学習しました：")
                                            : Tr.t("Updated: ", "已更新：", "更新しました：")) + fact.modelData.content
                font.pixelSize: Theme.captionSize
                font.strikeout: fact.modelData.isUndone
                color: Theme.secondaryLabel
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                visible: fact.modelData.isUndone
                text: Tr.t("Undone", "已撤销", "取り消しました")
                font.pixelSize: Theme.captionSize
                color: Theme.tertiaryLabel
            }
            AbstractButton {
                objectName: "undoLearnedButton"
                anchors.verticalCenter: parent.verticalCenter
                visible: fact.modelData.canUndo
                focusPolicy: Qt.StrongFocus
                hoverEnabled: true
                text: Tr.t("Undo", "撤销", "元に戻す")
                Accessible.name: text + ": " + fact.modelData.content
                Accessible.onPressAction: clicked()
                padding: 1
                contentItem: Label {
                    text: parent.text
                    font.pixelSize: Theme.captionSize
                    font.underline: parent.hovered || parent.visualFocus
                    color: Theme.blue
                }
                background: Rectangle {
                    radius: 3
                    color: "transparent"
                    border.width: parent.visualFocus ? 1 : 0
                    border.color: Theme.withOpacity(Theme.cyan, 0.8)
                }
                onClicked: line.undoRequested(fact.modelData.itemId)
            }
        }
    }
}
