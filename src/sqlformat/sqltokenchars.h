#pragma once

#include <QChar>
#include <QStringView>

// Cluster tests for the SQL scanners. The scanners read text by user-perceived characters
// (extended grapheme clusters), but all they ever ask is whether a quote, a dash, a bracket,
// a comma, a semicolon or a white-space character stands as a cluster of its own. With ASCII
// neighbours it always does (CR LF aside), so the Unicode tables are consulted only next to
// other text: an ASCII letter followed by a combining mark is one cluster, and so is a quote.
class SqlTokenChars
{
public:
    // A Prepend code point holds on to whatever follows it (apart from controls).
    [[nodiscard]] static bool isPrepend(char32_t codePoint)
    {
        return codePoint >= 0x600 && isPrependSlow(codePoint);
    }
    // Extend, ZWJ and SpacingMark code points join the cluster before them.
    [[nodiscard]] static bool isJoiner(char32_t codePoint)
    {
        return codePoint >= 0x300 && isJoinerSlow(codePoint);
    }

    [[nodiscard]] static char32_t codePointAt(QStringView text, qsizetype i)
    {
        const char16_t c = text[i].unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1].unicode()))
            return QChar::surrogateToUcs4(c, text[i + 1].unicode());
        return c;
    }
    [[nodiscard]] static char32_t codePointBefore(QStringView text, qsizetype i)
    {
        const char16_t c = text[i - 1].unicode();
        if (QChar::isLowSurrogate(c) && i >= 2 && QChar::isHighSurrogate(text[i - 2].unicode()))
            return QChar::surrogateToUcs4(text[i - 2].unicode(), c);
        return c;
    }

    // A cluster starts at `i`, which holds a character of one code unit that is not a control.
    [[nodiscard]] static bool boundaryBefore(QStringView text, qsizetype i)
    {
        return i == 0 || text[i - 1].unicode() < 0x80 || !isPrepend(codePointBefore(text, i));
    }
    // A cluster ends after `i`, which holds a character of one code unit that is not a control.
    [[nodiscard]] static bool boundaryAfter(QStringView text, qsizetype i)
    {
        return i + 1 == text.size() || text[i + 1].unicode() < 0x80 || !isJoiner(codePointAt(text, i + 1));
    }
    // The character at `i` (one code unit, not a control) is a cluster of its own.
    [[nodiscard]] static bool standsAlone(QStringView text, qsizetype i)
    {
        return boundaryBefore(text, i) && boundaryAfter(text, i);
    }
    // "--" starts at `i`: two dashes, each a cluster of its own.
    [[nodiscard]] static bool isDoubleDash(QStringView text, qsizetype i)
    {
        return text[i] == u'-' && i + 1 < text.size() && text[i + 1] == u'-' && boundaryBefore(text, i) &&
               boundaryAfter(text, i + 1);
    }

    // Length of the white-space cluster at `i` (a white-space code point of its own, or CR LF),
    // or 0 when none starts there.
    [[nodiscard]] static qsizetype whiteSpaceAt(QStringView text, qsizetype i)
    {
        const char16_t c = text[i].unicode();
        if (c == u' ')
            return standsAlone(text, i) ? 1 : 0;
        if (c < 0x80) {
            if (c < u'\t' || c > u'\r')
                return 0;
            return c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n' ? 2 : 1;
        }
        if (!isOtherSpace(c))
            return 0;
        return isControl(c) || standsAlone(text, i) ? 1 : 0;
    }
    // Length of the line-end cluster at `i` (LF, VT, FF, CR, CR LF, NEL, LS, PS), or 0.
    [[nodiscard]] static qsizetype lineEndAt(QStringView text, qsizetype i)
    {
        const char16_t c = text[i].unicode();
        if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
            return 2;
        return (c >= u'\n' && c <= u'\r') || c == 0x85 || c == 0x2028 || c == 0x2029 ? 1 : 0;
    }
    // Position of the next line feed that is a cluster of its own (not the end of a CR LF),
    // at or after `from`, or the size of the text.
    [[nodiscard]] static qsizetype lineFeedFrom(QStringView text, qsizetype from)
    {
        for (qsizetype k = from;; ++k) {
            k = text.indexOf(u'\n', k);
            if (k < 0)
                return text.size();
            if (k == 0 || text[k - 1] != u'\r')
                return k;
        }
    }

    // Where `text` begins and ends without white-space characters at its ends.
    [[nodiscard]] static qsizetype trimmedStart(QStringView text);
    [[nodiscard]] static qsizetype trimmedEnd(QStringView text);

    // A white-space code point outside ASCII.
    [[nodiscard]] static bool isOtherSpace(char16_t c)
    {
        return c == 0x85 || c == 0xA0 || (c >= 0x1680 && QChar::isSpace(c));
    }
    // Controls (and the line and paragraph separators) are clusters of their own, always.
    [[nodiscard]] static bool isControl(char16_t c)
    {
        return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
    }

private:
    static bool isPrependSlow(char32_t codePoint);
    static bool isJoinerSlow(char32_t codePoint);
};
