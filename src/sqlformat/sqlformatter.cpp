#include "sqlformatter.h"

#include "sqldialectscan.h"
#include "sqlformatterflatten.h"
#include "sqlformatterlayout.h"
#include "sqlformatterstatement.h"
#include "sqltokenchars.h"
#include "sqltokenizer.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

bool isBlank(char16_t c)
{
    return c == u' ' || c == u'\t';
}

// The word `word` (ASCII) stands at `i`, ignoring case, and is not part of a longer name.
bool wordAt(QStringView text, qsizetype i, QLatin1StringView word)
{
    if (i < 0 || i + word.size() > text.size() ||
        text.sliced(i, word.size()).compare(word, Qt::CaseInsensitive) != 0)
        return false;
    const qsizetype after = i + word.size();
    return after == text.size() || !SqlDialectScan::isNameChar(text[after].unicode());
}

qsizetype skipBlanks(QStringView text, qsizetype i)
{
    while (i < text.size() && isBlank(text[i].unicode()))
        ++i;
    return i;
}

// One line of the text: where its content ends (before CR LF or LF) and where the next begins.
struct Line
{
    qsizetype contentEnd = 0;
    qsizetype next = 0;
};

Line lineFrom(QStringView text, qsizetype start)
{
    const qsizetype feed = text.indexOf(u'\n', start);
    if (feed < 0)
        return {text.size(), text.size()};
    return {feed > start && text[feed - 1] == u'\r' ? feed - 1 : feed, feed + 1};
}

// The content of the line at `start` without the blanks at its ends (and CRs at its end).
QStringView lineContent(QStringView text, qsizetype start, const Line &line)
{
    const qsizetype from = skipBlanks(text, start);
    qsizetype end = line.contentEnd;
    while (end > from && (isBlank(text[end - 1].unicode()) || text[end - 1] == u'\r'))
        --end;
    return text.sliced(from, std::max(from, end) - from);
}

// Lines that are a client's, not SQL: they stand alone and are written as they stand.
enum class ClientLine : quint8 {
    None,
    Go,        // SQL Server's batch separator, "GO" or "GO 5"
    Delimiter, // MySQL's "DELIMITER //"
    Backslash, // a psql (or mysql) command such as "\connect db"
    Slash,     // SQL*Plus's "/", which runs the block before it
    Remark,    // SQL*Plus's "rem" or "remark"
};

ClientLine anyClientLine(QStringView content)
{
    if (content.isEmpty())
        return ClientLine::None;
    if (content.front() == u'\\')
        return ClientLine::Backslash;
    if (content == u"/")
        return ClientLine::Slash;
    if (wordAt(content, 0, "GO"_L1)) {
        bool count = true;
        for (qsizetype k = skipBlanks(content, 2); k < content.size(); ++k)
            count = count && content[k] >= u'0' && content[k] <= u'9';
        if (count)
            return ClientLine::Go;
    }
    if (wordAt(content, 0, "DELIMITER"_L1) && content.size() > 10 && isBlank(content[9].unicode()))
        return ClientLine::Delimiter;
    if (wordAt(content, 0, "REM"_L1) || wordAt(content, 0, "REMARK"_L1))
        return ClientLine::Remark;
    return ClientLine::None;
}

// A client's line, where the script's client reads it as one: a script that is psql's or
// MySQL's alone has only that client's lines.
ClientLine clientLine(QStringView content, SqlDialectScan::Options::Client client)
{
    const ClientLine line = anyClientLine(content);
    switch (client) {
    case SqlDialectScan::Options::Client::Any:
        return line;
    case SqlDialectScan::Options::Client::Psql:
        return line == ClientLine::Backslash ? line : ClientLine::None;
    case SqlDialectScan::Options::Client::MySql:
        return line == ClientLine::Delimiter ? line : ClientLine::None;
    }
    return line;
}

qsizetype skipWhiteSpace(QStringView text, qsizetype i)
{
    while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r')))
        ++i;
    return i;
}

