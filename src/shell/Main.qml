import QtQuick
import QtQuick.Controls
import Varnholt

// The main window: the File menu's commands, the content, and the fade when it closes.
ApplicationWindow {
    id: window

    // Set by the first close request; the second one closes at once.
    property bool isClosingWithAnimation: false

    width: 1200
    height: 750
    minimumWidth: 1000
    minimumHeight: 600
    visible: true
    title: "Varnholt"
    color: Theme.windowBackground

    menuBar: MenuBar {
        Menu {
            title: Tr.t("&File", "文件(&F)", "ファイル(&F)")

            Action {
                text: Tr.t("New SQL Document", "新建 SQL 文档", "新規 SQL ドキュメント")
                shortcut: "Ctrl+N"
                onTriggered: AppCommands.newDocument()
            }
            Action {
                text: Tr.t("Save Version", "保存版本", "バージョンを保存")
                shortcut: "Ctrl+Shift+S"
                onTriggered: AppCommands.quickSave()
            }
            MenuSeparator {}
            Action {
                text: Tr.t("Quit", "退出", "終了")
                shortcut: StandardKey.Quit
                onTriggered: Qt.quit()
            }
        }
    }

    Component.onCompleted: windowState.restore(window)

    onClosing: close => {
        windowState.save(window)
        if (window.isClosingWithAnimation)
            return
        window.isClosingWithAnimation = true
        close.accepted = false
        closeFade.start()
    }

    NumberAnimation {
        id: closeFade

        target: window
        property: "opacity"
        to: 0
        duration: 500
        easing.type: Easing.InQuad
        onFinished: window.close()
    }

    WindowState {
        id: windowState
    }

    ContentView {
        anchors.fill: parent
        rightPanel: windowState.rightPanel()
        onRightPanelChanged: windowState.setRightPanel(rightPanel)
    }
}
