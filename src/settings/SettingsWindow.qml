import QtQuick
import QtQuick.Window
import Varnholt

// The settings window: fixed at the size of its tabs.
Window {
    title: Tr.t("Settings", "设置", "設定")
    width: 520
    height: 520
    minimumWidth: 520
    maximumWidth: 520
    minimumHeight: 520
    maximumHeight: 520
    color: Theme.windowBackground

    SettingsView {
        anchors.fill: parent
    }
}
