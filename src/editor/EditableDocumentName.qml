import QtQuick
import QtQuick.Controls
import Varnholt

// The document's name in the toolbar; a double click (or F2) turns it into a field. Return
// or leaving the field commits; an empty field keeps the old name.
Item {
    id: control

    required property string name
    property bool isEditing: false

    signal renameRequested(string name)

    function startEditing() {
        isEditing = true
    }
    function commit() {
        if (!isEditing)
            return
        if (field.text.length > 0)
            renameRequested(field.text)
        isEditing = false
    }

    // Whole pixels: a layout rounds what it gives, and a name given a fraction of a pixel less
    // than it needs is elided though the header has room.
    implicitWidth: Math.ceil(isEditing ? Math.max(160, field.implicitWidth) : label.implicitWidth)
    implicitHeight: Math.max(label.implicitHeight, 24)

    Label {
        id: label

        objectName: "documentNameText"
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        visible: !control.isEditing
        text: control.name
        elide: Text.ElideRight
        textFormat: Text.PlainText
        font.pixelSize: Theme.headlineSize
        font.weight: Font.DemiBold
        color: Theme.label
        Accessible.role: Accessible.StaticText
        Accessible.name: text
        Accessible.description: Tr.t("Double-click to rename", "双击以重命名", "ダブルクリックで名前を変更")

        MouseArea {
            anchors.fill: parent
            onDoubleClicked: control.startEditing()
        }
    }

    TextField {
        id: field

        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        visible: control.isEditing
        background: null
        padding: 0
        font.pixelSize: Theme.headlineSize
        font.weight: Font.DemiBold
        color: Theme.label
        placeholderText: Tr.t("Document Name", "文档名称", "ドキュメント名")
        Accessible.name: placeholderText
        onVisibleChanged: {
            if (visible) {
                text = control.name
                forceActiveFocus()
                selectAll()
            }
        }
        onAccepted: control.commit()
        onActiveFocusChanged: {
            if (!activeFocus)
                control.commit()
        }

        EditContextMenu {
            target: field
        }
    }
}
