import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnholt

// The user's own OpenAI-compatible server: its address, model and API key. The address and the
// key take effect when the field is left or Return is pressed; what goes wrong shows in the
// section's result row. The key is never shown again once given.
ColumnLayout {
    id: form

    required property AIConnectionController controller
    readonly property AIConnectionSettings connection: controller.settings
    readonly property int labelWidth: 70

    spacing: 8

    Label {
        Layout.fillWidth: true
        text: Tr.t("Any server that speaks the OpenAI chat API: a model server on this machine or a hosted service.",
                   "任何支持 OpenAI 聊天接口的服务器：本机的模型服务器或托管服务。",
                   "OpenAI チャット API に対応したサーバー：このマシンのモデルサーバーやホスティングサービス。")
        wrapMode: Text.Wrap
        font.pixelSize: Theme.captionSize
        color: Theme.tertiaryLabel
    }

    GridLayout {
        Layout.fillWidth: true
        columns: 2
        columnSpacing: 10
        rowSpacing: 8

        Label {
            Layout.preferredWidth: form.labelWidth
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 6
            text: Tr.t("Address", "地址", "アドレス")
            font.pixelSize: Theme.subheadlineSize
            color: Theme.secondaryLabel
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 4

            FormTextField {
                id: addressField

                objectName: "serverAddressField"
                Layout.fillWidth: true
                placeholderText: "http://localhost:11434/v1"
                accessibleName: Tr.t("Address", "地址", "アドレス")
                inputMethodHints: Qt.ImhUrlCharactersOnly | Qt.ImhNoAutoUppercase
                Component.onCompleted: text = form.connection.serverBaseURL
                onEditingFinished: {
                    if (text.trim() !== form.connection.serverBaseURL)
                        form.controller.commitServerBaseURL(text)
                }
            }
            RowLayout {
                objectName: "unencryptedWarning"
                visible: form.controller.isUnencryptedRemote(addressField.text)
                Layout.fillWidth: true
                spacing: 4

                Icon {
                    Layout.alignment: Qt.AlignTop
                    name: "exclamationmark.triangle.fill"
                    color: Theme.orange
                    size: Theme.captionSize + 1
                }
                Label {
                    Layout.fillWidth: true
                    text: Tr.t("Plain http:// to another machine: the conversation and key travel unencrypted.",
                               "对其他机器使用明文 http://：对话和密钥将以未加密方式传输。",
                               "別のマシンへの平文 http://：会話とキーは暗号化されずに送信されます。")
                    wrapMode: Text.Wrap
                    font.pixelSize: Theme.captionSize
                    color: Theme.orange
                }
            }
        }

        Label {
            Layout.preferredWidth: form.labelWidth
            text: Tr.t("Model", "模型", "モデル")
            font.pixelSize: Theme.subheadlineSize
            color: Theme.secondaryLabel
        }
        ModelPicker {
            objectName: "modelPicker"
            Layout.fillWidth: true
            controller: form.controller
        }

        Label {
            Layout.preferredWidth: form.labelWidth
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 6
            text: Tr.t("API Key", "API 密钥", "API キー")
            font.pixelSize: Theme.subheadlineSize
            color: Theme.secondaryLabel
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 4

            RowLayout {
                Layout.fillWidth: true
                spacing: 4

                FormTextField {
                    id: keyField

                    readonly property bool hasKey: form.connection.apiKeyState === AIConnectionSettings.Stored
                                                   || form.connection.apiKeyState === AIConnectionSettings.SessionOnly

                    objectName: "apiKeyField"
                    Layout.fillWidth: true
                    echoMode: TextInput.Password
                    enabled: form.connection.serverBaseURL !== ""
                    accessibleName: Tr.t("API Key", "API 密钥", "API キー")
                    placeholderText: hasKey ? Tr.t("Set: type a new key to replace it", "已设置：输入新密钥以替换",
                                                   "設定済み：新しいキーを入力すると置き換えます")
                                            : Tr.t("Optional", "可选", "任意")
                    onEditingFinished: {
                        if (text === "")
                            return
                        form.controller.setApiKey(text)
                        text = ""
                    }
                }
                HeaderIconButton {
                    objectName: "removeKeyButton"
                    visible: keyField.hasKey
                    iconName: "trash"
                    iconSize: 11
                    tint: Theme.withOpacity(Theme.red, 0.7)
                    text: Tr.t("Remove Key", "移除密钥", "キーを削除")
                    onClicked: form.controller.setApiKey("")
                }
            }
            RowLayout {
                id: keyNote

                readonly property int keyState: form.connection.apiKeyState
                readonly property bool sessionOnly: keyState === AIConnectionSettings.SessionOnly
                                                    || (keyState === AIConnectionSettings.None && form.connection.keyStoreProblem !== "")

                objectName: "keyStorageNote"
                visible: keyState === AIConnectionSettings.Stored || keyState === AIConnectionSettings.Loading || sessionOnly
                Layout.fillWidth: true
                spacing: 4

                Icon {
                    Layout.alignment: Qt.AlignTop
                    name: keyNote.sessionOnly ? "exclamationmark.triangle.fill" : "checkmark.circle.fill"
                    color: keyNote.sessionOnly ? Theme.orange : Theme.green
                    size: Theme.captionSize + 1
                    visible: keyNote.keyState !== AIConnectionSettings.Loading
                }
                Label {
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    font.pixelSize: Theme.captionSize
                    color: keyNote.sessionOnly ? Theme.orange : Theme.secondaryLabel
                    text: keyNote.keyState === AIConnectionSettings.Loading
                          ? Tr.t("Reading the keyring…", "正在读取密钥环…", "キーリングを読み込み中…")
                          : keyNote.keyState === AIConnectionSettings.Stored
                            ? Tr.t("Kept in the system keyring", "保存在系统密钥环中", "システムのキーリングに保存されています")
                            : keyNote.keyState === AIConnectionSettings.SessionOnly
                              ? Tr.t("No secret service is running: the key is kept for this session only; paste it again after a restart.",
                                     "没有运行密钥服务：密钥仅在本次会话中保留，重启后请重新粘贴。",
                                     "シークレットサービスが動作していません：キーはこのセッションの間だけ保持されます。再起動後にもう一度貼り付けてください。")
                              : Tr.t("No secret service is running: a key you enter is kept for this session only.",
                                     "没有运行密钥服务：输入的密钥仅在本次会话中保留。",
                                     "シークレットサービスが動作していません：入力したキーはこのセッションの間だけ保持されます。")
                    ToolTip.visible: keyNoteHover.hovered && form.connection.keyStoreProblem !== ""
                    ToolTip.text: form.connection.keyStoreProblem

                    HoverHandler {
                        id: keyNoteHover
                    }
                }
            }
        }
    }
}
