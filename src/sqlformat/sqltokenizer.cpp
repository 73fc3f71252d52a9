#include "sqltokenizer.h"

#include "sqldialectscan.h"
#include "sqltokenchars.h"

#include <array>

namespace {

enum AsciiClass : quint8 { Plain, Blank, ControlSpace, Opener, Punctuation };

constexpr std::array<quint8, 128> asciiClasses = [] {
    std::array<quint8, 128> classes{};
    classes[' '] = Blank;
    for (char c : {'\t', '\n', '\v', '\f', '\r'})
        classes[size_t(c)] = ControlSpace;
    for (char c : {'\'', '"', '`', '[', '-', '#', '/', '$', '\\'})
        classes[size_t(c)] = Opener;
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
        if (m_watchFlattening && i != m_commentLineEnd)
            watchWhiteSpace(i, space);
        i += space;
    }
    if (i >= size) {
        m_position = size;
        return false;
    }

    const char16_t c = text[i].unicode();
    SqlDialectScan::Stretch first;
    if (c < 0x80 && asciiClasses[c] == Opener) {
        first = SqlDialectScan::stretchAt(text, i, m_options, i);
        if (first.kind == SqlDialectScan::StretchKind::LineComment) {
            token.text = text.sliced(i, first.end - i);
            token.kind = SqlTokenKind::Comment;
            m_position = m_commentLineEnd = first.end;
            return true;
        }
    } else if (c < 0x80 && asciiClasses[c] == Punctuation && SqlTokenChars::standsAlone(text, i)) {
        token.text = text.sliced(i, 1);
        token.kind = SqlTokenKind::Punctuation;
        m_position = i + 1;
        return true;
    }
    SqlTokenKind kind = SqlTokenKind::Word;
    qsizetype end = i;
    if (first.kind == SqlDialectScan::StretchKind::Inline) {
        kind = SqlTokenKind::Quoted;
        end = wordEnd(i, first.end, kind);
    } else {
        end = wordEnd(i, i, kind);
    }
    token.text = text.sliced(i, end - i);
    token.kind = kind;
    if (kind == SqlTokenKind::Comment) {
        m_position = m_commentLineEnd = end;
        return true;
    }
    const bool quoted = kind == SqlTokenKind::Quoted;
    token.bracketFollows = false;
    m_position = end;
    if (!quoted) {
        qsizetype k = end;
        while (k < size) {
            const qsizetype space = SqlTokenChars::whiteSpaceAt(text, k);
            if (space == 0)
                break;
            k += space;
        }
        token.bracketFollows = k < size && text[k] == u'(' && SqlTokenChars::standsAlone(text, k);
    }
    return true;
}

// A word runs to white space, a bracket, comma or semicolon that stands alone, or a line
// comment. Strings, quoted names and block comments inside it are taken whole, so that a
// prefix stays on its quote (N'x', E'x', _utf8'x', q'[x]') and a name on its subscript.
// A stretch that opens with a quote but, as some dialect reads on, ends in a line comment
// still keeps its prefix: the word becomes a comment token. So does a line comment behind a
// dash.
qsizetype SqlTokenizer::wordEnd(qsizetype start, qsizetype from, SqlTokenKind &kind) const
{
    const QStringView text = m_text;
    const qsizetype size = text.size();
    qsizetype codeStart = from; // behind the last stretch in the word
    for (qsizetype j = from; j < size;) {
        const char16_t c = text[j].unicode();
        if (c >= 0x80) {
            if (j > start && SqlTokenChars::isOtherSpace(c) && SqlTokenChars::whiteSpaceAt(text, j) > 0)
                return j;
            ++j;
            continue;
        }
        switch (asciiClasses[c]) {
        case Plain:
            break;
        case ControlSpace:
            if (j > start)
                return j;
            break;
        case Opener: {
            const SqlDialectScan::Stretch stretch = SqlDialectScan::stretchAt(text, j, m_options, codeStart);
            if (stretch.kind == SqlDialectScan::StretchKind::LineComment) {
                // A dash right before it stays: "--" with a blank or line end behind it would
                // be a comment to MySQL.
                if (c != u'\'' && c != u'"' && text[j - 1] != u'-')
                    return j;
                kind = SqlTokenKind::Comment;
                return stretch.end;
            }
            if (stretch.kind == SqlDialectScan::StretchKind::Inline) {
                kind = SqlTokenKind::Quoted;
                j = codeStart = stretch.end;
                continue;
            }
            break;
        }
        default: // a blank or punctuation
            if (j > start && SqlTokenChars::standsAlone(text, j))
                return j;
            break;
        }
        ++j;
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
