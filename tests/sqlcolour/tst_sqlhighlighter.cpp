#include "randomsql.h"
#include "sqlhighlighter.h"
#include "sqlhighlightformats.h"
#include "sqlhighlightreference.h"

#include <QDir>
#include <QFile>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>

using Engine = SQLHighlightReference::Engine;

namespace {

// The first pass that differs from the rules run literally, with both colourings; or nothing.
QString difference(const QString &text, bool withPcre)
{
    const auto describe = [](const QList<SQLHighlightSpan> &spans) {
        QStringList parts;
        for (const SQLHighlightSpan &span : spans)
            parts.append(u"%1+%2:%3%4"_s.arg(span.start)
                             .arg(span.length)
                             .arg(int(span.role))
                             .arg(span.hasKeywordWeight ? u"w"_s : QString()));
        return parts.join(u' ').left(2000);
    };
    const QList<std::pair<QList<SQLHighlightSpan>, QList<SQLHighlightSpan>>> pairs = {
        {SQLHighlighter::editorSpans(text), SQLHighlightReference::editorSpans(text, Engine::Icu)},
        {SQLHighlighter::highlightedContent(text),
         SQLHighlightReference::highlightedContent(text, Engine::Icu)},
        {SQLHighlighter::editorSpans(text), withPcre ? SQLHighlightReference::editorSpans(text, Engine::Pcre)
                                                     : SQLHighlighter::editorSpans(text)},
        {SQLHighlighter::highlightedContent(text),
         withPcre ? SQLHighlightReference::highlightedContent(text, Engine::Pcre)
                  : SQLHighlighter::highlightedContent(text)},
    };
    for (qsizetype i = 0; i < pairs.size(); ++i) {
        if (pairs[i].first != pairs[i].second)
            return u"comparison %1, text %2\nactual   %3\nexpected %4"_s.arg(
                QString::number(i), QString::fromLatin1(text.left(300).toUtf8().toPercentEncoding(" '-\n")),
                describe(pairs[i].first), describe(pairs[i].second));
    }
    return {};
}

// One letter per character: . plain, K keyword, T type, S string, N number, C comment; lower
// case where a keyword's weight lies under another colour (which should never be).
QString paint(const QList<SQLHighlightSpan> &spans, qsizetype length)
{
    QString result(length, u'.');
    for (const SQLHighlightSpan &span : spans) {
        const char16_t letter = u".KTSNC"[int(span.role)];
        for (qsizetype i = span.start; i < span.end(); ++i)
            result[i] = span.hasKeywordWeight && span.role != SQLHighlightRole::Keyword
                            ? QChar(letter).toLower()
                            : QChar(letter);
    }
    return result;
}

} // namespace

