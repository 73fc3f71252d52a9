import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// One knowledge item in the settings list: who recorded it, its text and age, and the buttons
// to edit and delete it. A long text shows its first lines.
Rectangle {
    id: row

    required property string itemId
    required property int category
    required property string content
    required property int source
    required property string relativeTime

    signal editRequested
    signal deleteRequested

    implicitHeight: layout.implicitHeight + 12
    radius: 6
    color: Theme.withOpacity(Theme.textBackground, 0.5)

    RowLayout {
        id: layout

        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        anchors.topMargin: 6
        anchors.bottomMargin: 6
        spacing: 8

        Item {
            Layout.preferredWidth: 14
            Layout.fillHeight: true

            Icon {
                anchors.centerIn: parent
                name: row.source === Knowledge.AiDetected ? "sparkle" : "hand.draw"
                color: row.source === Knowledge.AiDetected ? Theme.purple : Theme.secondaryLabel
                size: Theme.caption2Size + 1
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            Label {
                Layout.fillWidth: true
                text: row.content
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                maximumLineCount: 3
                elide: Text.ElideRight
                font.pixelSize: Theme.subheadlineSize + 1
                color: Theme.label
            }
            Label {
                text: row.relativeTime
                font.pixelSize: Theme.caption2Size
                color: Theme.tertiaryLabel
            }
        }
        // The tool tips are the same in every language.
        HeaderIconButton {
            objectName: "editKnowledgeButton"
            implicitWidth: 20
            implicitHeight: 20
            iconName: "pencil"
            iconSize: Theme.caption2Size + 1
            tint: Theme.secondaryLabel
            text: "编辑"
            onClicked: row.editRequested()
        }
        HeaderIconButton {
            objectName: "deleteKnowledgeButton"
            implicitWidth: 20
            implicitHeight: 20
            iconName: "trash"
            iconSize: Theme.caption2Size + 1
            tint: Theme.withOpacity(Theme.red, 0.6)
            text: "删除"
            onClicked: row.deleteRequested()
        }
    }
}
