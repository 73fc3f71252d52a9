#include "languagemanager.h"

#include "appsettings.h"
#include "localizedtext.h"
#include "qttranslations.h"

#include <QCoreApplication>
#include <QLocale>
#include <QSettings>

LanguageManager::LanguageManager(QSettings *settings, PreferredLanguages preferredLanguages, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_preferredLanguages(std::move(preferredLanguages))
{
    if (!m_preferredLanguages)
        m_preferredLanguages = [] { return QLocale::system().uiLanguages(); };

    // An unknown stored value counts as "system" and is left as it is until the next write.
    const QVariant stored = m_settings->value(languageKey);
    if (stored.isValid())
        m_currentLanguage = AppLanguages::fromRawValue(stored.toString()).value_or(AppLanguage::System);
}

LanguageManager *LanguageManager::shared()
{
    static LanguageManager instance(applicationSettings());
    // Qt's own texts follow the same choice, for as long as the application object lives.
    static const bool qtFollows = [] {
        if (QCoreApplication *application = QCoreApplication::instance())
            new QtTranslations(&instance, application);
        return true;
    }();
    Q_UNUSED(qtFollows)
    return &instance;
}

void LanguageManager::setCurrentLanguage(AppLanguage language)
{
    const bool changed = language != m_currentLanguage;
    m_currentLanguage = language;
    saveLanguage();
    if (changed)
        Q_EMIT currentLanguageChanged();
}

AppLanguage LanguageManager::resolvedLanguage() const
{
    if (m_currentLanguage != AppLanguage::System)
        return m_currentLanguage;
    const QStringList preferred = m_preferredLanguages();
    return AppLanguages::resolveSystemLanguage(preferred.isEmpty() ? QStringView(u"en")
                                                                   : QStringView(preferred.constFirst()));
}

QString LanguageManager::localeIdentifier() const
{
    return AppLanguages::localeIdentifier(resolvedLanguage());
}

QString LanguageManager::pick(QStringView en, QStringView zhHans, QStringView ja) const
{
    return pickText(resolvedLanguage(), en, zhHans, ja);
}

QString LanguageManager::displayName(AppLanguage language) const
{
    return AppLanguages::displayName(language, resolvedLanguage());
}

void LanguageManager::saveLanguage()
{
    m_settings->setValue(languageKey, AppLanguages::rawValue(m_currentLanguage));
}

QString localized(QStringView en, QStringView zhHans, QStringView ja)
{
    return LanguageManager::shared()->pick(en, zhHans, ja);
}
