import QtQuick
import Varnholt

// The application's icon: a database on a rounded square of the accent colours.
Rectangle {
    id: icon

    property real size: 80

    implicitWidth: size
    implicitHeight: size
    radius: size * 0.225
    gradient: Gradient {
        GradientStop {
            position: 0
            color: "#32ade6"
        }
        GradientStop {
            position: 1
            color: "#af52de"
        }
    }
    Accessible.role: Accessible.Graphic
    Accessible.name: "Varnholt"

    Icon {
        anchors.centerIn: parent
        name: "cylinder.split.1x2"
        color: "white"
        size: icon.size * 0.55
    }
}
