#include "sqlhighlightchars.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace {

bool isExtender(UChar32 c)
{
    return u_hasBinaryProperty(c, UCHAR_GRAPHEME_EXTEND) || u_charType(c) == U_FORMAT_CHAR;
}

bool isWordCharacter(UChar32 c)
{
    const auto type = u_charType(c);
    return u_hasBinaryProperty(c, UCHAR_ALPHABETIC) || (U_MASK(type) & U_GC_M_MASK) != 0 ||
           type == U_DECIMAL_DIGIT_NUMBER || type == U_CONNECTOR_PUNCTUATION || c == 0x200C || c == 0x200D;
}

// The full case folding of `c` when it is made only of keyword letters, as 5-bit codes.
bool foldsToKeywordLetters(UChar32 c, quint32 &codes, int &count)
{
    UChar source[2];
    int32_t sourceLength = 0;
    U16_APPEND_UNSAFE(source, sourceLength, c);
    UChar folded[8];
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = u_strFoldCase(folded, 8, source, sourceLength, U_FOLD_CASE_DEFAULT, &error);
    if (U_FAILURE(error) || length <= 0 || length > 3)
        return false;
    codes = 0;
    for (int32_t i = 0; i < length; ++i) {
        const UChar f = folded[i];
        if (!((f >= u'a' && f <= u'z') || f == u'_'))
            return false;
        codes |= quint32(f & 0x1F) << (5 * i);
    }
    count = length;
    return true;
}

} // namespace

const SQLHighlightChars &SQLHighlightChars::instance()
{
    static const SQLHighlightChars chars;
    return chars;
}

SQLCharKind SQLHighlightChars::classify(char32_t c)
{
    if (c == 0x85 || c == 0x2028 || c == 0x2029)
        return SQLCharKind::OtherLineEnd;
    if (isExtender(UChar32(c)))
        return SQLCharKind::Extend;
    if (u_charType(UChar32(c)) == U_DECIMAL_DIGIT_NUMBER)
        return SQLCharKind::Digit;
    return isWordCharacter(UChar32(c)) ? SQLCharKind::Word : SQLCharKind::Other;
}

SQLCharKind SQLHighlightChars::supplementaryKind(char32_t c)
{
    return classify(c);
}

SQLHighlightChars::SQLHighlightChars()
{
    for (char16_t c = 0; c < 0x80; ++c) {
        SQLCharKind kind = SQLCharKind::Other;
        if ((c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_')
            kind = SQLCharKind::Letter;
        else if (c >= u'0' && c <= u'9')
            kind = SQLCharKind::Digit;
        else if (c == u'\n')
            kind = SQLCharKind::LineFeed;
        else if (c == u'\v' || c == u'\f' || c == u'\r')
            kind = SQLCharKind::OtherLineEnd;
        else if (c == u'\'')
            kind = SQLCharKind::Quote;
        else if (c == u'"')
            kind = SQLCharKind::DoubleQuote;
        else if (c == u'-')
            kind = SQLCharKind::Dash;
        else if (c == u'/')
            kind = SQLCharKind::Slash;
        else if (c == u'.')
            kind = SQLCharKind::Dot;
        m_bmp[c] = quint8(kind);
    }
    qsizetype folds = 0;
    for (char32_t c = 0x80; c < 0x10000; ++c) {
        if (c >= 0xD800 && c <= 0xDBFF) {
            m_bmp[c] = quint8(SQLCharKind::HighSurrogate);
            continue;
        }
        if (c >= 0xDC00 && c <= 0xDFFF) {
            m_bmp[c] = quint8(SQLCharKind::Other); // a low half without its high half
            continue;
        }
        SQLCharKind kind = classify(c);
        quint32 codes = 0;
        int count = 0;
        if (kind == SQLCharKind::Word && folds < qsizetype(m_folds.size()) &&
            foldsToKeywordLetters(UChar32(c), codes, count)) {
            m_folds[folds++] = FoldEntry{char16_t(c), quint8(count), codes};
            kind = SQLCharKind::Letter;
        }
        m_bmp[c] = quint8(kind);
    }
}
