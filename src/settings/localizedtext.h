#pragma once

#include "applanguage.h"

#include <QString>

// Every user-visible text is written at the place where it is used, in its three forms.
// These helpers pick the form of the language in force.

// Picks one of the three forms for `resolved` (never `System`).
[[nodiscard]] inline QString pickText(AppLanguage resolved, QStringView en, QStringView zhHans,
                                      QStringView ja)
{
    switch (resolved) {
    case AppLanguage::ZhHans:
        return zhHans.toString();
    case AppLanguage::Ja:
        return ja.toString();
    case AppLanguage::En:
    case AppLanguage::System:
        break;
    }
    return en.toString();
}

// Picks the form of the language in force for the shared LanguageManager.
[[nodiscard]] QString localized(QStringView en, QStringView zhHans, QStringView ja);