// A PL/SQL block, which a SQL*Plus script ends with a "/" line rather than at its own ";".
bool opensBlock(QStringView text, qsizetype i)
{
    if (wordAt(text, i, "DECLARE"_L1) || wordAt(text, i, "BEGIN"_L1))
        return true;
    if (!wordAt(text, i, "CREATE"_L1))
        return false;
    const auto skipWord = [&](qsizetype k, QLatin1StringView word) {
        const qsizetype at = skipWhiteSpace(text, k);
        return wordAt(text, at, word) ? at + word.size() : -1;
    };
    qsizetype k = i + 6;
    if (const qsizetype orAt = skipWord(k, "OR"_L1); orAt >= 0) {
        k = skipWord(orAt, "REPLACE"_L1);
        if (k < 0)
            return false;
    }
    for (const QLatin1StringView editioning : {"EDITIONABLE"_L1, "NONEDITIONABLE"_L1}) {
        if (const qsizetype after = skipWord(k, editioning); after >= 0)
            k = after;
    }
    for (const QLatin1StringView kind :
         {"FUNCTION"_L1, "PROCEDURE"_L1, "PACKAGE"_L1, "TRIGGER"_L1, "TYPE"_L1, "LIBRARY"_L1}) {
        if (skipWord(k, kind) >= 0)
            return true;
    }
    return false;
}

// Skips the white space and comments at `i`.
qsizetype skipWhiteSpaceAndComments(QStringView text, qsizetype i, SqlDialectScan::Options options)
{
    for (;;) {
        i = skipWhiteSpace(text, i);
        if (i >= text.size() || !(text[i] == u'-' || text[i] == u'#' || text[i] == u'/'))
            return i;
        const SqlDialectScan::Stretch stretch = SqlDialectScan::stretchAt(text, i, options, i);
        if (stretch.kind == SqlDialectScan::StretchKind::None)
            return i;
        i = stretch.end;
    }
}

// psql's "COPY ... FROM stdin": its data follows on the next lines.
bool copiesFromStdin(QStringView statement, SqlDialectScan::Options options)
{
    const qsizetype code = skipWhiteSpaceAndComments(statement, 0, options);
    if (!wordAt(statement, code, "COPY"_L1))
        return false;
    SqlTokenizer tokenizer(statement.sliced(code), options);
    SqlToken token;
    while (tokenizer.next(token)) {
        if (token.kind != SqlTokenKind::Word)
            continue;
        for (qsizetype k = token.text.indexOf("stdin"_L1, 0, Qt::CaseInsensitive); k >= 0;
             k = token.text.indexOf("stdin"_L1, k + 5, Qt::CaseInsensitive)) {
            if (wordAt(token.text, k, "STDIN"_L1) &&
                (k == 0 || !SqlDialectScan::isNameChar(token.text[k - 1].unicode())))
                return true;
        }
    }
    return false;
}

// A line of `text` begins with "DELIMITER", blanks and a delimiter.
bool setsDelimiter(QStringView text)
{
    for (qsizetype k = text.indexOf("delimiter"_L1, 0, Qt::CaseInsensitive); k >= 0;
         k = text.indexOf("delimiter"_L1, k + 9, Qt::CaseInsensitive)) {
        qsizetype lineStart = k;
        while (lineStart > 0 && isBlank(text[lineStart - 1].unicode()))
            --lineStart;
        // With a delimiter behind it, as a client line has it.
        const qsizetype value = skipBlanks(text, k + 9);
        if ((lineStart == 0 || text[lineStart - 1] == u'\n') && value > k + 9 && value < text.size() &&
            text[value] != u'\r' && text[value] != u'\n')
            return true;
    }
    return false;
}

// A line of `text` is "\.", the end of psql's COPY data.
bool hasCopyData(QStringView text)
{
    for (qsizetype k = text.indexOf(u"\\."); k >= 0; k = text.indexOf(u"\\.", k + 2)) {
        const qsizetype after = k + 2;
        if ((k == 0 || text[k - 1] == u'\n') &&
            (after == text.size() || text[after] == u'\n' ||
             (text[after] == u'\r' && after + 1 < text.size() && text[after + 1] == u'\n')))
            return true;
    }
    return false;
}

