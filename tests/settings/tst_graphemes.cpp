#include "graphemes.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

// Checks the counter against the Unicode consortium's own test file, and the shortcuts it
// takes for ASCII against the places where they could go wrong.
class TestGraphemes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unicodeTestFile()
    {
        QFile file(QStringLiteral(VARNHOLT_TEST_VECTORS "/unicode/GraphemeBreakTest.txt"));
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
        int cases = 0;
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine());
            const QString rule = line.section(u'#', 0, 0).trimmed();
            if (rule.isEmpty())
                continue;
            // "÷ 0020 × 0308 ÷ 0020 ÷": code points, with ÷ marking each boundary.
            QString text;
            qsizetype expected = -1;
            for (const QString &token : rule.split(u' ', Qt::SkipEmptyParts)) {
                if (token == u"÷")
                    ++expected;
                else if (token != u"×")
                    text.append(QString::fromUcs4(std::array{char32_t(token.toUInt(nullptr, 16))}.data(), 1));
            }
            QVERIFY2(graphemeCount(text) == expected, qPrintable(line));
            ++cases;
        }
        QCOMPARE(cases, 602);
    }

    void asciiShortcuts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qsizetype>("expected");
        QTest::newRow("empty") << QString() << qsizetype(0);
        QTest::newRow("plain sql") << u"SELECT 1;"_s << qsizetype(9);
        QTest::newRow("crlf is one") << u"a\r\nb\r\n"_s << qsizetype(4);
        QTest::newRow("lf cr is two") << u"\n\r"_s << qsizetype(2);
        QTest::newRow("combining mark joins ascii") << u"e\u0301x"_s << qsizetype(2);
        QTest::newRow("prepend holds ascii") << u"\u0600a b"_s << qsizetype(3);
        QTest::newRow("prepend before control") << u"\u0600\na"_s << qsizetype(3);
        QTest::newRow("cjk") << u"-- 创建用户表\n"_s << qsizetype(9);
        QTest::newRow("emoji zwj family")
            << u"x\U0001F468\u200D\U0001F469\u200D\U0001F467y"_s << qsizetype(3);
        QTest::newRow("flags pair up") << u"a\U0001F1EF\U0001F1F5\U0001F1E8\U0001F1F3b"_s << qsizetype(4);
        QTest::newRow("lone surrogate") << QString(QChar(0xD800)) + u"a"_s << qsizetype(2);
    }
    void asciiShortcuts()
    {
        QFETCH(QString, text);
        QFETCH(qsizetype, expected);
        QCOMPARE(graphemeCount(text), expected);
    }
};

QTEST_GUILESS_MAIN(TestGraphemes)
#include "tst_graphemes.moc"
