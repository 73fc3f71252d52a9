import QtQuick
import QtTest
import Varnholt

TestCase {
    id: testCase

    name: "Sidebar"
    width: 320
    height: 640
    visible: true
    when: windowShown

    Component {
        id: sidebarComponent

        SidebarView {
            width: 240
            height: 640
        }
    }

    function rowOf(sidebar: SidebarView, documentId: string): Item {
        const list = sidebar.list
        for (let i = 0; i < list.count; ++i) {
            const item = list.itemAtIndex(i)
            if (item && item.documentId === documentId)
                return item
        }
        return null
    }

    // Delegates appear at the list's next layout.
    function rowAt(sidebar: SidebarView, index: int): Item {
        tryVerify(() => sidebar.list.itemAtIndex(index) !== null)
        return sidebar.list.itemAtIndex(index)
    }

    function typeText(text: string) {
        for (let i = 0; i < text.length; ++i)
            keyClick(text[i])
    }

    function test_searchIsByNameOnly() {
        const sidebar = createTemporaryObject(sidebarComponent, testCase)
        const model = sidebar.model
        model.createDocument("Quarterly SALES")
        const total = model.totalCount
        mouseClick(sidebar.searchField)
        typeText("sales")
        compare(model.count, 1)
        tryVerify(() => rowAt(sidebar, 0).name === "Quarterly SALES")
        sidebar.searchField.text = ""
        typeText("CREATE TABLE") // in the sample's text, not in any name
        compare(model.count, 0)
        compare(model.totalCount, total)
        const empty = findChild(sidebar, "emptyListText")
        verify(empty.visible)
        compare(empty.text, "No documents match “CREATE TABLE”")
        keyClick(Qt.Key_Escape)
        compare(model.count, total)
        verify(!empty.visible)
    }

    function test_newDocumentSheet() {
        const sidebar = createTemporaryObject(sidebarComponent, testCase)
        const model = sidebar.model
        const total = model.totalCount

        mouseClick(sidebar.newButton)
        tryCompare(sidebar.newDocumentSheet.nameField, "activeFocus", true)
        typeText("Churn  ")
        keyClick(Qt.Key_Return, Qt.ControlModifier)
        tryCompare(sidebar.newDocumentSheet, "visible", false)
        compare(model.totalCount, total + 1)
        tryVerify(() => rowAt(sidebar, 0).name === "Churn  ")
        tryVerify(() => rowAt(sidebar, 0).isSelected)

        // An empty name gives the default name; Cancel creates nothing and forgets the text.
        sidebar.newDocumentSheet.open()
        tryCompare(sidebar.newDocumentSheet.nameField, "activeFocus", true)
        keyClick(Qt.Key_Return)
        tryCompare(sidebar.newDocumentSheet, "visible", false)
        tryVerify(() => rowAt(sidebar, 0).name === "Untitled SQL")

        sidebar.newDocumentSheet.open()
        tryCompare(sidebar.newDocumentSheet.nameField, "activeFocus", true)
        typeText("thrown away")
        keyClick(Qt.Key_Escape, Qt.ControlModifier)
        tryCompare(sidebar.newDocumentSheet, "visible", false)
        compare(model.totalCount, total + 2)
        sidebar.newDocumentSheet.open()
        compare(sidebar.newDocumentSheet.nameField.text, "")
        sidebar.newDocumentSheet.cancel()
    }

    function test_deletionRunsItsPhasesThenDeletes() {
        const sidebar = createTemporaryObject(sidebarComponent, testCase)
        const model = sidebar.model
        model.createDocument("doomed")
        wait(5)
        model.createDocument("other")
        const total = model.totalCount
        tryVerify(() => rowAt(sidebar, 1).name === "doomed")
        const doomed = rowAt(sidebar, 1)
        compare(doomed.name, "doomed")
        const id = doomed.documentId

        sidebar.startDeletion(id)
        compare(sidebar.deleteAnimationPhase, SidebarView.DeleteAnimationPhase.Crumpling)
        // Clicks on the dying row are ignored; the document stays until 0.6 s.
        mouseClick(doomed)
        verify(!doomed.isSelected)
        tryCompare(sidebar, "deleteAnimationPhase", SidebarView.DeleteAnimationPhase.Throwing, 500)
        compare(model.totalCount, total)
        tryCompare(model, "totalCount", total - 1, 1000)
        tryVerify(() => rowOf(sidebar, id) === null)
        tryCompare(sidebar, "deletingDocumentId", "", 500)
        compare(sidebar.deleteAnimationPhase, SidebarView.DeleteAnimationPhase.Idle)

        // For a while it can come back: by the notice's button, or Ctrl+Z in the list.
        const notice = findChild(sidebar, "undoDeletionNotice")
        verify(notice.visible)
        mouseClick(findChild(sidebar, "undoDeletionButton"))
        tryVerify(() => rowOf(sidebar, id) !== null)
        compare(model.totalCount, total)
        verify(!notice.visible)
        verify(sidebar.list.activeFocus)

        sidebar.startDeletion(id)
        tryVerify(() => rowOf(sidebar, id) === null, 1500)
        keyClick(Qt.Key_Z, Qt.ControlModifier)
        tryVerify(() => rowOf(sidebar, id) !== null)
    }

    function test_keyboard() {
        const sidebar = createTemporaryObject(sidebarComponent, testCase)
        const model = sidebar.model
        model.createDocument("first")
        wait(5) // documents made in the same millisecond keep their storage order
        model.createDocument("second")
        tryVerify(() => rowAt(sidebar, 0).name === "second")
        sidebar.list.forceActiveFocus()
        keyClick(Qt.Key_Down)
        tryVerify(() => rowAt(sidebar, 1).isSelected)
        keyClick(Qt.Key_Up)
        tryVerify(() => rowAt(sidebar, 0).isSelected)
        // The Menu key opens the selected row's menu.
        keyClick(Qt.Key_Menu)
        const menu = findChild(rowAt(sidebar, 0), "documentMenu")
        tryVerify(() => menu.visible)
        keyClick(Qt.Key_Escape)
        tryVerify(() => !menu.visible)
        sidebar.list.forceActiveFocus()
        const total = model.totalCount
        keyClick(Qt.Key_Delete)
        tryCompare(model, "totalCount", total - 1, 1500)
    }

    // End, Home, Page Down; the arrows go on from a selected row scrolled out of view.
    function test_keysOverALongList() {
        const sidebar = createTemporaryObject(sidebarComponent, testCase)
        const model = sidebar.model
        for (let i = 0; i < 40; ++i)
            model.createDocument("doc " + i)
        tryCompare(model, "count", model.totalCount)
        const list = sidebar.list
        list.forceActiveFocus()
        keyClick(Qt.Key_End)
        compare(model.selectedRow, model.count - 1)
        list.positionViewAtBeginning()
        keyClick(Qt.Key_Up)
        compare(model.selectedRow, model.count - 2)
        keyClick(Qt.Key_Home)
        compare(model.selectedRow, 0)
        keyClick(Qt.Key_PageDown)
        verify(model.selectedRow > 3)
        tryVerify(() => rowAt(sidebar, model.selectedRow).isSelected)
    }

    function test_hoverMarksTheRow() {
        const sidebar = createTemporaryObject(sidebarComponent, testCase)
        const row = rowAt(sidebar, 0)
        mouseMove(row, 40, 20)
        tryCompare(sidebar, "hoveredDocumentId", row.documentId)
        mouseMove(sidebar.searchField, 5, 5)
        tryCompare(sidebar, "hoveredDocumentId", "")
    }
}
