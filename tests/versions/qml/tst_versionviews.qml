import QtQuick
import QtTest
import Varnholt

TestCase {
    id: testCase

    name: "VersionViews"
    width: 900
    height: 700
    visible: true
    when: windowShown

    Component {
        id: sheetComponent

        VersionDetailSheet {
            index: 0
            total: 3
            version: ({ id: "A", versionNumber: 3, note: "Quick save", content: "SELECT 1;\n-- it's done",
                        formattedDate: "2026-11-23 09:00", characterCount: 22 })
        }
    }
    Component {
        id: panelComponent

        VersionHistoryView {
            width: 320
            height: 600
        }
    }
    SignalSpy {
        id: olderSpy
    }
    SignalSpy {
        id: newerSpy
    }
    SignalSpy {
        id: closeSpy
    }
    SignalSpy {
        id: restoreSpy
    }

    function openSheet(index: int, total: int, content: string): VersionDetailSheet {
        const sheet = createTemporaryObject(sheetComponent, testCase, { index: index, total: total })
        if (content !== undefined)
            sheet.version = { id: "A", versionNumber: total - index, note: "", content: content,
                              formattedDate: "2026-11-23 09:00", characterCount: content.length }
        tryVerify(() => sheet.opened)
        olderSpy.target = sheet
        olderSpy.signalName = "olderRequested"
        newerSpy.target = sheet
        newerSpy.signalName = "newerRequested"
        closeSpy.target = sheet
        closeSpy.signalName = "closeRequested"
        restoreSpy.target = sheet
        restoreSpy.signalName = "restoreRequested"
        for (const spy of [olderSpy, newerSpy, closeSpy, restoreSpy])
            spy.clear()
        return sheet
    }

    // Left is older, right newer; each does nothing at its end, where its button is disabled;
    // Escape closes from anywhere.
    function test_keysAndEnds_data() {
        return [
            { tag: "latest of three", index: 0, total: 3, older: 1, newer: 0, position: "1/3" },
            { tag: "middle", index: 1, total: 3, older: 1, newer: 1, position: "2/3" },
            { tag: "oldest", index: 2, total: 3, older: 0, newer: 1, position: "3/3" },
            { tag: "only one", index: 0, total: 1, older: 0, newer: 0, position: "1/1" },
        ]
    }
    function test_keysAndEnds(data) {
        const sheet = openSheet(data.index, data.total)
        compare(findChild(sheet, "position").text, data.position)
        compare(findChild(sheet, "olderButton").enabled, data.older === 1)
        compare(findChild(sheet, "newerButton").enabled, data.newer === 1)
        keyClick(Qt.Key_Left)
        keyClick(Qt.Key_Right)
        compare(olderSpy.count, data.older)
        compare(newerSpy.count, data.newer)
        keyClick(Qt.Key_Escape)
        compare(closeSpy.count, 1)
    }

    // An empty text shows the no-content view and cannot be copied, but can be restored; a
    // text of blanks is text.
    function test_emptyAndBlankText() {
        let sheet = openSheet(1, 2, "")
        verify(findChild(sheet, "noContent").visible)
        verify(!findChild(sheet, "copyButton").enabled)
        verify(findChild(sheet, "restoreButton").enabled)
        compare(findChild(sheet, "characterCount").text, "0 characters")
        sheet.destroy()
        sheet = openSheet(1, 2, "   ")
        verify(!findChild(sheet, "noContent").visible)
        verify(findChild(sheet, "copyButton").enabled)
    }

    // Restore asks first: Cancel changes nothing, the red button restores.
    function test_restoreAsksFirst() {
        const sheet = openSheet(1, 3)
        mouseClick(findChild(sheet, "restoreButton"))
        const alert = findChild(sheet, "restoreAlert")
        tryVerify(() => alert.opened)
        mouseClick(findChild(alert, "cancelButton"))
        tryVerify(() => !alert.opened)
        compare(restoreSpy.count, 0)
        mouseClick(findChild(sheet, "restoreButton"))
        tryVerify(() => alert.opened)
        mouseClick(findChild(alert, "confirmButton"))
        compare(restoreSpy.count, 1)
    }

    // Copy confirms for two seconds.
    function test_copyConfirms() {
        const sheet = openSheet(0, 1)
        const copy = findChild(sheet, "copyButton")
        mouseClick(copy)
        verify(sheet.isCopied)
        compare(copy.text, "Copied")
        tryVerify(() => !sheet.isCopied, 3000)
    }

    Component {
        id: documentsComponent

        DocumentListModel {}
    }
    Component {
        id: editorComponent

        SQLEditorController {}
    }

    // On the store: three versions listed newest first; the keyboard walks the list and opens a
    // version; Restore and Clear ask first, and Cancel changes nothing.
    function test_panelOnTheStore() {
        const documents = createTemporaryObject(documentsComponent, testCase)
        documents.createDocument("History")
        const editor = createTemporaryObject(editorComponent, testCase)
        tryVerify(() => editor.hasDocument)
        for (const note of ["one", "two", "three"])
            editor.saveVersion(note)
        const panel = createTemporaryObject(panelComponent, testCase)
        const list = findChild(panel, "versionList")
        tryCompare(list, "count", 3)
        compare(findChild(panel, "versionCount").text, "3 versions")
        verify(findChild(panel, "clearButton").visible)

        list.forceActiveFocus()
        keyClick(Qt.Key_Down)
        compare(list.currentIndex, 1)
        keyClick(Qt.Key_Return)
        compare(panel.viewingIndex, 1)
        panel.viewingIndex = -1

        // The latest offers no Restore; an older card does, after a question.
        waitForRendering(list)
        verify(!findChild(list.itemAtIndex(0), "restoreButton").visible)
        const restoreSpy2 = createTemporaryObject(spyComponent, testCase, { target: panel,
                                                                            signalName: "restoreRequested" })
        mouseMove(list.itemAtIndex(2), 40, 20)
        tryVerify(() => findChild(list.itemAtIndex(2), "restoreButton").visible)
        mouseClick(findChild(list.itemAtIndex(2), "restoreButton"))
        const restoreAlert = findChild(panel, "restoreAlert")
        tryVerify(() => restoreAlert.opened)
        keyClick(Qt.Key_Escape)
        tryVerify(() => !restoreAlert.opened)
        compare(restoreSpy2.count, 0)

        mouseClick(findChild(panel, "clearButton"))
        const clearAlert = findChild(panel, "clearAlert")
        tryVerify(() => clearAlert.opened)
        mouseClick(findChild(clearAlert, "cancelButton"))
        tryVerify(() => !clearAlert.opened)
        compare(list.count, 3)
        mouseClick(findChild(panel, "clearButton"))
        tryVerify(() => clearAlert.opened)
        mouseClick(findChild(clearAlert, "confirmButton"))
        tryCompare(list, "count", 0)
        verify(findChild(panel, "emptyState").visible)
        compare(editor.nextVersionNumber(), 1)
    }
    Component {
        id: spyComponent

        SignalSpy {}
    }

    // Without a selected document the panel shows its empty state and no clear button.
    function test_emptyPanel() {
        const panel = createTemporaryObject(panelComponent, testCase)
        verify(findChild(panel, "emptyState").visible)
        verify(!findChild(panel, "versionList").visible)
        verify(!findChild(panel, "clearButton").visible)
        compare(findChild(panel, "versionCount").text, "0 versions")
    }
}
