import QtQuick
import QtTest
import Varnholt

// Code blocks of replies: copy and its confirmation, apply, and what other languages show.
TestCase {
    id: testCase

    name: "CodeBlocks"
    width: 400
    height: 300
    visible: true
    when: windowShown

    Component {
        id: sqlBlock

        CodeBlockView {
            width: 360
            code: "SELECT 1;"
        }
    }
    Component {
        id: jsonBlock

        GenericCodeBlockView {
            width: 360
            code: "{}"
            language: "json"
        }
    }
    SignalSpy {
        id: applied
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

    // The confirmation lasts two seconds from the first press; a second press does not lengthen it.
    function test_copyConfirmsForTwoSeconds() {
        const block = createTemporaryObject(sqlBlock, testCase)
        const copy = findNamed(block, "copyButton")
        verify(!block.isCopied)
        mouseClick(copy)
        verify(block.isCopied)
        compare(copy.text, "Copied")
        wait(1000)
        mouseClick(copy)
        wait(1200)
        verify(!block.isCopied)
        compare(copy.iconName, "doc.on.doc")
    }

    function test_applyOnlyWhenTheReplyIsFinished() {
        const block = createTemporaryObject(sqlBlock, testCase, {canApply: false})
        applied.target = block
        applied.signalName = "applyRequested"
        applied.clear()
        const apply = findNamed(block, "applyButton")
        mouseClick(apply)
        compare(applied.count, 0)
        block.canApply = true
        mouseClick(apply)
        compare(applied.count, 1)
        compare(block.label, "SQL")
    }

    // Compare, like Apply, waits for the finished reply.
    function test_compareOnlyWhenTheReplyIsFinished() {
        const block = createTemporaryObject(sqlBlock, testCase, {canApply: false})
        applied.target = block
        applied.signalName = "compareRequested"
        applied.clear()
        const compareButton = findNamed(block, "compareButton")
        mouseClick(compareButton)
        compare(applied.count, 0)
        block.canApply = true
        mouseClick(compareButton)
        compare(applied.count, 1)
    }

    function test_otherLanguagesAreShownNotApplied() {
        const block = createTemporaryObject(jsonBlock, testCase)
        compare(block.label, "JSON")
        compare(findNamed(block, "applyButton"), null)
        verify(!block.colourAsSQL)
    }
}
