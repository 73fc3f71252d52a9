import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The assistant panel: the selected document's conversation, the reply being written, and the
// field to ask in, with quick requests while nothing has been said. Its state lives in the
// ConversationController; this view only lays it out and scrolls.
Rectangle {
    id: panel

    // The editor's text, which requests are about.
    required property string currentSQL

    signal closeRequested
    signal applyRequested(string sql)

    // Animated, ease-out over a quarter second, to the bottom of the list. From far above it
    // jumps to a screen above the bottom first, rather than building every row on the way.
    function scrollToBottom() {
        Qt.callLater(() => {
            followsBottom.restart()
            const from = list.contentY
            list.positionViewAtEnd()
            const to = list.contentY
            if (Math.abs(to - from) < 1)
                return
            const start = Math.max(from, to - list.height)
            list.contentY = start
            scrollAnimation.from = start
            scrollAnimation.to = to
            scrollAnimation.restart()
        })
    }
    function showBottomNow() {
        scrollAnimation.stop()
        followsBottom.restart()
        list.positionViewAtEnd()
    }

    color: Theme.windowBackground

    ConversationController {
        id: conversation

        objectName: "conversationController"
        currentSQL: panel.currentSQL
        onConversationSwitched: panel.showBottomNow()
        onIsLoadingChanged: {
            if (isLoading)
                panel.scrollToBottom()
        }
        onErrorMessageChanged: {
            if (errorMessage.length > 0)
                alert.open()
        }
    }

    Connections {
        target: conversation.messages

        function onCountChanged() {
            panel.scrollToBottom()
        }
    }

    Timer {
        interval: 100
        running: true
        onTriggered: panel.scrollToBottom()
    }

    // Rows are built over a few frames and grow as they are; for a moment after the list was
    // sent to its bottom it stays there while they do, unless the user moves it.
    Timer {
        id: followsBottom

        interval: 600
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        // Header
        RowLayout {
            Layout.fillWidth: true
            Layout.minimumHeight: 28
            Layout.leftMargin: 12
            Layout.rightMargin: 12
            Layout.topMargin: 12
            Layout.bottomMargin: 6
            spacing: 8

            Icon {
                name: "wand.and.stars"
                color: Theme.purple
                size: 14
            }
            Label {
                Layout.fillWidth: true
                text: Tr.t("AI Assistant", "AI 助手", "AI アシスタント")
                elide: Text.ElideRight
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
                color: Theme.label
                Accessible.role: Accessible.Heading
            }
            HeaderIconButton {
                objectName: "clearChatButton"
                visible: conversation.messages.count > 0 && !conversation.isStreaming
                iconName: "arrow.counterclockwise"
                iconSize: 12
                text: Tr.t("Clear Chat", "清空对话", "チャットをクリア")
                onClicked: conversation.clearConversation()
            }
            HeaderIconButton {
                objectName: "closePanelButton"
                iconName: "xmark"
                iconSize: 11
                circled: true
                text: Tr.t("Close Panel", "关闭面板", "パネルを閉じる")
                onClicked: panel.closeRequested()
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 1
            color: Theme.withOpacity(Theme.separator, 0.5)
        }

        // The conversation
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            Column {
                id: welcome

                objectName: "assistantWelcome"
                anchors.centerIn: parent
                width: Math.min(parent.width - 32, 320)
                spacing: 10
                visible: opacity > 0
                opacity: conversation.messages.count === 0 && !conversation.isStreaming ? 1 : 0

                Behavior on opacity {
                    NumberAnimation {
                        duration: 250
                        easing.type: Easing.OutQuad
                    }
                }

                Rectangle {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: 64
                    height: 64
                    radius: 32
                    color: Theme.withOpacity(Theme.purple, 0.08)

                    Icon {
                        anchors.centerIn: parent
                        name: "wand.and.stars"
                        color: Theme.withOpacity(Theme.purple, 0.5)
                        size: 26
                    }
                }
                Label {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: Tr.t("AI SQL Assistant", "AI SQL 助手", "AI SQL アシスタント")
                    font.pixelSize: Theme.headlineSize
                    font.weight: Font.DemiBold
                    color: Theme.label
                }
                Label {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: Tr.t("Enter a question below, or use quick buttons", "在下方输入问题，或使用快捷按钮",
                               "下に質問を入力するか、クイックボタンを使用")
                    font.pixelSize: Theme.captionSize
                    color: Theme.secondaryLabel
                }
                Rectangle {
                    objectName: "unconfiguredNotice"
                    anchors.horizontalCenter: parent.horizontalCenter
                    visible: !conversation.isConfigured
                    width: Math.min(notice.implicitWidth + 24, parent.width)
                    height: notice.implicitHeight + 12
                    radius: 6
                    color: Theme.withOpacity(Theme.orange, 0.1)
                    Accessible.role: Accessible.StaticText
                    Accessible.name: noticeText.text

                    Row {
                        id: notice

                        anchors.centerIn: parent
                        spacing: 6

                        Icon {
                            anchors.verticalCenter: parent.verticalCenter
                            name: "exclamationmark.circle"
                            color: Theme.orange
                            size: 12
                        }
                        Label {
                            id: noticeText

                            anchors.verticalCenter: parent.verticalCenter
                            width: Math.min(implicitWidth, welcome.width - 48)
                            wrapMode: Text.Wrap
                            text: Tr.t("Please configure API in settings first", "请先在设置中配置 API",
                                       "設定で API を設定してください")
                            font.pixelSize: Theme.captionSize
                            color: Theme.orange
                        }
                    }
                }
                Row {
                    anchors.horizontalCenter: parent.horizontalCenter
                    visible: conversation.canRestoreCleared
                    spacing: 6

                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        text: Tr.t("Conversation cleared.", "对话已清空。", "チャットをクリアしました。")
                        font.pixelSize: Theme.captionSize
                        color: Theme.secondaryLabel
                    }
                    Button {
                        objectName: "restoreClearedButton"
                        anchors.verticalCenter: parent.verticalCenter
                        flat: true
                        text: Tr.t("Undo", "撤销", "元に戻す")
                        font.pixelSize: Theme.captionSize
                        Accessible.name: text
                        Accessible.onPressAction: clicked()
                        onClicked: conversation.restoreCleared()
                    }
                }
            }

            ListView {
                id: list

                objectName: "messageList"
                anchors.fill: parent
                visible: opacity > 0
                opacity: 1 - welcome.opacity
                clip: true
                spacing: 16
                topMargin: 12
                bottomMargin: 4
                boundsBehavior: Flickable.StopAtBounds
                model: conversation.messages
                onMovementStarted: followsBottom.stop()
                onContentHeightChanged: {
                    if (followsBottom.running && !scrollAnimation.running)
                        positionViewAtEnd()
                }
                // Rows are built only where they show, plus a screen's worth around.
                cacheBuffer: height
                ScrollBar.vertical: ScrollBar {
                    policy: ScrollBar.AlwaysOn
                    Accessible.name: Tr.t("Conversation", "对话", "会話")
                }

                delegate: Item {
                    id: row

                    required property int index
                    required property int messageRole
                    required property string content
                    required property MarkdownBlockModel blocks
                    required property var learned

                    width: list.width
                    height: bubble.implicitHeight

                    MessageBubble {
                        id: bubble

                        x: 12
                        // Clear of the scroll bar, which always shows.
                        width: row.width - 12 - list.ScrollBar.vertical.width - 6
                        messageRole: row.messageRole
                        content: row.content
                        blocks: row.blocks
                        learned: row.learned
                        onApplyRequested: sql => panel.applyRequested(sql)
                        onCompareRequested: sql => {
                            comparisonSheet.proposedSQL = sql
                            comparisonSheet.open()
                        }
                        onUndoLearnedRequested: itemId => conversation.undoLearnedFact(row.index, itemId)
                    }
                }

                footer: Column {
                    width: list.width
                    topPadding: streaming.visible || loading.visible ? 16 : 0

                    StreamingMessageBubble {
                        id: streaming

                        objectName: "streamingBubble"
                        x: 12
                        width: list.width - 12 - list.ScrollBar.vertical.width - 6
                        visible: conversation.isStreaming && conversation.streamingContent.length > 0
                        blocks: conversation.streamingBlocks
                    }
                    LoadingIndicator {
                        id: loading

                        objectName: "loadingIndicator"
                        x: 12
                        width: list.width - 12 - list.ScrollBar.vertical.width - 6
                        visible: conversation.isLoading && conversation.streamingContent.length === 0
                    }
                    // The bottom of the conversation; the list is "at the bottom" while it shows.
                    Item {
                        width: 1
                        height: 1
                    }
                }

                NumberAnimation {
                    id: scrollAnimation

                    target: list
                    property: "contentY"
                    duration: 250
                    easing.type: Easing.OutQuad
                    // Rows that grew meanwhile moved the bottom.
                    onFinished: {
                        if (followsBottom.running)
                            list.positionViewAtEnd()
                    }
                }
            }

            // Over the list's bottom edge while the bottom is out of sight.
            AbstractButton {
                id: scrollDown

                readonly property bool isShown: list.visible && !list.atYEnd

                objectName: "scrollToBottomButton"
                anchors.horizontalCenter: parent.horizontalCenter
                anchors.bottom: parent.bottom
                anchors.bottomMargin: 12
                visible: opacity > 0
                opacity: isShown ? 1 : 0
                scale: isShown ? 1 : 0.9
                focusPolicy: Qt.StrongFocus
                text: Tr.t("Scroll to bottom", "回到底部", "一番下へ")
                Accessible.name: text
                Accessible.onPressAction: clicked()
                leftPadding: 12
                rightPadding: 12
                topPadding: 6
                bottomPadding: 6
                onClicked: panel.scrollToBottom()

                Behavior on opacity {
                    NumberAnimation {
                        duration: 200
                        easing.type: Easing.OutQuad
                    }
                }
                Behavior on scale {
                    NumberAnimation {
                        duration: 200
                        easing.type: Easing.OutQuad
                    }
                }

                contentItem: Row {
                    spacing: 4

                    Icon {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "chevron.down"
                        color: Theme.withOpacity(Theme.label, 0.7)
                        size: 10
                    }
                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        text: scrollDown.text
                        font.pixelSize: Theme.caption2Size
                        color: Theme.withOpacity(Theme.label, 0.7)
                    }
                }
                background: Rectangle {
                    radius: height / 2
                    color: Theme.controlBackground
                    border.width: scrollDown.visualFocus ? 2 : 1
                    border.color: scrollDown.visualFocus ? Theme.withOpacity(Theme.cyan, 0.8) : Theme.separator
                }
            }
        }

        ErrorInputPanel {
            objectName: "errorInputPanel"
            Layout.fillWidth: true
            visible: conversation.showErrorInput
            errorText: conversation.errorInputText
            canSubmit: conversation.errorInputText.length > 0 && conversation.currentSQL.length > 0
                       && !conversation.isStreaming
            onErrorTextEdited: text => conversation.errorInputText = text
            onSubmitRequested: conversation.submitErrorInput()
            onCloseRequested: conversation.closeErrorInput()
        }

        // The input area
        ColumnLayout {
            Layout.fillWidth: true
            Layout.margins: 12
            spacing: 8

            Flow {
                objectName: "quickBar"
                Layout.fillWidth: true
                spacing: 6
                visible: opacity > 0
                opacity: conversation.isEmptyState ? 1 : 0

                Behavior on opacity {
                    NumberAnimation {
                        duration: 200
                        easing.type: Easing.InOutQuad
                    }
                }

                Repeater {
                    model: [AI.Explain, AI.Optimize, AI.FixError]

                    QuickActionButton {
                        required property int modelData
                        required property int index

                        objectName: ["explainButton", "optimizeButton", "fixErrorButton"][index]
                        mode: modelData
                        isDisabled: conversation.currentSQL.length === 0
                        onClicked: conversation.handleQuickAction(mode)
                    }
                }
            }

            ContextDisclosure {
                id: context

                objectName: "contextDisclosure"
                Layout.fillWidth: true
                elements: expanded ? conversation.contextPreview : []
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: 8

                WrappedTextScrollView {
                    Layout.fillWidth: true
                    // One to four lines.
                    Layout.preferredHeight: Math.min(input.implicitHeight, input.font.pixelSize * 1.35 * 4 + 20)
                    scrolledName: input.Accessible.name

                    TextArea {
                        id: input

                        objectName: "assistantInput"
                        enabled: !conversation.isStreaming
                        text: conversation.inputText
                        onTextChanged: conversation.inputText = text
                        placeholderText: Tr.t("Enter your question...", "输入你的问题...", "質問を入力...")
                        placeholderTextColor: Theme.tertiaryLabel
                        wrapMode: TextEdit.Wrap
                        font.pixelSize: Theme.bodySize
                        color: Theme.label
                        padding: 10
                        Accessible.name: Tr.t("Question", "问题", "質問")
                        background: Rectangle {
                            radius: 10
                            color: Theme.controlBackground
                            border.width: input.activeFocus ? 1 : 0
                            border.color: Theme.withOpacity(Theme.purple, 0.5)
                        }
                        // Return sends; Shift+Return starts a new line.
                        Keys.onPressed: event => {
                            if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                                    && !(event.modifiers & Qt.ShiftModifier)) {
                                conversation.submitInput()
                                event.accepted = true
                            }
                        }

                        EditContextMenu {
                            target: input
                        }
                    }
                }

                HeaderIconButton {
                    objectName: conversation.isStreaming ? "stopButton" : "sendButton"
                    Layout.alignment: Qt.AlignBottom
                    enabled: conversation.isStreaming || conversation.inputText.length > 0
                    iconName: conversation.isStreaming ? "stop.circle.fill" : "arrow.up.circle.fill"
                    iconSize: 22
                    tint: conversation.isStreaming ? Theme.red
                                                 : conversation.inputText.length > 0 ? Theme.purple : Theme.secondaryLabel
                    text: conversation.isStreaming ? Tr.t("Stop", "停止输出", "停止") : Tr.t("Send", "发送", "送信")
                    onClicked: conversation.isStreaming ? conversation.stopStreaming() : conversation.sendInput()
                }
            }
        }
    }

    // The reply's SQL against the editor's text, before it is applied.
    SheetFrame {
        id: comparisonSheet

        property string proposedSQL: ""

        objectName: "comparisonSheet"
        title: Tr.t("The editor's text and the reply's SQL", "编辑器内容与回复中的 SQL", "エディタの内容と回答の SQL")
        width: Math.min(720, panel.Window.width - 80)
        height: Math.min(520, panel.Window.height - 80)
        padding: 0
        onAcceptRequested: {
            close()
            panel.applyRequested(proposedSQL)
        }
        onCancelRequested: close()

        contentItem: ColumnLayout {
            spacing: 0

            Label {
                Layout.fillWidth: true
                Layout.margins: 16
                text: Tr.t("The editor's text and the reply's SQL", "编辑器内容与回复中的 SQL", "エディタの内容と回答の SQL")
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
                color: Theme.label
                Accessible.role: Accessible.Heading
            }
            Rectangle {
                Layout.fillWidth: true
                Layout.fillHeight: true
                color: Theme.textBackground

                TextComparisonView {
                    anchors.fill: parent
                    visible: comparisonSheet.opened
                    oldText: panel.currentSQL
                    newText: comparisonSheet.proposedSQL
                }
            }
            RowLayout {
                Layout.fillWidth: true
                Layout.margins: 12
                spacing: 8

                Item {
                    Layout.fillWidth: true
                }
                SheetButton {
                    objectName: "closeComparisonButton"
                    text: Tr.t("Close", "关闭", "閉じる")
                    onClicked: comparisonSheet.close()
                }
                SheetButton {
                    objectName: "applyComparedButton"
                    text: Tr.t("Apply", "应用", "適用")
                    tint: Theme.purple
                    onClicked: comparisonSheet.acceptRequested()
                }
            }
        }
    }

    SheetFrame {
        id: alert

        objectName: "assistantAlert"
        title: Tr.t("API error", "API 错误", "API エラー")
        width: 320
        onClosed: conversation.dismissError()
        onAcceptRequested: close()
        onCancelRequested: close()
        onOpened: confirmButton.forceActiveFocus()

        contentItem: ColumnLayout {
            spacing: 16

            Label {
                Layout.fillWidth: true
                text: Tr.t("API error", "API 错误", "API エラー")
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
                color: Theme.label
                Accessible.role: Accessible.Heading
            }
            Label {
                objectName: "alertMessage"
                Layout.fillWidth: true
                text: conversation.errorMessage
                wrapMode: Text.Wrap
                font.pixelSize: Theme.bodySize
                color: Theme.secondaryLabel
            }
            SheetButton {
                id: confirmButton

                Layout.fillWidth: true
                text: Tr.t("Confirm", "确认", "確認")
                tint: Theme.purple
                onClicked: alert.close()
                Keys.onReturnPressed: alert.close()
            }
        }
    }
}
