import QtQuick
import QtQuick.Controls
import Varnholt

// The reply being written, as it arrives, raw (a knowledge marker shows until the reply ends).
// Its code blocks cannot be applied yet.
Column {
    id: bubble

    required property MarkdownBlockModel blocks
    readonly property real minimumSpacer: 20

    spacing: 6

    MarkdownContentView {
        width: bubble.width - bubble.minimumSpacer
        blocks: bubble.blocks
        canApply: false
    }
    Row {
        spacing: 4

        BusyIndicator {
            anchors.verticalCenter: parent.verticalCenter
            implicitWidth: 18
            implicitHeight: 18
            padding: 0
            running: bubble.visible
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: Tr.t("Outputting...", "正在输出...", "出力中...")
            font.pixelSize: Theme.caption2Size
            color: Theme.tertiaryLabel
        }
    }
}
