pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// What the store has to tell the user about their data, at the top of the window: another
// process holds the data folder (nothing here is saved there), a write failed (kept in memory,
// tried again), and damaged files kept aside (and how much of them was recovered). The first two
// stay while they hold; the last can be dismissed.
Rectangle {
    id: banner

    required property list<string> files
    // [{file, keptAs, recovered, found}]
    required property var recoveredFiles
    required property string lockHolder
    required property string saveFailure
    required property string dataDirectory
    property bool dismissed: false

    signal retryRequested
    signal exportRequested

    readonly property bool showsKeptFiles: (files.length > 0 || recoveredFiles.length > 0) && !dismissed

    visible: showsKeptFiles || lockHolder.length > 0 || saveFailure.length > 0
    width: Math.min(parent ? parent.width - 48 : 600, 640)
    height: layout.implicitHeight + 20
    radius: 8
    color: Theme.dark ? "#3a3220" : "#fff6e0"
    border.color: Theme.withOpacity(Theme.orange, 0.5)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: Tr.t("Data notices", "数据提示", "データのお知らせ")

    // A selectable path or reason, so that it can be copied.
    component Detail: TextEdit {
        Layout.fillWidth: true
        readOnly: true
        selectByMouse: true
        wrapMode: TextEdit.WrapAnywhere
        color: Theme.secondaryLabel
        font.family: Theme.monospaceFamily
        font.pixelSize: Theme.captionSize + 1
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    component Message: Label {
        Layout.fillWidth: true
        wrapMode: Text.Wrap
        color: Theme.label
        font.pixelSize: Theme.bodySize
    }

    ColumnLayout {
        id: layout

        anchors.fill: parent
        anchors.margins: 10
        spacing: 10

        RowLayout {
            objectName: "lockNotice"
            visible: banner.lockHolder.length > 0
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

                Message {
                    text: Tr.t("Another Varnholt is using this data folder. Changes made here are not saved there; export them to keep them:",
                               "另一个 Varnholt 正在使用此数据文件夹。在这里做的修改不会保存到那里；请导出以保留：",
                               "別の Varnholt がこのデータフォルダーを使用しています。ここでの変更はそこに保存されません。残すには書き出してください：")
                }
                Detail {
                    text: banner.dataDirectory
                }
                Detail {
                    visible: text.length > 0
                    text: banner.lockHolder
                }
            }
            SheetButton {
                Layout.alignment: Qt.AlignTop
                text: Tr.t("Export…", "导出…", "書き出す…")
                onClicked: banner.exportRequested()
            }
        }

        RowLayout {
            objectName: "saveFailureNotice"
            visible: banner.saveFailure.length > 0 && banner.lockHolder.length === 0
            spacing: 10

            Icon {
                Layout.alignment: Qt.AlignTop
                name: "exclamationmark.triangle"
                color: Theme.red
                size: 16
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 4

                Message {
                    text: Tr.t("Your latest changes could not be saved. They are kept while Varnholt runs, and saving is tried again:",
                               "你最近的修改无法保存。Varnholt 运行期间会保留它们，并会再次尝试保存：",
                               "最近の変更を保存できませんでした。Varnholt の実行中は保持され、保存を再試行します：")
                }
                Detail {
                    text: banner.saveFailure
                }
            }
            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                spacing: 4

                SheetButton {
                    objectName: "retryButton"
                    Layout.fillWidth: true
                    text: Tr.t("Try Again", "重试", "再試行")
                    onClicked: banner.retryRequested()
                }
                SheetButton {
                    Layout.fillWidth: true
                    text: Tr.t("Export…", "导出…", "書き出す…")
                    onClicked: banner.exportRequested()
                }
            }
        }

        RowLayout {
            objectName: "keptFilesNotice"
            visible: banner.showsKeptFiles
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

                Message {
                    text: Tr.t("Some saved data could not be read. Varnholt kept the file untouched here and started without it:",
                               "部分已保存的数据无法读取。Varnholt 已将原文件原样保留在下列位置，并在没有它的情况下启动：",
                               "保存済みのデータの一部を読み込めませんでした。Varnholt は元のファイルを変更せずに次の場所に保管し、それなしで起動しました：")
                }
                Repeater {
                    model: banner.files

                    Detail {
                        required property string modelData

                        text: modelData
                    }
                }
                Repeater {
                    model: banner.recoveredFiles

                    Message {
                        required property var modelData

                        color: Theme.secondaryLabel
                        font.pixelSize: Theme.captionSize + 1
                        text: Tr.t("%1: %2 of %3 records recovered", "%1：已恢复 %3 条中的 %2 条", "%1：%3 件中 %2 件を復元しました")
                                  .arg(modelData.file).arg(modelData.recovered).arg(modelData.found)
                    }
                }
            }
            SheetButton {
                objectName: "dismissButton"
                Layout.alignment: Qt.AlignTop
                text: Tr.t("Dismiss", "知道了", "閉じる")
                onClicked: banner.dismissed = true
            }
        }
    }
}
