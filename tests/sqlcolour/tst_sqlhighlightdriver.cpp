#include "colourcheck.h"
#include "randomsql.h"
#include "sqlhighlightdriver.h"
#include "sqlhighlighter.h"

#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>

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
    // Long random edit sequences. After each, the blocks a view would show are asked for and
    // must carry the whole-text colours at once; now and then every block is asked for.
    void randomEdits_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<int>("pieces");
        QTest::addColumn<int>("steps");
        QTest::newRow("small text") << 101u << 40 << 600;
        QTest::newRow("larger text") << 102u << 600 << 1500;
        QTest::newRow("empty start") << 106u << 0 << 1500;
    }
    void randomEdits()
    {
        QFETCH(quint32, seed);
        QFETCH(int, pieces);
        QFETCH(int, steps);
        QRandomGenerator random(seed);
        QTextDocument document;
        document.setPlainText(randomsql::text(random, pieces, true));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.colourAll();
        QCOMPARE(wrongColours(document, driver), QList<int>());
        for (int step = 0; step < steps; ++step) {
            const QString edit = randomEdit(random, document);
            const int first = random.bounded(document.blockCount());
            const int last = first + random.bounded(40);
            for (QTextBlock block = document.findBlockByNumber(first); block.isValid() && block.blockNumber() <= last;
                 block = block.next())
                driver.colourBlock(block);
            QList<int> wrong = wrongColours(document, driver, first, last);
            if (wrong.isEmpty() && random.bounded(10) == 0) {
                driver.colourAll();
                wrong = wrongColours(document, driver);
            }
            QVERIFY2(wrong.isEmpty(),
                     qPrintable(u"step %1, %2: block %3 %4"_s.arg(step)
                                    .arg(edit)
                                    .arg(wrong.value(0))
                                    .arg(document.findBlockByNumber(wrong.value(0)).text().left(200))));
        }
    }

    // A quote typed near the top changes every line below; only the lines asked for are
    // coloured again, each once, and the others when they are asked for.
    void quoteRecoloursWhatIsAskedFor()
    {
        QTextDocument document;
        document.setPlainText(numberedLines(3000, u"insert into t values (%1, 'it''s', 2.5); -- note\n"_s));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.colourAll();

        QTextCursor cursor(document.findBlockByNumber(2));
        cursor.insertText(u"'"_s);
        for (int number = 0; number <= 40; ++number)
            QCOMPARE(driver.colourBlock(document.findBlockByNumber(number)), number >= 2);
        QVERIFY(!driver.colourBlock(document.findBlockByNumber(20)));
        QCOMPARE(wrongColours(document, driver).constFirst(), 41);

        // Taking the quote back leaves the lines' old colours right again: far below, a line
        // coloured before the quote and not asked for since needs nothing.
        cursor.deletePreviousChar();
        QVERIFY(!driver.colourBlock(document.findBlockByNumber(2000)));
        QVERIFY(driver.colourBlock(document.findBlockByNumber(30)));
        driver.colourAll();
        QCOMPARE(wrongColours(document, driver), QList<int>());
    }

    // A block comment opened near the top runs to a "*/" far below: the lines asked for take
    // the comment colour, and lose it again when the close goes, the far ones included.
    void blockCommentOverLines()
    {
        QTextDocument document;
        document.setPlainText(numberedLines(3000, u"select %1;\n"_s).replace(u"select 2500;"_s, u"*/"_s));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.colourAll();
        const auto firstFormat = [&](int blockNumber) {
            const QTextBlock block = document.findBlockByNumber(blockNumber);
            driver.colourBlock(block);
            return block.layout()->formats().constFirst().format;
        };
        QCOMPARE(firstFormat(30).fontWeight(), highlightKeywordWeight);

        QTextCursor cursor(document.findBlockByNumber(2));
        cursor.insertText(u"/*"_s);
        QCOMPARE(firstFormat(30).foreground().color(), driver.commentColor());
        QCOMPARE(firstFormat(30).fontWeight(), highlightPlainWeight);
        QCOMPARE(firstFormat(2499).foreground().color(), driver.commentColor());
        QCOMPARE(firstFormat(2501).fontWeight(), highlightKeywordWeight);

        QTextCursor close(document.findBlockByNumber(2500));
        close.select(QTextCursor::BlockUnderCursor);
        close.removeSelectedText();
        // A "/*" that nothing closes opens no comment.
        QCOMPARE(firstFormat(2600).fontWeight(), highlightKeywordWeight);
        driver.colourAll();
        QCOMPARE(wrongColours(document, driver), QList<int>());
        QCOMPARE(firstFormat(1).fontWeight(), highlightKeywordWeight);
    }

    // Keystrokes that leave the carried state alone (a "--", a word) make only their own line
    // need colours again.
    void lineLocalEditsRecolourTheirLine_data()
    {
        QTest::addColumn<QStringList>("keystrokes");
        QTest::addColumn<QList<int>>("recoloured");
        QTest::newRow("comment mark") << QStringList{u"-"_s, u"-"_s} << QList<int>{100};
        QTest::newRow("keyword") << QStringList{u"s"_s, u"e"_s, u"l"_s, u"e"_s, u"c"_s, u"t"_s, u" "_s}
                                 << QList<int>{100};
        QTest::newRow("pasted quote pair") << QStringList{u"''"_s} << QList<int>{100};
        QTest::newRow("line break") << QStringList{u"\n"_s} << QList<int>{100, 101};
    }
    void lineLocalEditsRecolourTheirLine()
    {
        QFETCH(QStringList, keystrokes);
        QFETCH(QList<int>, recoloured);
        QTextDocument document;
        document.setPlainText(numberedLines(500, u"select '%1' from t;\n"_s));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.colourAll();
        QTextCursor cursor(document.findBlockByNumber(100));
        cursor.setPosition(cursor.position() + 7);
        for (const QString &keystroke : keystrokes)
            cursor.insertText(keystroke);
        QList<int> asked;
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
            if (driver.colourBlock(block))
                asked.append(block.blockNumber());
        }
        QCOMPARE(asked, recoloured);
        QCOMPARE(wrongColours(document, driver), QList<int>());
    }

    void themeAndFontSizeRecolour()
    {
        QTextDocument document;
        document.setPlainText(numberedLines(200, u"select %1 -- c\n"_s));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.colourAll();
        QSignalSpy sizeSpy(&driver, &SQLHighlightDriver::fontSizeChanged);
        QSignalSpy coloursSpy(&driver, &SQLHighlightDriver::coloursChanged);
        driver.setFontSize(20);
        driver.setFontSize(20);
        QCOMPARE(sizeSpy.count(), 1);
        driver.setCommentColor(Qt::red);
        driver.setPlainColor(Qt::blue);
        QCOMPARE(coloursSpy.count(), 3);
        driver.colourAll();
        QCOMPARE(wrongColours(document, driver), QList<int>());
        const QList<QTextLayout::FormatRange> ranges = document.lastBlock().previous().layout()->formats();
        QCOMPARE(ranges.last().format.foreground().color(), QColor(Qt::red));
        QCOMPARE(ranges.last().format.fontPointSize(), 20.0);
    }

    // Colours put on a block outside an edit must not stretch the next edit's reported change
    // back to that block.
    void colouringLeavesEditsTheirOwnRange()
    {
        QTextDocument document;
        document.setPlainText(numberedLines(100, u"select %1;\n"_s));
        SQLHighlightDriver driver;
        driver.setDocument(&document);
        driver.colourBlock(document.findBlockByNumber(3));
        QSignalSpy changes(&document, &QTextDocument::contentsChange);
        QTextCursor cursor(document.findBlockByNumber(90));
        cursor.insertText(u"x"_s);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(changes.constFirst().at(0).toInt(), document.findBlockByNumber(90).position());
    }

    // Blocks of other documents, and a document deleted under the driver, leave it unharmed.
    void foreignAndDeletedDocuments()
    {
        auto *document = new QTextDocument;
        document->setPlainText(numberedLines(2000, u"'%1\n"_s));
        SQLHighlightDriver driver;
        driver.setDocument(document);
        QTextDocument other(u"select 1"_s);
        QVERIFY(!driver.colourBlock(other.begin()));
        delete document;
        QCOMPARE(driver.document(), nullptr);
        QVERIFY(!driver.colourBlock(other.begin()));
        driver.colourAll();
    }
};

QTEST_MAIN(TestSQLHighlightDriver)
#include "tst_sqlhighlightdriver.moc"
