import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// What the next request will carry, shown on demand: the system prompt with the knowledge block,
// the trimmed history and the message as it will be wrapped. Read-only, so that the user can see
// what leaves the machine before it does.
ColumnLayout {
    id: disclosure

    // [{role, content}], read only while open.
    required property var elements
    property bool expanded: false

    spacing: 4

    AbstractButton {
        id: toggle

        objectName: "contextToggle"
        focusPolicy: Qt.StrongFocus
        hoverEnabled: true
        text: Tr.t("Context", "上下文", "コンテキスト")
        Accessible.role: Accessible.CheckBox
        Accessible.name: text
        Accessible.checked: disclosure.expanded
        Accessible.onPressAction: clicked()
        Accessible.onToggleAction: clicked()
        onClicked: disclosure.expanded = !disclosure.expanded
        padding: 2
        contentItem: Row {
            spacing: 3

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                name: disclosure.expanded ? "chevron.down" : "chevron.right"
                color: Theme.secondaryLabel
                size: 10
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: toggle.text
                font.pixelSize: Theme.captionSize
                color: toggle.hovered ? Theme.label : Theme.secondaryLabel
            }
        }
        background: Rectangle {
            radius: 3
            color: "transparent"
            border.width: toggle.visualFocus ? 1 : 0
            border.color: Theme.withOpacity(Theme.cyan, 0.8)
        }
    }

    WrappedTextScrollView {
        objectName: "contextView"
        scrolledName: Tr.t("Context", "上下文", "コンテキスト")
        visible: disclosure.expanded
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(contextColumn.implicitHeight, 220)
        clip: true

        Column {
            id: contextColumn

            width: disclosure.width - 12
            spacing: 8

            Repeater {
                model: disclosure.elements

                Column {
                    id: element

                    required property var modelData

                    width: contextColumn.width
                    spacing: 2

                    Label {
                        text: element.modelData.role
                        font.pixelSize: Theme.caption2Size
                        font.weight: Font.DemiBold
                        color: Theme.tertiaryLabel
                    }
                    TextEdit {
                        width: parent.width
                        text: element.modelData.content
                        textFormat: TextEdit.PlainText
                        readOnly: true
                        selectByMouse: true
                        wrapMode: TextEdit.Wrap
                        font.family: Theme.monospaceFamily
                        font.pixelSize: Theme.captionSize
                        color: Theme.secondaryLabel
                        selectionColor: Theme.withOpacity(Theme.cyan, 0.35)
                    }
                }
            }
        }
    }
}
