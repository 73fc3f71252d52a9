import QtQuick
import QtQuick.Controls
import Varnholt

// The frame of every sheet and alert: modal, centred over the window, on the window's colour
// with a rounded border. Ctrl+Esc (and Esc) cancels, Ctrl+Return accepts. A dialog to assistive
// technology, named by `title` (each sheet shows its own heading, so the frame draws none).
Dialog {
    id: sheet

    signal cancelRequested
    signal acceptRequested

    function nameForAssistiveTechnology() {
        const frame = contentItem ? contentItem.parent : null
        if (frame)
            frame.Accessible.name = title
    }

    parent: Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    padding: 24
    closePolicy: Popup.CloseOnEscape
    header: null
    footer: null
    // Qt 6.4 does not give a dialog its title as its accessible name; the frame does.
    onTitleChanged: nameForAssistiveTechnology()
    Component.onCompleted: nameForAssistiveTechnology()

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
