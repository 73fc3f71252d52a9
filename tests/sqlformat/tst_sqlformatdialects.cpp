#include "sqldialectreader.h"
#include "sqlformatter.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using Dialect = SqlDialectReader::Dialect;

namespace {

// The first statement whose tokens differ between `before` and `after` as `dialect` reads
// them, described; empty when none does. `changed` gets how many differ.
QString firstChange(Dialect dialect, const QString &before, const QString &after, qsizetype &changed)
{
    const QList<QStringList> was = SqlDialectReader::statements(dialect, before);
    const QList<QStringList> is = SqlDialectReader::statements(dialect, after);
    QString first;
    changed = std::abs(was.size() - is.size());
    for (qsizetype i = 0; i < std::min(was.size(), is.size()); ++i) {
        if (was[i] == is[i])
            continue;
        ++changed;
        if (first.isEmpty()) {
            qsizetype k = 0;
            while (k < std::min(was[i].size(), is[i].size()) && was[i][k] == is[i][k])
                ++k;
            first = u"%1, statement %2, token %3: was %4, is %5 (in: %6)"_s.arg(
                SqlDialectReader::name(dialect), QString::number(i), QString::number(k),
                was[i].value(k).left(200), is[i].value(k).left(200), was[i].mid(0, 12).join(u' ').left(300));
        }
    }
    if (first.isEmpty() && was.size() != is.size())
        first = u"%1: %2 statements became %3"_s.arg(SqlDialectReader::name(dialect))
                    .arg(was.size())
                    .arg(is.size());
    return first;
}

// A script that sets a delimiter is a MySQL client's, one with COPY data up to a "\." line
// psql's: the formatter reads them as only that client does, and the other readings need not
// hold.
QList<Dialect> readers(const QString &text)
{
    static const QRegularExpression delimiter(u"^[ \\t]*DELIMITER[ \\t]+\\S"_s,
                                              QRegularExpression::MultilineOption |
                                                  QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression copyData(u"^\\\\\\.\r?$"_s, QRegularExpression::MultilineOption);
    if (delimiter.match(text).hasMatch())
        return {Dialect::MySql};
    if (copyData.match(text).hasMatch())
        return {Dialect::Postgres};
    return {std::begin(SqlDialectReader::all), std::end(SqlDialectReader::all)};
}

QString randomScript(QRandomGenerator &random, int pieces)
{
    static const QStringList parts =
        u"select|from|where|as|count|count(*)|t|x|1|;|;|,|(|)|=| | | |\n|\n|\r\n|\t|'a'|'it''s'|'a\\'|'\\\\'|"
        "\"n\"|\"a\"\"b\"|`c`|[d]|[e]]f]|N'x'|E'y\\''|X'0F'|_utf8'z'|q'[w';]'|nq'{v}'|U&'u'|-- c|--x|-- it's|"
        "#h|# it's|/* b */|/* it's */|/*! 40101 */|/* /* n */ */|$$|$$ a; $$|$f$ b $f$|$1|a$b|'|\"|`|[|--|"
        "/*|*/|\\|\nGO\n|\ngo 2\n|\nDELIMITER //\n|\nDELIMITER ;\n|//|\n\\connect db\n|\n/\n|\nrem x\n|"
        "\nbegin\n|declare|create or replace procedure p as|end;|copy t from stdin;\n1\t'a\n\\.\n|"
        "insert into t values|case|when|then|end|left|join|on|and|or|union|group by|order by"_s.split(u'|');
    QString script;
    for (int i = 0; i < pieces; ++i)
        script += parts[random.bounded(int(parts.size()))];
    return script;
}

} // namespace

// Formatting never changes what a database reads: every dialect's client and lexer read the
// same statements, strings, names and comments before and after.
class TestSqlFormatDialects : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Real scripts of the five dialects from public sources: the project's own samples, those
    // of the formatter's golden tests, and the benchmark corpus's sources.
    void realScripts_data()
    {
        QTest::addColumn<QString>("path");
        const QStringList folders = {QStringLiteral(VARNHOLT_TEST_DATA "/dialects"),
                                     QStringLiteral(VARNHOLT_TEST_DATA "/input"),
                                     QStringLiteral(VARNHOLT_BENCH_CORPUS "/src")};
        for (const QString &folder : folders) {
            const QFileInfoList files = QDir(folder).entryInfoList({u"*.sql"_s}, QDir::Files, QDir::Name);
            QVERIFY2(!files.isEmpty(), qPrintable(folder));
            for (const QFileInfo &file : files)
                QTest::newRow(qPrintable(QDir(folder).dirName() + u'/' + file.fileName())) << file.filePath();
        }
    }
    void realScripts()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        const QString formatted = formatSQL(text);
        for (const Dialect dialect : readers(text)) {
            qsizetype changed = 0;
            const QString change = firstChange(dialect, text, formatted, changed);
            QVERIFY2(change.isEmpty(), qPrintable(u"%1 statements changed; %2"_s.arg(changed).arg(change)));
        }
    }

    // Scripts made of the marks where dialects part ways, in any order.
    void randomScripts_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<int>("pieces");
        QTest::newRow("short") << 1u << 8;
        QTest::newRow("medium") << 2u << 30;
        QTest::newRow("long") << 3u << 120;
    }
    void randomScripts()
    {
        QFETCH(quint32, seed);
        QFETCH(int, pieces);
        QRandomGenerator random(seed);
        // VARNHOLT_EXTRA_ROUNDS lengthens the run by hand; a failure prints its whole input.
        const int rounds = 3000 + qEnvironmentVariableIntValue("VARNHOLT_EXTRA_ROUNDS");
        for (int round = 0; round < rounds; ++round) {
            const QString text = randomScript(random, 1 + random.bounded(pieces));
            const QString formatted = formatSQL(text);
            for (const Dialect dialect : readers(text)) {
                qsizetype changed = 0;
                const QString change = firstChange(dialect, text, formatted, changed);
                if (!change.isEmpty())
                    qWarning("input: %s", text.toUtf8().toPercentEncoding().constData());
                QVERIFY2(change.isEmpty(),
                         qPrintable(u"%1\ninput:  %2\noutput: %3"_s.arg(
                             change, QString::fromUtf8(text.toUtf8().toPercentEncoding(" ")),
                             QString::fromUtf8(formatted.toUtf8().toPercentEncoding(" ")))));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestSqlFormatDialects)
#include "tst_sqlformatdialects.moc"
