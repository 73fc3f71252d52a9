#include "languagemanager.h"
#include "localizedtext.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class TestLanguageManager : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<QSettings> freshSettings()
    {
        static int counter = 0;
        return std::make_unique<QSettings>(m_dir.filePath(u"settings-%1.ini"_s.arg(++counter)),
                                           QSettings::IniFormat);
    }

private Q_SLOTS:
    void resolvesFromFirstPreferredLanguage_data()
    {
        QTest::addColumn<QStringList>("preferred");
        QTest::addColumn<AppLanguage>("expected");
        QTest::newRow("traditional chinese") << QStringList{u"zh-Hant-TW"_s} << AppLanguage::ZhHans;
        QTest::newRow("simplified chinese") << QStringList{u"zh-CN"_s} << AppLanguage::ZhHans;
        QTest::newRow("japanese") << QStringList{u"ja-JP"_s} << AppLanguage::Ja;
        QTest::newRow("british english") << QStringList{u"en-GB"_s} << AppLanguage::En;
        QTest::newRow("german") << QStringList{u"de-DE"_s} << AppLanguage::En;
        QTest::newRow("korean") << QStringList{u"ko-KR"_s} << AppLanguage::En;
        QTest::newRow("only the first counts") << QStringList{u"fr-FR"_s, u"ja-JP"_s} << AppLanguage::En;
        QTest::newRow("empty list") << QStringList{} << AppLanguage::En;
        QTest::newRow("case-sensitive prefix") << QStringList{u"ZH-cn"_s} << AppLanguage::En;
    }
    void resolvesFromFirstPreferredLanguage()
    {
        QFETCH(QStringList, preferred);
        QFETCH(AppLanguage, expected);
        auto settings = freshSettings();
        LanguageManager manager(settings.get(), [preferred] { return preferred; });
        QCOMPARE(manager.currentLanguage(), AppLanguage::System);
        QCOMPARE(manager.resolvedLanguage(), expected);
        QVERIFY(!settings->contains(LanguageManager::languageKey));
    }

    void storedChoice_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<AppLanguage>("expected");
        QTest::newRow("zh-Hans") << u"zh-Hans"_s << AppLanguage::ZhHans;
        QTest::newRow("ja") << u"ja"_s << AppLanguage::Ja;
        QTest::newRow("en") << u"en"_s << AppLanguage::En;
        QTest::newRow("system") << u"system"_s << AppLanguage::System;
        QTest::newRow("unknown value") << u"fr"_s << AppLanguage::System;
    }
    void storedChoice()
    {
        QFETCH(QString, stored);
        QFETCH(AppLanguage, expected);
        auto settings = freshSettings();
        settings->setValue(LanguageManager::languageKey, stored);
        LanguageManager manager(settings.get(), [] { return QStringList{u"ja-JP"_s}; });
        QCOMPARE(manager.currentLanguage(), expected);
        // An unknown value is not corrected until the user picks a language.
        QCOMPARE(settings->value(LanguageManager::languageKey).toString(), stored);
    }

    void choosingWritesAndNotifiesOnlyOnChange()
    {
        auto settings = freshSettings();
        settings->setValue(LanguageManager::languageKey, u"fr"_s);
        LanguageManager manager(settings.get(), [] { return QStringList{u"de-DE"_s}; });
        QSignalSpy spy(&manager, &LanguageManager::currentLanguageChanged);

        manager.setCurrentLanguage(AppLanguage::Ja);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(settings->value(LanguageManager::languageKey).toString(), u"ja"_s);
        QCOMPARE(manager.resolvedLanguage(), AppLanguage::Ja);
        QCOMPARE(manager.pick(u"Save", u"保存", u"保存する"), u"保存する"_s);

        settings->remove(LanguageManager::languageKey);
        manager.setCurrentLanguage(AppLanguage::Ja);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(settings->value(LanguageManager::languageKey).toString(), u"ja"_s);

        manager.setCurrentLanguage(AppLanguage::System);
        QCOMPARE(spy.count(), 2);
        QCOMPARE(manager.resolvedLanguage(), AppLanguage::En);

        LanguageManager reopened(settings.get(), [] { return QStringList{u"zh-TW"_s}; });
        QCOMPARE(reopened.currentLanguage(), AppLanguage::System);
        QCOMPARE(reopened.resolvedLanguage(), AppLanguage::ZhHans);
    }

    void systemLanguageIsReadAtEveryResolve()
    {
        auto settings = freshSettings();
        QString system = u"en-US"_s;
        LanguageManager manager(settings.get(), [&system] { return QStringList{system}; });
        QSignalSpy spy(&manager, &LanguageManager::currentLanguageChanged);
        QCOMPARE(manager.resolvedLanguage(), AppLanguage::En);
        system = u"ja-JP"_s;
        QCOMPARE(manager.resolvedLanguage(), AppLanguage::Ja);
        QCOMPARE(spy.count(), 0);
    }

    void displayNames()
    {
        using namespace AppLanguages;
        QCOMPARE(displayName(AppLanguage::System, AppLanguage::En), u"System"_s);
        QCOMPARE(displayName(AppLanguage::System, AppLanguage::ZhHans), u"跟随系统"_s);
        QCOMPARE(displayName(AppLanguage::System, AppLanguage::Ja), u"システム"_s);
        for (AppLanguage resolved : {AppLanguage::En, AppLanguage::ZhHans, AppLanguage::Ja}) {
            QCOMPARE(displayName(AppLanguage::Ja, resolved), u"日本語"_s);
            QCOMPARE(displayName(AppLanguage::ZhHans, resolved), u"简体中文"_s);
            QCOMPARE(displayName(AppLanguage::En, resolved), u"English"_s);
        }
        for (AppLanguage language : all)
            QCOMPARE(fromRawValue(rawValue(language)), language);
        QCOMPARE(localeIdentifier(AppLanguage::ZhHans), u"zh-Hans"_s);
        QVERIFY(localeIdentifier(AppLanguage::System).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLanguageManager)
#include "tst_languagemanager.moc"
