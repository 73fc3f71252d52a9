import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// Between the conversation and the input: a field for the error the database gave, and the
// action that asks the assistant to explain and fix it for the current SQL.
Rectangle {
    id: panel

    // The pasted error; edits go out by `errorTextEdited`.
    required property string errorText
    required property bool canSubmit

    signal errorTextEdited(string text)
    signal submitRequested
    signal closeRequested

    implicitHeight: column.implicitHeight + 24
    color: Theme.withOpacity(Theme.orange, 0.05)

    ColumnLayout {
        id: column

        x: 12
        y: 12
        width: panel.width - 24
        spacing: 8

        RowLayout {
            Layout.fillWidth: true

            Label {
                Layout.fillWidth: true
                text: Tr.t("Paste error message", "粘贴错误信息", "エラーメッセージを貼り付け")
                font.pixelSize: Theme.subheadlineSize + 1
                font.weight: Font.Medium
                color: Theme.orange
            }
            ToolButton {
                objectName: "closeErrorInputButton"
                icon.source: "image://icons/xmark.circle.fill?color=" + encodeURIComponent(Theme.secondaryLabel.toString())
                icon.width: 14
                icon.height: 14
                display: AbstractButton.IconOnly
                padding: 2
                Accessible.name: Tr.t("Close", "关闭", "閉じる")
                Accessible.onPressAction: clicked()
                onClicked: panel.closeRequested()
            }
        }

        WrappedTextScrollView {
            scrolledName: errorField.Accessible.name
            Layout.fillWidth: true
            Layout.preferredHeight: 80

            TextArea {
                id: errorField

                objectName: "errorInputField"
                text: panel.errorText
                onTextChanged: panel.errorTextEdited(text)
                font.family: Theme.monospaceFamily
                font.pixelSize: Theme.subheadlineSize + 1
                wrapMode: TextEdit.Wrap
                padding: 8
                color: Theme.label
                Accessible.name: Tr.t("Paste error message", "粘贴错误信息", "エラーメッセージを貼り付け")
                background: Rectangle {
                    radius: 8
                    color: Theme.controlBackground
                    border.width: 1
                    border.color: Theme.withOpacity(Theme.orange, errorField.activeFocus ? 0.9 : 0.5)
                }
                Keys.onPressed: event => {
                    if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                            && (event.modifiers & Qt.ControlModifier)) {
                        panel.submitRequested()
                        event.accepted = true
                    }
                }

                EditContextMenu {
                    target: errorField
                }
            }
        }

        AbstractButton {
            id: fixButton

            objectName: "analyzeAndFixButton"
            enabled: panel.canSubmit
            focusPolicy: Qt.StrongFocus
            text: Tr.t("Analyze & Fix", "分析并修复", "分析して修復")
            Accessible.name: text
            Accessible.onPressAction: clicked()
            leftPadding: 12
            rightPadding: 12
            topPadding: 7
            bottomPadding: 7
            onClicked: panel.submitRequested()
            contentItem: Row {
                spacing: 4
                opacity: fixButton.enabled ? 1 : 0.5

                Icon {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "wrench.and.screwdriver"
                    color: Theme.textOn(Theme.orange)
                    size: 12
                }
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    text: fixButton.text
                    font.pixelSize: Theme.subheadlineSize + 1
                    color: Theme.textOn(Theme.orange)
                }
            }
            background: Rectangle {
                radius: 6
                color: fixButton.down ? Qt.darker(Theme.orange, 1.1) : Theme.orange
                opacity: fixButton.enabled ? 1 : 0.5
                border.width: fixButton.visualFocus ? 2 : 0
                border.color: Theme.label
            }
        }
    }
}
