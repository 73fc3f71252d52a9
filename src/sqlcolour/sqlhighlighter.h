#pragma once

#include "sqlhighlightspan.h"

#include <QList>
#include <QStringView>

// Where a line of the editor pass begins: in code, or inside a string or block comment that
// an earlier line opened.
enum class SQLLineState : quint8 {
    Code,
    String,
    BlockComment,
};

// The two colouring passes over SQL text, each one hand-written pass over the characters.
//
// Both read strings and comments as units, left to right: inside one, nothing else is coloured
// (no keyword, weight, number or other mark), and a mark inside one opens nothing. Outside
// them, whole words take the keyword, type and number colours, keywords in semibold.
//   editor pass     '…' (may span lines), -- to the end of the line, /* … */ (may span lines)
//   read-only pass  the same, and "…"; -- ends at a line feed only; numbers may have a fraction
// A quote with no partner after it, or a "/*" with no "*/" after it, opens nothing.
//
// Word boundaries, digits and letter folding are those of ICU's regular expressions (see
// SQLCharKind), which the rules were first written for.
class SQLHighlighter
{
public:
    // The editor pass over a whole text.
    [[nodiscard]] static QList<SQLHighlightSpan> editorSpans(QStringView text);
    static void editorSpans(QStringView text, QList<SQLHighlightSpan> &spans);

    // The editor pass over one line of a larger text, with what the text around it decides:
    // the state the line starts in, `quoteFollows` when a quote stands after the line and
    // `closeFollows` when a "*/" does. The line must not contain the line break that ends it.
    // Gives the same spans, relative to the line, as the whole-text pass clipped to the line,
    // and returns the state the next line starts in. `spans` is cleared first.
    static SQLLineState editorLineSpans(QStringView line, SQLLineState start, bool quoteFollows,
                                        bool closeFollows, QList<SQLHighlightSpan> &spans);
    // Only the state the next line starts in, as editorLineSpans() returns it.
    [[nodiscard]] static SQLLineState editorLineEndState(QStringView line, SQLLineState start,
                                                         bool quoteFollows, bool closeFollows);

    // The read-only pass over a whole text (the version sheet).
    [[nodiscard]] static QList<SQLHighlightSpan> highlightedContent(QStringView text);
    static void highlightedContent(QStringView text, QList<SQLHighlightSpan> &spans);
};
