#pragma once

#include "sqltoken.h"

#include <QString>

// The layout pass of one statement. Appends to `out` what the statement's tokens lay out to,
// already trimmed: white space the layout would put in front of the first character is never
// written, and finish() takes it off the end.
class SqlFormatterLayout
{
public:
    explicit SqlFormatterLayout(QString &out, QStringView lineEnd = u"\n")
        : m_out(out)
        , m_lineEnd(lineEnd)
        , m_start(out.size())
    {}

    // The comment lines in front of the statement's code, as they stand.
    void beginWithLeadingBlock(QStringView block);
    void add(const SqlToken &token);
    void finish();

private:
    // What the text laid out so far ends with; all the rules ever ask.
    enum class Ending : quint8 { Nothing, LineFeed, OpenBracket, Blank, Other };

    void addWord(const SqlToken &token);
    void lineFeed();
    void startLine();
    void pad();
    void write(QStringView text, Ending ending = Ending::Other);
    [[nodiscard]] bool nothingWritten() const { return m_out.size() == m_start; }

    QString &m_out;
    QStringView m_lineEnd;
    qsizetype m_start = 0;
    // Where the last string or comment written ends: nothing before it is trimmed.
    qsizetype m_tokenEnd = 0;
    Ending m_ending = Ending::Nothing;
    int m_indent = 0;
    qsizetype m_depth = 0;
    bool m_inSelectList = false;
    // The previous token was the keyword AS.
    bool m_afterAs = false;
    // The previous token if it was "(" or ","; the only ones the rules look back at.
    char16_t m_previous = 0;
};