// Cuts a text into statements and client lines. Statements end at a ";" that every dialect
// reads as code, or at the delimiter a "DELIMITER" line set; a PL/SQL block that a "/" line
// follows ends there, whatever ";" it holds. Client lines stand alone wherever a line in code
// begins. The data of a psql "COPY ... FROM stdin" runs through its "\." line.
class PieceScanner
{
public:
    explicit PieceScanner(QStringView text)
        : m_text(text)
    {
        // The "DELIMITER" line, or the COPY data, may stand where another dialect reads a
        // string: the script is its client's from the start.
        if (setsDelimiter(text))
            m_options.client = SqlDialectScan::Options::Client::MySql;
        else if (hasCopyData(text))
            m_options.client = SqlDialectScan::Options::Client::Psql;
    }

    // Calls found(piece, isClientLines, options) for each piece in order; blank stretches
    // between pieces are left out.
    template<typename Callback>
    void run(Callback &&found)
    {
        const QStringView text = m_text;
        const qsizetype size = text.size();
        qsizetype start = 0;
        bool sawCode = false;    // the statement so far holds more than white space and comments
        bool inBlock = false;    // a PL/SQL block that a "/" line ends
        qsizetype codeStart = 0; // behind the last string or comment
        const auto statementEnds = [&](qsizetype end) {
            const QStringView piece = text.sliced(start, end - start);
            if (SqlTokenChars::trimmedStart(piece) < piece.size())
                found(piece, false, m_options);
            start = end;
            sawCode = false;
            inBlock = false;
        };
        for (qsizetype i = 0; i < size;) {
            if (i == 0 || text[i - 1] == u'\n') {
                const Line line = lineFrom(text, i);
                const QStringView content = lineContent(text, i, line);
                const ClientLine client = clientLineFor(content);
                if (client != ClientLine::None) {
                    statementEnds(i);
                    if (client == ClientLine::Delimiter)
                        setDelimiter(content);
                    const qsizetype from = content.data() - text.data();
                    const qsizetype contentEnd = from + content.size();
                    const qsizetype end = verbatimEnd(from, contentEnd, line.next);
                    found(text.sliced(from, end - from), true, m_options);
                    start = i = codeStart = lineFrom(text, end).next;
                    continue;
                }
            }
            const char16_t c = text[i].unicode();
            // MySQL's client looks for its delimiter before it looks for a comment.
            const bool delimiterFirst = m_delimiter.size() > 1;
            if (SqlDialectScan::mayOpen(c) &&
                !(delimiterFirst && c == m_delimiter.front() && isDelimiterAt(i))) {
                const SqlDialectScan::Stretch stretch =
                    SqlDialectScan::stretchAt(text, i, m_options, codeStart);
                if (stretch.kind != SqlDialectScan::StretchKind::None) {
                    sawCode = sawCode || (c != u'-' && c != u'#' && c != u'/');
                    i = codeStart = stretch.end;
                    continue;
                }
            }
            if (!sawCode && c != u' ' && !(c >= u'\t' && c <= u'\r') && !SqlTokenChars::isOtherSpace(c)) {
                sawCode = true;
                inBlock = m_options.client != SqlDialectScan::Options::Client::MySql && opensBlock(text, i) &&
                          slashLineAhead(i);
            }
            if (!inBlock && c == m_delimiter.front() && isDelimiterAt(i)) {
                // COPY data only in a script with its "\." line (psql's), behind a COPY line that
                // ends with its ";".
                const bool copiesData = m_options.client == SqlDialectScan::Options::Client::Psql &&
                                        copiesFromStdin(text.sliced(start, i - start), m_options);
                i += m_delimiter.size();
                const Line rest = lineFrom(text, i);
                if (!copiesData) {
                    statementEnds(i);
                } else if (SqlTokenChars::trimmedStart(text.sliced(i, rest.contentEnd - i)) ==
                           rest.contentEnd - i) {
                    statementEnds(i);
                    if (rest.next < size)
                        start = i = codeStart = copyData(rest.next, found);
                } else {
                    // More on the COPY's line: laid out, the COPY would end its line and what
                    // follows would read as data. The line stays as it is.
                    const qsizetype end = verbatimEnd(start, rest.contentEnd, rest.next);
                    const QStringView piece = text.sliced(start, end - start);
                    found(piece.sliced(SqlTokenChars::trimmedStart(piece)), true, m_options);
                    start = i = codeStart = lineFrom(text, end).next;
                    sawCode = inBlock = false;
                }
                continue;
            }
            ++i;
        }
        statementEnds(size);
    }

private:
    void setDelimiter(QStringView content)
    {
        const qsizetype value = skipBlanks(content, 9);
        qsizetype end = value;
        while (end < content.size() && !isBlank(content[end].unicode()))
            ++end;
        m_delimiter = content.sliced(value, end - value);
        m_options.client = SqlDialectScan::Options::Client::MySql;
    }

