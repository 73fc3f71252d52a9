pragma Singleton

import QtQuick
import Varnholt

// Picks the form of a text for the language in force. Bindings that call t() read
// LanguageManager.resolvedLanguage, so they are evaluated again when the language changes.
QtObject {
    function t(en: string, zhHans: string, ja: string): string {
        switch (LanguageManager.resolvedLanguage) {
        case AppLanguage.ZhHans:
            return zhHans
        case AppLanguage.Ja:
            return ja
        default:
            return en
        }
    }
}
