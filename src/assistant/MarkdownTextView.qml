import QtQuick
import QtQuick.Controls
import Varnholt

// Prose of a reply: inline Markdown as safe rich text, selectable and copyable. Links open in
// the desktop's browser; nothing is fetched for the text itself.
TextEdit {
    id: prose

    readOnly: true
    selectByMouse: true
    persistentSelection: false
    activeFocusOnPress: true
    textFormat: TextEdit.RichText
    wrapMode: TextEdit.Wrap
    font.pixelSize: Theme.bodySize
    color: Theme.label
    selectionColor: Theme.withOpacity(Theme.cyan, 0.35)
    selectedTextColor: Theme.label

    onLinkActivated: link => ReplyLinks.open(link)

    HoverHandler {
        cursorShape: prose.hoveredLink.length > 0 ? Qt.PointingHandCursor : Qt.IBeamCursor
    }
}