    // The delimiter stands at `i` in code. A delimiter of our own ("//") comes only with a
    // MySQL client script, whose client takes it before any comment.
    [[nodiscard]] bool isDelimiterAt(qsizetype i) const
    {
        if (!m_text.sliced(i).startsWith(m_delimiter))
            return false;
        if (m_delimiter.size() == 1)
            return SqlTokenChars::standsAlone(m_text, i);
        return true;
    }

    // Where client lines [from, end) can end, the client reading SQL again at `resume`. Other
    // dialects read the lines as SQL: where one of them reads a string or comment on past
    // `end`, the lines run on until every reading, from `from` and from `resume`, is in code.
    [[nodiscard]] qsizetype verbatimEnd(qsizetype from, qsizetype end, qsizetype resume) const
    {
        for (;;) {
            const qsizetype asSql = codeFrom(from, end);
            const qsizetype asClient = codeFrom(std::min(resume, asSql), asSql);
            if (asClient == end)
                return end;
            // Client lines end with their line: one that began after `resume` may be one too.
            end = lineFrom(m_text, asClient).contentEnd;
        }
    }

    // The first place at or after `end` where a reading that starts in code at `from` is in
    // code again.
    [[nodiscard]] qsizetype codeFrom(qsizetype from, qsizetype end) const
    {
        qsizetype codeStart = from;
        for (qsizetype k = from; k < end;) {
            if (m_delimiter.size() > 1 && isDelimiterAt(k)) {
                k += m_delimiter.size(); // taken before any comment, as the scan takes it
                continue;
            }
            if (SqlDialectScan::mayOpen(m_text[k].unicode())) {
                const SqlDialectScan::Stretch stretch =
                    SqlDialectScan::stretchAt(m_text, k, m_options, codeStart);
                if (stretch.kind != SqlDialectScan::StretchKind::None) {
                    k = codeStart = stretch.end;
                    end = std::max(end, k);
                    continue;
                }
            }
            ++k;
        }
        return end;
    }

    [[nodiscard]] ClientLine clientLineFor(QStringView content) const
    {
        return clientLine(content, m_options.client);
    }

    // A "/" line follows before the script changes client (a "GO" or "DELIMITER" line) or ends.
    bool slashLineAhead(qsizetype from)
    {
        if (from >= m_noSlashLineFrom)
            return false;
        const QStringView text = m_text;
        qsizetype codeStart = from;
        for (qsizetype i = from; i < text.size();) {
            if (text[i - 1] == u'\n') {
                const Line line = lineFrom(text, i);
                const ClientLine client = clientLineFor(lineContent(text, i, line));
                if (client == ClientLine::Slash)
                    return true;
                if (client == ClientLine::Go || client == ClientLine::Delimiter)
                    return false;
            }
            if (SqlDialectScan::mayOpen(text[i].unicode())) {
                const SqlDialectScan::Stretch stretch =
                    SqlDialectScan::stretchAt(text, i, m_options, codeStart);
                if (stretch.kind != SqlDialectScan::StretchKind::None) {
                    i = codeStart = stretch.end;
                    continue;
                }
            }
            ++i;
        }
        // Nothing further on has one either: later blocks need not look again.
        m_noSlashLineFrom = from;
        return false;
    }

