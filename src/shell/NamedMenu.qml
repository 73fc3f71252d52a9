import QtQuick
import QtQuick.Controls
import Varnholt

// A menu that screen readers announce by name when it opens: its title as it reads, or
// `accessibleName` for a menu without a title (a context menu). Qt gives the menu's frame no
// name of its own.
Menu {
    id: menu

    property string accessibleName: AppCommands.withoutMnemonic(title)

    onAboutToShow: {
        const frame = contentItem ? contentItem.parent : null
        if (frame)
            frame.Accessible.name = accessibleName
    }
}
