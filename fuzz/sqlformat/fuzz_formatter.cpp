// libFuzzer target for the SQL formatter. Any text must format without a crash, a hang or
// sanitizer report; the two routes to a statement's tokens must agree; and no dialect may read
// the result differently from the text: the tests' reader of the five dialects (the same
// statements, strings, names, comments and client lines) is the judge.
//
// The first byte picks the decoding of the rest: UTF-8 (invalid bytes become U+FFFD), or raw
// UTF-16 so that lone surrogates and any code unit can occur.
#include "sqldialectreader.h"
#include "sqlformatter.h"
#include "sqlformatterstatement.h"
#include "sqltokenchars.h"

#include <QRegularExpression>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

QString decoded(const uint8_t *data, size_t size)
{
    if (size == 0)
        return {};
    if ((data[0] & 1) == 0)
        return QString::fromUtf8(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    QString text((size - 1) / 2, Qt::Uninitialized);
    std::memcpy(text.data(), data + 1, size_t(text.size()) * 2);
    return text;
}

[[noreturn]] void fail(const char *what, const QString &text, const QString &ours, const QString &theirs)
{
    std::fprintf(stderr, "%s\ninput:  %s\nformatted: %s\nexpected:  %s\n", what,
                 text.toUtf8().toPercentEncoding(" ").constData(), qUtf8Printable(ours),
                 qUtf8Printable(theirs));
    std::abort();
}

// As the dialect test has it: a script that sets a delimiter is MySQL's alone, one with COPY
// data psql's.
QList<SqlDialectReader::Dialect> readers(const QString &text)
{
    static const QRegularExpression delimiter(u"^[ \\t]*DELIMITER[ \\t]+\\S"_s,
                                              QRegularExpression::MultilineOption |
                                                  QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression copyData(u"^\\\\\\.\r?$"_s, QRegularExpression::MultilineOption);
    if (delimiter.match(text).hasMatch())
        return {SqlDialectReader::Dialect::MySql};
    if (copyData.match(text).hasMatch())
        return {SqlDialectReader::Dialect::Postgres};
    return {std::begin(SqlDialectReader::all), std::end(SqlDialectReader::all)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = decoded(data, size);
    const QString formatted = formatSQL(text);
    if (formatSQL(text) != formatted)
        fail("not deterministic", text, formatted, formatSQL(text));

    for (const SqlPiece &piece : sqlPieces(text)) {
        if (piece.isClientLines)
            continue;
        QString automatic;
        QString literal;
        appendFormattedStatement(piece.text, automatic, SqlFlattening::Automatic, piece.options);
        appendFormattedStatement(piece.text, literal, SqlFlattening::Literal, piece.options);
        if (automatic != literal)
            fail("the routes to the tokens disagree", piece.text.toString(), automatic, literal);
    }

    const QList<SqlDialectReader::Dialect> dialects = readers(text);

    // The formatter reads punctuation and white space by user-perceived characters, as its
    // rules ask: a mark on a ";" or a prepended character before it makes it part of a word,
    // where a database still sees a ";". Such texts are left out of the comparison.
    for (const char32_t c : text.toUcs4()) {
        if (SqlTokenChars::isJoiner(c) || SqlTokenChars::isPrepend(c))
            return 0;
    }
    for (const SqlDialectReader::Dialect dialect : dialects) {
        const QList<QStringList> before = SqlDialectReader::statements(dialect, text);
        const QList<QStringList> after = SqlDialectReader::statements(dialect, formatted);
        if (before != after) {
            QStringList was;
            QStringList is;
            for (const QStringList &statement : before)
                was.append(statement.join(u'|'));
            for (const QStringList &statement : after)
                is.append(statement.join(u'|'));
            fail(qPrintable(SqlDialectReader::name(dialect) + u" reads it differently"_s), text,
                 is.join(u"\n"), was.join(u"\n"));
        }
    }
    return 0;
}