    // Hands over the data lines from `from` through the "\." line (or the text's end); returns
    // where the text goes on.
    template<typename Callback>
    qsizetype copyData(qsizetype from, Callback &&found)
    {
        const QStringView text = m_text;
        for (qsizetype i = from; i < text.size();) {
            const Line line = lineFrom(text, i);
            if (text.sliced(i, line.contentEnd - i) == u"\\.") {
                // A script with such a line is psql's alone (see the constructor): no other
                // reading of the data counts.
                found(text.sliced(from, line.contentEnd - from), true, m_options);
                return line.next;
            }
            i = line.next;
        }
        if (from < text.size())
            found(text.sliced(from), true, m_options);
        return text.size();
    }

    QStringView m_text;
    QStringView m_delimiter = u";";
    SqlDialectScan::Options m_options;
    qsizetype m_noSlashLineFrom = std::numeric_limits<qsizetype>::max();
};

// Where the statement's code begins: behind the lines at its head that are blank or begin
// with "--" (blanks and tabs ignored). -1 when there is no other line.
qsizetype codeStart(QStringView statement, SqlDialectScan::Options options)
{
    for (qsizetype start = 0;;) {
        const Line line = lineFrom(statement, start);
        qsizetype i = start;
        while (i < line.contentEnd &&
               (statement[i] == u'\t' || (statement[i] == u' ' && SqlTokenChars::standsAlone(statement, i))))
            ++i;
        if (i < line.contentEnd) {
            // A comment line only if every dialect reads a line comment to its end.
            const SqlDialectScan::Stretch stretch = SqlDialectScan::stretchAt(statement, i, options, i);
            if (!SqlTokenChars::isDoubleDash(statement.first(line.contentEnd), i) ||
                stretch.kind != SqlDialectScan::StretchKind::LineComment || stretch.end != line.contentEnd)
                return start;
        }
        if (line.next >= statement.size())
            return -1;
        start = line.next;
    }
}

// Flattening the body only moves white space around brackets, commas and semicolons outside
// quoted strings and comments, which never changes its tokens, unless a line end turned blank
// merges with a mark beside it. So the tokens are read from the body itself, and the flat text
// is built only when the tokenizer meets such a line end.
void layOut(QStringView leadingBlock, QStringView body, QString &out, SqlFlattening flattening,
            SqlDialectScan::Options options, QStringView lineEnd)
{
    const qsizetype mark = out.size();
    if (flattening == SqlFlattening::Automatic) {
        SqlFormatterLayout layout(out, lineEnd);
        if (!leadingBlock.isEmpty())
            layout.beginWithLeadingBlock(leadingBlock);
        SqlTokenizer tokenizer(body, options, true);
        SqlToken token;
        while (tokenizer.next(token) && !tokenizer.flatteningMergesCharacters())
            layout.add(token);
        if (!tokenizer.flatteningMergesCharacters()) {
            layout.finish();
            return;
        }
        out.truncate(mark);
    }
    const QString flat = flattenSqlBody(body, options);
    SqlFormatterLayout layout(out, lineEnd);
    if (!leadingBlock.isEmpty())
        layout.beginWithLeadingBlock(leadingBlock);
    SqlTokenizer tokenizer(flat, options);
    SqlToken token;
    while (tokenizer.next(token))
        layout.add(token);
    layout.finish();
}

} // namespace

void appendFormattedStatement(QStringView statement, QString &out, SqlFlattening flattening,
                              SqlDialectScan::Options options, QStringView lineEnd)
{
    const qsizetype code = codeStart(statement, options);
    if (code < 0) {
        // Only comment lines: trimmed, but the last comment keeps its trailing blanks.
        const qsizetype start = SqlTokenChars::trimmedStart(statement);
        const QStringView rest = statement.sliced(start);
        qsizetype end = SqlTokenChars::trimmedEnd(rest);
        end = std::max(
            end, lineFrom(rest, rest.lastIndexOf(u'\n', std::max<qsizetype>(0, end - 1)) + 1).contentEnd);
        out.append(rest.first(end));
        return;
    }
    layOut(statement.first(code), statement.sliced(code), out, flattening, options, lineEnd);
}