// The hand-written passes against the rules' regular expressions run literally.
class TestSQLHighlighter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void realWorldSql_data()
    {
        QTest::addColumn<QString>("path");
        QDir corpus(QStringLiteral(VARNHOLT_BENCH_CORPUS));
        QTest::newRow("sql-100k") << corpus.filePath(u"sql-100k.sql"_s);
        // The sources keep their byte-order marks and CRLF line ends.
        for (const QFileInfo &file :
             QDir(corpus.filePath(u"src"_s)).entryInfoList({u"*.sql"_s}, QDir::Files)) {
            if (file.size() <= 700'000)
                QTest::newRow(qPrintable(file.fileName())) << file.filePath();
        }
    }
    void realWorldSql()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(path));
        const QString text = QString::fromUtf8(file.readAll());
        const QString problem = difference(text, true);
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }

    void randomText_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<bool>("tricky");
        QTest::addColumn<int>("pieces");
        QTest::newRow("short common") << 1u << false << 12;
        QTest::newRow("long common") << 2u << false << 120;
        QTest::newRow("short tricky") << 3u << true << 12;
        QTest::newRow("long tricky") << 4u << true << 120;
    }
    void randomText()
    {
        QFETCH(quint32, seed);
        QFETCH(bool, tricky);
        QFETCH(int, pieces);
        QRandomGenerator random(seed);
        for (int round = 0; round < 1500; ++round) {
            const QString text = randomsql::text(random, random.bounded(pieces + 1), tricky);
            // PCRE2 agrees with ICU only away from the tricky characters.
            const QString problem = difference(text, !tricky);
            QVERIFY2(problem.isEmpty(), qPrintable(problem));
        }
    }

    // What the incremental driver relies on: a line coloured with its carried state gives the
    // whole-text colours clipped to the line.
    void lineByLine_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::newRow("a") << 11u;
        QTest::newRow("b") << 12u;
    }
    void lineByLine()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        for (int round = 0; round < 1500; ++round) {
            const QString text = randomsql::text(random, random.bounded(80), true);
            const QList<SQLHighlightSpan> whole = SQLHighlighter::editorSpans(text);
            SQLLineState state = SQLLineState::Code;
            QList<SQLHighlightSpan> line;
            for (qsizetype start = 0; start <= text.size();) {
                qsizetype end = start;
                while (end < text.size() && text[end] != u'\n' && text[end] != u'\r' &&
                       text[end] != u'\u2029')
                    ++end;
                const QStringView view = QStringView(text).mid(start, end - start);
                const bool quoteFollows = text.indexOf(u'\'', end) >= 0;
                const bool closeFollows = text.indexOf(u"*/", end) >= 0;
                const SQLLineState next =
                    SQLHighlighter::editorLineSpans(view, state, quoteFollows, closeFollows, line);
                QCOMPARE(SQLHighlighter::editorLineEndState(view, state, quoteFollows, closeFollows), next);
                QList<SQLHighlightSpan> expected;
                for (const SQLHighlightSpan &span : whole) {
                    const qsizetype from = std::max(span.start, start);
                    const qsizetype to = std::min(span.end(), end);
                    if (from < to)
                        expected.append({from - start, to - from, span.role, span.hasKeywordWeight});
                }
                QVERIFY2(line == expected,
                         qPrintable(QString::fromLatin1(text.toUtf8().toPercentEncoding())));
                state = next;
                start = end + 1;
            }
        }
    }

    // The rules' own corner cases, and the reading of \b, \d and line ends chosen for them.
    void cornerCases_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("editor");
        QTest::addColumn<QString>("readOnly");
        QTest::newRow("case ignored") << u"Select sELECT"_s << u"KKKKKK.KKKKKK"_s << u"KKKKKK.KKKKKK"_s;
        QTest::newRow("part of a longer word")
            << u"selects _in in_"_s << u"..............."_s << u"..............."_s;
        // Strings and comments are read as units: one colour, plain weight, no marks inside.
        QTest::newRow("keyword in string") << u"'select'"_s << u"SSSSSSSS"_s << u"SSSSSSSS"_s;
        QTest::newRow("keyword in comment") << u"-- from"_s << u"CCCCCCC"_s << u"CCCCCCC"_s;
        QTest::newRow("type and number in string") << u"'int 1'"_s << u"SSSSSSS"_s << u"SSSSSSS"_s;
        QTest::newRow("decimal") << u"1.5 1.2.3 1.5a"_s << u"N.N.N.N.N.N..."_s << u"NNN.NNN.N.N..."_s;
        QTest::newRow("dash dash in string") << u"'a--b' in\nc"_s << u"SSSSSS.KK.."_s << u"SSSSSS.KK.."_s;
        QTest::newRow("unterminated quote") << u"in 'abc"_s << u"KK....."_s << u"KK....."_s;
        QTest::newRow("odd last quote") << u"'a' 'b in"_s << u"SSS....KK"_s << u"SSS....KK"_s;
        QTest::newRow("unpaired quote then comment") << u"x ' -- in"_s << u"....CCCCC"_s << u"....CCCCC"_s;
        QTest::newRow("string over lines") << u"'a\nin\r\nb'"_s << u"SSSSSSSSS"_s << u"SSSSSSSSS"_s;
        QTest::newRow("quote in comment opens nothing")
            << u"-- it's\nin 'a'"_s << u"CCCCCCC.KK.SSS"_s << u"CCCCCCC.KK.SSS"_s;
        QTest::newRow("new user's first try")
            << u"SELECT 1; -- select from where"_s << u"KKKKKK.N..CCCCCCCCCCCCCCCCCCCC"_s
            << u"KKKKKK.N..CCCCCCCCCCCCCCCCCCCC"_s;
        QTest::newRow("comment then string")
            << u"/* select */ SELECT 'select from'"_s << u"CCCCCCCCCCCC.KKKKKK.SSSSSSSSSSSSS"_s
            << u"CCCCCCCCCCCC.KKKKKK.SSSSSSSSSSSSS"_s;
        QTest::newRow("block comment")
            << u"/* in 'a' 1 */ in"_s << u"CCCCCCCCCCCCCC.KK"_s << u"CCCCCCCCCCCCCC.KK"_s;
        QTest::newRow("block comment over lines")
            << u"/* a\nin */1"_s << u"CCCCCCCCCCN"_s << u"CCCCCCCCCCN"_s;
        QTest::newRow("block comment ends at first close")
            << u"/*/ */1/* x"_s << u"CCCCCCN...."_s << u"CCCCCCN...."_s;
        QTest::newRow("quote inside block comment")
            << u"/* it's */ 'a'"_s << u"CCCCCCCCCC.SSS"_s << u"CCCCCCCCCC.SSS"_s;
        QTest::newRow("comment marks inside string")
            << u"'/*' in '*/'"_s << u"SSSS.KK.SSSS"_s << u"SSSS.KK.SSSS"_s;
        QTest::newRow("double quotes") << u"\"in\" x\""_s << u".KK...."_s << u"SSSS..."_s;
        QTest::newRow("CR ends comment in editor only") << u"-- a\r\nin"_s << u"CCCC..KK"_s << u"CCCCC.KK"_s;
        QTest::newRow("LS ends comment in editor only") << u"--\u2028in"_s << u"CC.KK"_s << u"CCCCC"_s;
        QTest::newRow("CJK letters are word characters")
            << u"表1 中in 表 1"_s << u".........N"_s << u".........N"_s;
        QTest::newRow("any decimal digit") << u"１２ \u0661"_s << u"NN.N"_s << u"NN.N"_s;
        QTest::newRow("folded letters")
            << u"\u017Felect cro\u00DF \uFB02oat"_s << u"KKKKKK.KKKK.TTTT"_s << u"KKKKKK.KKKK.TTTT"_s;
        QTest::newRow("combining mark joins the word")
            << u"in\u0301 \u0301in"_s << u".....KK"_s << u".....KK"_s;
        QTest::newRow("byte order mark and soft hyphen")
            << u"\uFEFFin x\u00ADin"_s << u".KK....."_s << u".KK....."_s;
        QTest::newRow("superscript is no word character")
            << u"in\u00B2 2\u00B2"_s << u"KK..N."_s << u"KK..N."_s;
        QTest::newRow("lone surrogate") << QString(QChar(0xD800)) + u"in"_s << u".KK"_s << u".KK"_s;
    }
    void cornerCases()
    {
        QFETCH(QString, text);
        QFETCH(QString, editor);
        QFETCH(QString, readOnly);
        QCOMPARE(paint(SQLHighlighter::editorSpans(text), text.size()), editor);
        QCOMPARE(paint(SQLHighlighter::highlightedContent(text), text.size()), readOnly);
        // The expectations themselves are ICU's reading of the expressions.
        QCOMPARE(paint(SQLHighlightReference::editorSpans(text, Engine::Icu), text.size()), editor);
        QCOMPARE(paint(SQLHighlightReference::highlightedContent(text, Engine::Icu), text.size()), readOnly);
    }

    // Positions of the read-only document line up with its text even where the document
    // changes line ends.
    void readOnlyDocument()
    {
        const SQLHighlightFormats formats(Qt::black, Qt::gray, highlightReadOnlyFontSize);
        std::unique_ptr<QTextDocument> document(
            formats.highlightedDocument(u"select 1\r\n-- note\r\n'a' /* b */"_s));
        const QTextBlock last = document->lastBlock();
        QCOMPARE(last.text(), u"'a' /* b */"_s);
        const QList<QTextLayout::FormatRange> ranges = last.layout()->formats();
        QCOMPARE(ranges.size(), 3);
        QCOMPARE(ranges[0].format.foreground().color(), SQLHighlightFormats::colour(highlightStringColour));
        QCOMPARE(ranges[2].start, 4);
        QCOMPARE(ranges[2].format.foreground().color(), QColor(Qt::gray));
        QCOMPARE(ranges[2].format.fontPointSize(), highlightReadOnlyFontSize);
        const QTextLayout::FormatRange keyword = document->firstBlock().layout()->formats().constFirst();
        QCOMPARE(keyword.length, 6);
        QCOMPARE(keyword.format.fontWeight(), highlightKeywordWeight);
    }
};

QTEST_MAIN(TestSQLHighlighter)
#include "tst_sqlhighlighter.moc"
