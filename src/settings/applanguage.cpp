#include "applanguage.h"

#include "localizedtext.h"

using namespace Qt::StringLiterals;

namespace AppLanguages {

QString rawValue(AppLanguage language)
{
    switch (language) {
    case AppLanguage::System:
        return u"system"_s;
    case AppLanguage::ZhHans:
        return u"zh-Hans"_s;
    case AppLanguage::En:
        return u"en"_s;
    case AppLanguage::Ja:
        return u"ja"_s;
    }
    return u"system"_s;
}

std::optional<AppLanguage> fromRawValue(QStringView raw)
{
    for (AppLanguage language : all) {
        if (rawValue(language) == raw)
            return language;
    }
    return std::nullopt;
}

QString localeIdentifier(AppLanguage language)
{
    return language == AppLanguage::System ? QString() : rawValue(language);
}

QString displayName(AppLanguage language, AppLanguage resolved)
{
    switch (language) {
    case AppLanguage::System:
        return pickText(resolved, u"System", u"跟随系统", u"システム");
    case AppLanguage::ZhHans:
        return u"简体中文"_s;
    case AppLanguage::En:
        return u"English"_s;
    case AppLanguage::Ja:
        return u"日本語"_s;
    }
    return {};
}

AppLanguage resolveSystemLanguage(QStringView firstPreferredLanguage)
{
    // Plain, case-sensitive prefix tests: every Chinese variant gets the Simplified forms.
    if (firstPreferredLanguage.startsWith(u"zh"))
        return AppLanguage::ZhHans;
    if (firstPreferredLanguage.startsWith(u"ja"))
        return AppLanguage::Ja;
    return AppLanguage::En;
}

} // namespace AppLanguages
