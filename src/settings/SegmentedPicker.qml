import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// A row of segments of which one is chosen: the language and the AI connection. `segments`
// holds objects with `value` and `text`; choosing one only reports it.
Rectangle {
    id: picker

    required property var segments
    required property var currentValue
    property string accessibleName: ""

    signal activated(var value)

    implicitHeight: 26
    implicitWidth: row.implicitWidth + 4
    radius: 7
    color: Theme.withOpacity(Theme.label, 0.06)
    border.color: Theme.separator
    Accessible.role: Accessible.PageTabList
    Accessible.name: accessibleName

    function step(from: int, by: int) {
        const next = from + by
        if (next >= 0 && next < segments.length) {
            picker.activated(segments[next].value)
            repeater.itemAt(next).forceActiveFocus()
        }
    }

    RowLayout {
        id: row

        anchors.fill: parent
        anchors.margins: 2
        spacing: 2

        Repeater {
            id: repeater

            model: picker.segments

            delegate: AbstractButton {
                id: segment

                required property var modelData
                required property int index
                readonly property bool isCurrent: modelData.value === picker.currentValue

                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: label.implicitWidth + 20
                text: modelData.text
                focusPolicy: Qt.StrongFocus
                hoverEnabled: true
                checkable: true
                checked: isCurrent
                Accessible.role: Accessible.PageTab
                Accessible.name: text
                Accessible.onPressAction: clicked()
                Accessible.onToggleAction: clicked()
                Keys.onLeftPressed: picker.step(index, -1)
                Keys.onRightPressed: picker.step(index, 1)
                onClicked: picker.activated(modelData.value)

                contentItem: Label {
                    id: label

                    text: segment.text
                    font.pixelSize: Theme.subheadlineSize
                    font.weight: segment.isCurrent ? Font.Medium : Font.Normal
                    color: segment.isCurrent ? Theme.label : Theme.secondaryLabel
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    elide: Text.ElideRight
                }
                background: Rectangle {
                    radius: 5
                    color: segment.isCurrent ? Theme.textBackground
                                             : segment.hovered ? Theme.withOpacity(Theme.label, 0.05) : "transparent"
                    border.width: segment.visualFocus ? 2 : (segment.isCurrent ? 1 : 0)
                    border.color: segment.visualFocus ? Theme.withOpacity(Theme.cyan, 0.8) : Theme.separator
                }
            }
        }
    }
}
