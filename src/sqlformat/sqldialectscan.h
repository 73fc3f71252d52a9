#pragma once

#include <QChar>
#include <QStringView>

// What of a SQL text no common dialect lets the formatter touch, and where its pieces end.
//
// The text is read the way PostgreSQL, MySQL, SQL Server, Oracle and SQLite read it (code
// units, as their lexers do). A stretch is protected when any of them reads it as part of a
// string, a quoted name, a comment or a dollar-quoted body; it runs until all of them read code
// again at the same place. Where they disagree (MySQL's backslash escapes and "#" comments,
// nested block comments, $$ bodies, [names], q'[...]' quotes), the protected stretch is the
// union of their readings, which the formatter keeps byte for byte.
namespace SqlDialectScan {

enum class StretchKind : quint8 {
    None,
    // Strings, quoted names, block comments and dollar-quoted bodies: they stand inline.
    Inline,
    // Ends with a line comment, which needs a line end after it. The stretch stops before the
    // line end, also before the CR of a CR LF.
    LineComment,
};

struct Stretch
{
    qsizetype end = -1;
    StretchKind kind = StretchKind::None;
};

struct Options
{
    // Whose client reads the script. Two kinds of script belong to one client alone: one that
    // sets its own delimiter with a "DELIMITER" line is MySQL's ("$$" is a common delimiter
    // there, not a PostgreSQL body), and one that carries COPY data up to a "\." line is psql's
    // (the data is no SQL to anyone). Those are read as that client reads them.
    enum class Client : quint8 { Any, MySql, Psql };
    Client client = Client::Any;
};

// A character that can stand in an unquoted name (PostgreSQL and MySQL allow "$" there; white
// space beyond ASCII is white space to the formatter, as to its rules), so that a quote or "$"
// behind it belongs to what it started.
[[nodiscard]] inline bool isNameChar(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_' ||
           c == u'$' || (c >= 0x80 && !QChar::isSpace(c));
}

// Whether a protected stretch may begin with this character.
[[nodiscard]] inline bool mayOpen(char16_t c)
{
    switch (c) {
    case u'\'':
    case u'"':
    case u'`':
    case u'[':
    case u'-':
    case u'#':
    case u'/':
    case u'$':
    case u'\\':
        return true;
    default:
        return false;
    }
}

// The protected stretch that begins at `i`, where every dialect reads code; kind None when
// none begins there. `codeStart` is where that code began (behind the last stretch): a letter
// there stands on its own, so "E" or "q" in front of a quote is its prefix, as after the end
// of a $$ body. Looks back at most three characters.
[[nodiscard]] Stretch stretchAt(QStringView text, qsizetype i, Options options = {}, qsizetype codeStart = 0);

} // namespace SqlDialectScan
