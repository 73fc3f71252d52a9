pragma Singleton

import QtQuick

// Colours, fonts and timings of the views, derived from the system palette so that the
// window follows light and dark mode.
QtObject {
    id: theme

    readonly property SystemPalette palette: SystemPalette {
        colorGroup: SystemPalette.Active
    }
    readonly property bool dark: palette.window.hslLightness < 0.5

    // System colours
    readonly property color windowBackground: palette.window
    // Lighter than the window in both modes, as controls stand out of it.
    readonly property color controlBackground: dark ? Qt.lighter(palette.window, 1.15) : palette.base
    readonly property color textBackground: palette.base
    readonly property color label: palette.windowText
    readonly property color secondaryLabel: withOpacity(palette.windowText, 0.55)
    readonly property color tertiaryLabel: withOpacity(palette.windowText, 0.32)
    readonly property color quaternaryLabel: withOpacity(palette.windowText, 0.16)
    readonly property color separator: withOpacity(palette.windowText, dark ? 0.22 : 0.14)

    // Accent colours, light and dark forms of the system's own
    readonly property color cyan: dark ? "#64d2ff" : "#32ade6"
    readonly property color blue: dark ? "#0a84ff" : "#007aff"
    readonly property color purple: dark ? "#bf5af2" : "#af52de"
    readonly property color orange: dark ? "#ff9f0a" : "#ff9500"
    readonly property color green: dark ? "#30d158" : "#34c759"
    readonly property color red: dark ? "#ff453a" : "#ff3b30"
    readonly property color gray: "#8e8e93"

    // Text styles, in pixels: the design's sizes, for a body text of 13 pixels, scaled by the
    // desktop's own font (10 points, the usual default, is about 13 pixels), so that a user who
    // chose larger text gets larger text here too.
    readonly property real fontScale: Qt.application.font.pixelSize > 0 ? Qt.application.font.pixelSize / 13
                                                                      : Qt.application.font.pointSize / 10
    readonly property int title2Size: Math.round(17 * fontScale)
    readonly property int title3Size: Math.round(15 * fontScale)
    readonly property int headlineSize: Math.round(13 * fontScale)
    readonly property int bodySize: Math.round(13 * fontScale)
    readonly property int subheadlineSize: Math.round(11 * fontScale)
    readonly property int captionSize: Math.round(10 * fontScale)
    readonly property int caption2Size: Math.round(10 * fontScale)
    readonly property string monospaceFamily: "monospace"
    // Code in replies and sheets; in points, as the colouring formats carry their size.
    readonly property real codePointSize: 9 * fontScale

    // Text on a filled control of colour `background`: white where it reads at 4.5:1 or better,
    // otherwise whichever of white and near black reads better (WCAG relative luminance).
    function textOn(background: color): color {
        const linear = channel => channel <= 0.04045 ? channel / 12.92 : Math.pow((channel + 0.055) / 1.055, 2.4)
        const luminance = 0.2126 * linear(background.r) + 0.7152 * linear(background.g)
                + 0.0722 * linear(background.b)
        const onWhite = 1.05 / (luminance + 0.05)
        const onBlack = (luminance + 0.05) / 0.05
        return onWhite >= 4.5 || onWhite >= onBlack ? "white" : "#1d1d1f"
    }

    // `c` drawn at `opacity`: its own alpha multiplied, as a view's opacity would.
    function withOpacity(c: color, opacity: real): color {
        return Qt.rgba(c.r, c.g, c.b, c.a * opacity)
    }
}
