import QtQuick
import QtQuick.Controls
import Varnholt

// The left column: the product's mark, the search field, the documents newest first, and
// a footer with the new-document button and the count. Deleting a row crumples it and
// throws it away before the store lets the document go.
Rectangle {
    id: sidebar

    objectName: "sidebar"
    enum DeleteAnimationPhase {
        Idle,
        Crumpling,
        Throwing,
        Completed
    }

    property string hoveredDocumentId: ""
    property string deletingDocumentId: ""
    property int deleteAnimationPhase: SidebarView.DeleteAnimationPhase.Idle
    readonly property alias model: documents
    readonly property alias searchField: searchField
    readonly property alias newDocumentSheet: newDocumentSheet
    readonly property alias list: list
    readonly property alias newButton: newButton

    // A document was made from the new-document sheet; the window gives the keyboard to its text.
    signal documentCreated

    // Starts the deletion of a row: crumple now, throw at 0.35 s, delete at 0.6 s, tidy up
    // at 0.7 s. Each deletion keeps its own timers and its own id.
    function startDeletion(documentId: string) {
        deletingDocumentId = documentId
        deleteAnimationPhase = SidebarView.DeleteAnimationPhase.Idle
        deleteAnimationPhase = SidebarView.DeleteAnimationPhase.Crumpling
        deletionSteps.createObject(sidebar, {
            "documentId": documentId
        })
    }

    color: Theme.controlBackground

    DocumentListModel {
        id: documents
    }

    Component {
        id: deletionSteps

        Item {
            id: steps

            required property string documentId

            Timer {
                interval: 350
                running: true
                onTriggered: sidebar.deleteAnimationPhase = SidebarView.DeleteAnimationPhase.Throwing
            }
            Timer {
                interval: 600
                running: true
                onTriggered: {
                    sidebar.deleteAnimationPhase = SidebarView.DeleteAnimationPhase.Completed
                    documents.deleteDocument(steps.documentId)
                    undoNotice.show(documents.lastDeletedName())
                    tidy.start()
                }
            }
            Timer {
                id: tidy

                interval: 100
                onTriggered: {
                    sidebar.deletingDocumentId = ""
                    sidebar.deleteAnimationPhase = SidebarView.DeleteAnimationPhase.Idle
                    steps.destroy()
                }
            }
        }
    }

    Column {
        anchors.fill: parent
        spacing: 0

        // Header
        Row {
            id: header

            leftPadding: 16
            rightPadding: 16
            topPadding: 12
            bottomPadding: 12
            spacing: 10
            width: parent.width

            Rectangle {
                width: 28
                height: 28
                radius: 7
                gradient: Gradient {
                    GradientStop {
                        position: 0
                        color: Theme.cyan
                    }
                    GradientStop {
                        position: 1
                        color: Theme.blue
                    }
                }

                Icon {
                    anchors.centerIn: parent
                    name: "doc.text"
                    color: "white"
                    size: 16
                }
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: "Varnholt"
                color: Theme.label
                font.pixelSize: Theme.title3Size
                font.weight: Font.DemiBold
            }
        }

        // Search
        Item {
            width: parent.width
            height: searchBox.height + 16

            Rectangle {
                id: searchBox

                x: 12
                y: 8
                width: parent.width - 24
                height: 30
                radius: 8
                color: Theme.withOpacity(Theme.textBackground, 0.5)
                border.width: searchField.activeFocus ? 2 : 0
                border.color: Theme.withOpacity(Theme.cyan, 0.6)

                Icon {
                    x: 10
                    anchors.verticalCenter: parent.verticalCenter
                    name: "magnifyingglass"
                    color: Theme.secondaryLabel
                    size: 13
                }
                TextField {
                    id: searchField

                    x: 28
                    width: parent.width - 34
                    anchors.verticalCenter: parent.verticalCenter
                    background: null
                    padding: 0
                    font.pixelSize: Theme.bodySize
                    color: Theme.label
                    placeholderText: Tr.t("Search SQL...", "搜索 SQL...", "SQL を検索...")
                    placeholderTextColor: Theme.tertiaryLabel
                    Accessible.name: Tr.t("Search documents by name", "按名称搜索文档", "名前でドキュメントを検索")
                    Accessible.role: Accessible.EditableText
                    onTextChanged: documents.searchText = text
                    Keys.onDownPressed: list.forceActiveFocus()
                    Keys.onEscapePressed: text = ""

                    EditContextMenu {
                        target: searchField
                    }
                }
            }
        }

        // List
        ListView {
            id: list

            objectName: "documentList"
            width: parent.width
            height: parent.height - header.height - searchBox.height - 16 - footer.height
            clip: true
            spacing: 2
            topMargin: 4
            bottomMargin: 4
            model: documents
            keyNavigationEnabled: false
            // The selected row is the current one, which the list gives its keyboard focus.
            currentIndex: documents.selectedRow
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {
                Accessible.name: Tr.t("Documents", "文档", "ドキュメント")
            }

            // A search that finds nothing says so; an empty store says how to begin.
            Label {
                objectName: "emptyListText"
                visible: list.count === 0
                anchors.centerIn: parent
                width: parent.width - 32
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: searchField.text.length > 0
                      ? Tr.t("No documents match “%1”", "没有与“%1”匹配的文档", "「%1」に一致するドキュメントはありません")
                        .arg(searchField.text)
                      : Tr.t("No documents yet. Create one with New SQL.", "还没有文档。用“新建 SQL”创建一个。",
                             "ドキュメントはまだありません。「新規 SQL」で作成できます。")
                font.pixelSize: Theme.subheadlineSize + 1
                color: Theme.secondaryLabel
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Accessible.role: Accessible.List
            Accessible.name: Tr.t("All Documents", "所有文档", "すべてのドキュメント")

            header: Row {
                visible: list.count > 0
                height: visible ? implicitHeight : 0
                leftPadding: 16
                rightPadding: 16
                topPadding: 6
                bottomPadding: 6
                spacing: 6

                Icon {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "doc.text"
                    color: Theme.cyan
                    size: 11
                }
                Label {
                    text: Tr.t("All Documents", "所有文档", "すべてのドキュメント")
                    font.pixelSize: Theme.captionSize
                    font.weight: Font.Medium
                    color: Theme.secondaryLabel
                }
            }

            // Arrows, Page Up and Down, Home and End move the selection, also when the selected
            // row is scrolled out of view; Delete throws the selected document away.
            function selectRow(row: int) {
                if (row < 0 || row >= count || sidebar.deletingDocumentId !== "")
                    return
                documents.selectRow(row)
                positionViewAtIndex(row, ListView.Contain)
            }
            readonly property int pageRows: Math.max(1, Math.floor(height / 50) - 1)
            Keys.onUpPressed: selectRow(Math.max(0, documents.selectedRow - 1))
            Keys.onDownPressed: selectRow(documents.selectedRow < 0 ? 0 : documents.selectedRow + 1)
            Keys.onPressed: event => {
                const row = documents.selectedRow
                if (event.key === Qt.Key_Home)
                    selectRow(0)
                else if (event.key === Qt.Key_End)
                    selectRow(count - 1)
                else if (event.key === Qt.Key_PageUp)
                    selectRow(Math.max(0, row - pageRows))
                else if (event.key === Qt.Key_PageDown)
                    selectRow(Math.min(count - 1, row + pageRows))
                else if ((event.key === Qt.Key_Menu
                          || (event.key === Qt.Key_F10 && (event.modifiers & Qt.ShiftModifier))) && row >= 0) {
                    positionViewAtIndex(row, ListView.Contain)
                    const item = itemAtIndex(row) as DocumentRow
                    if (item)
                        item.openMenu()
                }
                else
                    return
                event.accepted = true
            }
            Keys.onDeletePressed: {
                const id = documents.idAt(documents.selectedRow)
                if (id !== "")
                    sidebar.startDeletion(id)
            }

            delegate: DocumentRow {
                width: list.width
                hoveredDocumentId: sidebar.hoveredDocumentId
                deletingDocumentId: sidebar.deletingDocumentId
                deleteAnimationPhase: sidebar.deleteAnimationPhase
                listHasFocus: list.activeFocus
                onHoverChanged: (id, entered) => sidebar.hoveredDocumentId = entered ? id : ""
                onSelectRequested: id => {
                    documents.select(id)
                    // A click on a row gives the list the keyboard, for the arrows that follow.
                    list.forceActiveFocus()
                }
                onDeleteRequested: id => sidebar.startDeletion(id)
            }
        }

        // Footer
        Rectangle {
            id: footer

            width: parent.width
            height: 48
            color: Theme.controlBackground

            Rectangle {
                width: parent.width
                height: 1
                color: Theme.separator
            }

            AbstractButton {
                id: newButton

                x: 16
                anchors.verticalCenter: parent.verticalCenter
                height: 30
                focusPolicy: Qt.StrongFocus
                Accessible.name: Tr.t("New SQL", "新建 SQL", "新規 SQL")
                Accessible.onPressAction: clicked()
                onClicked: newDocumentSheet.open()

                contentItem: Row {
                    spacing: 6

                    Icon {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "plus.circle.fill"
                        color: Theme.cyan
                        size: 17
                    }
                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        text: newButton.Accessible.name
                        color: Theme.cyan
                        font.pixelSize: Theme.bodySize
                        font.weight: Font.Medium
                    }
                }
                background: Rectangle {
                    radius: 6
                    color: newButton.hovered ? Theme.withOpacity(Theme.cyan, 0.1) : "transparent"
                    border.width: newButton.visualFocus ? 2 : 0
                    border.color: Theme.cyan
                }
            }

            Label {
                anchors.right: parent.right
                anchors.rightMargin: 16
                anchors.verticalCenter: parent.verticalCenter
                text: documents.totalCount + " " + Tr.t("documents", "个文档", "件のドキュメント")
                font.pixelSize: Theme.captionSize
                color: Theme.tertiaryLabel
            }
        }
    }

    // For a few seconds after a deletion: its name, and Undo (also Ctrl+Z in the list).
    Rectangle {
        id: undoNotice

        property string documentName: ""

        function show(name: string) {
            documentName = name
            undoTimer.restart()
        }
        function undo() {
            undoTimer.stop()
            if (documents.undoDeletion())
                list.forceActiveFocus()
        }

        objectName: "undoDeletionNotice"
        visible: undoTimer.running
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 8
        anchors.bottomMargin: footer.height + 8
        height: noticeRow.implicitHeight + 12
        radius: 8
        color: Theme.windowBackground
        border.width: 1
        border.color: Theme.separator
        Accessible.role: Accessible.AlertMessage
        Accessible.name: noticeLabel.text

        Timer {
            id: undoTimer

            interval: 8000
            onTriggered: documents.forgetDeletion()
        }
        Shortcut {
            sequences: [StandardKey.Undo]
            enabled: undoTimer.running && list.activeFocus
            onActivated: undoNotice.undo()
        }

        Row {
            id: noticeRow

            anchors.verticalCenter: parent.verticalCenter
            x: 10
            width: parent.width - 20
            spacing: 8

            Label {
                id: noticeLabel

                width: parent.width - undoButton.width - parent.spacing
                anchors.verticalCenter: parent.verticalCenter
                text: Tr.t("“%1” deleted", "已删除“%1”", "「%1」を削除しました").arg(undoNotice.documentName)
                elide: Text.ElideMiddle
                font.pixelSize: Theme.subheadlineSize + 1
                color: Theme.label
            }
            AbstractButton {
                id: undoButton

                objectName: "undoDeletionButton"
                anchors.verticalCenter: parent.verticalCenter
                text: Tr.t("Undo", "撤销", "元に戻す")
                focusPolicy: Qt.StrongFocus
                hoverEnabled: true
                padding: 6
                Accessible.name: text
                Accessible.onPressAction: clicked()
                onClicked: undoNotice.undo()
                contentItem: Label {
                    text: undoButton.text
                    font.pixelSize: Theme.subheadlineSize + 1
                    font.weight: Font.DemiBold
                    color: Theme.blue
                }
                background: Rectangle {
                    radius: 5
                    color: undoButton.hovered ? Theme.withOpacity(Theme.blue, 0.1) : "transparent"
                    border.width: undoButton.visualFocus ? 2 : 0
                    border.color: Theme.blue
                }
            }
        }
    }

    NewDocumentSheet {
        id: newDocumentSheet

        onCreateRequested: name => {
            documents.createDocument(name)
            sidebar.documentCreated()
        }
    }
}
