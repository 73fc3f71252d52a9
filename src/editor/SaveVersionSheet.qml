import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// Takes a version of the shown document with a note. The note is kept only while the sheet
// is up.
SheetFrame {
    id: sheet

    property int nextVersionNumber: 1
    property bool hasDocument: true
    property alias noteField: noteField

    signal saveRequested(string note)

    function cancel() {
        noteField.text = ""
        close()
    }
    function save() {
        if (!hasDocument)
            return
        saveRequested(noteField.text)
        noteField.text = ""
        close()
    }

    title: Tr.t("Save Version", "保存版本", "バージョンを保存")
    width: 320
    onOpened: noteField.forceActiveFocus()
    onClosed: noteField.text = ""

    onCancelRequested: sheet.cancel()
    onAcceptRequested: sheet.save()

    contentItem: ColumnLayout {
        spacing: 20

        RowLayout {
            spacing: 10

            Rectangle {
                width: 40
                height: 40
                radius: 20
                color: Theme.withOpacity(Theme.green, 0.12)

                Icon {
                    anchors.centerIn: parent
                    name: "checkmark.seal.fill"
                    color: Theme.green
                    size: 18
                }
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2

                Label {
                    text: Tr.t("Save Version", "保存版本", "バージョンを保存")
                    font.pixelSize: Theme.headlineSize
                    font.weight: Font.DemiBold
                    color: Theme.label
                }
                Label {
                    visible: sheet.hasDocument
                    text: Tr.t("Will create", "即将创建", "作成予定") + " v" + sheet.nextVersionNumber
                    font.pixelSize: Theme.captionSize
                    color: Theme.secondaryLabel
                }
            }
        }

        ColumnLayout {
            spacing: 6

            Label {
                text: Tr.t("Version Note", "版本备注", "バージョンメモ")
                font.pixelSize: Theme.subheadlineSize
                color: Theme.secondaryLabel
            }
            WrappedTextScrollView {
                scrolledName: noteField.Accessible.name
                Layout.fillWidth: true
                Layout.preferredHeight: 64

                TextArea {
                    id: noteField

                    wrapMode: TextEdit.Wrap
                    font.pixelSize: Theme.bodySize
                    color: Theme.label
                    padding: 10
                    Accessible.name: Tr.t("Version Note", "版本备注", "バージョンメモ")
                    KeyNavigation.priority: KeyNavigation.BeforeItem
                    KeyNavigation.tab: cancelButton
                    background: Rectangle {
                        radius: 8
                        color: Theme.withOpacity(Theme.controlBackground, 0.5)
                        border.width: noteField.activeFocus ? 2 : 1
                        border.color: noteField.activeFocus ? Theme.withOpacity(Theme.green, 0.7)
                                                            : Theme.withOpacity(Theme.separator, 0.5)
                    }

                    EditContextMenu {
                        target: noteField
                    }
                }
            }
            Label {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: Tr.t("Record what you changed for future reference ✨", "记录这次修改的内容，方便以后回顾 ✨",
                           "変更内容を記録して、後で確認しやすくします ✨")
                font.pixelSize: Theme.captionSize
                color: Theme.tertiaryLabel
            }
        }

        RowLayout {
            spacing: 12

            SheetButton {
                id: cancelButton

                Layout.fillWidth: true
                text: Tr.t("Cancel", "取消", "キャンセル")
                onClicked: sheet.cancel()
            }
            SheetButton {
                Layout.fillWidth: true
                text: Tr.t("Save", "保存", "保存")
                tint: Theme.green
                onClicked: sheet.save()
            }
        }
    }
}
