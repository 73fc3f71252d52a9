import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import Varnholt

// The main window: the File menu's commands, the content, and the fade when it closes.
ApplicationWindow {
    id: window

    // Set by the first close request; the second one closes at once.
    property bool isClosingWithAnimation: false
    // The user chose to go without what the store could not write.
    property bool mayLeaveUnwritten: false
    // What the Edit menu works on: the item that had the keyboard before the menu took it.
    property Item editTarget: null
    // A document is open in the editor: the commands on it are enabled.
    readonly property bool hasDocument: content.controller.editor !== null && content.controller.editor.hasDocument

    width: 1200
    height: 750
    minimumWidth: 1000
    minimumHeight: 600
    visible: true
    title: "Varnholt"
    color: Theme.windowBackground
    // The controls' own parts (menus, the menu bar, scroll bars, tool tips) in the system's
    // colours, light or dark, as the rest of the window.
    palette.window: Theme.palette.window
    palette.windowText: Theme.palette.windowText
    palette.base: Theme.palette.base
    palette.alternateBase: Theme.palette.alternateBase
    palette.text: Theme.palette.text
    palette.button: Theme.palette.button
    palette.buttonText: Theme.palette.buttonText
    palette.highlight: Theme.palette.highlight
    palette.highlightedText: Theme.palette.highlightedText
    palette.light: Theme.palette.light
    palette.midlight: Theme.palette.midlight
    palette.mid: Theme.palette.mid
    palette.dark: Theme.palette.dark
    palette.shadow: Theme.palette.shadow
    palette.placeholderText: Theme.palette.placeholderText

    // F10 opens the first menu, as on the rest of the desktop.
    Shortcut {
        sequence: "F10"
        onActivated: fileMenu.open()
    }

    menuBar: MenuBar {
        delegate: MenuBarItem {
            id: barEntry

            // Qt 6.4 reports an entry of the bar as a bar itself, named with its "&": screen
            // readers see the item below in its place, a menu item named as the title reads.
            Accessible.ignored: true

            Item {
                anchors.fill: parent
                Accessible.role: Accessible.MenuItem
                Accessible.name: AppCommands.withoutMnemonic(barEntry.text)
                // Press opens the menu, which takes the keyboard; the entry itself never does.
                Accessible.focusable: false
                Accessible.onPressAction: barEntry.triggered()
            }
        }

        NamedMenu {
            id: fileMenu

            objectName: "fileMenu"
            title: Tr.t("&File", "文件(&F)", "ファイル(&F)")
            delegate: MenuEntry {}

            Action {
                text: Tr.t("New SQL Document", "新建 SQL 文档", "新規 SQL ドキュメント")
                shortcut: "Ctrl+N"
                onTriggered: {
                    AppCommands.newDocument()
                    content.editorView.focusText()
                }
            }
            Action {
                text: Tr.t("Open…", "打开…", "開く…")
                shortcut: "Ctrl+O"
                onTriggered: openDialog.open()
            }
            Action {
                text: Tr.t("Export…", "导出…", "書き出す…")
                shortcut: "Ctrl+E"
                enabled: window.hasDocument
                onTriggered: {
                    content.controller.editor.syncNow()
                    exportDialog.selectedFile = transfer.suggestedFileName
                    exportDialog.open()
                }
            }
            MenuSeparator {}
            Action {
                text: Tr.t("Save Version", "保存版本", "バージョンを保存")
                shortcut: "Ctrl+Shift+S"
                enabled: window.hasDocument
                onTriggered: AppCommands.quickSave()
            }
            MenuSeparator {}
            Action {
                text: Tr.t("Settings…", "设置…", "設定…")
                shortcut: "Ctrl+,"
                onTriggered: window.showSettings()
            }
            MenuSeparator {}
            Action {
                text: Tr.t("Quit", "退出", "終了")
                shortcut: StandardKey.Quit
                onTriggered: AppCommands.quit()
            }
        }
        // Edits go to the text field that has the keyboard: the editor, or any other field.
        NamedMenu {
            id: editMenu

            objectName: "editMenu"
            title: Tr.t("&Edit", "编辑(&E)", "編集(&E)")
            delegate: MenuEntry {}

            MenuEntry {
                action: fieldEdits.undo
            }
            MenuEntry {
                action: fieldEdits.redo
            }
            MenuSeparator {}
            MenuEntry {
                action: fieldEdits.cut
            }
            MenuEntry {
                action: fieldEdits.copy
            }
            MenuEntry {
                action: fieldEdits.paste
            }
            MenuEntry {
                action: fieldEdits.selectAll
            }
            MenuSeparator {}
            Action {
                text: Tr.t("Find…", "查找…", "検索…")
                shortcut: StandardKey.Find
                enabled: window.hasDocument
                onTriggered: content.editorView.findBar.open(false)
            }
            Action {
                text: Tr.t("Find and Replace…", "查找和替换…", "検索と置換…")
                shortcut: "Ctrl+H"
                enabled: window.hasDocument
                onTriggered: content.editorView.findBar.open(true)
            }
            Action {
                text: Tr.t("Go to Line…", "转到行…", "行へ移動…")
                shortcut: "Ctrl+G"
                enabled: window.hasDocument
                onTriggered: content.editorView.openGoToLine()
            }
        }
    }

    onActiveFocusItemChanged: {
        // Not the menu's own items, nor the root item Qt leaves the keyboard with.
        if (!editMenu.visible && activeFocusItem !== null && activeFocusItem.parent !== null)
            editTarget = activeFocusItem
    }
    EditActions {
        id: fieldEdits

        target: window.editTarget
    }

    Component.onCompleted: {
        windowState.restore(window)
        content.editorView.focusText()
    }

    // One settings window at a time: shown again and raised if it is open, made anew if not.
    function showSettings() {
        settingsLoader.active = true
        const settings = settingsLoader.item
        settings.show()
        settings.raise()
        settings.requestActivate()
    }

    // Goes on with what the user asked for (closing, or quitting) once nothing unwritten stops it.
    function finishClosing() {
        if (AppCommands.isQuitting())
            AppCommands.quit()
        else
            window.close()
    }

    onClosing: close => {
        windowState.save(window)
        // Ended from outside: nobody to ask, the delegate keeps what is unwritten elsewhere.
        if (AppCommands.isEnding())
            return
        if (!window.isClosingWithAnimation && !window.mayLeaveUnwritten && !DataStore.saveAndWait()) {
            close.accepted = false
            unwrittenSheet.open()
            return
        }
        // Quitting ends at once; only closing the window fades.
        if (window.isClosingWithAnimation || AppCommands.isQuitting())
            return
        window.isClosingWithAnimation = true
        close.accepted = false
        closeFade.start()
    }

    // The content fades, not the window, so that it works without a compositor too.
    NumberAnimation {
        id: closeFade

        target: content
        property: "windowOpacity"
        to: 0
        duration: 500
        easing.type: Easing.InQuad
        onFinished: {
            settingsLoader.active = false
            window.close()
        }
    }

    Loader {
        id: settingsLoader

        active: false

        sourceComponent: SettingsWindow {
            objectName: "settingsWindow"
            transientParent: window
            // Its state lives with it: closed, it is gone.
            onClosing: Qt.callLater(() => settingsLoader.active = false)
        }
    }

    WindowState {
        id: windowState
    }

    DocumentTransfer {
        id: transfer

        onProblemsChanged: {
            if (problems.length > 0)
                problemsSheet.open()
        }
    }

    FileDialog {
        id: openDialog

        title: Tr.t("Open SQL Files", "打开 SQL 文件", "SQL ファイルを開く")
        fileMode: FileDialog.OpenFiles
        nameFilters: [Tr.t("SQL files", "SQL 文件", "SQL ファイル") + " (*.sql)", Tr.t("All files", "所有文件", "すべてのファイル") + " (*)"]
        onAccepted: transfer.importFiles(selectedFiles)
    }

    FileDialog {
        id: exportDialog

        title: Tr.t("Export SQL Document", "导出 SQL 文档", "SQL ドキュメントを書き出す")
        fileMode: FileDialog.SaveFile
        defaultSuffix: "sql"
        nameFilters: [Tr.t("SQL files", "SQL 文件", "SQL ファイル") + " (*.sql)"]
        onAccepted: transfer.exportSelectedDocument(selectedFile)
    }

    UnwrittenDataSheet {
        id: unwrittenSheet

        objectName: "unwrittenSheet"
        reason: DataStore.isReadOnly ? DataStore.lockHolder : DataStore.saveFailure
        dataDirectory: DataStore.dataDirectory
        onExportRequested: exportFolderDialog.open()
        onRetryRequested: {
            if (DataStore.saveAndWait()) {
                close()
                window.finishClosing()
            }
        }
        onDiscardRequested: {
            AppCommands.discardUnwritten()
            window.mayLeaveUnwritten = true
            close()
            window.finishClosing()
        }
    }

    // Where what the store cannot write goes instead.
    FolderDialog {
        id: exportFolderDialog

        title: Tr.t("Export Data To", "导出数据到", "データの書き出し先")
        onAccepted: {
            const error = DataStore.exportToFolder(selectedFolder)
            unwrittenSheet.exportError = error
            if (error.length === 0 && unwrittenSheet.opened) {
                window.mayLeaveUnwritten = true
                unwrittenSheet.close()
                window.finishClosing()
            }
        }
    }

    TransferProblemsSheet {
        id: problemsSheet

        problems: transfer.problems
        onClosed: transfer.clearProblems()
    }

    // Files dropped anywhere on the window become documents.
    DropArea {
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            if (!drop.hasUrls)
                return
            transfer.importFiles(drop.urls)
            drop.acceptProposedAction()
        }
    }

    ContentView {
        id: content

        anchors.fill: parent
        onExportRequested: exportFolderDialog.open()
        rightPanel: windowState.rightPanel()
        onRightPanelChanged: windowState.setRightPanel(rightPanel)
    }
}
