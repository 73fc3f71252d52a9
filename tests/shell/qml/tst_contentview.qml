import QtQuick
import QtTest
import Varnholt

TestCase {
    id: testCase

    name: "ContentView"
    width: 1500
    height: 600
    visible: true
    when: windowShown

    Component {
        id: contentComponent

        ContentView {
            width: 1000
            height: 600
        }
    }

    Component {
        id: bannerComponent

        StoreNoticeBanner {
            files: ["/home/u/.local/share/Varnholt/sql_documents.json.damaged-20261122T101500Z"]
            recoveredFiles: []
            lockHolder: ""
            saveFailure: ""
            dataDirectory: "/home/u/.local/share/Varnholt"
        }
    }
    SignalSpy {
        id: bannerSpy
    }

    // Kept files can be dismissed; a failed write and another holder of the folder stay while
    // they hold, and offer what can be done.
    function test_storeNotices() {
        const banner = createTemporaryObject(bannerComponent, testCase)
        verify(banner.visible)
        verify(findChild(banner, "keptFilesNotice").visible)
        mouseClick(findChild(banner, "dismissButton"))
        verify(!banner.visible)

        banner.saveFailure = "cannot write /home/u/.local/share/Varnholt/.sql_documents.json: No space left on device"
        verify(banner.visible)
        verify(findChild(banner, "saveFailureNotice").visible)
        bannerSpy.target = banner
        bannerSpy.signalName = "retryRequested"
        bannerSpy.clear()
        mouseClick(findChild(banner, "retryButton"))
        compare(bannerSpy.count, 1)
        banner.saveFailure = ""
        verify(!banner.visible)

        banner.lockHolder = "varnholt (PID 4242, desk)"
        verify(banner.visible)
        verify(findChild(banner, "lockNotice").visible)

        const empty = createTemporaryObject(bannerComponent, testCase, {"files": []})
        verify(!empty.visible)
    }

    // In a window wide enough, a drag stops the panel at 500.
    function test_panelCapInAWideWindow() {
        const content = createTemporaryObject(contentComponent, testCase, {width: 1500})
        compare(content.dividerMaxWidth, 500)
        content.setShowVersionHistory(true)
        tryCompare(content, "panelShownWidth", 320, 1000)
        const divider = content.divider
        mousePress(divider, 2, 300)
        for (let x = 0; x > -400; x -= 40) {
            mouseMove(divider, 2 + x, 300)
            wait(20)
        }
        mouseRelease(divider, 2 - 400, 300)
        compare(content.rightPanelWidth, 500)
    }

    function test_widthsAtTheMinimumWindow() {
        const content = createTemporaryObject(contentComponent, testCase)
        compare(content.editorWidth, 1000 - 241)
        tryCompare(content, "windowOpacity", 1, 2000)

        content.setShowVersionHistory(true)
        tryCompare(content, "panelShownWidth", 320, 1000)
        compare(content.editorWidth, 435)
        compare(content.dividerMaxWidth, 355)
        verify(content.showVersionHistory)

        // The other panel replaces this one in one step; closing either closes all.
        content.setShowAIAssistant(true)
        verify(content.showAIAssistant && !content.showVersionHistory)
        content.setShowVersionHistory(false)
        compare(content.rightPanel, ContentView.RightPanelType.None)
        tryCompare(content, "panelShownWidth", 0, 1000)
        compare(content.editorWidth, 759)
    }

    function test_dividerDragIsClamped() {
        const content = createTemporaryObject(contentComponent, testCase)
        content.setShowAIAssistant(true)
        tryCompare(content, "panelShownWidth", 320, 1000)
        const divider = content.divider
        mousePress(divider, 2, 300)
        for (let x = 0; x > -400; x -= 40) {
            mouseMove(divider, 2 + x, 300)
            wait(20)
        }
        mouseRelease(divider, 2 - 400, 300)
        compare(content.rightPanelWidth, 355)

        mousePress(divider, 2, 300)
        for (let x = 0; x < 400; x += 40) {
            mouseMove(divider, 2 + x, 300)
            wait(20)
        }
        mouseRelease(divider, 2 + 400, 300)
        compare(content.rightPanelWidth, 280)

        // The width is kept for the next panel, of either kind.
        content.setShowVersionHistory(true)
        compare(content.rightPanelWidth, 280)
    }
}
