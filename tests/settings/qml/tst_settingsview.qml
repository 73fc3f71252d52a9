import QtQuick
import QtQuick.Controls
import QtTest
import Varnholt

// The settings tabs and the first tab: language, font size, the AI connection and its test.
TestCase {
    id: testCase

    name: "SettingsView"
    width: 520
    height: 520
    visible: true
    when: windowShown

    Component {
        id: settingsComponent

        SettingsView {}
    }
    Component {
        id: editorComponent

        SQLEditorController {}
    }

    function init() {
        LanguageManager.currentLanguage = AppLanguage.En
        Preferences.editorFontSize = 14
    }

    function child(parent: Item, name: string): QtObject {
        const found = findChild(parent, name)
        verify(found, name)
        return found
    }

    function test_tabs() {
        const settings = createTemporaryObject(settingsComponent, testCase)
        compare(settings.width, 520)
        compare(settings.height, 520)
        const tabs = child(settings, "settingsTabs")
        compare(tabs.count, 3)
        compare([0, 1, 2].map(i => tabs.itemAt(i).text), ["Settings", "Knowledge Base", "About"])
        LanguageManager.currentLanguage = AppLanguage.Ja
        compare([0, 1, 2].map(i => tabs.itemAt(i).text), ["設定", "ナレッジベース", "について"])
        const about = child(settings, "aboutView")
        verify(!about.visible)
        mouseClick(tabs.itemAt(2))
        tryCompare(about, "visible", true)
        compare(child(about, "versionLine").text, "バージョン 1.0.0")
        verify(!child(settings, "mainSettingsView").visible)
    }

    // Whole steps from 10 to 24, written as the slider moves, and the editor follows at once.
    function test_fontSizeSlider() {
        const settings = createTemporaryObject(settingsComponent, testCase)
        const editor = createTemporaryObject(editorComponent, testCase)
        const slider = child(settings, "fontSizeSlider")
        const value = child(settings, "fontSizeValue")
        compare(slider.from, 10)
        compare(slider.to, 24)
        compare(value.text, "14 pt")
        slider.forceActiveFocus()
        keyClick(Qt.Key_Right)
        compare(Preferences.editorFontSize, 15)
        compare(editor.fontSize, 15)
        compare(value.text, "15 pt")
        for (let i = 0; i < 20; ++i)
            keyClick(Qt.Key_Right)
        compare(Preferences.editorFontSize, 24)
        compare(value.text, "24 pt")
        // A press anywhere on the groove lands on a whole step.
        mouseClick(slider, slider.leftPadding + slider.availableWidth * 0.37, slider.height / 2)
        verify(Number.isInteger(Preferences.editorFontSize), Preferences.editorFontSize)
        compare(value.text, Preferences.editorFontSize + " pt")
        compare(editor.fontSize, Preferences.editorFontSize)
        mouseClick(slider, slider.leftPadding, slider.height / 2)
        compare(value.text, "10 pt")
    }

    // The hint stays whatever the language, and only "System" is said in the language in force.
    function test_languagePicker() {
        const settings = createTemporaryObject(settingsComponent, testCase)
        const picker = child(settings, "languagePicker")
        const hint = child(settings, "restartHint")
        const labels = () => picker.segments.map(segment => segment.text)
        compare(labels(), ["System", "简体中文", "English", "日本語"])
        compare(picker.currentValue, AppLanguage.En)
        picker.activated(AppLanguage.ZhHans)
        compare(LanguageManager.currentLanguage, AppLanguage.ZhHans)
        compare(labels(), ["跟随系统", "简体中文", "English", "日本語"])
        verify(hint.visible)
        compare(hint.text, "更改后需重启应用生效")
        picker.activated(AppLanguage.Ja)
        compare(labels(), ["システム", "简体中文", "English", "日本語"])
        verify(hint.visible)
    }

    // This build has no proxy: the own server is the connection, configured once it has an
    // address and a model. A wrong address shows in the result row and is not stored; a test
    // clears the row at once and disables the button while it runs.
    function test_connectionAndTestButton() {
        const settings = createTemporaryObject(settingsComponent, testCase)
        const connection = child(settings, "aiConnection")
        const button = child(settings, "testConnectionButton")
        const result = child(settings, "testResult")
        verify(!connection.hasProxy)
        verify(!child(settings, "connectionPicker").visible)
        verify(!connection.isConfigured)
        verify(!button.enabled)
        verify(!result.visible)

        const address = child(settings, "serverAddressField")
        address.forceActiveFocus()
        address.text = "localhost:11434/v1"
        keyClick(Qt.Key_Return)
        tryCompare(result, "visible", true)
        verify(!connection.testSucceeded)
        compare(connection.testMessage, "The address must begin with http:// or https://")
        compare(connection.settings.serverBaseURL, "")

        address.text = "http://192.168.7.7:11434/v1"
        verify(child(settings, "unencryptedWarning").visible)
        // Nothing listens here: the models cannot be read, and the row says so.
        address.text = "http://127.0.0.1:9/v1/"
        verify(!child(settings, "unencryptedWarning").visible)
        keyClick(Qt.Key_Return)
        compare(connection.settings.serverBaseURL, "http://127.0.0.1:9/v1")
        tryVerify(() => connection.hasTestResult && connection.testMessage.startsWith("Network error: "))
        verify(!connection.isConfigured)

        const model = child(settings, "modelPicker")
        model.forceActiveFocus()
        model.text = "llama3.1:8b"
        keyClick(Qt.Key_Return)
        compare(connection.settings.serverModel, "llama3.1:8b")
        verify(connection.isConfigured)
        verify(button.enabled)

        mouseClick(button)
        verify(!connection.hasTestResult)
        verify(!result.visible)
        verify(connection.isTestingConnection)
        verify(!button.enabled)
        tryCompare(connection, "isTestingConnection", false)
        verify(result.visible)
        verify(!connection.testSucceeded)
        verify(connection.testMessage.startsWith("Network error: "), connection.testMessage)
        verify(button.enabled)
    }
}
