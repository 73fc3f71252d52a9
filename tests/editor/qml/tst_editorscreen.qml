import QtQuick
import QtTest
import Varnholt

TestCase {
    id: testCase

    name: "EditorScreen"
    width: 900
    height: 600
    visible: true
    when: windowShown

    property bool versionsRequested: false
    property bool assistantRequested: false

    Component {
        id: editorComponent

        SQLEditorView {
            width: 900
            height: 600
            showVersionHistory: false
            showAIAssistant: false
            onShowVersionHistoryRequested: show => testCase.versionsRequested = show
            onShowAIAssistantRequested: show => testCase.assistantRequested = show
        }
    }

    function findNamed(root: Item, name: string): Item {
        if (root.objectName === name)
            return root
        for (let i = 0; i < root.children.length; ++i) {
            const found = findNamed(root.children[i], name)
            if (found)
                return found
        }
        return null
    }

    function typeText(text: string) {
        for (let i = 0; i < text.length; ++i)
            keyClick(text[i])
    }

    function test_typingShowsTheDotUntilSaved() {
        const editor = createTemporaryObject(editorComponent, testCase)
        const area = editor.textEditor.textArea
        const dot = findNamed(editor, "unsavedDot")
        verify(!dot.visible)
        mouseClick(area, 20, 20)
        keyClick(Qt.Key_End, Qt.ControlModifier)
        keyClick("x")
        verify(dot.visible)
        tryCompare(dot, "visible", false, 2000)
    }

    function test_formatAndSaveVersionByKeys() {
        const editor = createTemporaryObject(editorComponent, testCase)
        const area = editor.textEditor.textArea
        area.forceActiveFocus()
        area.selectAll()
        typeText("select a,b from t")
        tryVerify(() => !editor.controller.isBlank)
        keyClick(Qt.Key_F, Qt.ControlModifier | Qt.ShiftModifier)
        tryVerify(() => area.text.indexOf("SELECT") === 0)
        keyClick(Qt.Key_Z, Qt.ControlModifier)
        tryCompare(area, "text", "select a,b from t")

        keyClick(Qt.Key_S, Qt.ControlModifier)
        const sheet = editor.saveVersionSheet
        tryCompare(sheet.noteField, "activeFocus", true)
        const number = sheet.nextVersionNumber
        typeText("first cut")
        keyClick(Qt.Key_Return, Qt.ControlModifier)
        tryCompare(sheet, "visible", false)
        compare(editor.controller.nextVersionNumber(), number + 1)
        // Out once the documents file holds the text.
        tryVerify(() => !findNamed(editor, "unsavedDot").visible)
    }

    function test_blankTextDisablesFormatAndSave() {
        const editor = createTemporaryObject(editorComponent, testCase)
        const area = editor.textEditor.textArea
        area.forceActiveFocus()
        area.selectAll()
        keyClick(Qt.Key_Space)
        tryVerify(() => editor.controller.isBlank)
        verify(!findNamed(editor, "formatButton").enabled)
        verify(!findNamed(editor, "saveVersionButton").enabled)
        compare(findNamed(editor, "characterCount").text, "1 characters")
        keyClick(Qt.Key_S, Qt.ControlModifier)
        wait(50)
        verify(!editor.saveVersionSheet.visible)
    }

    function test_renameByDoubleClick() {
        const editor = createTemporaryObject(editorComponent, testCase)
        const name = findNamed(editor, "documentName")
        const before = editor.controller.documentName
        mouseClick(name, 5, 5)
        verify(!name.isEditing) // a single click does nothing
        wait(Qt.styleHints.mouseDoubleClickInterval + 100)
        mouseDoubleClickSequence(name, 5, 5)
        tryCompare(name, "isEditing", true)
        keyClick(Qt.Key_A, Qt.ControlModifier)
        keyClick(Qt.Key_Backspace)
        keyClick(Qt.Key_Return)
        tryCompare(name, "isEditing", false)
        compare(editor.controller.documentName, before) // empty keeps the old name

        mouseDoubleClickSequence(name, 5, 5)
        tryCompare(name, "isEditing", true)
        keyClick(Qt.Key_A, Qt.ControlModifier)
        typeText("Renamed")
        keyClick(Qt.Key_Return)
        tryCompare(editor.controller, "documentName", "Renamed")
    }

    // A name is shown whole while the header has room for it.
    function test_nameUsesTheHeadersWidth() {
        const editor = createTemporaryObject(editorComponent, testCase)
        const text = findNamed(editor, "documentNameText")
        for (const name of ["Monthly revenue", "Schema: orders", "用户留存分析", "在庫レポート", "x", "SELECT 1 AS one"]) {
            editor.controller.renameDocument(name)
            tryCompare(text, "text", name)
            waitForRendering(editor)
            verify(!text.truncated, name)
        }
    }

    function test_panelSwitches() {
        const editor = createTemporaryObject(editorComponent, testCase)
        mouseClick(findNamed(editor, "versionsToggle"))
        verify(testCase.versionsRequested)
        mouseClick(findNamed(editor, "assistantToggle"))
        verify(testCase.assistantRequested)
    }

    // The find bar by keys: opened on the caret, typing counts and selects, Return and F3 go
    // on, Shift+Return goes back, Ctrl+R opens replacing, Replace All is one undo, Escape gives
    // the text its focus back.
    function test_findAndReplaceByKeys() {
        const editor = createTemporaryObject(editorComponent, testCase)
        const area = editor.textEditor.textArea
        const bar = editor.findBar
        area.forceActiveFocus()
        area.selectAll()
        typeText("select a from t; select b from u; SELECT c")
        area.cursorPosition = 0
        bar.open(false) // Ctrl+F is the window's Edit menu's
        verify(bar.visible)
        const field = findNamed(bar, "findField")
        tryCompare(field, "activeFocus", true)
        typeText("select")
        const status = findNamed(bar, "findStatus")
        compare(status.text, "1 of 3")
        compare(area.selectedText, "select")
        compare(area.selectionStart, 0)
        keyClick(Qt.Key_Return)
        compare(area.selectionStart, 17)
        keyClick(Qt.Key_F3)
        compare(status.text, "3 of 3")
        keyClick(Qt.Key_F3)
        compare(status.text, "1 of 3") // round again
        keyClick(Qt.Key_Return, Qt.ShiftModifier)
        compare(status.text, "3 of 3")

        mouseClick(findNamed(bar, "matchCase"))
        compare(status.text, "1 of 2")
        field.forceActiveFocus()
        typeText("x")
        compare(status.text, "No results")

        keyClick(Qt.Key_R, Qt.ControlModifier)
        const replace = findNamed(bar, "replaceField")
        verify(replace.visible)
        field.selectAll()
        typeText("from")
        replace.forceActiveFocus()
        typeText("FROM")
        mouseClick(findNamed(bar, "replaceAllButton"))
        compare(area.text, "select a FROM t; select b FROM u; SELECT c")
        keyClick(Qt.Key_Escape)
        verify(!bar.visible)
        verify(area.activeFocus)
        keyClick(Qt.Key_Z, Qt.ControlModifier)
        compare(area.text, "select a from t; select b from u; SELECT c")
    }

    function test_goToLine() {
        const editor = createTemporaryObject(editorComponent, testCase)
        const area = editor.textEditor.textArea
        area.forceActiveFocus()
        area.selectAll()
        typeText("a")
        for (let i = 0; i < 5; ++i) {
            keyClick(Qt.Key_Return)
            typeText("line")
        }
        editor.openGoToLine()
        const field = findNamed(findChild(editor, "goToLine").contentItem, "goToLineField")
        tryCompare(field, "activeFocus", true)
        typeText("9") // beyond the last line: the last one
        keyClick(Qt.Key_Return)
        tryCompare(area, "activeFocus", true)
        compare(area.cursorPosition, 22)
        editor.openGoToLine()
        tryCompare(field, "activeFocus", true)
        compare(field.text, "")
        typeText("3")
        keyClick(Qt.Key_Return)
        compare(area.cursorPosition, 7)
        editor.openGoToLine()
        tryCompare(field, "activeFocus", true)
        keyClick(Qt.Key_Escape)
        tryCompare(area, "activeFocus", true)
        compare(area.cursorPosition, 7)
    }

    // The text's context menu from the keyboard: its entries act on the text.
    function test_contextMenuByKeys() {
        const editor = createTemporaryObject(editorComponent, testCase)
        const area = editor.textEditor.textArea
        area.forceActiveFocus()
        area.selectAll()
        typeText("select 1")
        const menu = findChild(findChild(editor, "editorContextMenu"), "fieldMenu")
        keyClick(Qt.Key_F10, Qt.ShiftModifier)
        tryVerify(() => menu.opened)
        const undo = menu.itemAt(0)
        verify(undo.enabled)
        const selectAll = menu.itemAt(7)
        compare(selectAll.text, "Select All")
        mouseClick(selectAll)
        tryVerify(() => !menu.visible)
        compare(area.selectedText, "select 1")
        // Closed, it claims no keys: the text's own Ctrl+Z still works.
        keyClick(Qt.Key_Z, Qt.ControlModifier)
        verify(area.text !== "select 1")
    }
}
