#pragma once

#include "sqldialectscan.h"
#include "sqltoken.h"

// Reads a statement into tokens, one at a time: line comments up to their line end, the
// punctuation ( ) , ; and words between white space. Strings, quoted names and block comments
// of every common dialect (see SqlDialectScan) are taken whole into the word they stand in.
// Punctuation and white space are read as user-perceived characters: a comma with a combining
// mark on it is part of a word.
class SqlTokenizer
{
public:
    // With `watchFlattening`, notes where replacing a line feed, CR LF or tab by a blank would
    // merge that blank with its neighbour into one character (a combining mark after it, a
    // prepended mark before it), which would make the flattened text read differently.
    explicit SqlTokenizer(QStringView text, SqlDialectScan::Options options = {},
                          bool watchFlattening = false)
        : m_text(text)
        , m_options(options)
        , m_watchFlattening(watchFlattening)
    {}

    // The next token, or false at the end of the text.
    bool next(SqlToken &token);

    [[nodiscard]] bool flatteningMergesCharacters() const { return m_flatteningMerges; }

private:
    // The end of the word that begins at `start`, read on from `from`.
    [[nodiscard]] qsizetype wordEnd(qsizetype start, qsizetype from, SqlTokenKind &kind) const;
    void watchWhiteSpace(qsizetype at, qsizetype length);

    QStringView m_text;
    SqlDialectScan::Options m_options;
    qsizetype m_position = 0;
    qsizetype m_commentLineEnd = -1;
    bool m_watchFlattening = false;
    bool m_flatteningMerges = false;
};
