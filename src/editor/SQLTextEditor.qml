import QtQuick
import QtQuick.Controls
import Varnholt

// The text view of the editor: plain text, monospaced, undoable, with the controller
// attached to its document. Text comes down only through the controller.
Item {
    id: editor

    required property SQLEditorController controller
    readonly property alias textArea: area

    clip: true

    Rectangle {
        anchors.fill: parent
        color: Theme.textBackground
    }

    SQLEditorItem {
        id: area

        objectName: "sqlTextArea"
        anchors.fill: parent
        focus: true
        font.family: Theme.monospaceFamily
        font.pointSize: editor.controller.fontSize
        fillColor: Theme.textBackground
        textColor: Theme.label
        selectionColor: Theme.withOpacity(Theme.cyan, 0.35)
        selectedTextColor: Theme.label
        findHighlightColor: Theme.withOpacity(Theme.orange, Theme.dark ? 0.4 : 0.3)
        horizontalPadding: 12
        verticalPadding: 16
        accessibleName: Tr.t("SQL", "SQL", "SQL")
        // Makes the field one of the items screen readers list; what they read of it comes
        // from the field's own accessible interface.
        Accessible.role: Accessible.EditableText
        Component.onCompleted: {
            editor.controller.plainColor = Qt.binding(() => Theme.label)
            editor.controller.commentColor = Qt.binding(() => Theme.secondaryLabel)
            editor.controller.textDocument = area.document
        }
        // A long text reaches the store when typing pauses; whatever the user turns to next
        // (the assistant, a version) must see it as typed.
        onActiveFocusChanged: {
            if (!activeFocus)
                editor.controller.syncNow()
        }

        EditContextMenu {
            objectName: "editorContextMenu"
            target: area
        }
    }

    ScrollBar {
        id: scrollBar

        anchors.top: parent.top
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        orientation: Qt.Vertical
        Accessible.name: Tr.t("SQL", "SQL", "SQL")
        policy: area.contentHeight > area.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
        size: area.height / Math.max(area.contentHeight, 1)
        position: area.contentY / Math.max(area.contentHeight, 1)
        onPositionChanged: {
            if (pressed)
                area.contentY = position * area.contentHeight
        }
    }
}
