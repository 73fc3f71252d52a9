#include "textdiff.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using Kind = TextDiffRow::Kind;

namespace {

// A text's lines: every line end ends one, and a last line without one is a line too.
QStringList linesOf(QString text)
{
    if (text.isEmpty())
        return {};
    text.replace(u"\r\n"_s, u"\n"_s);
    if (text.endsWith(u'\n'))
        text.chop(1);
    return text.split(u'\n');
}

// The new text made from the old one and the rows: what a reader of the diff would rebuild.
QStringList applied(const QString &oldText, const QList<TextDiffRow> &rows)
{
    const QStringList old = linesOf(oldText);
    QStringList result;
    for (const TextDiffRow &row : rows) {
        switch (row.kind) {
        case Kind::Context:
            result.append(old.value(row.oldNumber - 1));
            if (old.value(row.oldNumber - 1) != row.text)
                return {u"context line %1 is not the old line"_s.arg(row.oldNumber)};
            break;
        case Kind::Fold:
            result.append(old.mid(row.oldNumber - 1, row.foldedLines));
            break;
        case Kind::Added:
            result.append(row.text);
            break;
        case Kind::Removed:
            break;
        }
    }
    return result;
}

QString describe(const QList<TextDiffRow> &rows)
{
    QStringList out;
    for (const TextDiffRow &row : rows) {
        if (row.kind == Kind::Fold) {
            out.append(u"… %1 lines"_s.arg(row.foldedLines));
            continue;
        }
        QString text = row.text;
        for (qsizetype k = row.changedWords.size(); k-- > 0;) {
            const TextDiffRow::Range range = row.changedWords.at(k);
            text.insert(range.start + range.length, u']');
            text.insert(range.start, u'[');
        }
        out.append(QString(u" -+"[int(row.kind)]) + text);
    }
    return out.join(u'\n');
}

QString randomText(QRandomGenerator &random, int lines)
{
    static const QStringList pieces = {u"SELECT a"_s, u"FROM t"_s,     u"WHERE x = 1"_s, u""_s, u"  AND y"_s,
                                       u"-- note"_s,  u"ORDER BY a"_s, u"'é'"_s,         u"x"_s};
    QString text;
    for (int i = 0; i < lines; ++i)
        text += pieces.at(random.bounded(int(pieces.size()))) + (random.bounded(8) ? u"\n"_s : u"\r\n"_s);
    if (random.bounded(3) == 0 && !text.isEmpty())
        text.chop(1);
    return text;
}

} // namespace

// The version sheet's comparison: rows that rebuild the new text, folds, word marks.
class TestTextDiff : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shapes_data()
    {
        QTest::addColumn<QString>("oldText");
        QTest::addColumn<QString>("newText");
        QTest::addColumn<QString>("expected");
        QTest::newRow("both empty") << QString() << QString() << QString();
        QTest::newRow("from nothing") << QString() << u"SELECT 1;"_s << u"+SELECT 1;"_s;
        QTest::newRow("to nothing") << u"SELECT 1;\n"_s << QString() << u"-SELECT 1;"_s;
        QTest::newRow("a word changed")
            << u"SELECT a, b\nFROM orders\nWHERE id = 1;"_s << u"SELECT a, b\nFROM orders\nWHERE id = 2;"_s
            << u" SELECT a, b\n FROM orders\n-WHERE id = [1];\n+WHERE id = [2];"_s;
        QTest::newRow("line ends of either kind are the same")
            << u"a\r\nb\r\nc"_s << u"a\nb\nc\n"_s << u"… 3 lines"_s;
        QTest::newRow("far apart changes fold between")
            << u"1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n"_s
            << u"one\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\ntwelve\n"_s
            << u"-1\n+one\n 2\n 3\n 4\n… 4 lines\n 9\n 10\n 11\n-12\n+twelve"_s;
    }
    void shapes()
    {
        QFETCH(QString, oldText);
        QFETCH(QString, newText);
        QFETCH(QString, expected);
        QCOMPARE(describe(TextDiff::compare(oldText, newText)), expected);
    }

    // Rebuilding the new text from the old one and the rows gives the new text, on random texts
    // and on real SQL with lines changed, added and removed.
    void rowsRebuildTheNewText()
    {
        QRandomGenerator random(7);
        for (int round = 0; round < 500; ++round) {
            const QString oldText = randomText(random, random.bounded(30));
            const QString newText = randomText(random, random.bounded(30));
            QCOMPARE(applied(oldText, TextDiff::compare(oldText, newText)), linesOf(newText));
        }
        QFile corpus(QStringLiteral(VARNHOLT_TEST_VECTORS "/../bench-corpus/sql-100k.sql"));
        QVERIFY(corpus.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(corpus.readAll()).split(u'\n');
        QStringList changed = lines;
        for (int i = 0; i < 200; ++i) {
            const int at = random.bounded(int(changed.size()));
            switch (random.bounded(3)) {
            case 0:
                changed[at].append(u" -- edited"_s);
                break;
            case 1:
                changed.insert(at, u"INSERT INTO t VALUES (%1);"_s.arg(i));
                break;
            default:
                changed.removeAt(at);
                break;
            }
        }
        const QString oldText = lines.join(u'\n');
        const QString newText = changed.join(u'\n');
        QCOMPARE(applied(oldText, TextDiff::compare(oldText, newText)), linesOf(newText));
    }

    // Golden pairs: each of the formatter's golden inputs against its formatted reference
    // (real SQL of several dialects, before and after a layout), compared with the diff kept in
    // data/reference. VARNHOLT_UPDATE_REFERENCES=1 writes them (tools/update-diff-references.sh).
    void goldenPairs_data()
    {
        QTest::addColumn<QString>("name");
        const QDir inputs(QStringLiteral(VARNHOLT_FORMATTER_DATA "/input"));
        const QStringList names = inputs.entryList({u"*.sql"_s}, QDir::Files, QDir::Name);
        QVERIFY(!names.isEmpty());
        for (const QString &name : names)
            QTest::newRow(qPrintable(name)) << name;
    }
    void goldenPairs()
    {
        QFETCH(QString, name);
        const auto read = [](const QString &path) {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        };
        const QString oldText = read(QStringLiteral(VARNHOLT_FORMATTER_DATA "/input/") + name);
        const QString newText = read(QStringLiteral(VARNHOLT_FORMATTER_DATA "/reference/") + name);
        const QList<TextDiffRow> rows = TextDiff::compare(oldText, newText);
        QCOMPARE(applied(oldText, rows), linesOf(newText));
        const QString diff = describe(rows) + u'\n';
        const QString referencePath =
            QStringLiteral(VARNHOLT_TEST_DATA "/reference/") + QFileInfo(name).baseName() + u".diff"_s;
        if (qEnvironmentVariableIsSet("VARNHOLT_UPDATE_REFERENCES")) {
            QFile file(referencePath);
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(diff.toUtf8());
            return;
        }
        QCOMPARE(diff, read(referencePath));
    }

    // A megabyte on one line compares, and is marked whole rather than word by word.
    void longLine()
    {
        const QString oldLine = QString(1 << 20, u'a');
        QString newLine = oldLine;
        newLine[500] = u'b';
        const QList<TextDiffRow> rows = TextDiff::compare(oldLine, newLine);
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(1).changedWords.constFirst().length, newLine.size());
    }
};

QTEST_GUILESS_MAIN(TestTextDiff)
#include "tst_textdiff.moc"
