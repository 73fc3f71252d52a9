import QtQuick
import QtQuick.Controls
import Varnholt

// The waiting line before the first words of a reply: three dots lighting up in turn.
Item {
    id: indicator

    property int dotCount: 0

    implicitHeight: bubble.height

    Rectangle {
        id: bubble

        width: row.implicitWidth + 24
        height: row.implicitHeight + 24
        radius: 12
        color: Theme.controlBackground

        Row {
            id: row

            anchors.centerIn: parent
            spacing: 6

            Row {
                anchors.verticalCenter: parent.verticalCenter
                spacing: 4

                Repeater {
                    model: 3

                    Rectangle {
                        required property int index

                        width: 6
                        height: 6
                        radius: 3
                        color: Theme.purple
                        opacity: indicator.dotCount >= index ? 1 : 0.3

                        Behavior on opacity {
                            NumberAnimation {
                                duration: 200
                                easing.type: Easing.InOutQuad
                            }
                        }
                    }
                }
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: Tr.t("AI is thinking", "AI 正在思考", "AI が考えています")
                font.pixelSize: Theme.captionSize
                color: Theme.secondaryLabel
            }
        }
    }

    // Stops with the row: a timer of a destroyed item does not run.
    Timer {
        interval: 400
        repeat: true
        running: indicator.visible
        onTriggered: indicator.dotCount = (indicator.dotCount + 1) % 3
    }
}
