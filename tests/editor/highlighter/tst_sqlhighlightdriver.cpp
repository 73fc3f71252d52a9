#include "randomsql.h"
#include "sqlhighlightdriver.h"
#include "sqlhighlighter.h"

#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>

#include <limits>

namespace {

// The formats a block must have: the whole-text editor pass, clipped to the block.
QList<QTextLayout::FormatRange> expectedFormats(const QList<SQLHighlightSpan> &spans, const QTextBlock &block,
                                                const SQLHighlightFormats &formats)
{
    const qsizetype from = block.position();
    const qsizetype to = from + block.length() - 1;
    QList<SQLHighlightSpan> clipped;
    for (const SQLHighlightSpan &span : spans) {
        if (span.end() > from && span.start < to)
            clipped.append({std::max(span.start, from) - from,
                            std::min(span.end(), to) - std::max(span.start, from), span.role,
                            span.hasKeywordWeight});
    }
    return formats.formatRanges(clipped, to - from);
}

// The first block whose formats differ from the whole-text pass, or -1.
int firstWrongBlock(const QTextDocument &document, const SQLHighlightDriver &driver)
{
    const QList<SQLHighlightSpan> spans = SQLHighlighter::editorSpans(document.toPlainText());
    const SQLHighlightFormats formats(driver.plainColor(), driver.commentColor(), driver.fontSize());
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.layout()->formats() != expectedFormats(spans, block, formats))
            return block.blockNumber();
    }
    return -1;
}

bool blockIsRight(const QTextDocument &document, const SQLHighlightDriver &driver, int number)
{
    const QList<SQLHighlightSpan> spans = SQLHighlighter::editorSpans(document.toPlainText());
    const SQLHighlightFormats formats(driver.plainColor(), driver.commentColor(), driver.fontSize());
    const QTextBlock block = document.findBlockByNumber(number);
    return block.layout()->formats() == expectedFormats(spans, block, formats);
}

// One random edit through a cursor, as typing, deleting, pasting and undoing make them.
QString randomEdit(QRandomGenerator &random, QTextDocument &document)
{
    QTextCursor cursor(&document);
    const auto position = [&] { return random.bounded(document.characterCount()); };
    const auto select = [&](int maxLength) {
        const int from = position();
        cursor.setPosition(from);
        cursor.setPosition(std::min(document.characterCount() - 1, from + random.bounded(maxLength + 1)),
                           QTextCursor::KeepAnchor);
    };
    switch (random.bounded(12)) {
    case 0:
    case 1: {
        const QString text = randomsql::text(random, 1 + random.bounded(3), true);
        cursor.setPosition(position());
        cursor.insertText(text);
        return u"insert %1 at %2"_s.arg(text.toHtmlEscaped()).arg(cursor.position());
    }
    case 2:
        cursor.setPosition(position());
        cursor.insertText(u"'"_s);
        return u"quote at %1"_s.arg(cursor.position());
    case 3:
        cursor.setPosition(position());
        cursor.insertText(random.bounded(2) ? u"-"_s : u"--"_s);
        return u"dash at %1"_s.arg(cursor.position());
    case 4:
        cursor.setPosition(position());
        cursor.insertText(random.bounded(2) ? u"\n"_s : u"\r\n"_s);
        return u"line break at %1"_s.arg(cursor.position());
    case 5:
    case 6:
        select(20);
        cursor.removeSelectedText();
        return u"delete at %1"_s.arg(cursor.position());
    case 7:
        select(400);
        cursor.insertText(randomsql::text(random, random.bounded(120), true));
        return u"paste over a selection at %1"_s.arg(cursor.selectionStart());
    case 8: {
        // Two changes far apart in one edit block: one contentsChange spans both.
        cursor.beginEditBlock();
        cursor.setPosition(position());
        cursor.insertText(u"'"_s);
        cursor.setPosition(position());
        cursor.insertText(u"x'"_s);
        cursor.endEditBlock();
        return u"compound edit"_s;
    }
    case 9:
        document.undo();
        return u"undo"_s;
    case 10:
        document.redo();
        return u"redo"_s;
    default:
        if (random.bounded(8) == 0) {
            document.setPlainText(randomsql::text(random, random.bounded(300), true));
            return u"new text"_s;
        }
        select(3);
        cursor.insertText(u"SELECT"_s);
        return u"keyword at %1"_s.arg(cursor.position());
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
        QCOMPARE(firstWrongBlock(document, driver), -1);
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
            const int wrong = firstWrongBlock(document, driver);
            QVERIFY2(wrong < 0, qPrintable(u"step %1, %2: block %3 %4"_s.arg(step).arg(edit).arg(wrong).arg(
                                    document.findBlockByNumber(wrong).text().left(200))));
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
        for (int line = 0; line <= 40; ++line)
            QVERIFY2(blockIsRight(document, driver, line), qPrintable(QString::number(line)));
        QVERIFY(!blockIsRight(document, driver, 2000));
        QTRY_VERIFY(!driver.hasPendingWork()); // the idle slices, from the event loop
        QCOMPARE(firstWrongBlock(document, driver), -1);

        // Scrolling to lines not yet coloured colours them at once.
        cursor.insertText(u"'"_s);
        QVERIFY(!blockIsRight(document, driver, 2000));
        driver.setVisibleRange(document.findBlockByNumber(1990).position(),
                               document.findBlockByNumber(2010).position());
        QVERIFY(blockIsRight(document, driver, 2000));
        driver.finishPendingWork();
        QCOMPARE(firstWrongBlock(document, driver), -1);
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
        QCOMPARE(firstWrongBlock(document, driver), -1);
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
        QCOMPARE(firstWrongBlock(document, driver), -1);
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
