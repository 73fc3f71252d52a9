#include "clock.h"
#include "datetexts.h"

#include <QTest>

using namespace Qt::StringLiterals;

// ICU writes a narrow no-break space before AM/PM in English; tests compare with plain blanks.
static QString plain(QString text)
{
    return text.replace(QChar(0x202F), u' ').replace(QChar(0x00A0), u' ');
}

class TestDateTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void relative_data()
    {
        QTest::addColumn<qint64>("offsetSeconds");
        QTest::addColumn<AppLanguage>("language");
        QTest::addColumn<QString>("expected");
        const qint64 minute = 60, hour = 3600, day = 86400;
        QTest::newRow("en minutes ago") << -5 * minute << AppLanguage::En << u"5 min. ago"_s;
        QTest::newRow("en seconds ago") << qint64(-30) << AppLanguage::En << u"30 sec. ago"_s;
        QTest::newRow("en hours ago") << -3 * hour << AppLanguage::En << u"3 hr. ago"_s;
        QTest::newRow("en days ago") << -2 * day << AppLanguage::En << u"2 days ago"_s;
        QTest::newRow("en weeks ago") << -15 * day << AppLanguage::En << u"2 wk. ago"_s;
        QTest::newRow("en future") << 2 * hour << AppLanguage::En << u"in 2 hr."_s;
        QTest::newRow("en same moment") << qint64(0) << AppLanguage::En << u"in 0 sec."_s;
        // Less than a second ago is still no whole second.
        QTest::newRow("en a moment ago") << qint64(-1) << AppLanguage::En << u"in 0 sec."_s;
        QTest::newRow("zh minutes ago") << -5 * minute << AppLanguage::ZhHans << u"5分钟前"_s;
        QTest::newRow("zh days ago") << -2 * day << AppLanguage::ZhHans << u"2天前"_s;
        QTest::newRow("ja minutes ago") << -5 * minute << AppLanguage::Ja << u"5 分前"_s;
        QTest::newRow("ja hours ago") << -3 * hour << AppLanguage::Ja << u"3 時間前"_s;
        QTest::newRow("ja years ago") << -800 * day << AppLanguage::Ja << u"2 年前"_s;
    }
    void relative()
    {
        QFETCH(qint64, offsetSeconds);
        QFETCH(AppLanguage, language);
        QFETCH(QString, expected);
        const QDateTime now(QDate(2026, 11, 23), QTime(12, 0, 0, 900), Qt::UTC);
        // Offsets of -1 stand for 800 ms in the past.
        const QDateTime date = offsetSeconds == -1 ? now.addMSecs(-800) : now.addSecs(offsetSeconds);
        QCOMPARE(plain(relativeTimeText(date, now, language)), expected);
    }

    void absolute_data()
    {
        QTest::addColumn<AppLanguage>("language");
        QTest::addColumn<QString>("expected");
        QTest::newRow("en") << AppLanguage::En << u"Mar 1, 2026, 8:15 AM"_s;
        QTest::newRow("zh") << AppLanguage::ZhHans << u"2026年3月1日 08:15"_s;
        QTest::newRow("ja") << AppLanguage::Ja << u"2026/03/01 8:15"_s;
    }
    void absolute()
    {
        QFETCH(AppLanguage, language);
        QFETCH(QString, expected);
        const QDateTime date(QDate(2026, 3, 1), QTime(8, 15, 30), Qt::UTC);
        QCOMPARE(plain(formattedDate(date, language, QTimeZone::utc())), expected);
        // The zone is honoured, not the process's own.
        QVERIFY(plain(formattedDate(date, language, QTimeZone("Asia/Tokyo"))).contains(u"17:15"_s) ||
                plain(formattedDate(date, language, QTimeZone("Asia/Tokyo"))).contains(u"5:15"_s));
    }

    void clockCanBeSet()
    {
        const QDateTime fixed(QDate(2030, 1, 2), QTime(3, 4, 5), Qt::UTC);
        Clock::setNowFunction([fixed] { return fixed; });
        QCOMPARE(Clock::now(), fixed);
        Clock::setNowFunction({});
        QVERIFY(Clock::now().date().year() >= 2026);
    }
};

QTEST_GUILESS_MAIN(TestDateTexts)
#include "tst_datetexts.moc"