namespace {

// A statement's layout must not make a line that a client would take for its own ("GO", "/",
// a backslash command...): a word that stood inside a line may now begin one. Such a layout
// gives way to the statement as written, and a statement whose first line would read as a
// client's goes on the line before, as it stood.
void keepClientLinesOut(QStringView statement, QString &out, qsizetype start, qsizetype mark,
                        SqlDialectScan::Options options, bool afterClientLines)
{
    const auto hasClientLine = [&](QStringView text) {
        for (qsizetype line = 0; line < text.size();) {
            const Line next = lineFrom(text, line);
            if (clientLine(lineContent(text, line, next), options.client) != ClientLine::None)
                return true;
            line = next.next;
        }
        return false;
    };
    if (!hasClientLine(QStringView(out).sliced(start)))
        return;
    out.truncate(start);
    const auto beginsWithClientLine = [&](QStringView text) {
        return clientLine(lineContent(text, 0, lineFrom(text, 0)), options.client) != ClientLine::None;
    };
    const bool joinsLineBefore = start > mark && !afterClientLines;
    const qsizetype from = SqlTokenChars::trimmedStart(statement);
    const QStringView rest = statement.sliced(from);
    // Trailing white space inside a string or comment that runs to the end is part of it.
    qsizetype end = SqlTokenChars::trimmedEnd(rest);
    SqlTokenizer tokenizer(rest, options);
    SqlToken token;
    while (tokenizer.next(token)) {
        if (token.kind == SqlTokenKind::Quoted || token.kind == SqlTokenKind::Comment)
            end = std::max(end, qsizetype(token.text.data() + token.text.size() - rest.data()));
    }
    // White space (a CR, a form feed) that kept the first or last line from reading as a
    // client's stays.
    const auto endsWithClientLine = [&](QStringView text) {
        const qsizetype last = text.lastIndexOf(u'\n') + 1;
        return clientLine(lineContent(text, last, lineFrom(text, last)), options.client) != ClientLine::None;
    };
    qsizetype keepFrom = from;
    if (!joinsLineBefore && beginsWithClientLine(rest) && !beginsWithClientLine(statement))
        keepFrom = 0;
    qsizetype keepEnd = from + end;
    if (endsWithClientLine(statement.sliced(keepFrom, keepEnd - keepFrom)) &&
        !endsWithClientLine(statement.sliced(keepFrom)))
        keepEnd = statement.size();
    out.append(statement.sliced(keepFrom, keepEnd - keepFrom));
    const QStringView written = QStringView(out).sliced(start);
    // Only behind a statement: a statement behind client lines began a line as it stood.
    if (joinsLineBefore && beginsWithClientLine(written))
        out.replace(mark, start - mark, u" "_s);
}

} // namespace

QString formatSQL(QStringView text)
{
    // The layout's line ends follow the text's first one.
    const qsizetype firstFeed = text.indexOf(u'\n');
    const QStringView lineEnd = firstFeed > 0 && text[firstFeed - 1] == u'\r' ? u"\r\n" : u"\n";
    QString out;
    out.reserve(text.size() + text.size() / 8 + 16);
    bool afterClientLines = false;
    PieceScanner(text).run([&](QStringView piece, bool isClientLines, SqlDialectScan::Options options) {
        const qsizetype mark = out.size();
        if (mark > 0) {
            // Client lines keep to the line before them: data after its COPY must not gain a
            // blank line, which would be a row.
            out.append(lineEnd);
            if (!isClientLines)
                out.append(lineEnd);
        }
        const qsizetype start = out.size();
        if (isClientLines)
            out.append(piece);
        else
            appendFormattedStatement(piece, out, SqlFlattening::Automatic, options, lineEnd);
        if (out.size() == start)
            out.truncate(mark);
        else if (!isClientLines)
            keepClientLinesOut(piece, out, start, mark, options, afterClientLines);
        afterClientLines = isClientLines;
    });
    if (out.capacity() > 2 * out.size() + 1024)
        out.squeeze();
    return out;
}

QList<SqlPiece> sqlPieces(QStringView text)
{
    QList<SqlPiece> pieces;
    PieceScanner(text).run([&pieces](QStringView piece, bool isClientLines, SqlDialectScan::Options options) {
        pieces.append({piece, isClientLines, options});
    });
    return pieces;
}

QStringList splitStatements(QStringView text)
{
    QStringList statements;
    PieceScanner(text).run([&statements](QStringView piece, bool, SqlDialectScan::Options) {
        statements.append(piece.toString());
    });
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
