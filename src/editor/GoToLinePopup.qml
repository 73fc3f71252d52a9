import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// Go to Line (Ctrl+G): a line number, from 1 to the text's last line; Return goes there,
// Escape goes back to the text where it was.
Popup {
    id: popup

    required property SQLEditorItem textArea
    // Taken as the popup opens; the text cannot change while it is open.
    property int lineCount: 1

    function goToLine() {
        const line = parseInt(lineField.text)
        if (isNaN(line))
            return
        textArea.goToLine(line)
        close()
    }

    modal: false
    focus: true
    padding: 10
    onAboutToShow: lineCount = textArea.document.blockCount
    onOpened: {
        lineField.text = ""
        lineField.forceActiveFocus()
    }
    onClosed: textArea.forceActiveFocus()
    background: Rectangle {
        radius: 8
        color: Theme.controlBackground
        border.width: 1
        border.color: Theme.separator
    }

    contentItem: RowLayout {
        spacing: 8
        Accessible.role: Accessible.Dialog
        Accessible.name: Tr.t("Go to Line", "转到行", "行へ移動")

        Label {
            text: Tr.t("Line (1–%1)", "行（1–%1）", "行（1–%1）").arg(popup.lineCount)
            font.pixelSize: Theme.subheadlineSize + 1
            color: Theme.label
        }
        FormTextField {
            id: lineField

            objectName: "goToLineField"
            Layout.preferredWidth: 120
            accessibleName: Tr.t("Line number", "行号", "行番号")
            inputMethodHints: Qt.ImhDigitsOnly
            validator: IntValidator {
                bottom: 1
                top: popup.lineCount
            }
            Keys.onReturnPressed: popup.goToLine()
            Keys.onEnterPressed: popup.goToLine()
        }
    }
}
