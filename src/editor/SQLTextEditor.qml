import QtQuick
import QtQuick.Controls
import Varnholt

// The text view of the editor: plain text, monospaced, undoable, with the controller
// attached to its document. Text comes down only through the controller.
ScrollView {
    id: editor

    required property SQLEditorController controller
    readonly property alias textArea: area

    clip: true

    TextArea {
        id: area

        objectName: "sqlTextArea"
        textFormat: TextEdit.PlainText
        wrapMode: TextEdit.Wrap
        selectByMouse: true
        persistentSelection: true
        font.family: Theme.monospaceFamily
        font.pointSize: editor.controller.fontSize
        color: Theme.label
        selectionColor: Theme.withOpacity(Theme.cyan, 0.35)
        selectedTextColor: Theme.label
        leftPadding: 12
        rightPadding: 12
        topPadding: 16
        bottomPadding: 16
        Accessible.name: Tr.t("SQL", "SQL", "SQL")
        background: Rectangle {
            color: Theme.textBackground
        }
        Component.onCompleted: {
            editor.controller.plainColor = Qt.binding(() => Theme.label)
            editor.controller.commentColor = Qt.binding(() => Theme.secondaryLabel)
            editor.controller.textDocument = area.textDocument
            editor.updateVisibleRange()
        }
    }

    // Tells the colouring which characters are on screen, so that they are coloured first.
    function updateVisibleRange() {
        const flickable = contentItem as Flickable
        if (!flickable)
            return
        const first = area.positionAt(0, flickable.contentY)
        const last = area.positionAt(area.width, flickable.contentY + flickable.height)
        controller.setVisibleRange(first, last)
    }

    Connections {
        target: editor.contentItem

        function onContentYChanged() {
            editor.updateVisibleRange()
        }
        function onHeightChanged() {
            editor.updateVisibleRange()
        }
    }
}
