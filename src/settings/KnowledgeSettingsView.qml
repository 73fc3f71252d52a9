import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The second settings tab: automatic recording on or off, and the knowledge items by category,
// to read, add, edit and delete. Items are edited by id, so that of two items with the same
// text the one whose button was pressed changes. The list scrolls within its card.
Item {
    id: view

    // What the add sheet starts with; an edit sets them to the edited item's values, and
    // nothing resets them when that sheet closes.
    property int newCategory: Knowledge.Other
    property string newContent: ""
    // The item in the edit sheet; empty while the add sheet or none is up.
    property string editingItemId: ""

    function categoryColor(category: int): color {
        switch (category) {
        case Knowledge.DatabaseVersion:
            return Theme.blue
        case Knowledge.SyntaxConstraint:
            return Theme.orange
        case Knowledge.TableType:
            return Theme.purple
        case Knowledge.Preference:
            return Theme.green
        default:
            return Theme.gray
        }
    }
    function startAdding() {
        editingItemId = ""
        sheet.isNew = true
        sheet.category = newCategory
        sheet.content = newContent
        sheet.open()
    }
    function startEditing(itemId: string, category: int, content: string) {
        editingItemId = itemId
        newCategory = category
        newContent = content
        sheet.isNew = false
        sheet.category = category
        sheet.content = content
        sheet.open()
    }

    KnowledgeListModel {
        id: knowledge

        objectName: "knowledgeModel"
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        spacing: 16

        SettingsSectionBox {
            title: Tr.t("Smart Recording", "智能记录", "スマート記録")
            icon: "sparkles"

            RowLayout {
                Layout.fillWidth: true
                spacing: 8

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 2

                    Label {
                        text: Tr.t("Auto-record knowledge", "自动记录知识点", "知識を自動記録")
                        font.pixelSize: Theme.subheadlineSize + 1
                        color: Theme.label
                    }
                    Label {
                        Layout.fillWidth: true
                        wrapMode: Text.Wrap
                        text: Tr.t("Auto-detect and record important info in AI chats", "AI 对话中自动识别并记录重要信息",
                                   "AI チャットで重要な情報を自動検出して記録")
                        font.pixelSize: Theme.captionSize
                        color: Theme.tertiaryLabel
                    }
                }
                Switch {
                    id: autoRecordSwitch

                    // Toggle and Press from assistive technology act as a click, which is what
                    // changes the setting.
                    function toggleAsClicked() {
                        autoRecordSwitch.toggle()
                        autoRecordSwitch.toggled()
                    }

                    objectName: "autoRecordSwitch"
                    checked: DataStore.knowledgeAutoRecordingEnabled
                    Accessible.name: Tr.t("Auto-record knowledge", "自动记录知识点", "知識を自動記録")
                    Accessible.onToggleAction: toggleAsClicked()
                    Accessible.onPressAction: toggleAsClicked()
                    onToggled: DataStore.knowledgeAutoRecordingEnabled = checked
                }
            }
        }

        SettingsSectionBox {
            // As tall as its items, at most the rest of the tab.
            Layout.fillHeight: true
            Layout.maximumHeight: implicitHeight
            title: Tr.t("Knowledge Base", "知识库", "ナレッジベース")
            icon: "brain.head.profile"

            RowLayout {
                Layout.fillWidth: true

                Label {
                    objectName: "knowledgeCount"
                    text: knowledge.count + " " + Tr.t("items", "条知识", "件")
                    font.pixelSize: Theme.captionSize
                    color: Theme.secondaryLabel
                }
                Item {
                    Layout.fillWidth: true
                }
                SheetButton {
                    objectName: "addKnowledgeButton"
                    implicitHeight: 24
                    leftPadding: 24
                    rightPadding: 10
                    text: Tr.t("Add", "添加", "追加")
                    font.pixelSize: Theme.captionSize
                    tint: Theme.purple
                    onClicked: view.startAdding()

                    Icon {
                        anchors.left: parent.left
                        anchors.leftMargin: 9
                        anchors.verticalCenter: parent.verticalCenter
                        name: "plus"
                        color: "white"
                        size: Theme.captionSize + 1
                    }
                }
            }

            ColumnLayout {
                objectName: "knowledgeEmptyState"
                visible: knowledge.count === 0
                Layout.fillWidth: true
                Layout.topMargin: 24
                Layout.bottomMargin: 24
                spacing: 10

                Icon {
                    Layout.alignment: Qt.AlignHCenter
                    name: "tray"
                    color: Theme.quaternaryLabel
                    size: 28
                }
                Label {
                    Layout.alignment: Qt.AlignHCenter
                    text: Tr.t("No knowledge items", "暂无知识点", "知識がありません")
                    font.pixelSize: Theme.subheadlineSize + 1
                    color: Theme.secondaryLabel
                }
                Label {
                    Layout.fillWidth: true
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: Tr.t("Click 'Add' above to add manually,\nor enable smart recording for AI auto-learning",
                               "点击上方「添加」手动添加，\n或开启智能记录让 AI 自动学习",
                               "上の「追加」をクリックして手動で追加するか、\nスマート記録を有効にして AI に自動学習させます")
                    font.pixelSize: Theme.captionSize
                    color: Theme.tertiaryLabel
                }
            }

            ListView {
                id: list

                objectName: "knowledgeList"
                visible: knowledge.count > 0
                Layout.fillWidth: true
                Layout.fillHeight: true
                // As tall as its rows, but never taller than the tab, so that it does not make
                // every row only to find it has no room for them.
                implicitHeight: Math.min(contentHeight, view.height)
                clip: true
                spacing: 4
                model: knowledge
                boundsBehavior: Flickable.StopAtBounds
                reuseItems: true
                ScrollBar.vertical: ScrollBar {
                    Accessible.name: Tr.t("Knowledge Base", "知识库", "ナレッジベース")
                }

                section.property: "categoryKey"
                section.delegate: RowLayout {
                    id: head

                    required property string section
                    readonly property int category: KnowledgeCategories.fromKey(section)

                    width: ListView.view.width
                    height: implicitHeight + (y > 0 ? 8 : 0)
                    spacing: 6

                    Icon {
                        Layout.alignment: Qt.AlignBottom
                        name: KnowledgeCategories.iconName(head.category)
                        color: view.categoryColor(head.category)
                        size: Theme.captionSize + 1
                    }
                    Label {
                        Layout.alignment: Qt.AlignBottom
                        text: KnowledgeCategories.displayName(head.category, LanguageManager.resolvedLanguage)
                        font.pixelSize: Theme.captionSize
                        font.weight: Font.Medium
                        color: Theme.secondaryLabel
                    }
                    Label {
                        Layout.alignment: Qt.AlignBottom
                        Layout.fillWidth: true
                        text: knowledge.groupSizes[head.section] ?? 0
                        font.pixelSize: Theme.caption2Size
                        color: Theme.tertiaryLabel
                    }
                }

                delegate: KnowledgeItemRow {
                    width: ListView.view.width
                    onEditRequested: view.startEditing(itemId, category, content)
                    onDeleteRequested: knowledge.deleteItem(itemId)
                }

                remove: Transition {
                    NumberAnimation {
                        property: "opacity"
                        to: 0
                        duration: 200
                    }
                }
                displaced: Transition {
                    NumberAnimation {
                        property: "y"
                        duration: 200
                    }
                }
            }
        }
        Item {
            Layout.fillHeight: true
        }
    }

    KnowledgeEditSheet {
        id: sheet

        objectName: "knowledgeEditSheet"
        onConfirmed: {
            if (isNew) {
                view.newCategory = category
                view.newContent = content
                knowledge.addItem(view.newCategory, view.newContent)
                view.newCategory = Knowledge.Other
                view.newContent = ""
            } else {
                knowledge.updateItem(view.editingItemId, localCategory, localContent)
            }
        }
        onCancelled: {
            if (isNew) {
                view.newCategory = Knowledge.Other
                view.newContent = ""
            }
        }
        onClosed: view.editingItemId = ""
    }
}
