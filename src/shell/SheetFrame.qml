import QtQuick
import QtQuick.Controls
import Varnholt

// The frame of every sheet and alert: modal, centred over the window, on the window's colour
// with a rounded border. Ctrl+Esc (and Esc) cancels, Ctrl+Return accepts.
Popup {
    id: sheet

    signal cancelRequested
    signal acceptRequested

    parent: Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    padding: 24
    closePolicy: Popup.CloseOnEscape

    background: Rectangle {
        radius: 12
        color: Theme.windowBackground
        border.color: Theme.separator
    }

    Shortcut {
        sequences: ["Ctrl+Esc"]
        enabled: sheet.opened
        onActivated: sheet.cancelRequested()
    }
    Shortcut {
        sequences: ["Ctrl+Return", "Ctrl+Enter"]
        enabled: sheet.opened
        onActivated: sheet.acceptRequested()
    }
}
