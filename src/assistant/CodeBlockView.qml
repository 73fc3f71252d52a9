import QtQuick
import QtQuick.Controls
import Varnholt

// SQL (or untagged code) of a reply, coloured, with Copy and Apply. Apply puts the code into the
// editor; a block of a reply still being written shows Apply without effect.
CodeBlockFrame {
    id: block

    property bool canApply: true

    signal applyRequested
    signal compareRequested

    label: "SQL"
    colourAsSQL: true
    namesCopied: true

    CodeBlockFrame.HeaderButton {
        objectName: "compareButton"
        enabled: block.canApply
        iconName: "arrow.left.arrow.right"
        tint: Theme.cyan
        text: Tr.t("Compare", "对比", "比較")
        ToolTip.text: Tr.t("Compare with the editor's text", "与编辑器中的内容对比", "エディタの内容と比較")
        onClicked: block.compareRequested()
    }
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
