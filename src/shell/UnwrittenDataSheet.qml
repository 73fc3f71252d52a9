import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// Before the window goes with changes the data folder did not take: says so, and offers to
// export everything elsewhere, to try again, or to go without them.
SheetFrame {
    id: sheet

    // Why the changes are not on disk: the write's failure, or who holds the folder.
    required property string reason
    required property string dataDirectory
    property string exportError

    signal exportRequested
    signal retryRequested
    signal discardRequested

    title: Tr.t("Some changes are not saved", "有些修改尚未保存", "保存されていない変更があります")
    width: 460
    onOpened: exportButton.forceActiveFocus()
    onClosed: exportError = ""
    onCancelRequested: close()
    onAcceptRequested: exportRequested()

    contentItem: ColumnLayout {
        spacing: 16

        RowLayout {
            spacing: 10

            Icon {
                name: "exclamationmark.triangle"
                color: Theme.red
                size: 20
            }
            Label {
                Layout.fillWidth: true
                text: Tr.t("Some changes are not saved", "有些修改尚未保存", "保存されていない変更があります")
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
                color: Theme.label
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
            }
        }
        Label {
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            font.pixelSize: Theme.bodySize
            color: Theme.label
            text: Tr.t("Varnholt could not write them to its data folder. Export all your data to another folder to keep them.",
                       "Varnholt 无法将它们写入数据文件夹。请将所有数据导出到其他文件夹以保留这些修改。",
                       "Varnholt はデータフォルダーに書き込めませんでした。変更を残すには、すべてのデータを別のフォルダーに書き出してください。")
        }
        TextEdit {
            Layout.fillWidth: true
            readOnly: true
            selectByMouse: true
            wrapMode: TextEdit.WrapAnywhere
            font.family: Theme.monospaceFamily
            font.pixelSize: Theme.captionSize + 1
            color: Theme.secondaryLabel
            text: sheet.dataDirectory + "\n" + sheet.reason
        }
        Label {
            Layout.fillWidth: true
            visible: sheet.exportError.length > 0
            wrapMode: Text.Wrap
            font.pixelSize: Theme.captionSize + 1
            color: Theme.red
            text: Tr.t("The export failed too: ", "导出也失败了：", "書き出しにも失敗しました：") + sheet.exportError
        }
        RowLayout {
            spacing: 8

            SheetButton {
                Layout.fillWidth: true
                text: Tr.t("Quit Without Saving", "不保存并退出", "保存せずに終了")
                onClicked: sheet.discardRequested()
            }
            SheetButton {
                Layout.fillWidth: true
                text: Tr.t("Try Again", "重试", "再試行")
                onClicked: sheet.retryRequested()
            }
            SheetButton {
                id: exportButton

                Layout.fillWidth: true
                text: Tr.t("Export…", "导出…", "書き出す…")
                tint: Theme.blue
                onClicked: sheet.exportRequested()
            }
        }
    }
}
