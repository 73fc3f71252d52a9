import QtQuick
import Varnholt

// The strip before the right panel; dragging it sets the panel's width, at most once per
// 16 ms, clamped to [minWidth, maxWidth] with the upper clamp winning.
Item {
    id: divider

    required property real panelWidth
    required property real minWidth
    required property real maxWidth
    property real handleWidth: 4

    property bool isDragging: false
    property real dragStartWidth: 0
    readonly property bool isHovering: hover.hovered
    property double lastUpdate: 0

    signal panelWidthRequested(real width)

    implicitWidth: handleWidth

    HoverHandler {
        id: hover

        cursorShape: Qt.SplitHCursor
    }

    DragHandler {
        id: drag

        target: null
        xAxis.enabled: true
        yAxis.enabled: false
        dragThreshold: 1
        cursorShape: Qt.SplitHCursor

        onActiveChanged: {
            if (active) {
                divider.isDragging = true
                divider.dragStartWidth = divider.panelWidth
                divider.lastUpdate = Date.now()
            } else {
                divider.isDragging = false
            }
        }
        onTranslationChanged: {
            if (!active)
                return
            const now = Date.now()
            if (now - divider.lastUpdate < 16)
                return
            divider.lastUpdate = now
            const wanted = divider.dragStartWidth - translation.x
            divider.panelWidthRequested(Math.min(divider.maxWidth, Math.max(wanted, divider.minWidth)))
        }
    }
}
