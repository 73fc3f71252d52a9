#include "sqlformatterlayout.h"

#include "sqlformatterkeywords.h"
#include "sqltokenchars.h"

using namespace Qt::StringLiterals;

void SqlFormatterLayout::beginWithLeadingBlock(QStringView block)
{
    // Line ends go at both ends; white space in front would go with the final trim anyway.
    qsizetype end = block.size();
    while (end > 0) {
        const QStringView head = block.first(end);
        const qsizetype length = end > 1 && head[end - 1] == u'\n' && head[end - 2] == u'\r' ? 2 : 1;
        if (SqlTokenChars::lineEndAt(head, end - length) != length)
            break;
        end -= length;
    }
    const QStringView trimmed = block.first(end);
    const QStringView visible = trimmed.sliced(SqlTokenChars::trimmedStart(trimmed));
    if (!visible.isEmpty())
        write(visible);
    lineFeed();
}

void SqlFormatterLayout::add(const SqlToken &token)
{
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
        lineFeed();
    } else {
        addWord(token);
    }
    m_previous = 0;
}

void SqlFormatterLayout::addWord(const SqlToken &token)
{
    using Rule = SqlFormatterKeywords::LineRule;
    const SqlFormatterKeywords::Keyword *keyword =
        token.kind == SqlTokenKind::Word ? SqlFormatterKeywords::find(token.text) : nullptr;
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
    m_out.truncate(m_start + SqlTokenChars::trimmedEnd(QStringView(m_out).sliced(m_start)));
}

void SqlFormatterLayout::lineFeed()
{
    m_ending = Ending::LineFeed;
    if (!nothingWritten())
        m_out.append(u'\n');
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
