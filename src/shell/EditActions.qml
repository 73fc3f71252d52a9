import QtQuick
import QtQuick.Controls
import Varnholt

// The edits of a text field (Undo, Redo, Cut, Copy, Paste, Select All) as actions on `target`
// (a TextField, a TextArea or the editor's field; all answer the same calls), with their keys,
// for the Edit menu and the fields' context menus alike. While `live` is false they are all
// disabled, and so are their keys.
QtObject {
    id: edits

    property Item target: null
    property bool live: true
    readonly property bool editable: live && target !== null && !(target.readOnly ?? false)
    readonly property bool hasSelection: live && target !== null && typeof target.selectedText === "string"
                                         && target.selectedText.length > 0

    readonly property Action undo: Action {
        text: Tr.t("Undo", "撤销", "元に戻す")
        shortcut: StandardKey.Undo
        enabled: edits.editable && edits.says("canUndo")
        onTriggered: edits.target.undo()
    }
    readonly property Action redo: Action {
        text: Tr.t("Redo", "重做", "やり直す")
        shortcut: StandardKey.Redo
        enabled: edits.editable && edits.says("canRedo")
        onTriggered: edits.target.redo()
    }
    readonly property Action cut: Action {
        text: Tr.t("Cut", "剪切", "切り取り")
        shortcut: StandardKey.Cut
        enabled: edits.editable && edits.hasSelection
        onTriggered: edits.target.cut()
    }
    readonly property Action copy: Action {
        text: Tr.t("Copy", "拷贝", "コピー")
        shortcut: StandardKey.Copy
        enabled: edits.hasSelection
        onTriggered: edits.target.copy()
    }
    readonly property Action paste: Action {
        text: Tr.t("Paste", "粘贴", "貼り付け")
        shortcut: StandardKey.Paste
        enabled: edits.editable && edits.says("canPaste")
        onTriggered: edits.target.paste()
    }
    readonly property Action selectAll: Action {
        text: Tr.t("Select All", "全选", "すべてを選択")
        shortcut: StandardKey.SelectAll
        enabled: edits.live && edits.says("selectAll")
        onTriggered: edits.target.selectAll()
    }

    // Whether the target has a property (or function) `name` that does not say no.
    function says(name: string): bool {
        return target !== null && target[name] !== undefined && target[name] !== false
    }
}
