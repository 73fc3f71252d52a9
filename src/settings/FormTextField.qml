import QtQuick
import QtQuick.Controls
import Varnholt

// A text field of the settings forms, named for assistive technology by `accessibleName`.
TextField {
    id: field

    property string accessibleName: placeholderText

    font.pixelSize: Theme.subheadlineSize + 1
    color: Theme.label
    placeholderTextColor: Theme.tertiaryLabel
    leftPadding: 8
    rightPadding: 8
    topPadding: 6
    bottomPadding: 6
    selectByMouse: true
    Accessible.name: accessibleName

    background: Rectangle {
        radius: 6
        color: Theme.textBackground
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.withOpacity(Theme.cyan, 0.7) : Theme.separator
    }

    EditContextMenu {
        target: field
    }
}
