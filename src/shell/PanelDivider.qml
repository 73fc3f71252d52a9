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

    // One step of the keys: Left widens the panel, Right narrows it.
    function step(delta: real) {
        panelWidthRequested(Math.min(maxWidth, Math.max(panelWidth + delta, minWidth)))
    }

    implicitWidth: handleWidth
    activeFocusOnTab: true
    Accessible.role: Accessible.Splitter
    Accessible.name: Tr.t("Panel width", "面板宽度", "パネルの幅")
    Accessible.description: Math.round(panelWidth) + " px"
    Accessible.focusable: true
    Keys.onLeftPressed: step(16)
    Keys.onRightPressed: step(-16)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home)
            step(maxWidth)
        else if (event.key === Qt.Key_End)
            step(-maxWidth)
        else
            return
        event.accepted = true
    }

    // The keyboard's place: a line along the strip while it has focus.
    Rectangle {
        anchors.fill: parent
        visible: divider.activeFocus
        color: Theme.withOpacity(Theme.cyan, 0.8)
    }

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
