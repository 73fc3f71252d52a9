import QtQuick
import QtQuick.Controls
import Varnholt

// The context menu of a text field: Undo, Redo, Cut, Copy, Paste, Select All, with their keys,
// on `target` (a TextField, a TextArea or the editor's field; all answer the same calls). Put it
// inside the field: it opens on a right click, and on the Menu key or Shift+F10 at the caret.
Item {
    id: area

    required property Item target
    readonly property bool editable: !(target.readOnly ?? false)

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
    Menu {
        id: menu

        delegate: MenuEntry {}

        Action {
            text: Tr.t("Undo", "撤销", "元に戻す")
            shortcut: StandardKey.Undo
            enabled: menu.visible && area.editable && area.target.canUndo
            onTriggered: area.target.undo()
        }
        Action {
            text: Tr.t("Redo", "重做", "やり直す")
            shortcut: StandardKey.Redo
            enabled: menu.visible && area.editable && area.target.canRedo
            onTriggered: area.target.redo()
        }
        MenuSeparator {
        }
        Action {
            text: Tr.t("Cut", "剪切", "切り取り")
            shortcut: StandardKey.Cut
            enabled: menu.visible && area.editable && area.target.selectedText.length > 0
            onTriggered: area.target.cut()
        }
        Action {
            text: Tr.t("Copy", "拷贝", "コピー")
            shortcut: StandardKey.Copy
            enabled: menu.visible && area.target.selectedText.length > 0
            onTriggered: area.target.copy()
        }
        Action {
            text: Tr.t("Paste", "粘贴", "貼り付け")
            shortcut: StandardKey.Paste
            enabled: menu.visible && area.editable && area.target.canPaste
            onTriggered: area.target.paste()
        }
        MenuSeparator {
        }
        Action {
            text: Tr.t("Select All", "全选", "すべてを選択")
            shortcut: StandardKey.SelectAll
            enabled: menu.visible
            onTriggered: area.target.selectAll()
        }
    }
}
