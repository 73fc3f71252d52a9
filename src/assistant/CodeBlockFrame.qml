import QtQuick
import QtQuick.Controls
import Varnholt

// The look of a code block in a reply: a header with the language and the block's buttons over
// the code, which scrolls sideways rather than wrapping and can be selected and copied. Copy is
// always there; a block adds its own buttons after it.
Rectangle {
    id: frame

    required property string code
    required property string label
    // Colour the code as SQL with the read-only pass.
    property bool colourAsSQL: false
    // The copy button names its confirmation, not only shows it.
    property bool namesCopied: false
    property bool isCopied: false
    default property alias actions: actionRow.data

    // A button of the header: an icon and an optional word in the given colour.
    component HeaderButton: AbstractButton {
        id: headerButton

        property string iconName
        property color tint: Theme.secondaryLabel
        property bool showsText: true

        focusPolicy: Qt.StrongFocus
        hoverEnabled: true
        Accessible.name: text
        Accessible.onPressAction: clicked()
        ToolTip.visible: hovered && ToolTip.text.length > 0
        ToolTip.delay: 500
        padding: 2
        contentItem: Row {
            spacing: 2
            opacity: headerButton.enabled ? 1 : 0.4

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                name: headerButton.iconName
                color: headerButton.tint
                size: 11
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                visible: headerButton.showsText && headerButton.text.length > 0
                text: headerButton.text
                font.pixelSize: Theme.caption2Size
                color: headerButton.tint
            }
        }
        background: Rectangle {
            radius: 4
            color: headerButton.hovered ? Theme.withOpacity(Theme.label, 0.06) : "transparent"
            border.width: headerButton.visualFocus ? 2 : 0
            border.color: Theme.withOpacity(Theme.cyan, 0.8)
        }
    }

    // A second press within the two seconds starts a second delay; the first to end clears.
    function copyCode() {
        Clipboard.setText(code)
        isCopied = true
        copiedDelay.createObject(frame)
    }

    implicitHeight: header.height + codeArea.height
    radius: 8
    color: Theme.textBackground
    border.color: Theme.separator
    border.width: 1
    clip: true

    Component {
        id: copiedDelay

        Timer {
            interval: 2000
            running: true
            onTriggered: {
                frame.isCopied = false
                destroy()
            }
        }
    }

    Rectangle {
        id: header

        x: 1
        y: 1
        width: parent.width - 2
        height: headerRow.implicitHeight + 12
        color: Theme.withOpacity(Theme.windowBackground, 0.6)

        Label {
            anchors.left: parent.left
            anchors.leftMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            text: frame.label
            font.pixelSize: Theme.caption2Size
            font.weight: Font.Medium
            color: Theme.secondaryLabel
        }

        Row {
            id: headerRow

            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            spacing: 8

            HeaderButton {
                objectName: "copyButton"
                iconName: frame.isCopied ? "checkmark" : "doc.on.doc"
                tint: frame.isCopied ? Theme.green : Theme.secondaryLabel
                text: frame.isCopied ? Tr.t("Copied", "已复制", "コピーしました") : Tr.t("Copy", "复制", "コピー")
                showsText: frame.namesCopied && frame.isCopied
                onClicked: frame.copyCode()
            }
            Row {
                id: actionRow

                spacing: 8
            }
        }
    }

    Flickable {
        id: codeArea

        x: 1
        y: header.y + header.height
        width: parent.width - 2
        height: codeText.implicitHeight + (horizontalBar.visible ? horizontalBar.height : 0)
        contentWidth: codeText.implicitWidth
        contentHeight: codeText.implicitHeight
        flickableDirection: Flickable.HorizontalFlick
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.horizontal: ScrollBar {
            id: horizontalBar

            policy: codeArea.contentWidth > codeArea.width ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
            Accessible.name: frame.label
        }

        TextEdit {
            id: codeText

            objectName: "codeText"
            text: frame.code
            textFormat: TextEdit.PlainText
            readOnly: true
            selectByMouse: true
            wrapMode: TextEdit.NoWrap
            padding: 10
            font.family: Theme.monospaceFamily
            font.pointSize: Theme.codePointSize
            color: Theme.label
            selectionColor: Theme.withOpacity(Theme.cyan, 0.35)
            selectedTextColor: Theme.label
        }
    }

    SQLCodeColouring {
        textDocument: frame.colourAsSQL ? codeText.textDocument : null
        plainColor: Theme.label
        commentColor: Theme.secondaryLabel
        fontSize: Theme.codePointSize
    }
}
