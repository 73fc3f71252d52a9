#pragma once

#include <QObject>
#include <QTranslator>

class LanguageManager;

// Keeps Qt's own texts (a network error's description, a standard dialog's buttons) in the
// language in force: installs Qt's translations for it, and again whenever the choice changes.
// English needs none. Without the translation files (Debian's qt6-translations-l10n), Qt's
// texts stay English.
class QtTranslations : public QObject
{
    Q_OBJECT

public:
    // `language` must outlive the object; an application object must exist.
    explicit QtTranslations(LanguageManager *language, QObject *parent = nullptr);
    ~QtTranslations() override;

    // The locale whose translations are installed, empty for none.
    [[nodiscard]] QString installedLocale() const { return m_installedLocale; }

private:
    void update();

    LanguageManager *m_language = nullptr;
    QTranslator m_translator;
    QString m_installedLocale;
};
