import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The card that groups controls in the settings tabs: a heading of icon and title over its
// content, which stands in a column.
Rectangle {
    id: box

    required property string title
    required property string icon
    default property alias content: contentColumn.data

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight + 24
    radius: 10
    color: Theme.withOpacity(Theme.controlBackground, 0.7)
    border.color: Theme.separator
    border.width: 1

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: 12
        spacing: 10

        RowLayout {
            spacing: 6

            Icon {
                name: box.icon
                color: Theme.secondaryLabel
                size: Theme.subheadlineSize + 2
            }
            Label {
                text: box.title
                font.pixelSize: Theme.subheadlineSize
                font.weight: Font.DemiBold
                color: Theme.label
                Accessible.role: Accessible.Heading
            }
        }
        ColumnLayout {
            id: contentColumn

            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 12
        }
    }
}
