import QtQuick
import QtTest
import Varnholt

// Messages: the user's words as typed, replies as Markdown that shows no markup it was sent.
TestCase {
    id: testCase

    name: "Messages"
    width: 400
    height: 400
    visible: true
    when: windowShown

    Component {
        id: bubble

        MessageBubble {
            id: message

            width: 380
            learned: []
            blocks: MarkdownBlockModel {
                content: message.content
            }
        }
    }

    function findText(root: Item, wanted: string): Item {
        if (root.text !== undefined && String(root.text).includes(wanted))
            return root
        for (let i = 0; i < root.children.length; ++i) {
            const found = findText(root.children[i], wanted)
            if (found)
                return found
        }
        return null
    }

    function test_userWordsAreNotMarkdown() {
        const message = createTemporaryObject(bubble, testCase, {messageRole: AI.User, content: "**bold** `code`"})
        const shown = findText(message, "**bold**")
        verify(shown)
        compare(shown.textFormat, TextEdit.PlainText)
    }

    function test_repliesAreMarkdownWithoutWhatCouldFetchOrRun() {
        const message = createTemporaryObject(bubble, testCase, {
            messageRole: AI.Assistant,
            content: "**bold** <img src=\"http://127.0.0.1:9/x.png\"> ![alt](http://127.0.0.1:9/y.png) "
                     + "[run](javascript:alert(1)) [site](https://example.org)"
        })
        tryVerify(() => findText(message, "<b>bold</b>") !== null)
        const prose = findText(message, "<b>bold</b>")
        verify(!prose.text.includes("<img"))
        verify(!prose.text.includes("javascript"))
        verify(prose.text.includes("&lt;img"))
        verify(prose.text.includes("href=\"https://example.org\""))
        verify(!ReplyLinks.open("javascript:alert(1)"))
    }
}
