#include "sqltextfinder.h"

#include <QSignalSpy>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace {

QStringList matchedTexts(SQLTextFinder &finder, const QTextDocument &document)
{
    const QString text = document.toPlainText();
    QStringList found;
    for (const SQLTextFinder::Match &match : finder.matches())
        found.append(text.mid(match.start, match.length));
    return found;
}

} // namespace

// Find and replace over a real text document.
class TestSQLTextFinder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matches_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<bool>("caseSensitive");
        QTest::addColumn<bool>("wholeWords");
        QTest::addColumn<bool>("expression");
        QTest::addColumn<QStringList>("found");
        const QString sql = u"SELECT id FROM users;\nselect user_id, name FROM orders -- selected\n"_s;
        QTest::newRow("any case") << sql << u"select"_s << false << false << false
                                  << QStringList{u"SELECT"_s, u"select"_s, u"select"_s};
        QTest::newRow("match case") << sql << u"select"_s << true << false << false
                                    << QStringList{u"select"_s, u"select"_s};
        QTest::newRow("whole words") << sql << u"select"_s << false << true << false
                                     << QStringList{u"SELECT"_s, u"select"_s};
        QTest::newRow("whole words: underscores join words") << sql << u"id"_s << false << true << false
                                                             << QStringList{u"id"_s};
        QTest::newRow("whole words in another script")
            << u"用户表 用户 ユーザー用户"_s << u"用户"_s << false << true << false << QStringList{u"用户"_s};
        QTest::newRow("plain text is not an expression") << u"a.b axb a.b"_s << u"a.b"_s << false << false << false
                                                         << QStringList{u"a.b"_s, u"a.b"_s};
        QTest::newRow("expression") << sql << u"\\b\\w+_id\\b"_s << false << false << true
                                    << QStringList{u"user_id"_s};
        QTest::newRow("expression anchored by lines") << sql << u"^select"_s << false << false << true
                                                      << QStringList{u"SELECT"_s, u"select"_s};
        QTest::newRow("empty matches are skipped") << u"aaa b"_s << u"a*"_s << false << false << true
                                                   << QStringList{u"aaa"_s};
        QTest::newRow("accents fold with case") << u"Café CAFÉ"_s << u"café"_s << false << false << false
                                                << QStringList{u"Café"_s, u"CAFÉ"_s};
    }
    void matches()
    {
        QFETCH(QString, text);
        QFETCH(QString, pattern);
        QFETCH(bool, caseSensitive);
        QFETCH(bool, wholeWords);
        QFETCH(bool, expression);
        QFETCH(QStringList, found);
        QTextDocument document(text);
        SQLTextFinder finder;
        finder.setDocument(&document);
        finder.setCaseSensitive(caseSensitive);
        finder.setWholeWords(wholeWords);
        finder.setRegularExpression(expression);
        finder.setPattern(pattern);
        QCOMPARE(finder.matchCount(), 0); // nothing until the bar is open
        finder.setActive(true);
        QCOMPARE(matchedTexts(finder, document), found);
        QVERIFY(finder.errorString().isEmpty());
        QVERIFY(!finder.isSearching());
    }

    void invalidExpressionSaysSo()
    {
        QTextDocument document(u"select (1)"_s);
        SQLTextFinder finder;
        finder.setDocument(&document);
        finder.setActive(true);
        finder.setRegularExpression(true);
        finder.setPattern(u"(1"_s);
        QVERIFY(!finder.errorString().isEmpty());
        QCOMPARE(finder.matchCount(), 0);
        // As plain text it is fine.
        finder.setRegularExpression(false);
        QVERIFY(finder.errorString().isEmpty());
        QCOMPARE(finder.matchCount(), 1);
    }

    // Next and previous go round; the first current match is the one at or after where the
    // search started.
    void nextAndPreviousWrap()
    {
        QTextDocument document(u"a1 a2 a3"_s);
        SQLTextFinder finder;
        finder.setDocument(&document);
        finder.setActive(true);
        finder.setPattern(u"a"_s);
        QCOMPARE(finder.currentIndex(), 0);
        QVERIFY(finder.findNext(finder.currentEnd()));
        QCOMPARE(finder.currentStart(), 3);
        QVERIFY(finder.findNext(finder.currentEnd()));
        QVERIFY(finder.findNext(finder.currentEnd()));
        QCOMPARE(finder.currentIndex(), 0);
        QVERIFY(finder.findPrevious(finder.currentStart()));
        QCOMPARE(finder.currentIndex(), 2);
        // A longer pattern keeps the place: "a3" is found where "a" was current.
        finder.setPattern(u"a3"_s);
        QCOMPARE(finder.currentStart(), 6);
        finder.setPattern(u"zz"_s);
        QCOMPARE(finder.currentIndex(), -1);
        QVERIFY(!finder.findNext(0));
    }

    void replaceOneThenAllIsOneUndo()
    {
        QTextDocument document(u"select a, b from t where a = 'a';"_s);
        SQLTextFinder finder;
        finder.setDocument(&document);
        finder.setActive(true);
        finder.setWholeWords(true);
        finder.setPattern(u"a"_s);
        QCOMPARE(finder.matchCount(), 3);
        QVERIFY(finder.replaceCurrent(u"alpha"_s));
        QCOMPARE(document.toPlainText(), u"select alpha, b from t where a = 'a';"_s);
        QCOMPARE(finder.matchCount(), 2);
        QCOMPARE(finder.currentStart(), 29); // the next one, not the replacement
        QCOMPARE(finder.replaceAll(u"x"_s), 2);
        QCOMPARE(document.toPlainText(), u"select alpha, b from t where x = 'x';"_s);
        QCOMPARE(finder.matchCount(), 0);
        document.undo();
        QCOMPARE(document.toPlainText(), u"select alpha, b from t where a = 'a';"_s);
    }

    void replaceWithGroups()
    {
        QTextDocument document(u"user_id, order_id\nname"_s);
        SQLTextFinder finder;
        finder.setDocument(&document);
        finder.setActive(true);
        finder.setRegularExpression(true);
        finder.setPattern(u"(\\w+)_id"_s);
        QCOMPARE(finder.replaceAll(u"\\1.id\\\\\\t"_s), 2);
        QCOMPARE(document.toPlainText(), u"user.id\\\t, order.id\\\t\nname"_s);
    }

    // Edits move the matches with the text at once and are searched again shortly after.
    void editsMoveThenRefreshMatches()
    {
        QTextDocument document(u"x = 1;\nx = 2;\n"_s);
        SQLTextFinder finder;
        finder.setDocument(&document);
        finder.setActive(true);
        finder.setPattern(u"x ="_s);
        QCOMPARE(finder.matchCount(), 2);
        QTextCursor cursor(&document);
        cursor.insertText(u"-- x = 0\n"_s);
        // The match the edit touched goes until the search runs again (what comes before a
        // match can decide it, as with whole words); the one behind moves.
        QCOMPARE(finder.matchCount(), 1);
        QCOMPARE(finder.matches().back().start, 16);
        QTRY_COMPARE(finder.matchCount(), 3);
        QVERIFY(!finder.isSearching());
        // Closing the bar drops the matches and the work.
        finder.setActive(false);
        QCOMPARE(finder.matchCount(), 0);
        cursor.insertText(u"x = 9"_s);
        QTest::qWait(SQLTextFinder::researchDelayMs * 2);
        QCOMPARE(finder.matchCount(), 0);
    }

    // A long text is searched in slices with the event loop between them; the view's range
    // query gives the matches on its lines.
    void longTextInSlices()
    {
        const QString line = u"insert into t values (1, 'value');\n"_s;
        QTextDocument document(line.repeated(300'000)); // 10 MB
        SQLTextFinder finder;
        finder.setDocument(&document);
        finder.setActive(true);
        QSignalSpy matchesChanged(&finder, &SQLTextFinder::matchesChanged);
        finder.setPattern(u"value"_s);
        QVERIFY(finder.isSearching());
        QVERIFY(finder.matchCount() < 600'000);
        QTRY_VERIFY_WITH_TIMEOUT(!finder.isSearching(), 20000);
        QVERIFY(matchesChanged.count() > 1);
        QCOMPARE(finder.matchCount(), 600'000);
        const int lineStart = int(line.size()) * 1000;
        const auto onLine = finder.matchesIn(lineStart, lineStart + int(line.size()));
        QCOMPARE(onLine.size(), 2u);
        QCOMPARE(onLine.front().start, lineStart + 14);
    }
};

QTEST_MAIN(TestSQLTextFinder)
#include "tst_sqltextfinder.moc"
