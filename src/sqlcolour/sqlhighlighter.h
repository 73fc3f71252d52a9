#pragma once

#include "sqlhighlightspan.h"

#include <QList>
#include <QStringView>

// The two colouring passes over SQL text, each one hand-written pass over the characters that
// gives exactly the colours of the rules' regular expressions run one after the other.
//
// Editor pass, rules in order (each over the whole text; a later rule overwrites the colour
// of an earlier one, keyword weight stays):
//   keywords  \bWORD\b, one per listed word, ignoring case
//   types     the same for the type words
//   strings   '[^']*'        (quotes pair up from the start; may span lines)
//   numbers   \b\d+\b
//   comments  --.*$          (to the end of the line)
// Read-only pass: keywords and types as above, then '[^']*', "[^"]*", \b\d+(?:\.\d+)?\b,
// --[^\n]* (to the next line feed only) and /\*[\s\S]*?\*/.
//
// The expressions' character classes are those of ICU's engine (see SQLCharKind).
class SQLHighlighter
{
public:
    // The editor pass over a whole text.
    [[nodiscard]] static QList<SQLHighlightSpan> editorSpans(QStringView text);
    static void editorSpans(QStringView text, QList<SQLHighlightSpan> &spans);

    // The editor pass over one line of a larger text, with what the text around it decides:
    // `startsInString` when an odd number of quotes stand before the line, `quoteFollows` when
    // any quote stands after it (a quote without a partner is no string). The line must not
    // contain the line break that ends it. Gives the same spans, relative to the line, as the
    // whole-text pass clipped to the line. `spans` is cleared first.
    static void editorLineSpans(QStringView line, bool startsInString, bool quoteFollows,
                                QList<SQLHighlightSpan> &spans);

    // The read-only pass over a whole text (the version sheet).
    [[nodiscard]] static QList<SQLHighlightSpan> highlightedContent(QStringView text);
    static void highlightedContent(QStringView text, QList<SQLHighlightSpan> &spans);

    // The number of single quotes in `text`: what a line passes on to the lines after it.
    [[nodiscard]] static qsizetype quoteCount(QStringView text);
};
