import QtQuick
import QtQuick.Controls
import Varnholt

// One document in the sidebar: its tile, name and age. While it is being deleted it takes
// the look of the deletion's phase: crumpled, thrown, gone. As the list's current row it holds
// the list's keyboard focus, so that a screen reader follows the selection as the arrows move
// it; the keys themselves are the list's.
FocusScope {
    id: row

    required property string documentId
    required property string name
    required property string relativeTime
    required property bool isSelected

    property string hoveredDocumentId
    property string deletingDocumentId
    property int deleteAnimationPhase: SidebarView.DeleteAnimationPhase.Idle
    property bool listHasFocus: false

    readonly property bool isHovered: hoveredDocumentId === documentId
    readonly property bool isDeleting: deletingDocumentId === documentId
    readonly property int phase: isDeleting ? deleteAnimationPhase : SidebarView.DeleteAnimationPhase.Idle
    property real blur: 0

    signal hoverChanged(string documentId, bool entered)
    signal selectRequested(string documentId)
    signal deleteRequested(string documentId)

    // The row's menu at the row, as the Menu key opens it.
    function openMenu() {
        contextMenu.popup(card, card.width / 2, card.height / 2)
    }
    function activate() {
        if (!isDeleting)
            selectRequested(documentId)
    }

    height: card.implicitHeight

    // An item delegate: a list item to assistive technology, selectable, named by the document.
    ItemDelegate {
        id: card

        padding: 0
        spacing: 0
        x: 8
        width: row.width - 16
        implicitHeight: 48
        focus: true
        focusPolicy: Qt.NoFocus
        hoverEnabled: true
        Accessible.role: Accessible.ListItem
        Accessible.name: row.name
        Accessible.description: row.relativeTime
        Accessible.selected: row.isSelected
        Accessible.selectable: true
        Accessible.onPressAction: row.activate()
        transformOrigin: Item.Center
        onClicked: row.activate()
        onHoveredChanged: {
            if (!row.isDeleting)
                row.hoverChanged(row.documentId, hovered)
        }

        transform: [
            Rotation {
                id: rotation3D

                origin.x: card.width / 2
                origin.y: card.height / 2
                axis {
                    x: 0
                    y: 0
                    z: 1
                }
                angle: 0
            },
            Translate {
                id: offset
            }
        ]

        // A soft blur without a shader: the row is drawn into a smaller texture and scaled up.
        layer.enabled: row.blur > 0
        layer.smooth: true
        layer.textureSize: Qt.size(Math.max(1, width / (1 + row.blur)), Math.max(1, height / (1 + row.blur)))

        TapHandler {
            acceptedButtons: Qt.RightButton
            onTapped: contextMenu.popup()
        }

        background: Rectangle {
            radius: 8
            color: row.isSelected ? Theme.withOpacity(Theme.cyan, 0.15)
                                  : row.isHovered ? Theme.withOpacity(Theme.controlBackground, 0.5) : "transparent"
            border.width: row.isSelected && row.listHasFocus ? 1 : 0
            border.color: Theme.withOpacity(Theme.cyan, 0.7)

            // The hover fill on the sidebar's own colour needs a visible edge of its own.
            Rectangle {
                anchors.fill: parent
                radius: 8
                visible: row.isHovered && !row.isSelected
                color: Theme.withOpacity(Theme.label, 0.05)
            }
        }

        contentItem: Row {
            leftPadding: 12
            rightPadding: 12
            spacing: 10

            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: 28
                height: 28
                radius: 6
                color: row.isSelected ? Theme.withOpacity(Theme.cyan, 0.2) : Theme.controlBackground
                border.width: row.isSelected ? 0 : 1
                border.color: Theme.separator

                Icon {
                    anchors.centerIn: parent
                    name: "doc.text.fill"
                    color: row.isSelected ? Theme.cyan : Theme.secondaryLabel
                    size: 13
                }
            }

            Column {
                anchors.verticalCenter: parent.verticalCenter
                width: card.width - 24 - 38 - (row.isHovered ? 14 : 0)
                spacing: 2

                // The row says its name and age itself; the labels are not separate stops.
                Label {
                    width: parent.width
                    Accessible.ignored: true
                    text: row.name
                    elide: Text.ElideRight
                    maximumLineCount: 1
                    textFormat: Text.PlainText
                    font.pixelSize: Theme.bodySize
                    font.weight: row.isSelected ? Font.Medium : Font.Normal
                    color: row.isSelected ? Theme.label : Theme.secondaryLabel
                }
                Label {
                    width: parent.width
                    Accessible.ignored: true
                    text: row.relativeTime
                    elide: Text.ElideRight
                    font.pixelSize: Theme.caption2Size
                    color: Theme.tertiaryLabel
                }
            }
        }
    }

    NamedMenu {
        id: contextMenu

        objectName: "documentMenu"
        accessibleName: row.name
        MenuItem {
            text: Tr.t("Delete", "删除", "削除")
            icon.source: "image://icons/trash?color=" + encodeURIComponent(Theme.red.toString())
            Accessible.onPressAction: triggered()
            onTriggered: row.deleteRequested(row.documentId)
        }
    }

    states: [
        State {
            name: "crumpling"
            when: row.phase === SidebarView.DeleteAnimationPhase.Crumpling
            PropertyChanges {
                card.scale: 0.3
                card.rotation: -15
                card.opacity: 0.8
                rotation3D.angle: 45
                rotation3D.axis.x: 0.5
                rotation3D.axis.y: 1.0
                rotation3D.axis.z: 0.3
                offset.x: Math.random() * 10 - 5
                offset.y: Math.random() * 6 - 3
                row.blur: 1.0
            }
        },
        State {
            name: "throwing"
            when: row.phase === SidebarView.DeleteAnimationPhase.Throwing
            PropertyChanges {
                card.scale: 0.05
                card.rotation: -45
                card.opacity: 0
                rotation3D.angle: 120
                rotation3D.axis.x: 1.0
                rotation3D.axis.y: 0.5
                rotation3D.axis.z: 0.8
                offset.x: 80
                offset.y: 60
                row.blur: 3.0
            }
        },
        State {
            name: "completed"
            when: row.phase === SidebarView.DeleteAnimationPhase.Completed
            PropertyChanges {
                card.scale: 0
                card.rotation: -60
                card.opacity: 0
                rotation3D.angle: 180
                rotation3D.axis.x: 1
                rotation3D.axis.y: 1
                rotation3D.axis.z: 1
                offset.x: 100
                offset.y: 80
                row.blur: 5.0
            }
        }
    ]

    transitions: [
        Transition {
            to: "crumpling"
            NumberAnimation {
                properties: "scale,rotation,opacity,angle,x,y,blur"
                duration: 400
                easing.type: Easing.OutBack
                easing.overshoot: 1.2
            }
        },
        Transition {
            to: "throwing"
            NumberAnimation {
                properties: "scale,rotation,opacity,angle,x,y,blur"
                duration: 250
                easing.type: Easing.InQuad
            }
        }
    ]
}
