import QtQuick
import QtQuick.Controls
import Varnholt

// The buttons of the sheets: bordered, or filled with `tint` for the prominent action.
Button {
    id: button

    property color tint: "transparent"
    readonly property bool prominent: tint.a > 0

    implicitHeight: 30
    font.pixelSize: Theme.bodySize
    font.weight: prominent ? Font.DemiBold : Font.Normal
    Accessible.name: text
    Accessible.onPressAction: clicked()

    contentItem: Label {
        text: button.text
        font: button.font
        color: button.prominent ? Theme.textOn(button.tint) : Theme.label
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        opacity: button.enabled ? 1 : 0.5
    }
    background: Rectangle {
        radius: 7
        color: button.prominent ? (button.down ? Qt.darker(button.tint, 1.15) : button.tint)
                                : (button.down ? Theme.withOpacity(Theme.label, 0.12) : Theme.withOpacity(Theme.label, 0.06))
        border.width: button.visualFocus ? 2 : (button.prominent ? 0 : 1)
        border.color: button.visualFocus ? Theme.withOpacity(Theme.cyan, 0.8) : Theme.separator
        opacity: button.enabled ? 1 : 0.6
    }
}
