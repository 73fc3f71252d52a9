import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The third settings tab: who the application is.
Rectangle {
    color: Theme.windowBackground

    ColumnLayout {
        anchors.centerIn: parent
        width: parent.width
        spacing: 0

        AppIcon {
            Layout.alignment: Qt.AlignHCenter
            size: 80
        }
        Label {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 16
            text: "Varnholt"
            font.pixelSize: Theme.title2Size
            font.weight: Font.DemiBold
            color: Theme.label
        }
        Label {
            objectName: "versionLine"
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 2
            text: Tr.t("Version", "版本", "バージョン") + " 1.0.0"
            font.pixelSize: Theme.captionSize
            color: Theme.secondaryLabel
        }
        Label {
            Layout.fillWidth: true
            Layout.topMargin: 12
            Layout.leftMargin: 40
            Layout.rightMargin: 40
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: Tr.t("Write and keep SQL, with an assistant that knows your database.",
                       "编写和保存 SQL，配有了解你数据库的 AI 助手。",
                       "SQL を書いて保存し、あなたのデータベースを知る AI アシスタントが手伝います。")
            font.pixelSize: Theme.subheadlineSize + 1
            color: Theme.secondaryLabel
        }
    }
}
