#include "preferences.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class TestPreferences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // What a hand-edited settings file may hold under "editorFontSize".
    void storedFontSize_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<double>("read");
        QTest::newRow("none") << QString() << 14.0;
        QTest::newRow("10") << u"10"_s << 10.0;
        QTest::newRow("24") << u"24"_s << 24.0;
        QTest::newRow("17.5") << u"17.5"_s << 17.5;
        QTest::newRow("9.99") << u"9.99"_s << 14.0;
        QTest::newRow("24.01") << u"24.01"_s << 14.0;
        QTest::newRow("nan") << u"nan"_s << 14.0;
        QTest::newRow("inf") << u"inf"_s << 14.0;
        QTest::newRow("-inf") << u"-inf"_s << 14.0;
        QTest::newRow("1e308") << u"1e308"_s << 14.0;
        QTest::newRow("words") << u"large"_s << 14.0;
    }
    void storedFontSize()
    {
        QFETCH(QString, stored);
        QFETCH(double, read);
        QTemporaryDir dir;
        QSettings settings(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        if (!stored.isNull())
            settings.setValue(Preferences::editorFontSizeKey, stored);
        QCOMPARE(Preferences(&settings).editorFontSize(), read);
    }

    void writtenFontSize()
    {
        QTemporaryDir dir;
        QSettings settings(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        Preferences preferences(&settings);
        QSignalSpy changed(&preferences, &Preferences::editorFontSizeChanged);
        preferences.setEditorFontSize(qQNaN());
        preferences.setEditorFontSize(14);
        QCOMPARE(changed.size(), 0);
        preferences.setEditorFontSize(40);
        QCOMPARE(preferences.editorFontSize(), 24.0);
        QCOMPARE(settings.value(Preferences::editorFontSizeKey).toDouble(), 24.0);
        QCOMPARE(changed.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestPreferences)
#include "tst_preferences.moc"
