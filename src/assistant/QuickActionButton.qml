import QtQuick
import QtQuick.Controls
import Varnholt

// A quick request of the assistant panel: the mode's icon and name in the mode's colour.
AbstractButton {
    id: button

    required property int mode
    property bool isDisabled: false

    readonly property color modeColor: {
        switch (mode) {
        case AI.Explain:
            return Theme.blue
        case AI.Optimize:
            return Theme.purple
        case AI.FixError:
            return Theme.orange
        default:
            return Theme.cyan
        }
    }
    readonly property color foreground: enabled ? modeColor : Theme.withOpacity(Theme.secondaryLabel, 0.5)

    enabled: !isDisabled
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    text: AIModes.displayName(mode, LanguageManager.resolvedLanguage)
    Accessible.name: text
    Accessible.onPressAction: clicked()
    leftPadding: 10
    rightPadding: 10
    topPadding: 6
    bottomPadding: 6

    contentItem: Row {
        spacing: 4

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: AIModes.iconName(button.mode)
            color: button.foreground
            size: 12
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            font.pixelSize: Theme.captionSize + 1
            color: button.foreground
        }
    }

    background: Rectangle {
        radius: 6
        color: button.enabled ? Theme.withOpacity(button.modeColor, button.hovered ? 0.16 : 0.1)
                              : Theme.withOpacity(Theme.controlBackground, 0.5)
        border.width: button.visualFocus ? 2 : 1
        border.color: button.visualFocus ? Theme.withOpacity(Theme.cyan, 0.8)
                                         : button.enabled ? Theme.withOpacity(button.modeColor, 0.3) : "transparent"
    }
}
