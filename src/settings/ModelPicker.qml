import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The own server's model: typed freely, or picked from the server's list, which the typed text
// filters. The list opens with the chevron or the Down key; Return takes the highlighted entry.
FormTextField {
    id: field

    required property AIConnectionController controller

    placeholderText: Tr.t("Choose or type a model", "选择或输入模型", "モデルを選択または入力")
    accessibleName: Tr.t("Model", "模型", "モデル")
    rightPadding: chooser.width + 6
    Component.onCompleted: text = controller.settings.serverModel

    function openList() {
        field.forceActiveFocus()
        if (controller.modelCount === 0 && !controller.isLoadingModels)
            controller.loadModels()
        list.currentIndex = -1
        popup.open()
    }
    function take(model: string) {
        field.text = model
        controller.settings.serverModel = model
        popup.close()
    }

    onTextEdited: {
        controller.modelFilter = text
        if (!popup.opened && controller.modelCount > 0)
            popup.open()
    }
    onEditingFinished: controller.settings.serverModel = text
    Keys.onDownPressed: {
        if (!popup.opened)
            return openList()
        list.incrementCurrentIndex()
    }
    Keys.onUpPressed: list.decrementCurrentIndex()
    Keys.onReturnPressed: event => {
        if (popup.opened && list.currentIndex >= 0)
            take(list.currentItem.text)
        else
            event.accepted = false
    }

    Connections {
        target: field.controller.settings

        function onServerModelChanged() {
            if (!field.activeFocus)
                field.text = field.controller.settings.serverModel
        }
    }

    HeaderIconButton {
        id: chooser

        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        iconName: field.controller.isLoadingModels ? "arrow.clockwise" : "chevron.down"
        iconSize: 11
        text: Tr.t("Show Models", "显示模型", "モデルを表示")
        onClicked: popup.opened ? popup.close() : field.openList()
    }

    Popup {
        id: popup

        objectName: "modelListPopup"
        width: field.width
        margins: 8
        // Below the field, or above it when the window has no room below.
        onAboutToShow: {
            const below = field.mapToItem(null, 0, field.height).y
            y = below + height + 10 <= field.Window.height ? field.height + 2 : -height - 2
        }
        height: Math.min(list.contentHeight, 220) + topPadding + bottomPadding + (list.count === 0 ? empty.implicitHeight : 0)
        padding: 4
        onClosed: field.controller.modelFilter = ""

        background: Rectangle {
            radius: 6
            color: Theme.windowBackground
            border.color: Theme.separator
        }

        ListView {
            id: list

            objectName: "modelList"
            anchors.fill: parent
            clip: true
            model: field.controller.models
            highlightMoveDuration: 0
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {
                Accessible.name: field.accessibleName
            }

            delegate: ItemDelegate {
                id: entry

                // The list's one role is "display", a name that buttons use for something else.
                required property var model

                width: ListView.view.width
                height: 24
                text: model.display
                highlighted: ListView.isCurrentItem
                onClicked: field.take(text)

                contentItem: Label {
                    text: entry.text
                    font.pixelSize: Theme.subheadlineSize + 1
                    color: Theme.label
                    elide: Text.ElideRight
                    verticalAlignment: Text.AlignVCenter
                }
                background: Rectangle {
                    radius: 4
                    color: entry.highlighted ? Theme.withOpacity(Theme.blue, 0.25)
                                             : entry.hovered ? Theme.withOpacity(Theme.label, 0.06) : "transparent"
                }
            }
        }
        Label {
            id: empty

            visible: list.count === 0
            anchors.centerIn: parent
            text: field.controller.isLoadingModels ? Tr.t("Loading models…", "正在载入模型…", "モデルを読み込み中…")
                                                   : field.controller.modelCount === 0
                                                     ? Tr.t("The server lists no models: type one", "服务器没有列出模型：请直接输入",
                                                            "サーバーにモデルの一覧がありません：入力してください")
                                                     : Tr.t("No model matches", "没有匹配的模型", "一致するモデルがありません")
            font.pixelSize: Theme.captionSize
            color: Theme.tertiaryLabel
            padding: 8
        }
    }
}
