import QtQuick
import QtQuick.Controls
import Varnholt

// Two texts compared line by line, as rows: removed lines on red, added on green with their
// line numbers, the changed words marked, unchanged runs folded. Computed off the GUI thread.
Item {
    id: view

    required property string oldText
    required property string newText
    readonly property alias changedLines: comparison.changedLines
    readonly property alias isComputing: comparison.isComputing

    TextDiffModel {
        id: comparison

        oldText: view.visible ? view.oldText : ""
        newText: view.visible ? view.newText : ""
        plainColor: Theme.label
        commentColor: Theme.secondaryLabel
        addedMark: Theme.withOpacity(Theme.green, 0.35)
        removedMark: Theme.withOpacity(Theme.red, 0.35)
    }

    ListView {
        id: diffView

        anchors.fill: parent
        anchors.topMargin: 8
        anchors.bottomMargin: 8
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: view.visible ? comparison : null
        ScrollBar.vertical: ScrollBar {
            Accessible.name: Tr.t("Comparison", "对比", "比較")
        }
        Accessible.role: Accessible.List
        Accessible.name: Tr.t("Comparison", "对比", "比較")

        delegate: Rectangle {
            id: diffRow

            required property int kind
            required property int oldNumber
            required property int newNumber
            required property string styledText
            required property int foldedLines

            width: ListView.view.width
            implicitHeight: Math.max(lineText.implicitHeight, 18)
            color: kind === 1 ? Theme.withOpacity(Theme.red, 0.12)
                 : kind === 2 ? Theme.withOpacity(Theme.green, 0.12)
                 : kind === 3 ? Theme.withOpacity(Theme.label, 0.05) : "transparent"

            Row {
                id: numbers

                visible: diffRow.kind !== 3
                x: 8
                spacing: 4

                Repeater {
                    model: [diffRow.oldNumber, diffRow.newNumber]

                    Label {
                        required property int modelData

                        width: 40
                        horizontalAlignment: Text.AlignRight
                        text: modelData > 0 ? modelData : ""
                        font.family: Theme.monospaceFamily
                        font.pointSize: Theme.codePointSize
                        color: Theme.tertiaryLabel
                    }
                }
                Label {
                    width: 14
                    horizontalAlignment: Text.AlignHCenter
                    text: diffRow.kind === 1 ? "−" : diffRow.kind === 2 ? "+" : ""
                    font.family: Theme.monospaceFamily
                    font.pointSize: Theme.codePointSize + 1
                    color: diffRow.kind === 1 ? Theme.red : Theme.green
                }
            }
            Text {
                id: lineText

                x: diffRow.kind === 3 ? 16 : 120
                width: parent.width - x - 12
                text: diffRow.kind === 3
                      ? Tr.t("⋯ %1 unchanged lines", "⋯ %1 行未更改", "⋯ 変更のない %1 行").arg(diffRow.foldedLines)
                      : diffRow.styledText
                textFormat: diffRow.kind === 3 ? Text.PlainText : Text.RichText
                wrapMode: Text.WrapAnywhere
                color: diffRow.kind === 3 ? Theme.secondaryLabel : Theme.label
                font.family: Theme.monospaceFamily
                font.pointSize: Theme.codePointSize + 1
            }
        }
    }

    Label {
        objectName: "noDifference"
        visible: !comparison.isComputing && comparison.changedLines === 0
        anchors.centerIn: parent
        text: Tr.t("No differences", "没有差异", "差分はありません")
        font.pixelSize: Theme.subheadlineSize
        color: Theme.secondaryLabel
    }
}
