import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// One version read in full: number, note and date, the text in colour and selectable, the
// neighbouring versions by button and by arrow key (left is older), Copy, and a restore after a
// confirmation. It knows nothing of the store: the panel gives the version and its place.
SheetFrame {
    id: sheet

    // versionNumber, note, content, formattedDate, characterCount, id (VersionListModel.versionAt)
    required property var version
    required property int index
    required property int total
    // What Compare sets the version against: the editor's text and the version before it
    // (empty for the oldest).
    property string currentText: ""
    property string previousText: ""
    property bool hasPrevious: index + 1 < total
    // 0 the version's text, 1 compared with the editor's text, 2 with the version before it.
    property int compareMode: 0
    property bool isCopied: false

    readonly property bool isLatest: index === 0
    readonly property bool canGoOlder: index + 1 < total
    readonly property bool canGoNewer: index > 0
    readonly property color accent: isLatest ? Theme.green : Theme.cyan
    // Past this many characters a text item would lay the whole text out before its first frame
    // (about a second for a megabyte); the text is shown line by line instead, selectable within
    // a line, and Copy takes it whole.
    readonly property bool showsLines: version.content.length > 100000

    signal closeRequested
    signal olderRequested
    signal newerRequested
    signal restoreRequested

    // A second copy within the two seconds starts a second delay; the first to end clears.
    function copyText() {
        Clipboard.setText(version.content)
        isCopied = true
        copiedDelay.createObject(sheet)
    }

    title: "v" + sheet.version.versionNumber
    width: 720
    height: 520
    padding: 0
    visible: true
    closePolicy: Popup.NoAutoClose
    onCancelRequested: closeRequested()
    onClosed: closeRequested()
    onOpened: body.forceActiveFocus()

    VersionTextLines {
        id: lines

        text: sheet.showsLines ? sheet.version.content : ""
        plainColor: Theme.label
        commentColor: Theme.secondaryLabel
    }

    Component {
        id: copiedDelay

        Timer {
            interval: 2000
            running: true
            onTriggered: {
                sheet.isCopied = false
                destroy()
            }
        }
    }

    contentItem: FocusScope {
        id: body

        focus: true
        Accessible.role: Accessible.Dialog
        Accessible.name: "v" + sheet.version.versionNumber
        // The arrows and Escape are taken whatever they can do.
        Keys.onLeftPressed: {
            if (sheet.canGoOlder)
                sheet.olderRequested()
        }
        Keys.onRightPressed: {
            if (sheet.canGoNewer)
                sheet.newerRequested()
        }
        Keys.onEscapePressed: sheet.closeRequested()

        ColumnLayout {
            anchors.fill: parent
            spacing: 0

            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 20
                Layout.rightMargin: 20
                Layout.topMargin: 14
                Layout.bottomMargin: 14
                spacing: 12

                Rectangle {
                    implicitWidth: badgeRow.implicitWidth + 20
                    implicitHeight: badgeRow.implicitHeight + 12
                    radius: 6
                    color: Theme.withOpacity(sheet.accent, 0.1)

                    Row {
                        id: badgeRow

                        anchors.centerIn: parent
                        spacing: 6

                        Label {
                            anchors.verticalCenter: parent.verticalCenter
                            text: "v" + sheet.version.versionNumber
                            font.family: Theme.monospaceFamily
                            font.pixelSize: 14
                            font.weight: Font.DemiBold
                            color: sheet.accent
                        }
                        Label {
                            anchors.verticalCenter: parent.verticalCenter
                            visible: sheet.isLatest
                            text: Tr.t("Latest", "最新", "最新")
                            font.pixelSize: Theme.caption2Size
                            font.weight: Font.Medium
                            color: "white"
                            leftPadding: 6
                            rightPadding: 6
                            topPadding: 2
                            bottomPadding: 2
                            background: Rectangle {
                                radius: height / 2
                                color: Theme.green
                            }
                        }
                    }
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 2

                    Label {
                        objectName: "versionNote"
                        visible: sheet.version.note !== ""
                        Layout.fillWidth: true
                        text: sheet.version.note
                        elide: Text.ElideRight
                        font.pixelSize: Theme.subheadlineSize
                        font.weight: Font.Medium
                        color: Theme.label
                    }
                    Label {
                        text: sheet.version.formattedDate
                        font.pixelSize: Theme.captionSize
                        color: Theme.secondaryLabel
                    }
                }
                SheetNavigationButton {
                    objectName: "olderButton"
                    enabled: sheet.canGoOlder
                    iconName: "chevron.left"
                    text: Tr.t("Previous Version", "上一版本", "前のバージョン") + " (←)"
                    onClicked: sheet.olderRequested()
                }
                Label {
                    objectName: "position"
                    text: (sheet.index + 1) + "/" + sheet.total
                    font.pixelSize: Theme.captionSize
                    font.weight: Font.Medium
                    color: Theme.secondaryLabel
                }
                SheetNavigationButton {
                    objectName: "newerButton"
                    enabled: sheet.canGoNewer
                    iconName: "chevron.right"
                    text: Tr.t("Next Version", "下一版本", "次のバージョン") + " (→)"
                    onClicked: sheet.newerRequested()
                }
                HeaderIconButton {
                    objectName: "closeButton"
                    iconName: "xmark"
                    iconSize: 11
                    circled: true
                    text: Tr.t("Close", "关闭", "閉じる") + " (Esc)"
                    onClicked: sheet.closeRequested()
                }
            }

            Rectangle {
                Layout.fillWidth: true
                implicitHeight: 1
                color: Theme.separator
            }

            Rectangle {
                Layout.fillWidth: true
                Layout.fillHeight: true
                color: Theme.textBackground

                TextComparisonView {
                    objectName: "comparison"
                    visible: sheet.compareMode !== 0
                    anchors.fill: parent
                    oldText: sheet.compareMode === 2 ? sheet.previousText : sheet.compareMode === 1 ? sheet.version.content : ""
                    newText: sheet.compareMode === 2 ? sheet.version.content : sheet.compareMode === 1 ? sheet.currentText : ""
                }

                ColumnLayout {
                    objectName: "noContent"
                    visible: sheet.compareMode === 0 && sheet.version.content === ""
                    anchors.centerIn: parent
                    spacing: 12

                    Icon {
                        Layout.alignment: Qt.AlignHCenter
                        name: "doc.text"
                        color: Theme.quaternaryLabel
                        size: 32
                    }
                    Label {
                        text: Tr.t("This version has no content", "此版本无内容", "このバージョンには内容がありません")
                        font.pixelSize: Theme.subheadlineSize
                        color: Theme.secondaryLabel
                    }
                }

                // A long text goes line by line: only the lines in view are laid out.
                ListView {
                    objectName: "longText"
                    visible: sheet.compareMode === 0 && sheet.showsLines
                    anchors.fill: parent
                    anchors.margins: 20
                    anchors.rightMargin: 8
                    clip: true
                    boundsBehavior: Flickable.StopAtBounds
                    model: sheet.showsLines ? lines : null
                    ScrollBar.vertical: ScrollBar {
                        Accessible.name: Tr.t("Version text", "版本内容", "バージョンの内容")
                    }
                    Accessible.role: Accessible.List
                    Accessible.name: Tr.t("Version text", "版本内容", "バージョンの内容")

                    delegate: Text {
                        required property string styledText

                        width: ListView.view.width - 12
                        text: styledText
                        textFormat: Text.StyledText
                        wrapMode: Text.WrapAnywhere
                        color: Theme.label
                        font.family: Theme.monospaceFamily
                        font.pointSize: Theme.codePointSize + 1
                    }
                }

                ScrollView {
                    id: scroller

                    ScrollBar.vertical.Accessible.name: versionText.Accessible.name
                    visible: sheet.compareMode === 0 && sheet.version.content !== "" && !sheet.showsLines
                    anchors.fill: parent
                    contentWidth: availableWidth

                    TextEdit {
                        id: versionText

                        objectName: "versionText"
                        width: scroller.availableWidth
                        padding: 20
                        readOnly: true
                        selectByMouse: true
                        selectByKeyboard: true
                        activeFocusOnPress: false
                        textFormat: TextEdit.PlainText
                        wrapMode: TextEdit.Wrap
                        text: sheet.showsLines ? "" : sheet.version.content
                        color: Theme.label
                        selectionColor: Theme.withOpacity(Theme.cyan, 0.35)
                        selectedTextColor: Theme.label
                        font.family: Theme.monospaceFamily
                        font.pointSize: Theme.codePointSize + 1
                        Accessible.role: Accessible.EditableText
                        Accessible.readOnly: true
                        Accessible.name: Tr.t("Version text", "版本内容", "バージョンの内容")

                        SQLCodeColouring {
                            textDocument: versionText.textDocument
                            plainColor: Theme.label
                            commentColor: Theme.secondaryLabel
                            fontSize: versionText.font.pointSize
                        }
                    }
                }
            }

            Rectangle {
                Layout.fillWidth: true
                implicitHeight: 1
                color: Theme.separator
            }

            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 20
                Layout.rightMargin: 20
                Layout.topMargin: 12
                Layout.bottomMargin: 12
                spacing: 10

                Row {
                    spacing: 4

                    Icon {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "character.cursor.ibeam"
                        color: Theme.tertiaryLabel
                        size: 10
                    }
                    Label {
                        objectName: "characterCount"
                        text: sheet.version.characterCount + " " + Tr.t("characters", "字符", "文字")
                        font.pixelSize: Theme.captionSize
                        color: Theme.tertiaryLabel
                    }
                }
                Row {
                    spacing: 4

                    CompareModeButton {
                        objectName: "showTextButton"
                        mode: 0
                        text: Tr.t("Text", "文本", "テキスト")
                    }
                    CompareModeButton {
                        objectName: "compareWithEditorButton"
                        mode: 1
                        text: Tr.t("Compare with Editor", "与编辑器对比", "エディタと比較")
                    }
                    CompareModeButton {
                        objectName: "compareWithPreviousButton"
                        mode: 2
                        enabled: sheet.hasPrevious
                        text: Tr.t("Compare with Previous", "与上一版本对比", "前のバージョンと比較")
                    }
                }
                Item {
                    Layout.fillWidth: true
                }
                SheetButton {
                    objectName: "copyButton"
                    enabled: sheet.version.content !== ""
                    text: sheet.isCopied ? Tr.t("Copied", "已复制", "コピーしました") : Tr.t("Copy", "复制", "コピー")
                    onClicked: sheet.copyText()
                }
                SheetButton {
                    objectName: "restoreButton"
                    text: Tr.t("Restore to this version", "恢复到此版本", "このバージョンに復元")
                    tint: Theme.cyan
                    onClicked: restoreAlert.open()
                }
            }
        }
    }

    ConfirmationAlert {
        id: restoreAlert

        objectName: "restoreAlert"
        title: Tr.t("Confirm Restore", "确认恢复", "復元の確認")
        message: Tr.t("Restore current content to this version. This will create a new version record.",
                      "将当前内容恢复到此版本，此操作会创建一个新的版本记录。",
                      "現在の内容をこのバージョンに復元します。新しいバージョン記録が作成されます。")
        confirmText: Tr.t("Restore to this version", "恢复到此版本", "このバージョンに復元")
        onConfirmed: sheet.restoreRequested()
        onClosed: body.forceActiveFocus()
    }

    // One choice of what the text area shows; the chosen one is filled.
    component CompareModeButton: AbstractButton {
        id: modeButton

        required property int mode
        readonly property bool chosen: sheet.compareMode === mode

        implicitWidth: modeLabel.implicitWidth + 14
        implicitHeight: 24
        checkable: true
        checked: chosen
        focusPolicy: Qt.TabFocus
        Accessible.role: Accessible.RadioButton
        Accessible.name: text
        Accessible.checked: chosen
        Accessible.onPressAction: clicked()
        Accessible.onToggleAction: clicked()
        onClicked: sheet.compareMode = mode

        contentItem: Label {
            id: modeLabel

            text: modeButton.text
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            font.pixelSize: Theme.captionSize
            font.weight: modeButton.chosen ? Font.DemiBold : Font.Normal
            color: modeButton.chosen ? Theme.cyan : Theme.secondaryLabel
            opacity: modeButton.enabled ? 1 : 0.5
        }
        background: Rectangle {
            radius: 6
            color: modeButton.chosen ? Theme.withOpacity(Theme.cyan, 0.12) : "transparent"
            border.width: modeButton.visualFocus ? 2 : 0
            border.color: Theme.withOpacity(Theme.cyan, 0.8)
        }
    }

    component SheetNavigationButton: AbstractButton {
        id: navigationButton

        required property string iconName

        implicitWidth: 32
        implicitHeight: 28
        hoverEnabled: true
        focusPolicy: Qt.TabFocus
        Accessible.name: text
        Accessible.onPressAction: clicked()
        ToolTip.visible: hovered
        ToolTip.delay: 500
        ToolTip.text: text

        contentItem: Item {
            Icon {
                anchors.centerIn: parent
                name: navigationButton.iconName
                color: navigationButton.enabled ? Theme.label : Theme.quaternaryLabel
                size: 11
            }
        }
        background: Rectangle {
            radius: 6
            color: Theme.controlBackground
            border.width: navigationButton.visualFocus ? 2 : 0
            border.color: Theme.withOpacity(Theme.cyan, 0.8)
        }
    }
}
