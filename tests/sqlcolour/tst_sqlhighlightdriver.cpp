#include "colourcheck.h"
#include "randomsql.h"
#include "sqlhighlightdriver.h"
#include "sqlhighlighter.h"

#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>

#include <limits>

namespace {

// One random edit through a cursor, as typing, deleting, pasting and undoing make them.
QString randomEdit(QRandomGenerator &random, QTextDocument &document)
{
    QTextCursor cursor(&document);
    const auto position = [&] { return random.bounded(document.characterCount()); };
    cursor.setPosition(position());
    switch (random.bounded(8)) {
    case 0:
        cursor.insertText(u"'"_s);
        return u"quote at %1"_s.arg(cursor.position());
    case 1:
    case 2:
        cursor.insertText(randomsql::text(random, 1 + random.bounded(3), true));
        return u"typing at %1"_s.arg(cursor.position());
    case 3:
    case 4: {
        // A deletion, or a paste over a selection, possibly across lines.
        const bool paste = random.bounded(2);
        cursor.setPosition(
            std::min(document.characterCount() - 1, cursor.position() + random.bounded(paste ? 400 : 20)),
            QTextCursor::KeepAnchor);
        cursor.insertText(paste ? randomsql::text(random, random.bounded(120), true) : QString());
        return u"%1 at %2"_s.arg(paste ? u"paste"_s : u"delete"_s).arg(cursor.selectionStart());
    }
    case 5:
        // Two changes far apart in one edit block: one contentsChange spans both.
        cursor.beginEditBlock();
        cursor.insertText(u"'"_s);
        cursor.setPosition(position());
        cursor.insertText(u"x'"_s);
        cursor.endEditBlock();
        return u"compound edit"_s;
    case 6:
        random.bounded(2) ? document.undo() : document.redo();
        return u"undo or redo"_s;
    default:
        if (random.bounded(10) == 0) {
            document.setPlainText(randomsql::text(random, random.bounded(300), true));
            return u"new text"_s;
        }
        cursor.insertText(QStringList{u"--"_s, u"/*"_s, u"*/"_s}.at(random.bounded(3)));
        return u"comment mark at %1"_s.arg(cursor.position());
    }
}

QString numberedLines(int count, const QString &line)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += line.arg(i);
    return text;
}

} // namespace

