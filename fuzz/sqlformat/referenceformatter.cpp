#include "referenceformatter.h"

#include <QSet>

#include <unicode/brkiter.h>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace reference {
namespace {

using Chars = std::vector<QString>;

// Clusters by ICU's break iterator: the Unicode rules themselves, independent of the code
// under test (which reads the character properties from Qt).
std::vector<qsizetype> breaksOf(const QString &text)
{
    static const std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<icu::BreakIterator>(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    }();
    const icu::UnicodeString unicode(false, reinterpret_cast<const UChar *>(text.utf16()),
                                     int32_t(text.size()));
    iterator->setText(unicode);
    std::vector<qsizetype> breaks;
    for (int32_t at = iterator->first(); at != icu::BreakIterator::DONE; at = iterator->next())
        breaks.push_back(at);
    return breaks;
}

Chars clustersOf(const QString &text)
{
    Chars clusters;
    const std::vector<qsizetype> breaks = breaksOf(text);
    for (size_t k = 1; k < breaks.size(); ++k)
        clusters.push_back(text.mid(breaks[k - 1], breaks[k] - breaks[k - 1]));
    return clusters;
}

QString joined(const Chars &chars, size_t from = 0, size_t to = size_t(-1))
{
    QString text;
    for (size_t k = from; k < std::min(to, chars.size()); ++k)
        text += chars[k];
    return text;
}

bool isWhite(const QString &c)
{
    return c == u"\r\n" || (c.size() == 1 && c[0].isSpace());
}

bool isLineEnd(const QString &c)
{
    return c == u"\r\n" || c == u"\n" || c == u"\v" || c == u"\f" || c == u"\r" || c == u"\u0085" ||
           c == u"\u2028" || c == u"\u2029";
}

bool isBlankOrTab(const QString &c)
{
    return c == u" " || c == u"\t";
}

template<typename Predicate>
QString trimmed(const QString &text, Predicate trim)
{
    const Chars chars = clustersOf(text);
    size_t first = 0;
    size_t last = chars.size();
    while (first < last && trim(chars[first]))
        ++first;
    while (last > first && trim(chars[last - 1]))
        --last;
    return joined(chars, first, last);
}

struct Token
{
    QString text;
    size_t start = 0; // in clusters
    size_t end = 0;
    bool isComment = false;
    bool isQuoted = false;
};

std::vector<Token> tokens(const Chars &chars)
{
    std::vector<Token> result;
    QString current;
    size_t currentStart = 0;
    const auto flush = [&](size_t at) {
        if (!current.isEmpty())
            result.push_back({current, currentStart, at});
        current.clear();
    };
    const auto isQuote = [](const QString &c) { return c == u"'" || c == u"\""; };
    for (size_t k = 0; k < chars.size(); ++k) {
        const QString &c = chars[k];
        if (c == u"-" && k + 1 < chars.size() && chars[k + 1] == u"-") {
            flush(k);
            size_t end = k;
            QString comment;
            while (end < chars.size() && chars[end] != u"\n")
                comment += chars[end++];
            result.push_back({comment, k, end, true, false});
            k = end - 1;
        } else if (isQuote(c)) {
            flush(k);
            size_t end = k + 1;
            while (end < chars.size()) {
                if (chars[end] == c && !(end + 1 < chars.size() && chars[end + 1] == c))
                    break;
                end += chars[end] == c ? 2 : 1;
            }
            end = std::min(end + 1, chars.size());
            result.push_back({joined(chars, k, end), k, end, false, true});
            k = end - 1;
        } else if (c == u"(" || c == u")" || c == u"," || c == u";") {
            flush(k);
            result.push_back({c, k, k + 1});
        } else if (isWhite(c)) {
            flush(k);
        } else {
            if (current.isEmpty())
                currentStart = k;
            current += c;
        }
    }
    flush(chars.size());
    return result;
}

QString replaced(const QString &text, const QString &first, const QString &second, const QString &with)
{
    const Chars chars = clustersOf(text);
    QString result;
    for (size_t k = 0; k < chars.size(); ++k) {
        if (chars[k] == first && (second.isEmpty() || (k + 1 < chars.size() && chars[k + 1] == second))) {
            result += with;
            k += second.isEmpty() ? 0 : 1;
        } else {
            result += chars[k];
        }
    }
    return result;
}

QString flattenedCode(QString text, bool front, bool back)
{
    text = replaced(text, u"\r\n"_s, {}, u" "_s);
    text = replaced(text, u"\n"_s, {}, u" "_s);
    text = replaced(text, u"\t"_s, {}, u" "_s);
    for (QString previous; previous != text;) {
        previous = text;
        text = replaced(text, u" "_s, u" "_s, u" "_s);
    }
    Chars chars = clustersOf(text);
    size_t first = 0;
    size_t last = chars.size();
    while (front && first < last && isBlankOrTab(chars[first]))
        ++first;
    while (back && last > first && isBlankOrTab(chars[last - 1]))
        --last;
    text = joined(chars, first, last);
    text = replaced(text, u" "_s, u"("_s, u"("_s);
    text = replaced(text, u"("_s, u" "_s, u"("_s);
    text = replaced(text, u" "_s, u")"_s, u")"_s);
    text = replaced(text, u" "_s, u","_s, u","_s);
    text = replaced(text, u","_s, {}, u", "_s);
    return replaced(text, u" "_s, u";"_s, u";"_s);
}

// Quoted strings and comments, and the line feed after a comment, stay as they are.
QString flattened(const QString &body)
{
    const Chars chars = clustersOf(body);
    QString result;
    size_t code = 0;
    for (const Token &token : tokens(chars)) {
        if (!token.isComment && !token.isQuoted)
            continue;
        const size_t end = token.isComment && token.end < chars.size() ? token.end + 1 : token.end;
        result += flattenedCode(joined(chars, code, token.start), code == 0, false);
        result += joined(chars, token.start, end);
        code = end;
    }
    return result + flattenedCode(joined(chars, code), code == 0, true);
}

// Whether `text` ends in the one-code-unit character `c` standing as a cluster of its own.
bool endsWithCharacter(const QString &text, QChar c)
{
    if (!text.endsWith(c))
        return false;
    // The break before an ASCII character depends on the one character before it alone.
    const std::vector<qsizetype> breaks = breaksOf(text.right(3));
    return breaks.size() >= 2 && breaks[breaks.size() - 2] == qMin<qsizetype>(text.size(), 3) - 1;
}

const QSet<QString> sqlKeywords = {u"SELECT"_s,    u"FROM"_s,      u"WHERE"_s,      u"INSERT"_s,
                                   u"INTO"_s,      u"VALUES"_s,    u"UPDATE"_s,     u"SET"_s,
                                   u"DELETE"_s,    u"CREATE"_s,    u"TABLE"_s,      u"INDEX"_s,
                                   u"DROP"_s,      u"ALTER"_s,     u"ADD"_s,        u"PRIMARY"_s,
                                   u"KEY"_s,       u"FOREIGN"_s,   u"REFERENCES"_s, u"NOT"_s,
                                   u"NULL"_s,      u"UNIQUE"_s,    u"DEFAULT"_s,    u"AUTO_INCREMENT"_s,
                                   u"ON"_s,        u"JOIN"_s,      u"LEFT"_s,       u"RIGHT"_s,
                                   u"INNER"_s,     u"OUTER"_s,     u"CROSS"_s,      u"NATURAL"_s,
                                   u"GROUP"_s,     u"BY"_s,        u"ORDER"_s,      u"ASC"_s,
                                   u"DESC"_s,      u"HAVING"_s,    u"LIMIT"_s,      u"OFFSET"_s,
                                   u"AND"_s,       u"OR"_s,        u"IN"_s,         u"LIKE"_s,
                                   u"BETWEEN"_s,   u"IS"_s,        u"EXISTS"_s,     u"CASE"_s,
                                   u"WHEN"_s,      u"THEN"_s,      u"ELSE"_s,       u"END"_s,
                                   u"AS"_s,        u"DISTINCT"_s,  u"ALL"_s,        u"UNION"_s,
                                   u"INTERSECT"_s, u"EXCEPT"_s,    u"COUNT"_s,      u"SUM"_s,
                                   u"AVG"_s,       u"MIN"_s,       u"MAX"_s,        u"CURRENT_TIMESTAMP"_s,
                                   u"IF"_s,        u"USE"_s,       u"DATABASE"_s,   u"CONSTRAINT"_s,
                                   u"CASCADE"_s,   u"RESTRICT"_s,  u"NO"_s,         u"ACTION"_s,
                                   u"TRIGGER"_s,   u"PROCEDURE"_s, u"FUNCTION"_s,   u"BEGIN"_s,
                                   u"COMMIT"_s,    u"ROLLBACK"_s,  u"TRUNCATE"_s,   u"REPLACE"_s,
                                   u"IGNORE"_s,    u"DUPLICATE"_s};
const QSet<QString> lineBreakKeywords = {
    u"SELECT"_s, u"FROM"_s,  u"WHERE"_s,  u"INSERT"_s, u"UPDATE"_s, u"DELETE"_s,    u"SET"_s,
    u"JOIN"_s,   u"LEFT"_s,  u"RIGHT"_s,  u"INNER"_s,  u"OUTER"_s,  u"CROSS"_s,     u"NATURAL"_s,
    u"GROUP"_s,  u"ORDER"_s, u"HAVING"_s, u"LIMIT"_s,  u"UNION"_s,  u"INTERSECT"_s, u"EXCEPT"_s,
    u"AND"_s,    u"OR"_s,    u"VALUES"_s, u"ON"_s,     u"CREATE"_s, u"DROP"_s,      u"ALTER"_s};
const QSet<QString> statementKeywords = {u"SELECT"_s, u"INSERT"_s, u"UPDATE"_s,   u"DELETE"_s, u"CREATE"_s,
                                         u"DROP"_s,   u"ALTER"_s,  u"TRUNCATE"_s, u"USE"_s};
const QStringList clauseKeywords = {u"FROM"_s, u"WHERE"_s, u"SET"_s, u"VALUES"_s};
const QStringList logicKeywords = {u"AND"_s, u"OR"_s};
const QStringList tailKeywords = {u"GROUP"_s, u"ORDER"_s, u"HAVING"_s, u"LIMIT"_s};

} // namespace

