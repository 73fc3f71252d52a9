import QtQuick
import QtQuick.Controls
import Varnholt

// One message of the conversation: the user's words as typed, on the right in purple; a reply
// as Markdown on the left, with what it taught the knowledge store under it.
Item {
    id: bubble

    required property int messageRole
    required property string content
    required property MarkdownBlockModel blocks
    required property var learned

    signal applyRequested(string sql)
    signal compareRequested(string sql)
    signal undoLearnedRequested(string itemId)

    readonly property bool isUser: messageRole === AI.User
    // The spacer on the far side of a bubble is at least this wide.
    readonly property real minimumSpacer: 20

    implicitHeight: isUser ? userCard.height : replyColumn.implicitHeight

    Rectangle {
        id: userCard

        visible: bubble.isUser
        anchors.right: parent.right
        width: Math.min(userText.implicitWidth, bubble.width - bubble.minimumSpacer)
        height: userText.implicitHeight
        radius: 12
        color: Theme.purple

        TextEdit {
            id: userText

            width: parent.width
            text: bubble.isUser ? bubble.content : ""
            textFormat: TextEdit.PlainText
            readOnly: true
            selectByMouse: true
            wrapMode: TextEdit.Wrap
            padding: 12
            font.pixelSize: Theme.bodySize
            color: "white"
            selectionColor: Theme.withOpacity("white", 0.35)
            selectedTextColor: "white"
        }
    }

    Column {
        id: replyColumn

        visible: !bubble.isUser
        width: bubble.messageRole === AI.System ? bubble.width : bubble.width - bubble.minimumSpacer
        spacing: 6

        Loader {
            width: parent.width
            active: !bubble.isUser
            sourceComponent: MarkdownContentView {
                blocks: bubble.blocks
                onApplyRequested: sql => bubble.applyRequested(sql)
                onCompareRequested: sql => bubble.compareRequested(sql)
            }
        }
        LearnedFactsLine {
            width: parent.width
            visible: bubble.learned.length > 0
            facts: bubble.learned
            onUndoRequested: itemId => bubble.undoLearnedRequested(itemId)
        }
    }
}
