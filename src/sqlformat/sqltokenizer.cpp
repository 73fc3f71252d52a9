#include "sqltokenizer.h"

#include "sqltokenchars.h"

#include <array>

namespace {

enum AsciiClass : quint8 { Plain, Blank, ControlSpace, Dash, Quote, Punctuation };

constexpr std::array<quint8, 128> asciiClasses = [] {
    std::array<quint8, 128> classes{};
    classes[' '] = Blank;
    for (char c : {'\t', '\n', '\v', '\f', '\r'})
        classes[size_t(c)] = ControlSpace;
    classes['-'] = Dash;
    classes['\''] = Quote;
    classes['"'] = Quote;
    for (char c : {'(', ')', ',', ';'})
        classes[size_t(c)] = Punctuation;
    return classes;
}();

} // namespace

bool SqlTokenizer::next(SqlToken &token)
{
    const QStringView text = m_text;
    const qsizetype size = text.size();
    qsizetype i = m_position;
    while (i < size) {
        const qsizetype space = SqlTokenChars::whiteSpaceAt(text, i);
        if (space == 0)
            break;
        if (m_watchFlattening && i != m_commentLineFeed)
            watchWhiteSpace(i, space);
        i += space;
    }
    if (i >= size) {
        m_position = size;
        return false;
    }

    qsizetype end = -1;
    SqlTokenKind kind = SqlTokenKind::Word;
    const char16_t c = text[i].unicode();
    if (c < 0x80) {
        switch (asciiClasses[c]) {
        case Dash:
            if (SqlTokenChars::isDoubleDash(text, i)) {
                end = SqlTokenChars::lineFeedFrom(text, i + 2);
                kind = SqlTokenKind::Comment;
                m_commentLineFeed = end;
            }
            break;
        case Quote:
            if (SqlTokenChars::standsAlone(text, i)) {
                end = quotedEnd(i);
                kind = SqlTokenKind::Quoted;
            }
            break;
        case Punctuation:
            if (SqlTokenChars::standsAlone(text, i)) {
                end = i + 1;
                kind = SqlTokenKind::Punctuation;
            }
            break;
        default:
            break;
        }
    }
    if (end < 0)
        end = wordEnd(i);
    token.text = text.sliced(i, end - i);
    token.kind = kind;
    m_position = end;
    return true;
}

// A quote closes at the next quote of the same kind, unless a second one follows at once: a
// doubled quote belongs to the string ('it''s' is one token, as SQL reads it).
qsizetype SqlTokenizer::quotedEnd(qsizetype start) const
{
    const QStringView text = m_text;
    const QChar quote = text[start];
    for (qsizetype k = start + 1;; ++k) {
        k = text.indexOf(quote, k);
        if (k < 0)
            return text.size();
        if (!SqlTokenChars::standsAlone(text, k))
            continue;
        if (k + 1 < text.size() && text[k + 1] == quote && SqlTokenChars::boundaryAfter(text, k + 1)) {
            ++k;
            continue;
        }
        return k + 1;
    }
}

qsizetype SqlTokenizer::wordEnd(qsizetype start) const
{
    const QStringView text = m_text;
    const qsizetype size = text.size();
    // The first character belongs to the word whatever it is: it was not read as anything else.
    for (qsizetype j = start + 1; j < size; ++j) {
        const char16_t c = text[j].unicode();
        if (c >= 0x80) {
            if (SqlTokenChars::isOtherSpace(c) && SqlTokenChars::whiteSpaceAt(text, j) > 0)
                return j;
            continue;
        }
        switch (asciiClasses[c]) {
        case Plain:
            break;
        case ControlSpace:
            return j;
        case Dash:
            if (SqlTokenChars::isDoubleDash(text, j))
                return j;
            break;
        default:
            if (SqlTokenChars::standsAlone(text, j))
                return j;
            break;
        }
    }
    return size;
}

void SqlTokenizer::watchWhiteSpace(qsizetype at, qsizetype length)
{
    const QStringView text = m_text;
    const char16_t c = text[at].unicode();
    if (c != u'\n' && c != u'\t' && length != 2)
        return;
    if (at > 0 && text[at - 1].unicode() >= 0x80 &&
        SqlTokenChars::isPrepend(SqlTokenChars::codePointBefore(text, at)))
        m_flatteningMerges = true;
    const qsizetype after = at + length;
    if (after < text.size() && text[after].unicode() >= 0x80 &&
        SqlTokenChars::isJoiner(SqlTokenChars::codePointAt(text, after)))
        m_flatteningMerges = true;
}
