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

        // The application's icon, as the window and the launcher show it.
        Image {
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredWidth: 80
            Layout.preferredHeight: 80
            source: "qrc:/org.varnholt.Varnholt.svg"
            sourceSize: Qt.size(Math.ceil(80 * Screen.devicePixelRatio), Math.ceil(80 * Screen.devicePixelRatio))
            fillMode: Image.PreserveAspectFit
            Accessible.role: Accessible.Graphic
            Accessible.name: "Varnholt"
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
