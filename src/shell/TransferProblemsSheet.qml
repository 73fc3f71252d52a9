import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// Says which files could not be imported or exported, and why.
SheetFrame {
    id: sheet

    required property list<string> problems

    title: Tr.t("Some files could not be used", "部分文件无法使用", "使用できなかったファイルがあります")
    width: 440
    onCancelRequested: close()
    onAcceptRequested: close()
    onOpened: okButton.forceActiveFocus()

    contentItem: ColumnLayout {
        spacing: 16

        RowLayout {
            spacing: 10

            Icon {
                name: "exclamationmark.triangle"
                color: Theme.orange
                size: 18
            }
            Label {
                Layout.fillWidth: true
                text: Tr.t("Some files could not be used", "部分文件无法使用", "使用できなかったファイルがあります")
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
                color: Theme.label
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
            }
        }
        TextEdit {
            objectName: "transferProblems"
            Layout.fillWidth: true
            text: sheet.problems.join("\n")
            readOnly: true
            selectByMouse: true
            wrapMode: TextEdit.Wrap
            font.pixelSize: Theme.bodySize
            color: Theme.secondaryLabel
        }
        SheetButton {
            id: okButton

            Layout.fillWidth: true
            text: Tr.t("OK", "好", "OK")
            tint: Theme.blue
            onClicked: sheet.close()
        }
    }
}
