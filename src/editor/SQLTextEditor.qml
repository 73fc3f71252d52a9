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
        font.pixelSize: editor.controller.fontSize
        color: Theme.label
        selectionColor: Theme.alpha(Theme.cyan, 0.35)
        selectedTextColor: Theme.label
        leftPadding: 12
        rightPadding: 12
        topPadding: 16
        bottomPadding: 16
        Accessible.name: Tr.t("SQL", "SQL", "SQL")
        background: Rectangle {
            color: Theme.textBackground
        }
        Component.onCompleted: editor.controller.textDocument = area.textDocument
    }
}
