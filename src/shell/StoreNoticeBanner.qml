pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// Tells the user, until dismissed, that the store found data files it could not read and
// kept them aside untouched, and where.
Rectangle {
    id: banner

    required property list<string> files
    property bool dismissed: false

    visible: files.length > 0 && !dismissed
    width: Math.min(parent ? parent.width - 48 : 600, 640)
    height: layout.implicitHeight + 20
    radius: 8
    color: Theme.dark ? "#3a3220" : "#fff6e0"
    border.color: Theme.alpha(Theme.orange, 0.5)
    Accessible.role: Accessible.AlertMessage

    RowLayout {
        id: layout

        anchors.fill: parent
        anchors.margins: 10
        spacing: 10

        Icon {
            Layout.alignment: Qt.AlignTop
            name: "exclamationmark.triangle"
            color: Theme.orange
            size: 16
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 4

            Label {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                color: Theme.label
                font.pixelSize: Theme.bodySize
                text: Tr.t("Some saved data could not be read. Varnholt kept the file untouched here and started without it:",
                           "部分已保存的数据无法读取。Varnholt 已将原文件原样保留在下列位置，并在没有它的情况下启动：",
                           "保存済みのデータの一部を読み込めませんでした。Varnholt は元のファイルを変更せずに次の場所に保管し、それなしで起動しました：")
            }

            Repeater {
                model: banner.files

                TextEdit {
                    required property string modelData

                    Layout.fillWidth: true
                    readOnly: true
                    selectByMouse: true
                    wrapMode: TextEdit.WrapAnywhere
                    color: Theme.secondaryLabel
                    font.family: Theme.monospaceFamily
                    font.pixelSize: Theme.captionSize + 1
                    text: modelData
                }
            }
        }

        Button {
            objectName: "dismissButton"
            Layout.alignment: Qt.AlignTop
            text: Tr.t("Dismiss", "知道了", "閉じる")
            onClicked: banner.dismissed = true
        }
    }
}