QStringList splitStatements(const QString &text)
{
    const Chars chars = clustersOf(text);
    QStringList statements;
    QString current;
    bool inQuote = false;
    QString quote;
    for (size_t k = 0; k < chars.size(); ++k) {
        const QString &c = chars[k];
        if (!inQuote && c == u"-" && k + 1 < chars.size() && chars[k + 1] == u"-") {
            for (; k < chars.size(); ++k) {
                current += chars[k];
                if (chars[k] == u"\n")
                    break;
            }
            continue;
        }
        if (c == u"'" || c == u"\"") {
            if (!inQuote) {
                inQuote = true;
                quote = c;
            } else if (c == quote) {
                inQuote = false;
            }
        }
        current += c;
        if (!inQuote && c == u";") {
            statements.append(current);
            current.clear();
        }
    }
    if (!trimmed(current, isWhite).isEmpty())
        statements.append(current);
    return statements;
}

QStringList tokenizeSQL(const QString &text)
{
    QStringList result;
    for (const Token &token : tokens(clustersOf(text)))
        result.append(token.text);
    return result;
}

QString formatStatement(const QString &statement)
{
    const Chars chars = clustersOf(statement);
    std::vector<Chars> lines(1);
    for (const QString &c : chars) {
        if (c == u"\n")
            lines.emplace_back();
        else
            lines.back().push_back(c);
    }
    QString leading;
    size_t line = 0;
    for (; line < lines.size(); ++line) {
        const QString text = trimmed(joined(lines[line]), isBlankOrTab);
        if (!text.isEmpty() && !text.startsWith(u"--"))
            break;
        if (!text.isEmpty() && clustersOf(text).at(1) != u"-")
            break;
        leading += joined(lines[line]) + u"\n";
    }
    if (line == lines.size())
        return trimmed(statement, isWhite);
    QString body = statement;
    if (!leading.isEmpty()) {
        body.clear();
        for (size_t k = line; k < lines.size(); ++k)
            body += (k > line ? u"\n"_s : QString()) + joined(lines[k]);
    }

    QString result = leading.isEmpty() ? QString() : trimmed(leading, isLineEnd) + u"\n";
    int indent = 0;
    int depth = 0;
    bool inSelectList = false;
    QString previous;
    const auto startLine = [&] {
        if (!result.isEmpty() && !endsWithCharacter(result, u'\n'))
            result += u"\n";
    };
    const auto pad = [&] { return QString(indent * 4, u' '); };
    for (const Token &token : tokens(clustersOf(flattened(body)))) {
        const QString &text = token.text;
        const QString upper = text.toUpper();
        if (text == u"(" && !token.isQuoted) {
            ++depth;
            result += text;
        } else if (text == u")" && !token.isQuoted) {
            depth = std::max(depth - 1, 0);
            result += text;
        } else if (text == u";" && !token.isQuoted) {
            result += text;
            indent = 0;
            inSelectList = false;
        } else if (token.isComment) {
            startLine();
            result += pad() + text + u"\n";
        } else if (sqlKeywords.contains(upper) && lineBreakKeywords.contains(upper) && depth == 0) {
            if (upper == u"SELECT") {
                startLine();
                result += pad() + upper;
                indent = 1;
                inSelectList = true;
            } else if (statementKeywords.contains(upper)) {
                startLine();
                result += pad() + upper;
            } else if (clauseKeywords.contains(upper)) {
                result += u"\n"_s + upper;
                indent = 1;
                inSelectList = false;
            } else if (upper.contains(u"JOIN") || upper == u"ON" || logicKeywords.contains(upper)) {
                result += u"\n"_s + pad() + upper;
            } else if (tailKeywords.contains(upper)) {
                result += u"\n"_s + upper;
                indent = 0;
            } else {
                startLine();
                result += pad() + upper;
            }
        } else if (previous == u"," && inSelectList && depth == 0) {
            result += u"\n"_s + pad() + text;
        } else {
            const bool noBlank = result.isEmpty() || endsWithCharacter(result, u'\n') ||
                                 endsWithCharacter(result, u'(') || endsWithCharacter(result, u' ') ||
                                 text == u"," || previous == u"(";
            result += (noBlank ? QString() : u" "_s) + (sqlKeywords.contains(upper) ? upper : text);
        }
        previous = text;
    }
    return trimmed(result, isWhite);
}

QString formatSQL(const QString &text)
{
    QStringList parts;
    for (const QString &statement : splitStatements(text)) {
        const QString part = formatStatement(statement);
        if (!trimmed(part, isWhite).isEmpty())
            parts.append(part);
    }
    return parts.join(u"\n\n"_s);
}

} // namespace reference
