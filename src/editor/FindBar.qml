import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The editor's find and replace bar, above the text, over the text field's finder. It searches
// while it is open; the matches are highlighted in the text and the current one is selected.
Rectangle {
    id: bar

    required property SQLEditorItem textArea
    property bool replacing: false

    // Opens the bar with what is selected (on one line) as the pattern, searching from the caret.
    function open(withReplace: bool) {
        replacing = withReplace
        const selected = textArea.selectedText
        if (selected.length > 0 && selected.indexOf("\u2029") < 0 && selected.indexOf("\n") < 0)
            bar.textArea.finder.pattern = selected
        bar.textArea.finder.setOrigin(textArea.selectionStart)
        visible = true
        bar.textArea.finder.active = true
        findField.forceActiveFocus()
        findField.selectAll()
    }
    function close() {
        visible = false
        bar.textArea.finder.active = false
        textArea.forceActiveFocus()
    }
    function showCurrent() {
        if (bar.textArea.finder.currentIndex < 0)
            return
        textArea.select(bar.textArea.finder.currentStart, bar.textArea.finder.currentEnd)
        textArea.ensureCursorVisible()
    }
    function next() {
        if (!visible)
            open(false)
        else if (bar.textArea.finder.findNext(textArea.selectionEnd))
            showCurrent()
    }
    function previous() {
        if (!visible)
            open(false)
        else if (bar.textArea.finder.findPrevious(textArea.selectionStart))
            showCurrent()
    }
    function statusText(): string {
        if (bar.textArea.finder.errorString.length > 0)
            return Tr.t("Invalid expression", "表达式无效", "無効な正規表現")
        if (bar.textArea.finder.pattern.length === 0)
            return ""
        if (bar.textArea.finder.matchCount === 0)
            return bar.textArea.finder.searching ? "…" : Tr.t("No results", "无结果", "見つかりません")
        const place = bar.textArea.finder.currentIndex >= 0 ? bar.textArea.finder.currentIndex + 1 : "–"
        return Tr.t("%1 of %2", "第 %1 个，共 %2 个", "%1 / %2 件").arg(place).arg(bar.textArea.finder.matchCount)
                + (bar.textArea.finder.searching ? "…" : "")
    }

    visible: false
    // Escape closes the bar from its fields and its buttons alike.
    Keys.onEscapePressed: close()
    implicitHeight: rows.implicitHeight + 12
    color: Theme.windowBackground
    Accessible.role: Accessible.ToolBar
    Accessible.name: replacing ? Tr.t("Find and Replace", "查找和替换", "検索と置換") : Tr.t("Find", "查找", "検索")

    // Typing in the find field moves the selection to the match the search settles on.
    Connections {
        target: bar.textArea.finder
        function onCurrentChanged() {
            if (findField.activeFocus)
                bar.showCurrent()
        }
    }

    component OptionToggle: AbstractButton {
        id: toggle

        required property string label

        function toggleAsClicked() {
            toggle.toggle()
            toggle.toggled()
        }

        checkable: true
        focusPolicy: Qt.StrongFocus
        hoverEnabled: true
        implicitWidth: Math.max(26, optionLabel.implicitWidth + 10)
        implicitHeight: 24
        Accessible.name: text
        Accessible.checkable: true
        Accessible.checked: checked
        // Press and Toggle from assistive technology act as a click: the option changes and
        // says so, which is what sets the search.
        Accessible.onPressAction: toggleAsClicked()
        Accessible.onToggleAction: toggleAsClicked()
        ToolTip.visible: hovered
        ToolTip.delay: 500
        ToolTip.text: text
        contentItem: Label {
            id: optionLabel

            text: toggle.label
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            font.family: Theme.monospaceFamily
            font.pixelSize: Theme.subheadlineSize + 1
            color: toggle.checked ? Theme.label : Theme.secondaryLabel
        }
        background: Rectangle {
            radius: 5
            color: toggle.checked ? Theme.withOpacity(Theme.cyan, 0.25)
                                  : toggle.hovered ? Theme.withOpacity(Theme.label, 0.06) : "transparent"
            border.width: toggle.visualFocus ? 2 : 0
            border.color: Theme.withOpacity(Theme.cyan, 0.8)
        }
    }

    component BarButton: AbstractButton {
        id: button

        focusPolicy: Qt.StrongFocus
        hoverEnabled: true
        Accessible.name: text
        Accessible.onPressAction: clicked()
        leftPadding: 10
        rightPadding: 10
        topPadding: 4
        bottomPadding: 4
        contentItem: Label {
            text: button.text
            font.pixelSize: Theme.subheadlineSize + 1
            color: Theme.label
            opacity: button.enabled ? 1 : 0.45
        }
        background: Rectangle {
            radius: 5
            color: Theme.withOpacity(Theme.controlBackground, button.hovered ? 1 : 0.8)
            border.width: button.visualFocus ? 2 : 1
            border.color: button.visualFocus ? Theme.withOpacity(Theme.cyan, 0.8) : Theme.separator
        }
    }

    ColumnLayout {
        id: rows

        anchors.fill: parent
        anchors.margins: 6
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        spacing: 6

        RowLayout {
            spacing: 6

            FormTextField {
                id: findField

                objectName: "findField"
                Layout.fillWidth: true
                Layout.maximumWidth: 360
                placeholderText: Tr.t("Find", "查找", "検索")
                accessibleName: Tr.t("Find", "查找", "検索")
                text: bar.textArea.finder.pattern
                onTextEdited: bar.textArea.finder.pattern = text
                Keys.onReturnPressed: event => event.modifiers & Qt.ShiftModifier ? bar.previous() : bar.next()
                Keys.onEnterPressed: event => event.modifiers & Qt.ShiftModifier ? bar.previous() : bar.next()
            }
            Label {
                objectName: "findStatus"
                text: bar.statusText()
                font.pixelSize: Theme.captionSize + 1
                color: bar.textArea.finder.errorString.length > 0 || (bar.textArea.finder.matchCount === 0 && !bar.textArea.finder.searching)
                       ? Theme.red : Theme.secondaryLabel
                Layout.minimumWidth: Math.max(64, implicitWidth)
                // Room for glyphs of a fallback font, whose advances come out wider than measured.
                rightPadding: 10
                Accessible.role: Accessible.StaticText
                Accessible.name: text
                ToolTip.visible: bar.textArea.finder.errorString.length > 0 && statusHover.hovered
                ToolTip.text: bar.textArea.finder.errorString

                HoverHandler {
                    id: statusHover
                }
            }
            HeaderIconButton {
                iconName: "chevron.up"
                text: Tr.t("Previous Match", "上一个", "前を検索") + " (Shift+F3)"
                enabled: bar.textArea.finder.matchCount > 0
                onClicked: bar.previous()
            }
            HeaderIconButton {
                iconName: "chevron.down"
                text: Tr.t("Next Match", "下一个", "次を検索") + " (F3)"
                enabled: bar.textArea.finder.matchCount > 0
                onClicked: bar.next()
            }
            OptionToggle {
                objectName: "matchCase"
                label: "Aa"
                text: Tr.t("Match Case", "区分大小写", "大文字と小文字を区別")
                checked: bar.textArea.finder.caseSensitive
                onToggled: bar.textArea.finder.caseSensitive = checked
            }
            OptionToggle {
                objectName: "wholeWords"
                label: "W"
                text: Tr.t("Whole Words", "全字匹配", "単語単位")
                checked: bar.textArea.finder.wholeWords
                onToggled: bar.textArea.finder.wholeWords = checked
            }
            OptionToggle {
                objectName: "regularExpression"
                label: ".*"
                text: Tr.t("Regular Expression", "正则表达式", "正規表現")
                checked: bar.textArea.finder.regularExpression
                onToggled: bar.textArea.finder.regularExpression = checked
            }
            Item {
                Layout.fillWidth: true
            }
            HeaderIconButton {
                iconName: "xmark"
                text: Tr.t("Close", "关闭", "閉じる") + " (Esc)"
                onClicked: bar.close()
            }
        }

        RowLayout {
            visible: bar.replacing
            spacing: 6

            FormTextField {
                id: replaceField

                objectName: "replaceField"
                Layout.fillWidth: true
                Layout.maximumWidth: 360
                placeholderText: Tr.t("Replace with", "替换为", "置換後の文字列")
                accessibleName: Tr.t("Replace with", "替换为", "置換後の文字列")
                Keys.onReturnPressed: replaceOne.clicked()
                Keys.onEnterPressed: replaceOne.clicked()
            }
            BarButton {
                id: replaceOne

                objectName: "replaceButton"
                text: Tr.t("Replace", "替换", "置換")
                enabled: bar.textArea.finder.currentIndex >= 0
                // The button goes disabled with the last match; the keys stay in the bar.
                onClicked: {
                    if (bar.textArea.finder.replaceCurrent(replaceField.text))
                        bar.showCurrent()
                    replaceField.forceActiveFocus()
                }
            }
            BarButton {
                objectName: "replaceAllButton"
                text: Tr.t("Replace All", "全部替换", "すべて置換")
                enabled: bar.textArea.finder.matchCount > 0
                onClicked: {
                    bar.textArea.finder.replaceAll(replaceField.text)
                    replaceField.forceActiveFocus()
                }
            }
            Item {
                Layout.fillWidth: true
            }
        }
    }

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 1
        color: Theme.separator
    }
}
