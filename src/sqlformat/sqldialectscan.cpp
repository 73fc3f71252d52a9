#include "sqldialectscan.h"

#include <QString>

#include <array>

namespace SqlDialectScan {

namespace {

enum class Dialect : quint8 { Postgres, MySql, SqlServer, Oracle, Sqlite };
constexpr std::array<Dialect, 5> dialects = {Dialect::Postgres, Dialect::MySql, Dialect::SqlServer,
                                             Dialect::Oracle, Dialect::Sqlite};
constexpr Dialect mySqlOnly = Dialect::MySql;
constexpr Dialect postgresOnly = Dialect::Postgres;

// The letter at `i` is a one-letter prefix standing against what follows: it begins the code
// behind a stretch, or nothing of a name stands in front of it (Oracle's names may also hold
// "#").
bool isPrefixAt(QStringView text, qsizetype i, char16_t lower, qsizetype codeStart)
{
    if (i < 0 || (text[i] != lower && text[i] != QChar(lower).toUpper()))
        return false;
    if (i == 0 || i == codeStart)
        return true;
    const char16_t before = text[i - 1].unicode();
    return !isNameChar(before) && before != u'#';
}

// The end of a quoted stretch opened at `open`: the next `quote` that is not doubled; with
// `backslash`, a backslash takes the character after it along. Unterminated: the text's end.
qsizetype quotedEnd(QStringView text, qsizetype open, char16_t quote, bool backslash)
{
    const qsizetype size = text.size();
    if (!backslash) {
        for (qsizetype k = open + 1;; k += 2) {
            k = text.indexOf(QChar(quote), k);
            if (k < 0)
                return size;
            if (k + 1 >= size || text[k + 1] != quote)
                return k + 1;
        }
    }
    for (qsizetype k = open + 1; k < size; ++k) {
        const char16_t c = text[k].unicode();
        if (c == u'\\') {
            ++k;
        } else if (c == quote) {
            if (k + 1 < size && text[k + 1] == quote)
                ++k;
            else
                return k + 1;
        }
    }
    return size;
}

// The end of a block comment opened at `open`, counting nested ones where the dialect does.
qsizetype blockCommentEnd(QStringView text, qsizetype open, bool nested)
{
    if (!nested) {
        const qsizetype close = text.indexOf(u"*/", open + 2);
        return close < 0 ? text.size() : close + 2;
    }
    int depth = 1;
    for (qsizetype k = open + 2; k + 1 < text.size(); ++k) {
        if (text[k] == u'/' && text[k + 1] == u'*') {
            ++depth;
            ++k;
        } else if (text[k] == u'*' && text[k + 1] == u'/') {
            ++k;
            if (--depth == 0)
                return k + 1;
        }
    }
    return text.size();
}

// A line comment runs to the line feed; CRs in front of it are left to the line end.
qsizetype lineCommentEnd(QStringView text, qsizetype from)
{
    qsizetype end = text.indexOf(u'\n', from);
    if (end < 0)
        return text.size();
    while (end > from && text[end - 1] == u'\r')
        --end;
    return end;
}

// Oracle's q'<delimiter>...<delimiter>' with the brackets paired.
qsizetype alternativeQuoteEnd(QStringView text, qsizetype quote)
{
    if (quote + 1 >= text.size())
        return text.size();
    char16_t close = text[quote + 1].unicode();
    switch (close) {
    case u'(':
        close = u')';
        break;
    case u'[':
        close = u']';
        break;
    case u'{':
        close = u'}';
        break;
    case u'<':
        close = u'>';
        break;
    default:
        break;
    }
    for (qsizetype k = quote + 2;; ++k) {
        k = text.indexOf(QChar(close), k);
        if (k < 0 || k + 1 >= text.size())
            return text.size();
        if (text[k + 1] == u'\'')
            return k + 2;
    }
}

// PostgreSQL's $tag$...$tag$, or -1 when the "$" opens none (a parameter such as $1, or a "$"
// inside a name).
qsizetype dollarQuoteEnd(QStringView text, qsizetype open)
{
    if (open > 0 && isNameChar(text[open - 1].unicode()))
        return -1;
    qsizetype k = open + 1;
    if (k < text.size() && text[k] != u'$') {
        const char16_t first = text[k].unicode();
        if (!((first >= u'a' && first <= u'z') || (first >= u'A' && first <= u'Z') || first == u'_' ||
              first >= 0x80))
            return -1;
        while (k < text.size() && text[k] != u'$' && isNameChar(text[k].unicode()))
            ++k;
    }
    if (k >= text.size() || text[k] != u'$')
        return -1;
    const QStringView tag = text.sliced(open, k + 1 - open);
    const qsizetype close = text.indexOf(tag, k + 1);
    return close < 0 ? text.size() : close + tag.size();
}

// Only blanks stand between `i` and the line end before it. Not at the text's start: a piece
// of a script may begin in the middle of a line (the whole text's first line is the scan's).
bool beginsLine(QStringView text, qsizetype i)
{
    while (i > 0 && (text[i - 1] == u' ' || text[i - 1] == u'\t'))
        --i;
    return i > 0 && text[i - 1] == u'\n';
}

// The line begins with the word "rem" or "remark".
bool isRemark(QStringView line)
{
    for (const QLatin1StringView word : {QLatin1StringView("rem"), QLatin1StringView("remark")}) {
        if (line.size() >= word.size() && line.first(word.size()).compare(word, Qt::CaseInsensitive) == 0 &&
            (line.size() == word.size() || line[word.size()] == u' ' || line[word.size()] == u'\t' ||
             line[word.size()] == u'\r' || line[word.size()] == u'\n'))
            return true;
    }
    return false;
}

// What one dialect reads at `i`, where it reads code: the end of the string, name or comment
// that begins there, or end -1.
Stretch readAt(Dialect dialect, QStringView text, qsizetype i, qsizetype codeStart)
{
    const qsizetype size = text.size();
    const char16_t c = text[i].unicode();
    const char16_t next = i + 1 < size ? text[i + 1].unicode() : 0;
    const auto inlineTo = [](qsizetype end) { return Stretch{end, StretchKind::Inline}; };
    switch (c) {
    case u'\'':
        switch (dialect) {
        case Dialect::Postgres:
            return inlineTo(quotedEnd(text, i, c, isPrefixAt(text, i - 1, u'e', codeStart)));
        case Dialect::MySql:
            return inlineTo(quotedEnd(text, i, c, true));
        case Dialect::Oracle:
            if (isPrefixAt(text, i - 1, u'q', codeStart) ||
                (i >= 2 && (text[i - 1] == u'q' || text[i - 1] == u'Q') &&
                 isPrefixAt(text, i - 2, u'n', codeStart)))
                return inlineTo(alternativeQuoteEnd(text, i));
            return inlineTo(quotedEnd(text, i, c, false));
        default:
            return inlineTo(quotedEnd(text, i, c, false));
        }
    case u'"':
        return inlineTo(quotedEnd(text, i, c, dialect == Dialect::MySql));
    case u'`':
        if (dialect == Dialect::MySql || dialect == Dialect::Sqlite)
            return inlineTo(quotedEnd(text, i, c, false));
        break;
    case u'[':
        if (dialect == Dialect::SqlServer)
            return inlineTo(quotedEnd(text, i, u']', false));
        if (dialect == Dialect::Sqlite) {
            const qsizetype close = text.indexOf(u']', i + 1);
            return inlineTo(close < 0 ? size : close + 1);
        }
        break;
    case u'-':
        if (next == u'-') {
            // MySQL wants white space or a control character after the dashes.
            if (dialect == Dialect::MySql && i + 2 < size && text[i + 2].unicode() > u' ')
                break;
            return {lineCommentEnd(text, i + 2), StretchKind::LineComment};
        }
        break;
    case u'#':
        if (dialect == Dialect::MySql)
            return {lineCommentEnd(text, i + 1), StretchKind::LineComment};
        break;
    case u'/':
        if (next == u'*')
            return inlineTo(
                blockCommentEnd(text, i, dialect == Dialect::Postgres || dialect == Dialect::SqlServer));
        break;
    case u'\\':
        // psql takes a line that begins with a backslash as its own command, to the line's end.
        if (dialect == Dialect::Postgres && beginsLine(text, i))
            return {lineCommentEnd(text, i + 1), StretchKind::LineComment};
        break;
    case u'r':
    case u'R':
        // SQL*Plus takes a line that begins with "rem" or "remark" as a remark.
        if (dialect == Dialect::Oracle && beginsLine(text, i) && isRemark(text.sliced(i)))
            return {lineCommentEnd(text, i + 1), StretchKind::LineComment};
        break;
    case u'$':
        if (dialect == Dialect::Postgres) {
            const qsizetype end = dollarQuoteEnd(text, i);
            if (end >= 0)
                return inlineTo(end);
        }
        break;
    default:
        break;
    }
    return {};
}

} // namespace

Stretch stretchAt(QStringView text, qsizetype i, Options options, qsizetype codeStart)
{
    if (i >= text.size() || !mayOpen(text[i].unicode()))
        return {};
    // The readings that count: every dialect's, or one client's.
    const Dialect *readings = dialects.data();
    std::size_t count = dialects.size();
    if (options.client == Options::Client::MySql) {
        readings = &mySqlOnly;
        count = 1;
    } else if (options.client == Options::Client::Psql) {
        readings = &postgresOnly;
        count = 1;
    }
    // Each reading so far: it reads code from codeStarts[d] on, and at cursors[d].
    std::array<qsizetype, dialects.size()> cursors{};
    std::array<qsizetype, dialects.size()> codeStarts{};
    Stretch stretch;
    bool any = false;
    for (std::size_t d = 0; d < count; ++d) {
        const Stretch read = readAt(readings[d], text, i, codeStart);
        // A dialect that reads code here reads this character as code too.
        cursors[d] = read.end >= 0 ? read.end : i + 1;
        codeStarts[d] = read.end >= 0 ? read.end : codeStart;
        if (read.end < 0)
            continue;
        any = true;
        if (read.end > stretch.end || (read.end == stretch.end && read.kind == StretchKind::LineComment))
            stretch = read;
    }
    if (!any)
        return {};
    // The dialects that are back in code before the end read on up to it; what they open there
    // may carry the end further. Done when every one of them reads code at the end.
    for (bool moved = true; moved;) {
        moved = false;
        for (std::size_t d = 0; d < count; ++d) {
            qsizetype k = cursors[d];
            while (k < stretch.end) {
                const char16_t c = text[k].unicode();
                if (!mayOpen(c) && !((c == u'r' || c == u'R') && readings[d] == Dialect::Oracle)) {
                    ++k;
                    continue;
                }
                const Stretch read = readAt(readings[d], text, k, codeStarts[d]);
                if (read.end < 0) {
                    ++k;
                    continue;
                }
                k = codeStarts[d] = read.end;
                if (read.end > stretch.end ||
                    (read.end == stretch.end && read.kind == StretchKind::LineComment)) {
                    stretch = read;
                    moved = true;
                }
            }
            cursors[d] = k;
        }
    }
    return stretch;
}

} // namespace SqlDialectScan
