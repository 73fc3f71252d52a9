#pragma once

#include "applanguage.h"

#include <QObject>
#include <QStringList>

#include <functional>

class QSettings;

// Holds the user's language choice and answers which of the three languages is in force.
class LanguageManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(AppLanguages::AppLanguage currentLanguage READ currentLanguage WRITE setCurrentLanguage NOTIFY
                   currentLanguageChanged)
    // Worked out at every read; it changes with currentLanguage, so it shares its signal.
    Q_PROPERTY(AppLanguages::AppLanguage resolvedLanguage READ resolvedLanguage NOTIFY currentLanguageChanged)
    Q_PROPERTY(QString localeIdentifier READ localeIdentifier NOTIFY currentLanguageChanged)

public:
    using PreferredLanguages = std::function<QStringList()>;

    static constexpr QLatin1StringView languageKey{"app_language"};

    // `settings` must outlive the manager. `preferredLanguages` gives the system's preferred UI
    // languages, first the most preferred; it defaults to the system locale's.
    explicit LanguageManager(QSettings *settings, PreferredLanguages preferredLanguages = {},
                             QObject *parent = nullptr);

    // The instance the application uses, made on first use with the default settings.
    [[nodiscard]] static LanguageManager *shared();

    [[nodiscard]] AppLanguage currentLanguage() const { return m_currentLanguage; }
    // Always writes the preference, even when the value does not change.
    void setCurrentLanguage(AppLanguage language);

    [[nodiscard]] AppLanguage resolvedLanguage() const;
    [[nodiscard]] QString localeIdentifier() const;

    // The form of a text for the language in force.
    [[nodiscard]] QString pick(QStringView en, QStringView zhHans, QStringView ja) const;

    Q_INVOKABLE [[nodiscard]] QString displayName(AppLanguages::AppLanguage language) const;

Q_SIGNALS:
    void currentLanguageChanged();

private:
    void saveLanguage();

    QSettings *m_settings = nullptr;
    PreferredLanguages m_preferredLanguages;
    AppLanguage m_currentLanguage = AppLanguage::System;
};
