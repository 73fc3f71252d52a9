import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// An entry of the window's menus and the context menus: the action's name, and its keys at
// the right.
MenuItem {
    id: entry

    readonly property string keys: action ? AppCommands.keysText(action.shortcut) : ""

    // What a click does, for assistive technology's Press: the entry runs and its menu closes.
    function activate() {
        if (action)
            action.trigger(entry)
        else
            triggered()
        if (menu)
            menu.dismiss()
    }

    // Its keys are read with its name; the labels below only draw both.
    Accessible.description: keys
    Accessible.onPressAction: activate()

    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            implicitContentWidth + leftPadding + rightPadding)
    contentItem: RowLayout {
        spacing: 24
        opacity: entry.enabled ? 1 : 0.45

        Label {
            Layout.fillWidth: true
            Accessible.ignored: true
            text: entry.text
            color: entry.highlighted ? entry.palette.highlightedText : entry.palette.windowText
        }
        Label {
            visible: entry.keys.length > 0
            Accessible.ignored: true
            text: entry.keys
            color: entry.highlighted ? entry.palette.highlightedText : Theme.secondaryLabel
        }
    }
}
