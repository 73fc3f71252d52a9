import QtQuick
import QtQuick.Controls
import Varnholt

// The main window's content: sidebar, separator, editor, and at most one right panel behind
// a draggable divider. It fades in when it first shows.
Item {
    id: content

    objectName: "contentView"
    enum RightPanelType {
        None,
        VersionHistory,
        AiAssistant
    }

    property int rightPanel: ContentView.RightPanelType.None
    property real windowOpacity: 0

    readonly property real sidebarWidth: 240
    readonly property real dividerWidth: 1
    readonly property real editorMinWidth: 400
    property real rightPanelWidth: 320
    readonly property real rightPanelMinWidth: 280
    readonly property real rightPanelMaxWidth: 500
    readonly property real handleWidth: 4

    readonly property bool showsPanel: rightPanel !== ContentView.RightPanelType.None
    readonly property bool showVersionHistory: rightPanel === ContentView.RightPanelType.VersionHistory
    readonly property bool showAIAssistant: rightPanel === ContentView.RightPanelType.AiAssistant
    // Follows the open panel with a spring, except while the divider is dragged.
    property real panelShownWidth: showsPanel ? rightPanelWidth : 0
    readonly property real handleShownWidth: showsPanel ? handleWidth : 0
    readonly property real editorWidth: Math.max(editorMinWidth, width - sidebarWidth - dividerWidth
                                                 - handleShownWidth - panelShownWidth)
    readonly property real dividerMaxWidth: Math.min(rightPanelMaxWidth, width - sidebarWidth - dividerWidth
                                                     - editorMinWidth - handleWidth)
    readonly property alias controller: controller
    readonly property alias editorView: editorView
    readonly property alias divider: divider

    // The user asked to keep what the store cannot write, somewhere else.
    signal exportRequested

    function setShowVersionHistory(show: bool) {
        rightPanel = show ? ContentView.RightPanelType.VersionHistory : ContentView.RightPanelType.None
    }
    function setShowAIAssistant(show: bool) {
        rightPanel = show ? ContentView.RightPanelType.AiAssistant : ContentView.RightPanelType.None
    }

    opacity: windowOpacity
    clip: true
    Component.onCompleted: fadeIn.start()

    Behavior on panelShownWidth {
        enabled: !divider.isDragging
        NumberAnimation {
            duration: 300
            easing.type: Easing.OutBack
            easing.overshoot: 0.6
        }
    }

    NumberAnimation {
        id: fadeIn

        target: content
        property: "windowOpacity"
        from: 0
        to: 1
        duration: 800
        easing.type: Easing.OutQuad
    }

    ContentController {
        id: controller

        editor: editorView.controller
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.windowBackground
    }

    // Ctrl+Tab and Ctrl+Shift+Tab take the keyboard from the text to the document list and back.
    Shortcut {
        sequences: ["Ctrl+Tab", "Ctrl+Shift+Tab", "Ctrl+Backtab"]
        onActivated: {
            if (sidebar.list.activeFocus)
                editorView.focusText()
            else
                sidebar.list.forceActiveFocus()
        }
    }

    Row {
        id: row

        height: parent.height
        spacing: 0

        SidebarView {
            id: sidebar

            width: content.sidebarWidth
            height: row.height
            onDocumentCreated: editorView.focusText()
        }

        Rectangle {
            width: content.dividerWidth
            height: row.height
            color: Theme.separator
        }

        SQLEditorView {
            id: editorView

            width: content.editorWidth
            height: row.height
            showVersionHistory: content.showVersionHistory
            showAIAssistant: content.showAIAssistant
            onShowVersionHistoryRequested: show => content.setShowVersionHistory(show)
            onShowAIAssistantRequested: show => content.setShowAIAssistant(show)
            onCurrentContentEdited: text => controller.currentEditorContent = text
        }

        PanelDivider {
            id: divider

            width: content.handleShownWidth
            height: row.height
            visible: content.showsPanel
            panelWidth: content.rightPanelWidth
            minWidth: content.rightPanelMinWidth
            maxWidth: content.dividerMaxWidth
            handleWidth: content.handleWidth
            onPanelWidthRequested: width => content.rightPanelWidth = width
        }

        Item {
            id: panelSlot

            objectName: "rightPanelSlot"
            width: content.panelShownWidth
            height: row.height
            clip: true
            opacity: content.rightPanelWidth > 0 ? Math.min(1, content.panelShownWidth / content.rightPanelWidth) : 0

            Rectangle {
                width: content.rightPanelWidth
                height: parent.height
                color: Theme.windowBackground
            }

            // The panel exists only while it is shown: closing it drops its state.
            Loader {
                width: content.rightPanelWidth
                height: parent.height
                active: content.showsPanel
                sourceComponent: content.showVersionHistory ? versionPanel : assistantPanel
            }
        }
    }

    Component {
        id: versionPanel

        VersionHistoryView {
            objectName: "versionPanel"
            currentText: controller.currentEditorContent
            onCloseRequested: content.setShowVersionHistory(false)
            onRestoreRequested: versionId => {
                controller.restoreVersion(versionId)
                editorView.focusText()
            }
        }
    }

    Component {
        id: assistantPanel

        AIAssistantView {
            objectName: "assistantPanel"
            currentSQL: controller.currentEditorContent
            onCloseRequested: content.setShowAIAssistant(false)
            onApplyRequested: sql => controller.applySQL(sql)
        }
    }

    StoreNoticeBanner {
        objectName: "storeNoticeBanner"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: parent.top
        anchors.topMargin: 12
        files: DataStore.setAsideFiles
        recoveredFiles: DataStore.recoveredFiles
        lockHolder: DataStore.lockHolder
        saveFailure: DataStore.saveFailure
        dataDirectory: DataStore.dataDirectory
        onRetryRequested: DataStore.retrySaving()
        onExportRequested: content.exportRequested()
    }
}
