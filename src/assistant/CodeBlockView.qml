import QtQuick
import QtQuick.Controls
import Varnholt

// SQL (or untagged code) of a reply, coloured, with Copy and Apply. Apply puts the code into the
// editor; a block of a reply still being written shows Apply without effect.
CodeBlockFrame {
    id: block

    property bool canApply: true

    signal applyRequested

    label: "SQL"
    colourAsSQL: true
    namesCopied: true

    CodeBlockFrame.HeaderButton {
        objectName: "applyButton"
        enabled: block.canApply
        iconName: "arrow.right.doc.on.clipboard"
        tint: Theme.purple
        text: Tr.t("Apply", "应用", "適用")
        ToolTip.text: "将此 SQL 应用到编辑器"
        onClicked: block.applyRequested()
    }
}
