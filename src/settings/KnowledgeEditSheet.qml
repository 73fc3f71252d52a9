import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// Adds or edits one knowledge item. It works on a copy of `category` and `content` taken as it
// opens, and gives them back only when confirmed; a text of nothing but blanks and line ends
// cannot be confirmed, any other goes to the store as typed. Esc, like Cancel, gives nothing.
SheetFrame {
    id: sheet

    property int category: Knowledge.Other
    property string content: ""
    property bool isNew: true
    property int localCategory: Knowledge.Other
    property string localContent: ""
    readonly property bool canConfirm: localContent.trim().length > 0
    // Confirmed or cancelled, as against dismissed.
    property bool answered: false

    signal confirmed
    signal cancelled

    function cancel() {
        answered = true
        cancelled()
        close()
    }
    function confirm() {
        if (!canConfirm)
            return
        answered = true
        category = localCategory
        content = localContent
        confirmed()
        close()
    }

    title: sheet.isNew ? Tr.t("Add Knowledge", "添加知识点", "知識を追加") : Tr.t("Edit Knowledge", "编辑知识点", "知識を編集")
    width: 400
    padding: 20
    onAboutToShow: {
        answered = false
        localCategory = category
        localContent = content
        contentField.text = content
        categoryPicker.currentIndex = KnowledgeCategories.all.indexOf(category)
    }
    onOpened: contentField.forceActiveFocus()
    onClosed: {
        if (!answered)
            cancelled()
    }
    onCancelRequested: cancel()
    onAcceptRequested: confirm()

    contentItem: ColumnLayout {
        spacing: 16

        Label {
            text: sheet.isNew ? Tr.t("Add Knowledge", "添加知识点", "知識を追加") : Tr.t("Edit Knowledge", "编辑知识点", "知識を編集")
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            color: Theme.label
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 6

            Label {
                text: Tr.t("Category", "分类", "カテゴリ")
                font.pixelSize: Theme.subheadlineSize
                color: Theme.secondaryLabel
            }
            ComboBox {
                id: categoryPicker

                objectName: "categoryPicker"
                Layout.fillWidth: true
                model: KnowledgeCategories.all
                font.pixelSize: Theme.bodySize
                Accessible.name: Tr.t("Category", "分类", "カテゴリ")
                onActivated: index => sheet.localCategory = KnowledgeCategories.all[index]

                contentItem: RowLayout {
                    spacing: 6

                    Icon {
                        Layout.leftMargin: 8
                        name: KnowledgeCategories.iconName(sheet.localCategory)
                        color: Theme.secondaryLabel
                        size: 13
                    }
                    Label {
                        Layout.fillWidth: true
                        text: KnowledgeCategories.displayName(sheet.localCategory, LanguageManager.resolvedLanguage)
                        font: categoryPicker.font
                        color: Theme.label
                        elide: Text.ElideRight
                    }
                }
                background: Rectangle {
                    implicitHeight: 30
                    radius: 6
                    color: Theme.textBackground
                    border.width: categoryPicker.visualFocus ? 2 : 1
                    border.color: categoryPicker.visualFocus ? Theme.withOpacity(Theme.purple, 0.7) : Theme.separator
                }
                popup.background: Rectangle {
                    radius: 6
                    color: Theme.windowBackground
                    border.color: Theme.separator
                }
                delegate: ItemDelegate {
                    id: choice

                    required property int modelData
                    required property int index

                    width: categoryPicker.width
                    highlighted: categoryPicker.highlightedIndex === index
                    background: Rectangle {
                        color: choice.highlighted ? Theme.withOpacity(Theme.purple, 0.25) : "transparent"
                    }
                    contentItem: RowLayout {
                        spacing: 6

                        Icon {
                            name: KnowledgeCategories.iconName(modelData)
                            color: Theme.secondaryLabel
                            size: 13
                        }
                        Label {
                            Layout.fillWidth: true
                            text: KnowledgeCategories.displayName(modelData, LanguageManager.resolvedLanguage)
                            font.pixelSize: Theme.bodySize
                            color: Theme.label
                        }
                    }
                }
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 6

            Label {
                text: Tr.t("Content", "内容", "内容")
                font.pixelSize: Theme.subheadlineSize
                color: Theme.secondaryLabel
            }
            WrappedTextScrollView {
                scrolledName: contentField.Accessible.name
                Layout.fillWidth: true
                Layout.preferredHeight: 80

                TextArea {
                    id: contentField

                    objectName: "knowledgeContentField"
                    textFormat: TextEdit.PlainText
                    wrapMode: TextEdit.Wrap
                    font.pixelSize: Theme.bodySize
                    color: Theme.label
                    padding: 8
                    Accessible.name: Tr.t("Content", "内容", "内容")
                    KeyNavigation.priority: KeyNavigation.BeforeItem
                    KeyNavigation.tab: cancelButton
                    onTextChanged: sheet.localContent = text
                    background: Rectangle {
                        radius: 8
                        color: Theme.withOpacity(Theme.controlBackground, 0.5)
                        border.width: contentField.activeFocus ? 2 : 1
                        border.color: contentField.activeFocus ? Theme.withOpacity(Theme.purple, 0.7) : Theme.separator
                    }

                    EditContextMenu {
                        target: contentField
                    }
                }
            }
            Label {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: Tr.t("e.g., Using MySQL 8.0, LATERAL syntax not supported", "例如：使用 MySQL 8.0、不支持 LATERAL 语法",
                           "例：MySQL 8.0 を使用、LATERAL 構文はサポートされていません")
                font.pixelSize: Theme.captionSize
                color: Theme.tertiaryLabel
            }
        }

        RowLayout {
            spacing: 12

            SheetButton {
                id: cancelButton

                Layout.fillWidth: true
                text: Tr.t("Cancel", "取消", "キャンセル")
                onClicked: sheet.cancel()
            }
            SheetButton {
                objectName: "confirmKnowledgeButton"
                Layout.fillWidth: true
                text: sheet.isNew ? Tr.t("Add", "添加", "追加") : Tr.t("Save", "保存", "保存")
                tint: Theme.purple
                enabled: sheet.canConfirm
                onClicked: sheet.confirm()
            }
        }
    }
}
