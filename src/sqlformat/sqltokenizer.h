#pragma once

#include "sqltoken.h"

// Reads a statement into tokens, one at a time: quoted strings (with doubled quotes inside
// them), "--" comments up to the line feed, the punctuation ( ) , ; and words between white
// space. Walks user-perceived characters: a quote or comma with a combining mark on it is part
// of a word.
class SqlTokenizer
{
public:
    // With `watchFlattening`, notes where replacing a line feed, CR LF or tab by a blank would
    // merge that blank with its neighbour into one character (a combining mark after it, a
    // prepended mark before it), which would make the flattened text read differently.
    explicit SqlTokenizer(QStringView text, bool watchFlattening = false)
        : m_text(text)
        , m_watchFlattening(watchFlattening)
    {}

    // The next token, or false at the end of the text.
    bool next(SqlToken &token);

    [[nodiscard]] bool flatteningMergesCharacters() const { return m_flatteningMerges; }

private:
    [[nodiscard]] qsizetype quotedEnd(qsizetype start) const;
    [[nodiscard]] qsizetype wordEnd(qsizetype start) const;
    void watchWhiteSpace(qsizetype at, qsizetype length);

    QStringView m_text;
    qsizetype m_position = 0;
    qsizetype m_commentLineFeed = -1;
    bool m_watchFlattening = false;
    bool m_flatteningMerges = false;
};