// The incremental driver against the whole-text editor pass, on a text document.
class TestSQLHighlightDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Long random edit sequences; after each, once the driver's pending work is done, every
    // block must carry the whole-text colours.
    void randomEdits_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<int>("pieces");
        QTest::addColumn<bool>("interleaved");
        QTest::addColumn<bool>("withView");
        QTest::addColumn<int>("steps");
        QTest::newRow("small text") << 101u << 40 << false << false << 600;
        QTest::newRow("larger text") << 102u << 600 << false << false << 600;
        QTest::newRow("with a view") << 103u << 600 << false << true << 600;
        // Edits that land on pending work are rarer; these rows need longer runs.
        QTest::newRow("edits between slices") << 104u << 600 << true << false << 2000;
        QTest::newRow("edits between slices with a view") << 105u << 600 << true << true << 2000;
        QTest::newRow("empty start") << 106u << 0 << true << true << 2000;
    }
    void randomEdits()
    {
        QFETCH(quint32, seed);
        QFETCH(int, pieces);
        QFETCH(bool, interleaved);
        QFETCH(bool, withView);
        QFETCH(int, steps);
        QRandomGenerator random(seed);
        QTextDocument document;
        document.setPlainText(randomsql::text(random, pieces, true));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.setBudgetNs(std::numeric_limits<qint64>::max() / 4); // keystrokes finish their part
        driver.finishPendingWork();
        QCOMPARE(wrongColours(document, driver), QList<int>());
        for (int step = 0; step < steps; ++step) {
            if (withView && random.bounded(4) == 0) {
                const int from = random.bounded(document.characterCount());
                driver.setVisibleRange(from, from + random.bounded(300));
            }
            const QString edit = randomEdit(random, document);
            if (interleaved) {
                // Slices of a single block each, then maybe the next edit before the work is done.
                driver.setBudgetNs(0);
                for (int slices = random.bounded(4); slices > 0; --slices)
                    driver.runPendingSlice();
                driver.setBudgetNs(std::numeric_limits<qint64>::max() / 4);
                if (random.bounded(2))
                    continue;
            }
            driver.finishPendingWork();
            const QList<int> wrong = wrongColours(document, driver);
            QVERIFY2(wrong.isEmpty(),
                     qPrintable(u"step %1, %2: block %3 %4"_s.arg(step)
                                    .arg(edit)
                                    .arg(wrong.value(0))
                                    .arg(document.findBlockByNumber(wrong.value(0)).text().left(200))));
        }
    }

    // A quote typed near the top changes every line below: the visible lines are right at once,
    // the rest follows in idle slices.
    void quoteColoursVisibleLinesFirst()
    {
        QTextDocument document;
        document.setPlainText(numberedLines(3000, u"insert into t values (%1, 'it''s', 2.5); -- note\n"_s));
        SQLHighlightDriver driver;
        driver.setBudgetNs(std::numeric_limits<qint64>::max() / 4);
        driver.setDocument(&document);
        driver.setVisibleRange(0, document.findBlockByNumber(40).position());
        driver.finishPendingWork();

        QTextCursor cursor(document.findBlockByNumber(2));
        cursor.insertText(u"'"_s);
        QVERIFY(driver.hasPendingWork());
        QCOMPARE(wrongColours(document, driver).constFirst(), 41);
        QTRY_VERIFY(!driver.hasPendingWork()); // the idle slices, from the event loop
        QCOMPARE(wrongColours(document, driver), QList<int>());

        // Scrolling to lines not yet coloured colours them at once.
        cursor.insertText(u"'"_s);
        driver.setVisibleRange(document.findBlockByNumber(1990).position(),
                               document.findBlockByNumber(2010).position());
        const QList<int> wrong = wrongColours(document, driver);
        QVERIFY(!wrong.contains(1990) && !wrong.contains(2010) && wrong.contains(1989) &&
                wrong.contains(2011));
        driver.finishPendingWork();
        QCOMPARE(wrongColours(document, driver), QList<int>());
    }

    // A block comment opened near the top runs to a "*/" far below: the lines in view take the
    // comment colour at once, and lose it again when the close goes.
    void blockCommentOverLines()
    {
        QTextDocument document;
        document.setPlainText(numberedLines(3000, u"select %1;\n"_s).replace(u"select 2500;"_s, u"*/"_s));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.setVisibleRange(0, document.findBlockByNumber(40).position());
        driver.finishPendingWork();
        const auto firstFormat = [&](int blockNumber) {
            return document.findBlockByNumber(blockNumber).layout()->formats().constFirst().format;
        };
        QCOMPARE(firstFormat(30).fontWeight(), highlightKeywordWeight);

        QTextCursor cursor(document.findBlockByNumber(2));
        cursor.insertText(u"/*"_s);
        QCOMPARE(firstFormat(30).foreground().color(), driver.commentColor());
        QCOMPARE(firstFormat(30).fontWeight(), highlightPlainWeight);
        driver.finishPendingWork();
        QCOMPARE(wrongColours(document, driver), QList<int>());
        QCOMPARE(firstFormat(2499).foreground().color(), driver.commentColor());

        QTextCursor close(document.findBlockByNumber(2500));
        close.select(QTextCursor::BlockUnderCursor);
        close.removeSelectedText();
        driver.finishPendingWork();
        QCOMPARE(wrongColours(document, driver), QList<int>());
        QCOMPARE(firstFormat(30).fontWeight(), highlightKeywordWeight);
    }

    // Keystrokes that leave the carried state alone (a "--", a word) leave no work behind.
    void lineLocalEditsLeaveNoWork_data()
    {
        QTest::addColumn<QStringList>("keystrokes");
        QTest::newRow("comment mark") << QStringList{u"-"_s, u"-"_s};
        QTest::newRow("keyword") << QStringList{u"s"_s, u"e"_s, u"l"_s, u"e"_s, u"c"_s, u"t"_s, u" "_s};
        QTest::newRow("pasted quote pair") << QStringList{u"''"_s};
        QTest::newRow("line break") << QStringList{u"\n"_s};
    }
    void lineLocalEditsLeaveNoWork()
    {
        QFETCH(QStringList, keystrokes);
        QTextDocument document;
        document.setPlainText(numberedLines(500, u"select '%1' from t;\n"_s));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.finishPendingWork();
        QTextCursor cursor(document.findBlockByNumber(100));
        cursor.setPosition(cursor.position() + 7);
        for (const QString &keystroke : keystrokes) {
            cursor.insertText(keystroke);
            QVERIFY(!driver.hasPendingWork());
        }
        QCOMPARE(wrongColours(document, driver), QList<int>());
    }

    void themeAndFontSizeRecolour()
    {
        QTextDocument document;
        document.setPlainText(numberedLines(200, u"select %1 -- c\n"_s));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.finishPendingWork();
        QSignalSpy sizeSpy(&driver, &SQLHighlightDriver::fontSizeChanged);
        driver.setFontSize(20);
        driver.setFontSize(20);
        QCOMPARE(sizeSpy.count(), 1);
        driver.setCommentColor(Qt::red);
        driver.setPlainColor(Qt::blue);
        driver.finishPendingWork();
        QCOMPARE(wrongColours(document, driver), QList<int>());
        const QList<QTextLayout::FormatRange> ranges = document.lastBlock().previous().layout()->formats();
        QCOMPARE(ranges.last().format.foreground().color(), QColor(Qt::red));
        QCOMPARE(ranges.last().format.fontPointSize(), 20.0);
    }

    void documentGoneWhileWorkIsPending()
    {
        auto *document = new QTextDocument;
        document->setPlainText(numberedLines(2000, u"'%1\n"_s));
        SQLHighlightDriver driver;
        driver.setDocument(document);
        QVERIFY(driver.hasPendingWork());
        delete document;
        QCOMPARE(driver.document(), nullptr);
        QVERIFY(!driver.hasPendingWork());
        driver.runPendingSlice();
        driver.applyHighlighting();
    }
};

QTEST_MAIN(TestSQLHighlightDriver)
#include "tst_sqlhighlightdriver.moc"
