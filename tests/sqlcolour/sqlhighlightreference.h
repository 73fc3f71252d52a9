#pragma once

#include "sqlhighlightspan.h"

#include <QList>
#include <QStringView>

// The colouring rules run literally: each rule's regular expressions, compiled once, over the
// whole text, one rule after the other, a later match overwriting the colour of an earlier one;
// last, strings and comments as one alternation, matched leftmost without overlap, so that
// they are read as units.
// Slow on purpose; the fast passes must give exactly the same spans.
//
// Icu runs the expressions on ICU's engine, the one they were written for, with the rules'
// options (case-insensitive, anchors match lines): the exact reference.
// Pcre runs them on QRegularExpression with Unicode properties. PCRE2 reads \b differently from
// ICU for combining marks, format characters, connector punctuation other than "_" and
// digits like "²", and it folds no letter into two ("ß" is no "ss"); on text without those it
// agrees with ICU. It needs valid UTF-16.
class SQLHighlightReference
{
public:
    enum class Engine {
        Icu,
        Pcre,
    };

    [[nodiscard]] static QList<SQLHighlightSpan> editorSpans(QStringView text, Engine engine);
    [[nodiscard]] static QList<SQLHighlightSpan> highlightedContent(QStringView text, Engine engine);
};
