import QtQuick
import QtQuick.Controls
import Varnholt

// One end of the panel switch: its icon, tinted and bold while its panel is open, with a
// short bounce when that changes.
AbstractButton {
    id: button

    required property bool isActive
    required property string iconName
    required property color activeColor
    required property string helpText
    property real iconSize: 13

    implicitWidth: 28
    implicitHeight: 24
    // Reached by Tab; a click leaves the keyboard where it was.
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    // Checkable, so that assistive technology sees a toggle, checked while its panel is open. A
    // click only asks for the panel; the panel's state, not the click, decides `checked`.
    checkable: true
    checked: isActive
    onToggled: checked = Qt.binding(() => button.isActive)
    Accessible.name: helpText
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: clicked()
    Accessible.onToggleAction: clicked()
    ToolTip.visible: hovered
    ToolTip.delay: 500
    ToolTip.text: helpText

    onIsActiveChanged: bounce.restart()

    background: Rectangle {
        radius: 5
        color: button.isActive ? Theme.withOpacity(button.activeColor, 0.15)
                               : button.hovered ? Theme.withOpacity(Theme.label, 0.06) : "transparent"
        border.width: button.visualFocus ? 2 : 0
        border.color: Theme.withOpacity(Theme.cyan, 0.8)
    }

    contentItem: Item {
        Icon {
            id: glyph

            anchors.centerIn: parent
            name: button.iconName
            size: button.iconSize + (button.isActive ? 1 : 0)
            color: button.isActive ? button.activeColor : Theme.secondaryLabel
        }
    }

    SequentialAnimation {
        id: bounce

        NumberAnimation {
            target: glyph
            property: "scale"
            to: 1.25
            duration: 110
            easing.type: Easing.OutQuad
        }
        NumberAnimation {
            target: glyph
            property: "scale"
            to: 1
            duration: 220
            easing.type: Easing.OutBack
            easing.overshoot: 2
        }
    }
}
