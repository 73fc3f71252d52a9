import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// An alert that asks before a step that cannot be taken back: its title, its message, Cancel
// and the step's own button in red. Escape and Cancel change nothing.
SheetFrame {
    id: alert

    required property string message
    required property string confirmText

    signal confirmed

    width: 340
    onCancelRequested: close()
    onAcceptRequested: confirmButton.clicked()
    onOpened: cancelButton.forceActiveFocus()

    contentItem: ColumnLayout {
        spacing: 16
        Accessible.role: Accessible.AlertMessage
        Accessible.name: alert.title

        Label {
            Layout.fillWidth: true
            text: alert.title
            wrapMode: Text.Wrap
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            color: Theme.label
            Accessible.role: Accessible.Heading
        }
        Label {
            Layout.fillWidth: true
            text: alert.message
            wrapMode: Text.Wrap
            font.pixelSize: Theme.bodySize
            color: Theme.secondaryLabel
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8

            SheetButton {
                id: cancelButton

                objectName: "cancelButton"
                Layout.fillWidth: true
                text: Tr.t("Cancel", "取消", "キャンセル")
                onClicked: alert.close()
                Keys.onReturnPressed: clicked()
            }
            SheetButton {
                id: confirmButton

                objectName: "confirmButton"
                Layout.fillWidth: true
                text: alert.confirmText
                tint: Theme.red
                onClicked: {
                    alert.close()
                    alert.confirmed()
                }
                Keys.onReturnPressed: clicked()
            }
        }
    }
}
