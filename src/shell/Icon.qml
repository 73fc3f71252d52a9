import QtQuick
import Varnholt

// A bundled icon by its symbol name ("doc.text"), drawn in `color`.
Image {
    id: icon

    required property string name
    property color color: Theme.label
    property real size: 16

    width: size
    height: size
    source: "image://icons/" + name + "?color=" + encodeURIComponent(color.toString())
    sourceSize: Qt.size(Math.ceil(size * Screen.devicePixelRatio), Math.ceil(size * Screen.devicePixelRatio))
    fillMode: Image.PreserveAspectFit
    smooth: true
    asynchronous: false
}
