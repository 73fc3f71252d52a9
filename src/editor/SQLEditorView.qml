import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The middle pane: the selected document under a toolbar, or a hint when none is selected.
// The two panel states come in; requests to change them and the edited text go out.
Rectangle {
    id: editor

    required property bool showVersionHistory
    required property bool showAIAssistant
    readonly property alias controller: controller
    readonly property alias saveVersionSheet: saveVersionSheet
    readonly property alias textEditor: textEditor
    readonly property alias findBar: findBar

    signal showVersionHistoryRequested(bool show)
    signal showAIAssistantRequested(bool show)
    signal currentContentEdited(string text)

    function format() {
        if (controller.hasDocument && !controller.isBlank)
            controller.formatDocument()
    }
    // Gives the keyboard to the text, where the user's next keystroke belongs.
    function focusText() {
        textEditor.textArea.forceActiveFocus()
    }
    function openGoToLine() {
        if (controller.hasDocument)
            goToLine.open()
    }
    function openSaveVersionSheet() {
        if (!controller.hasDocument || controller.isBlank)
            return
        saveVersionSheet.nextVersionNumber = controller.nextVersionNumber()
        saveVersionSheet.open()
    }

    color: Theme.textBackground

    SQLEditorController {
        id: controller

        onCurrentContentChanged: editor.currentContentEdited(currentContent)
        // The text loaded as the controller was made, before anyone listened.
        Component.onCompleted: editor.currentContentEdited(currentContent)
    }

    Shortcut {
        sequence: "Ctrl+Shift+F"
        enabled: controller.hasDocument && !controller.isBlank
        onActivated: editor.format()
    }
    Shortcut {
        sequence: "Ctrl+S"
        enabled: controller.hasDocument && !controller.isBlank
        onActivated: editor.openSaveVersionSheet()
    }

    // Find (Ctrl+F), Find and Replace (Ctrl+H) and Go to Line (Ctrl+G) are the Edit menu's.
    Shortcut {
        sequence: "Ctrl+R"
        enabled: controller.hasDocument
        onActivated: findBar.open(true)
    }
    Shortcut {
        sequence: "F3"
        enabled: controller.hasDocument
        onActivated: findBar.next()
    }
    Shortcut {
        sequence: "Shift+F3"
        enabled: controller.hasDocument
        onActivated: findBar.previous()
    }

    Shortcut {
        sequence: "F2"
        enabled: controller.hasDocument
        onActivated: documentName.startEditing()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        visible: controller.hasDocument

        // Toolbar
        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: toolbar.implicitHeight + 20
            color: Theme.withOpacity(Theme.windowBackground, 0.95)

            RowLayout {
                id: toolbar

                anchors.fill: parent
                anchors.leftMargin: 12
                anchors.rightMargin: 12
                anchors.topMargin: 12
                anchors.bottomMargin: 8
                spacing: 8

                EditableDocumentName {
                    id: documentName

                    objectName: "documentName"
                    Layout.fillWidth: true
                    Layout.maximumWidth: implicitWidth
                    Layout.minimumWidth: 40
                    name: controller.documentName
                    onRenameRequested: name => controller.renameDocument(name)
                    // A switch to another document ends an editing under way.
                    Connections {
                        target: controller
                        function onDocumentChanged() {
                            documentName.isEditing = false
                        }
                    }
                }
                Rectangle {
                    objectName: "unsavedDot"
                    visible: controller.hasUnsavedChanges
                    width: 8
                    height: 8
                    radius: 4
                    color: Theme.orange
                    Accessible.role: Accessible.StaticText
                    Accessible.name: Tr.t("Unsaved changes", "有未保存的更改", "未保存の変更")
                }
                Item {
                    Layout.fillWidth: true
                    Layout.minimumWidth: 8
                }
                Label {
                    objectName: "characterCount"
                    text: controller.characterCount + " " + Tr.t("characters", "字符", "文字")
                    font.pixelSize: Theme.captionSize
                    color: Theme.tertiaryLabel
                    leftPadding: 6
                    rightPadding: 6
                    topPadding: 4
                    bottomPadding: 4
                    background: Rectangle {
                        radius: 4
                        color: Theme.withOpacity(Theme.controlBackground, 0.5)
                    }
                }
                AbstractButton {
                    id: formatButton

                    objectName: "formatButton"
                    enabled: !controller.isBlank
                    // Reached by Tab; a click leaves the keyboard in the text.
                    focusPolicy: Qt.TabFocus
                    hoverEnabled: true
                    text: Tr.t("Format", "美化", "整形")
                    Accessible.name: text
                    Accessible.onPressAction: clicked()
                    ToolTip.visible: hovered
                    ToolTip.delay: 500
                    ToolTip.text: text + " (Ctrl+Shift+F)"
                    onClicked: editor.format()
                    contentItem: Row {
                        spacing: 4
                        opacity: formatButton.enabled ? 1 : 0.4

                        Icon {
                            anchors.verticalCenter: parent.verticalCenter
                            name: "text.alignleft"
                            color: Theme.cyan
                            size: 12
                        }
                        Label {
                            text: formatButton.text
                            font.pixelSize: Theme.subheadlineSize + 1
                            color: Theme.cyan
                        }
                    }
                    leftPadding: 10
                    rightPadding: 10
                    topPadding: 6
                    bottomPadding: 6
                    background: Rectangle {
                        radius: 6
                        color: Theme.withOpacity(Theme.cyan, formatButton.hovered ? 0.18 : 0.1)
                        border.width: formatButton.visualFocus ? 2 : 0
                        border.color: Theme.cyan
                    }
                }
                AbstractButton {
                    id: saveButton

                    objectName: "saveVersionButton"
                    enabled: !controller.isBlank
                    // Reached by Tab; a click leaves the keyboard in the text.
                    focusPolicy: Qt.TabFocus
                    hoverEnabled: true
                    text: Tr.t("Save Version", "保存版本", "バージョンを保存")
                    Accessible.name: text
                    Accessible.onPressAction: clicked()
                    ToolTip.visible: hovered
                    ToolTip.delay: 500
                    ToolTip.text: text + " (Ctrl+S)"
                    onClicked: editor.openSaveVersionSheet()
                    contentItem: Row {
                        spacing: 4

                        Icon {
                            anchors.verticalCenter: parent.verticalCenter
                            name: "clock.arrow.circlepath"
                            color: saveButton.enabled ? Theme.textOn(Theme.cyan) : Theme.secondaryLabel
                            size: 12
                        }
                        Label {
                            text: saveButton.text
                            font.pixelSize: Theme.subheadlineSize + 1
                            color: saveButton.enabled ? Theme.textOn(Theme.cyan) : Theme.secondaryLabel
                        }
                    }
                    leftPadding: 10
                    rightPadding: 10
                    topPadding: 6
                    bottomPadding: 6
                    background: Rectangle {
                        radius: 6
                        color: Theme.withOpacity(Theme.gray, 0.3)
                        border.width: saveButton.visualFocus ? 2 : 0
                        border.color: Theme.label
                        gradient: saveButton.enabled ? enabledGradient : null

                        Gradient {
                            id: enabledGradient

                            orientation: Gradient.Horizontal
                            GradientStop {
                                position: 0
                                color: saveButton.hovered ? Qt.darker(Theme.cyan, 1.08) : Theme.cyan
                            }
                            GradientStop {
                                position: 1
                                color: saveButton.hovered ? Qt.darker(Theme.blue, 1.08) : Theme.blue
                            }
                        }
                    }
                }
                PanelToggleGroup {
                    showAIAssistant: editor.showAIAssistant
                    showVersionHistory: editor.showVersionHistory
                    onShowAIAssistantRequested: show => editor.showAIAssistantRequested(show)
                    onShowVersionHistoryRequested: show => editor.showVersionHistoryRequested(show)
                }
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 1
            color: Theme.separator
        }

        FindBar {
            id: findBar

            objectName: "findBar"
            Layout.fillWidth: true
            textArea: textEditor.textArea
        }

        SQLTextEditor {
            id: textEditor

            Layout.fillWidth: true
            Layout.fillHeight: true
            controller: controller
        }
    }

    // Nothing selected
    Column {
        anchors.centerIn: parent
        spacing: 16
        visible: !controller.hasDocument
        width: Math.min(parent.width - 48, 420)

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "doc.text.magnifyingglass"
            color: Theme.quaternaryLabel
            size: 48
        }
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: Tr.t("Select or create a SQL document", "选择或创建一个 SQL 文档", "SQL ドキュメントを選択または作成")
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            color: Theme.secondaryLabel
        }
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: Tr.t("Select a document from the sidebar, or click 'New SQL' to create one",
                       "从左侧列表选择文档，或点击「新建 SQL」创建新文档",
                       "サイドバーからドキュメントを選択するか、「新規 SQL」をクリックして作成")
            font.pixelSize: Theme.subheadlineSize
            color: Theme.tertiaryLabel
        }
    }

    GoToLinePopup {
        id: goToLine

        objectName: "goToLine"
        x: (editor.width - width) / 2
        y: 64
        textArea: textEditor.textArea
    }

    SaveVersionSheet {
        id: saveVersionSheet

        objectName: "saveVersionSheet"
        hasDocument: controller.hasDocument
        onSaveRequested: note => controller.saveVersion(note)
    }
}
