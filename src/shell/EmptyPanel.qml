import QtQuick
import QtQuick.Controls
import Varnholt

// Stands in the right-panel slot for a panel that has no content yet: its title and a way
// to close it.
Rectangle {
    id: panel

    required property string title

    signal closeRequested

    color: Theme.windowBackground

    Row {
        x: 16
        y: 14
        spacing: 8

        Label {
            text: panel.title
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            color: Theme.label
        }
    }

    ToolButton {
        anchors.right: parent.right
        anchors.rightMargin: 8
        y: 8
        icon.source: "image://icons/xmark?color=" + encodeURIComponent(Theme.secondaryLabel.toString())
        display: AbstractButton.IconOnly
        Accessible.name: Tr.t("Close", "关闭", "閉じる")
        ToolTip.visible: hovered
        ToolTip.text: Accessible.name
        onClicked: panel.closeRequested()
    }
}
