import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// Asks for the name of a new document. An empty name gives the default name of the
// language in force; any other text is taken as typed.
SheetFrame {
    id: sheet

    property alias nameField: nameField

    signal createRequested(string name)

    function cancel() {
        nameField.text = ""
        close()
    }
    function create() {
        createRequested(nameField.text)
        nameField.text = ""
        close()
    }

    title: Tr.t("New SQL Document", "新建 SQL 文档", "新規 SQL ドキュメント")
    width: 320
    onOpened: nameField.forceActiveFocus()
    onClosed: nameField.text = ""

    onCancelRequested: sheet.cancel()
    onAcceptRequested: sheet.create()

    contentItem: ColumnLayout {
        spacing: 20

        RowLayout {
            spacing: 10

            Icon {
                name: "doc.badge.plus"
                color: Theme.cyan
                size: 20
            }
            Label {
                Layout.fillWidth: true
                text: Tr.t("New SQL Document", "新建 SQL 文档", "新規 SQL ドキュメント")
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
                color: Theme.label
            }
        }

        ColumnLayout {
            spacing: 6

            Label {
                text: Tr.t("Document Name", "文档名称", "ドキュメント名")
                font.pixelSize: Theme.subheadlineSize
                color: Theme.secondaryLabel
            }
            TextField {
                id: nameField

                Layout.fillWidth: true
                placeholderText: Tr.t("Untitled SQL", "未命名 SQL", "無題の SQL")
                font.pixelSize: Theme.bodySize
                padding: 10
                Accessible.name: Tr.t("Document Name", "文档名称", "ドキュメント名")
                onAccepted: sheet.create()
                background: Rectangle {
                    radius: 8
                    color: Theme.withOpacity(Theme.controlBackground, 0.5)
                    border.width: nameField.activeFocus ? 2 : 1
                    border.color: nameField.activeFocus ? Theme.withOpacity(Theme.cyan, 0.7) : Theme.withOpacity(Theme.separator, 0.5)
                }

                EditContextMenu {
                    target: nameField
                }
            }
        }

        RowLayout {
            spacing: 12

            SheetButton {
                Layout.fillWidth: true
                text: Tr.t("Cancel", "取消", "キャンセル")
                onClicked: sheet.cancel()
            }
            SheetButton {
                Layout.fillWidth: true
                text: Tr.t("Create", "创建", "作成")
                tint: Theme.cyan
                onClicked: sheet.create()
            }
        }
    }
}
