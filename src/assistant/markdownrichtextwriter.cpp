#include "markdownrichtextwriter.h"

using namespace Qt::StringLiterals;

void MarkdownRichTextWriter::appendText(QStringView text)
{
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'\n':
            appendLineBreak();
            continue;
        case u' ':
            m_html += m_atLineStart || m_afterBlank ? "&nbsp;"_L1 : " "_L1;
            m_afterBlank = true;
            continue;
        case u'\t':
            m_html += "&nbsp;&nbsp;&nbsp;&nbsp;"_L1;
            m_afterBlank = true;
            continue;
        default:
            appendEscaped(c);
            break;
        }
        m_atLineStart = false;
        m_afterBlank = false;
    }
}

void MarkdownRichTextWriter::appendLineBreak()
{
    m_html += "<br>"_L1;
    m_atLineStart = true;
    m_afterBlank = false;
}

void MarkdownRichTextWriter::appendMarkup(QLatin1StringView markup)
{
    m_html += markup;
    // Only entities stand for text; tags leave the blank state as it was, because the text
    // item collapses blanks across them.
    if (markup.startsWith(u'&')) {
        m_atLineStart = false;
        m_afterBlank = false;
    }
}

void MarkdownRichTextWriter::appendAttributeValue(QStringView value)
{
    for (const QChar c : value) {
        if (c == u'\'')
            m_html += "&#39;"_L1;
        else
            appendEscaped(c);
    }
}

void MarkdownRichTextWriter::appendEscaped(QChar c)
{
    switch (c.unicode()) {
    case u'&':
        m_html += "&amp;"_L1;
        break;
    case u'<':
        m_html += "&lt;"_L1;
        break;
    case u'>':
        m_html += "&gt;"_L1;
        break;
    case u'"':
        m_html += "&quot;"_L1;
        break;
    default:
        m_html += c;
        break;
    }
}
