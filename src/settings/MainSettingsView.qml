import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The first settings tab: the interface language, the editor's font size, and whether the
// assistant is reachable, over the build's proxy or the user's own server.
ScrollView {
    id: view

    contentWidth: availableWidth
    contentHeight: column.implicitHeight + 32
    ScrollBar.horizontal.policy: ScrollBar.AlwaysOff
    ScrollBar.vertical.Accessible.name: Tr.t("Settings", "设置", "設定")

    AIConnectionController {
        id: connection

        objectName: "aiConnection"
    }

    ColumnLayout {
        id: column

        x: 16
        y: 16
        width: view.availableWidth - 32
        spacing: 16

        SettingsSectionBox {
            title: Tr.t("Language", "语言", "言語")
            icon: "globe"

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 6

                SegmentedPicker {
                    objectName: "languagePicker"
                    Layout.fillWidth: true
                    accessibleName: Tr.t("Language", "语言", "言語")
                    // Only "System" is said in the language in force; the others in their own.
                    segments: [AppLanguage.System, AppLanguage.ZhHans, AppLanguage.En, AppLanguage.Ja].map(
                                  language => ({
                                          value: language,
                                          text: language === AppLanguage.System ? Tr.t("System", "跟随系统", "システム")
                                                                                : LanguageManager.displayName(language)
                                      }))
                    currentValue: LanguageManager.currentLanguage
                    onActivated: value => LanguageManager.currentLanguage = value
                }
                Label {
                    objectName: "restartHint"
                    text: Tr.t("Restart app to apply changes", "更改后需重启应用生效", "変更後、アプリを再起動してください")
                    font.pixelSize: Theme.captionSize
                    color: Theme.tertiaryLabel
                }
            }
        }

        SettingsSectionBox {
            title: Tr.t("Editor", "编辑器", "エディタ")
            icon: "textformat.size"

            RowLayout {
                Layout.fillWidth: true
                spacing: 10

                Label {
                    // 70 wide, or as wide as a longer word needs.
                    Layout.preferredWidth: Math.max(70, implicitWidth)
                    text: Tr.t("Font Size", "字体大小", "フォントサイズ")
                    font.pixelSize: Theme.subheadlineSize
                    color: Theme.secondaryLabel
                }
                Slider {
                    id: fontSizeSlider

                    objectName: "fontSizeSlider"
                    Layout.minimumWidth: 200
                    Layout.maximumWidth: 260
                    Layout.fillWidth: true
                    from: Preferences.minimumEditorFontSize
                    to: Preferences.maximumEditorFontSize
                    stepSize: 1
                    snapMode: Slider.SnapAlways
                    value: Preferences.editorFontSize
                    Accessible.name: Tr.t("Font Size", "字体大小", "フォントサイズ")
                    // Written as it moves, by the pointer, the keys or a screen reader: the editor
                    // follows at once.
                    onValueChanged: Preferences.editorFontSize = value
                }
                Label {
                    objectName: "fontSizeValue"
                    Layout.preferredWidth: 50
                    horizontalAlignment: Text.AlignRight
                    text: Math.round(Preferences.editorFontSize) + " pt"
                    font.pixelSize: Theme.subheadlineSize
                    font.family: Theme.monospaceFamily
                    color: Theme.secondaryLabel
                }
                Item {
                    Layout.fillWidth: true
                }
            }
        }

        SettingsSectionBox {
            title: Tr.t("AI Assistant", "AI 助手", "AI アシスタント")
            icon: "wand.and.stars"

            Rectangle {
                objectName: "aiStatus"
                implicitWidth: statusRow.implicitWidth + 20
                implicitHeight: statusRow.implicitHeight + 20
                radius: 8
                color: Theme.controlBackground

                RowLayout {
                    id: statusRow

                    anchors.centerIn: parent
                    spacing: 8

                    Icon {
                        name: connection.isConfigured ? "checkmark.circle.fill" : "exclamationmark.triangle.fill"
                        color: connection.isConfigured ? Theme.green : Theme.orange
                        size: Theme.subheadlineSize + 3
                    }
                    Label {
                        text: connection.isConfigured ? Tr.t("AI Service Ready", "AI 服务已就绪", "AI サービス準備完了")
                                                      : Tr.t("AI Service Not Configured", "AI 服务未配置", "AI サービス未設定")
                        font.pixelSize: Theme.subheadlineSize
                        font.weight: Font.Medium
                        color: Theme.label
                    }
                }
            }

            SegmentedPicker {
                objectName: "connectionPicker"
                visible: connection.hasProxy && connection.settings !== null
                Layout.fillWidth: true
                accessibleName: Tr.t("Connection", "连接", "接続")
                segments: [{
                        value: AIConnectionSettings.Proxy,
                        text: Tr.t("Built-in Service", "内置服务", "組み込みサービス")
                    }, {
                        value: AIConnectionSettings.OpenAICompatible,
                        text: Tr.t("Own Server (OpenAI-compatible)", "自有服务器（兼容 OpenAI）", "独自サーバー（OpenAI 互換）")
                    }]
                currentValue: connection.settings ? connection.settings.kind : AIConnectionSettings.Proxy
                onActivated: value => connection.settings.kind = value
            }

            Loader {
                Layout.fillWidth: true
                active: connection.usesOwnServer
                visible: active
                // Given as it is made, before its bindings read it.
                Component.onCompleted: setSource("ServerConnectionForm.qml", {
                                                      "controller": connection
                                                  })
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: 12

                SheetButton {
                    id: testButton

                    objectName: "testConnectionButton"
                    Layout.alignment: Qt.AlignTop
                    leftPadding: connection.isTestingConnection ? 28 : 12
                    rightPadding: 12
                    text: Tr.t("Test Connection", "测试连接", "接続テスト")
                    enabled: connection.isConfigured && !connection.isTestingConnection
                    onClicked: connection.testConnection()

                    BusyIndicator {
                        anchors.left: parent.left
                        anchors.leftMargin: 6
                        anchors.verticalCenter: parent.verticalCenter
                        width: 18
                        height: 18
                        running: connection.isTestingConnection
                        visible: running
                    }
                }
                RowLayout {
                    objectName: "testResult"
                    visible: connection.hasTestResult
                    Layout.fillWidth: true
                    Layout.alignment: Qt.AlignVCenter
                    spacing: 4

                    Icon {
                        Layout.alignment: Qt.AlignTop
                        Layout.topMargin: 1
                        name: connection.testSucceeded ? "checkmark.circle.fill" : "xmark.circle.fill"
                        color: connection.testSucceeded ? Theme.green : Theme.red
                        size: Theme.captionSize + 2
                    }
                    Label {
                        Layout.fillWidth: true
                        text: connection.testMessage
                        font.pixelSize: Theme.captionSize
                        color: connection.testSucceeded ? Theme.green : Theme.red
                        // Our own sentences (an address, a model list) can be long: a few lines.
                        wrapMode: Text.Wrap
                        maximumLineCount: 3
                        elide: Text.ElideRight
                    }
                }
                Item {
                    Layout.fillWidth: !connection.hasTestResult
                }
            }
        }
    }
}
