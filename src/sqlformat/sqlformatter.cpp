#include "sqlformatter.h"

#include "sqlformatterflatten.h"
#include "sqlformatterlayout.h"
#include "sqlformatterstatement.h"
#include "sqltokenchars.h"
#include "sqltokenizer.h"

using namespace Qt::StringLiterals;

namespace {

QStringView trimmed(QStringView text)
{
    const qsizetype start = SqlTokenChars::trimmedStart(text);
    return text.sliced(start, SqlTokenChars::trimmedEnd(text.sliced(start)));
}

// Calls `statementFound` with each statement of `text`, each with its ";". A "--" comment runs
// through its line feed; quotes have no escape, so a doubled quote closes and reopens.
template<typename Callback>
void forEachStatement(QStringView text, Callback &&statementFound)
{
    const qsizetype size = text.size();
    qsizetype start = 0;
    qsizetype i = 0;
    while (i < size) {
        const char16_t c = text[i].unicode();
        if (c == u'-') {
            if (SqlTokenChars::isDoubleDash(text, i)) {
                i = SqlTokenChars::lineFeedFrom(text, i + 2) + 1;
                continue;
            }
        } else if (c == u'\'' || c == u'"') {
            if (SqlTokenChars::standsAlone(text, i)) {
                qsizetype k = i + 1;
                for (;; ++k) {
                    k = text.indexOf(QChar(c), k);
                    if (k < 0 || SqlTokenChars::standsAlone(text, k))
                        break;
                }
                i = k < 0 ? size : k + 1;
                continue;
            }
        } else if (c == u';' && SqlTokenChars::standsAlone(text, i)) {
            statementFound(text.sliced(start, i + 1 - start));
            start = i + 1;
        }
        ++i;
    }
    if (start < size && SqlTokenChars::trimmedStart(text.sliced(start)) < size - start)
        statementFound(text.sliced(start));
}

// Where the statement's code begins: behind the lines at its head that are blank or begin
// with "--" (blanks and tabs ignored). -1 when there is no other line.
qsizetype codeStart(QStringView statement)
{
    qsizetype line = 0;
    for (;;) {
        const qsizetype lineEnd = SqlTokenChars::lineFeedFrom(statement, line);
        qsizetype i = line;
        while (i < lineEnd &&
               (statement[i] == u'\t' || (statement[i] == u' ' && SqlTokenChars::standsAlone(statement, i))))
            ++i;
        if (i < lineEnd && !SqlTokenChars::isDoubleDash(statement.first(lineEnd), i))
            return line;
        if (lineEnd == statement.size())
            return -1;
        line = lineEnd + 1;
    }
}

// Flattening the body only moves white space around brackets, commas and semicolons outside
// quoted strings and comments, which never changes its tokens, unless a line end turned blank
// merges with a mark beside it. So the tokens are read from the body itself, and the flat text
// is built only when the tokenizer meets such a line end.
void layOut(QStringView leadingBlock, QStringView body, QString &out, SqlFlattening flattening)
{
    const qsizetype mark = out.size();
    if (flattening == SqlFlattening::Automatic) {
        SqlFormatterLayout layout(out);
        if (!leadingBlock.isEmpty())
            layout.beginWithLeadingBlock(leadingBlock);
        SqlTokenizer tokenizer(body, true);
        SqlToken token;
        while (tokenizer.next(token) && !tokenizer.flatteningMergesCharacters())
            layout.add(token);
        if (!tokenizer.flatteningMergesCharacters()) {
            layout.finish();
            return;
        }
        out.truncate(mark);
    }
    const QString flat = flattenSqlBody(body);
    SqlFormatterLayout layout(out);
    if (!leadingBlock.isEmpty())
        layout.beginWithLeadingBlock(leadingBlock);
    SqlTokenizer tokenizer(flat);
    SqlToken token;
    while (tokenizer.next(token))
        layout.add(token);
    layout.finish();
}

} // namespace

void appendFormattedStatement(QStringView statement, QString &out, SqlFlattening flattening)
{
    const qsizetype code = codeStart(statement);
    if (code < 0) {
        out.append(trimmed(statement));
        return;
    }
    layOut(statement.first(code), statement.sliced(code), out, flattening);
}

QString formatSQL(QStringView text)
{
    QString out;
    out.reserve(text.size() + text.size() / 8 + 16);
    forEachStatement(text, [&out](QStringView statement) {
        const qsizetype mark = out.size();
        if (mark > 0)
            out.append(u"\n\n");
        const qsizetype start = out.size();
        appendFormattedStatement(statement, out);
        if (out.size() == start)
            out.truncate(mark);
    });
    if (out.capacity() > 2 * out.size() + 1024)
        out.squeeze();
    return out;
}

QStringList splitStatements(QStringView text)
{
    QStringList statements;
    forEachStatement(text, [&statements](QStringView statement) { statements.append(statement.toString()); });
    return statements;
}

QString formatStatement(QStringView statement)
{
    QString out;
    appendFormattedStatement(statement, out);
    return out;
}

QStringList tokenizeSQL(QStringView statement)
{
    QStringList tokens;
    SqlTokenizer tokenizer(statement);
    SqlToken token;
    while (tokenizer.next(token))
        tokens.append(token.text.toString());
    return tokens;
}
