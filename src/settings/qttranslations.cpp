#include "qttranslations.h"

#include "languagemanager.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

using namespace Qt::StringLiterals;

QtTranslations::QtTranslations(LanguageManager *language, QObject *parent)
    : QObject(parent)
    , m_language(language)
{
    connect(language, &LanguageManager::currentLanguageChanged, this, &QtTranslations::update);
    update();
}

QtTranslations::~QtTranslations()
{
    // Gone with the application object, which has then dropped its translators itself.
    if (QCoreApplication::instance())
        QCoreApplication::removeTranslator(&m_translator);
}

void QtTranslations::update()
{
    const QString locale =
        m_language->resolvedLanguage() == AppLanguage::En ? QString() : m_language->localeIdentifier();
    if (locale == m_installedLocale)
        return;
    QCoreApplication::removeTranslator(&m_translator);
    m_installedLocale.clear();
    if (locale.isEmpty())
        return;
    // "qtbase_zh_CN.qm" for zh-Hans, "qtbase_ja.qm" for ja: the loader tries the locale's forms.
    if (m_translator.load(QLocale(locale), u"qtbase"_s, u"_"_s,
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath)) &&
        QCoreApplication::installTranslator(&m_translator))
        m_installedLocale = locale;
}
