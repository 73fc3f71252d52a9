import QtQuick
import QtQuick.Controls
import QtTest
import Varnholt

// The knowledge tab: the switch, the empty state, the groups, and the sheet that adds and edits
// items by id, also where two items hold the same text.
TestCase {
    id: testCase

    name: "KnowledgeSettings"
    width: 520
    height: 480
    visible: true
    when: windowShown

    Component {
        id: viewComponent

        KnowledgeSettingsView {
            width: 520
            height: 480
        }
    }

    KnowledgeListModel {
        id: store
    }

    function init() {
        LanguageManager.currentLanguage = AppLanguage.En
        for (const item of DataStore.knowledgeItems)
            store.deleteItem(item.id.toString())
        DataStore.knowledgeAutoRecordingEnabled = true
    }
    // Adds an item as the user would and gives its id.
    function add(category: int, content: string): string {
        store.addItem(category, content)
        const items = DataStore.knowledgeItems
        return items[items.length - 1].id.toString().slice(1, -1).toUpperCase()
    }
    function itemOf(id: string): var {
        return DataStore.knowledgeItems.find(item => item.id.toString().slice(1, -1).toUpperCase() === id)
    }

    function child(parent: Item, name: string): QtObject {
        const found = findChild(parent, name)
        verify(found, name)
        return found
    }
    function contents(): list<string> {
        return DataStore.knowledgeItems.map(item => item.content)
    }
    // The row of the index-th item in the list's order, once the list has laid it out.
    function rowAt(view: Item, index: int): Item {
        const list = child(view, "knowledgeList")
        tryVerify(() => list.itemAtIndex(index) !== null)
        return list.itemAtIndex(index)
    }
    function typeText(text: string) {
        for (let i = 0; i < text.length; ++i)
            keyClick(text[i])
    }
    function openedSheet(view: Item): Popup {
        const sheet = child(view, "knowledgeEditSheet")
        tryCompare(sheet, "opened", true)
        tryCompare(child(sheet, "knowledgeContentField"), "activeFocus", true)
        return sheet
    }

    function test_emptyStateAndSwitch() {
        const view = createTemporaryObject(viewComponent, testCase)
        compare(child(view, "knowledgeCount").text, "0 items")
        verify(child(view, "knowledgeEmptyState").visible)
        verify(!child(view, "knowledgeList").visible)
        const toggle = child(view, "autoRecordSwitch")
        verify(toggle.checked)
        mouseClick(toggle)
        compare(DataStore.knowledgeAutoRecordingEnabled, false)
        LanguageManager.currentLanguage = AppLanguage.ZhHans
        compare(child(view, "knowledgeCount").text, "0 条知识")
    }

    // Blank text cannot be added; other text goes in as typed. Cancel forgets what was typed.
    function test_addSheet() {
        const view = createTemporaryObject(viewComponent, testCase)
        mouseClick(child(view, "addKnowledgeButton"))
        const sheet = openedSheet(view)
        compare(sheet.localCategory, Knowledge.Other)
        const confirm = child(sheet, "confirmKnowledgeButton")
        typeText("  ")
        keyClick(Qt.Key_Return)
        const field = child(sheet, "knowledgeContentField")
        field.insert(field.cursorPosition, "\u3000")
        verify(!confirm.enabled)
        keyClick(Qt.Key_Return, Qt.ControlModifier)
        verify(sheet.opened)
        keyClick(Qt.Key_Backspace)
        typeText("MySQL 8.0")
        verify(confirm.enabled)
        keyClick(Qt.Key_Return, Qt.ControlModifier)
        tryCompare(sheet, "visible", false)
        compare(contents(), ["  \nMySQL 8.0"])
        compare(DataStore.knowledgeItems[0].source, Knowledge.UserAdded)
        verify(!child(view, "knowledgeEmptyState").visible)
        compare(child(view, "knowledgeCount").text, "1 items")

        mouseClick(child(view, "addKnowledgeButton"))
        openedSheet(view)
        typeText("forgotten")
        keyClick(Qt.Key_Escape, Qt.ControlModifier)
        tryCompare(sheet, "visible", false)
        mouseClick(child(view, "addKnowledgeButton"))
        openedSheet(view)
        compare(child(sheet, "knowledgeContentField").text, "")
        sheet.cancel()
        compare(DataStore.knowledgeItems.length, 1)
    }

    // Two items hold the same text: the edit changes the one whose button was pressed, and the
    // next add sheet starts with that item's former text and category.
    function test_editAndDeleteById() {
        const first = add(Knowledge.Other, "same")
        const second = add(Knowledge.Other, "same")
        add(Knowledge.TableType, "views only")
        const view = createTemporaryObject(viewComponent, testCase)
        // Grouped by category in the fixed order: the table type comes before the others.
        compare(rowAt(view, 0).content, "views only")
        compare(rowAt(view, 2).itemId, second)
        const model = child(view, "knowledgeModel")
        compare(model.groupSizes["other"], 2)
        compare(model.groupSizes["tableType"], 1)
        verify(model.groupSizes["databaseVersion"] === undefined)

        mouseClick(child(rowAt(view, 2), "editKnowledgeButton"))
        const sheet = openedSheet(view)
        verify(!sheet.isNew)
        compare(child(sheet, "knowledgeContentField").text, "same")
        keyClick(Qt.Key_End)
        typeText(" (edited)")
        const picker = child(sheet, "categoryPicker")
        picker.currentIndex = 1
        picker.activated(1)
        keyClick(Qt.Key_Return, Qt.ControlModifier)
        tryCompare(sheet, "visible", false)
        compare(itemOf(first).content, "same")
        compare(itemOf(second).content, "same (edited)")
        compare(itemOf(second).category, Knowledge.SyntaxConstraint)
        compare(model.groupSizes["syntaxConstraint"], 1)

        mouseClick(child(view, "addKnowledgeButton"))
        openedSheet(view)
        compare(child(sheet, "knowledgeContentField").text, "same")
        compare(sheet.localCategory, Knowledge.Other)
        sheet.cancel()

        // The edited item moved to its new group, first in the list; the other "same" is last.
        tryVerify(() => rowAt(view, 0).itemId === second && rowAt(view, 0).content === "same (edited)")
        tryVerify(() => rowAt(view, 2).itemId === first)
        // Its delete button removes it and only it.
        mouseClick(child(rowAt(view, 2), "deleteKnowledgeButton"))
        tryCompare(model, "count", 2)
        verify(!itemOf(first))
        verify(itemOf(second))
    }

    // 100 KB in an item: the row shows its start, the sheet edits all of it.
    function test_longItem() {
        const text = "SELECT 1;\n".repeat(10240)
        add(Knowledge.Preference, text)
        const view = createTemporaryObject(viewComponent, testCase)
        verify(rowAt(view, 0).height < 120)
        mouseClick(child(rowAt(view, 0), "editKnowledgeButton"))
        const sheet = openedSheet(view)
        compare(child(sheet, "knowledgeContentField").length, text.length)
        keyClick(Qt.Key_End, Qt.ControlModifier)
        typeText("!")
        keyClick(Qt.Key_Return, Qt.ControlModifier)
        tryCompare(sheet, "visible", false)
        compare(DataStore.knowledgeItems[0].content, text + "!")
    }

    // A thousand items: the list makes rows only for what it shows, and scrolls to the end.
    function test_thousandItems() {
        for (let i = 0; i < 1000; ++i)
            store.addItem(i % 5, "fact " + i)
        const view = createTemporaryObject(viewComponent, testCase)
        const list = child(view, "knowledgeList")
        compare(list.count, 1000)
        verify(list.contentItem.children.length < 60, list.contentItem.children.length)
        list.positionViewAtEnd()
        tryVerify(() => list.itemAtIndex(999) !== null)
        compare(list.itemAtIndex(999).content, "fact 999")
    }
}
