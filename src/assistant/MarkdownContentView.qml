import QtQuick
import QtQuick.Controls
import Varnholt

// A reply as prose and code blocks, in order, on the reply's card. SQL and untagged code can be
// applied to the editor; other languages are only shown.
Rectangle {
    id: view

    required property MarkdownBlockModel blocks
    property bool canApply: true

    signal applyRequested(string sql)
    signal compareRequested(string sql)

    implicitHeight: column.implicitHeight + 24
    radius: 12
    color: Theme.controlBackground

    Column {
        id: column

        x: 12
        y: 12
        width: view.width - 24
        spacing: 8

        Repeater {
            model: view.blocks

            Loader {
                id: block

                required property bool isCode
                required property string text
                required property string language
                required property bool isApplicable

                width: column.width
                // A long reply is built over a few frames rather than in one long pause.
                asynchronous: true
                sourceComponent: !isCode ? prose : isApplicable ? sqlCode : otherCode

                Component {
                    id: prose

                    MarkdownTextView {
                        width: block.width
                        text: block.text
                    }
                }
                Component {
                    id: sqlCode

                    CodeBlockView {
                        width: block.width
                        code: block.text
                        canApply: view.canApply
                        onApplyRequested: view.applyRequested(block.text)
                        onCompareRequested: view.compareRequested(block.text)
                    }
                }
                Component {
                    id: otherCode

                    GenericCodeBlockView {
                        width: block.width
                        code: block.text
                        language: block.language
                    }
                }
            }
        }
    }
}
