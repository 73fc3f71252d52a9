import QtQuick
import QtQuick.Controls
import Varnholt

// An icon button of the assistant panel, named by its tool tip: 24 points square, optionally on
// a circle of the control colour.
AbstractButton {
    id: button

    required property string iconName
    property real iconSize: 12
    property color tint: Theme.secondaryLabel
    property bool circled: false

    implicitWidth: Math.max(24, iconSize + 8)
    implicitHeight: implicitWidth
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.name: text
    Accessible.onPressAction: clicked()
    ToolTip.visible: hovered
    ToolTip.delay: 500
    ToolTip.text: text

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: button.iconName
            color: button.tint
            size: button.iconSize
            opacity: button.enabled ? 1 : 0.5
        }
    }
    background: Rectangle {
        radius: button.circled ? width / 2 : 5
        color: button.circled ? Theme.withOpacity(Theme.controlBackground, button.hovered ? 1 : 0.8)
                              : button.hovered ? Theme.withOpacity(Theme.label, 0.06) : "transparent"
        border.width: button.visualFocus ? 2 : 0
        border.color: Theme.withOpacity(Theme.cyan, 0.8)
    }
}
