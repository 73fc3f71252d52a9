#include "sqlformatterlayout.h"

#include "sqlformatterkeywords.h"
#include "sqltokenchars.h"

#include <utility>

using namespace Qt::StringLiterals;

void SqlFormatterLayout::beginWithLeadingBlock(QStringView block)
{
    // Line feeds (and CR LF) go at the end; white space in front would go with the final trim
    // anyway. Other control characters stay: to a database they end no comment.
    qsizetype end = block.size();
    while (end > 0 && block[end - 1] == u'\n')
        end -= end > 1 && block[end - 2] == u'\r' ? 2 : 1;
    const QStringView trimmed = block.first(end);
    const QStringView visible = trimmed.sliced(SqlTokenChars::trimmedStart(trimmed));
    if (!visible.isEmpty())
        write(visible);
    lineFeed();
}

void SqlFormatterLayout::add(const SqlToken &token)
{
    if (token.kind != SqlTokenKind::Word)
        m_afterAs = false;
    if (token.kind == SqlTokenKind::Punctuation) {
        const char16_t c = token.text[0].unicode();
        if (c == u'(') {
            ++m_depth;
            write(token.text, Ending::OpenBracket);
        } else if (c == u')') {
            m_depth = std::max<qsizetype>(m_depth - 1, 0);
            write(token.text);
        } else if (c == u';') {
            write(token.text);
            m_indent = 0;
            m_inSelectList = false;
        } else {
            addWord(token);
        }
        m_previous = c == u'(' || c == u',' ? c : 0;
        return;
    }
    if (token.kind == SqlTokenKind::Comment) {
        startLine();
        pad();
        write(token.text);
        m_tokenEnd = m_out.size();
        lineFeed();
    } else {
        addWord(token);
        if (token.kind == SqlTokenKind::Quoted)
            m_tokenEnd = m_out.size();
    }
    m_previous = 0;
}

void SqlFormatterLayout::addWord(const SqlToken &token)
{
    using Rule = SqlFormatterKeywords::LineRule;
    const SqlFormatterKeywords::Keyword *keyword =
        token.kind == SqlTokenKind::Word ? SqlFormatterKeywords::find(token.text) : nullptr;
    // Where a keyword stands as a name its case is part of the name: MySQL and SQLite name a
    // result column as written ("AS count", "select count from t"). Keywords that open a line
    // can be no alias ("AS SELECT"); aggregates are keywords only as calls.
    const bool afterAs = std::exchange(m_afterAs, keyword && keyword->upper == u"AS");
    if (keyword &&
        ((afterAs && keyword->rule == Rule::None) || (keyword->onlyAsCall && !token.bracketFollows)))
        keyword = nullptr;
    if (keyword && keyword->rule != Rule::None && m_depth == 0) {
        switch (keyword->rule) {
        case Rule::Select:
            startLine();
            pad();
            write(keyword->upper);
            m_indent = 1;
            m_inSelectList = true;
            break;
        case Rule::Clause:
            lineFeed();
            write(keyword->upper);
            m_indent = 1;
            m_inSelectList = false;
            break;
        case Rule::JoinOrOn:
        case Rule::Logic:
            lineFeed();
            pad();
            write(keyword->upper);
            break;
        case Rule::Tail:
            lineFeed();
            write(keyword->upper);
            m_indent = 0;
            break;
        default: // other statements, join prefixes, set operators
            startLine();
            pad();
            write(keyword->upper);
            break;
        }
        return;
    }
    if (m_previous == u',' && m_inSelectList && m_depth == 0) {
        lineFeed();
        pad();
        write(token.text);
        return;
    }
    const bool isComma = token.kind == SqlTokenKind::Punctuation;
    if (m_ending == Ending::Other && !isComma && m_previous != u'(')
        write(u" ", Ending::Blank);
    write(keyword ? keyword->upper : token.text);
}

void SqlFormatterLayout::finish()
{
    // White space inside the last token (a string or comment that runs to the text's end) is
    // part of it.
    m_out.truncate(
        std::max(m_tokenEnd, m_start + SqlTokenChars::trimmedEnd(QStringView(m_out).sliced(m_start))));
}

void SqlFormatterLayout::lineFeed()
{
    m_ending = Ending::LineFeed;
    if (!nothingWritten())
        m_out.append(m_lineEnd);
}

void SqlFormatterLayout::startLine()
{
    if (m_ending != Ending::Nothing && m_ending != Ending::LineFeed)
        lineFeed();
}

void SqlFormatterLayout::pad()
{
    for (int level = 0; level < m_indent; ++level)
        write(u"    ", Ending::Blank);
}

void SqlFormatterLayout::write(QStringView text, Ending ending)
{
    m_ending = ending;
    if (ending == Ending::Blank && nothingWritten())
        return;
    if (text.size() == 1)
        m_out.append(text.front());
    else
        m_out.append(text);
}
