import QtQuick
import QtQuick.Controls
import Varnholt

// The context menu of a text field: Undo, Redo, Cut, Copy, Paste, Select All, with their keys,
// on `target` (a TextField, a TextArea or the editor's field; all answer the same calls). Put it
// inside the field: it opens on a right click, and on the Menu key or Shift+F10 at the caret.
Item {
    id: area

    required property Item target

    function openAt(x: real, y: real) {
        target.forceActiveFocus()
        menu.popup(target, x, y)
    }

    anchors.fill: parent

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: eventPoint => area.openAt(eventPoint.position.x, eventPoint.position.y)
    }
    Shortcut {
        sequences: ["Menu", "Shift+F10"]
        enabled: area.target.activeFocus
        onActivated: {
            const caret = area.target.positionToRectangle(area.target.cursorPosition)
            area.openAt(caret.x, caret.y + caret.height)
        }
    }

    // Its actions (and so their keys) are live only while it is open: the fields take their
    // own keys, and a closed menu must not claim them for the window.
    EditActions {
        id: edits

        target: area.target
        live: menu.visible
    }

    NamedMenu {
        id: menu

        objectName: "fieldMenu"
        accessibleName: Tr.t("Edit", "编辑", "編集")
        // The keyboard goes back to the field, unless something else took it meanwhile (Qt
        // leaves it with the window's root item).
        onClosed: {
            const focused = area.Window.activeFocusItem
            if (focused === null || focused.parent === null)
                area.target.forceActiveFocus()
        }
        MenuEntry {
            action: edits.undo
        }
        MenuEntry {
            action: edits.redo
        }
        MenuSeparator {}
        MenuEntry {
            action: edits.cut
        }
        MenuEntry {
            action: edits.copy
        }
        MenuEntry {
            action: edits.paste
        }
        MenuSeparator {}
        MenuEntry {
            action: edits.selectAll
        }
    }
}
