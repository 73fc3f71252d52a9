#pragma once

#include <QtGlobal>

#include <array>

// How the colouring passes see one character. The rules' patterns were written for the ICU
// regular expression engine, and the passes reproduce its reading of them exactly:
// - A word character is \w as ICU defines it: Alphabetic, any mark, a decimal digit,
//   connector punctuation, U+200C and U+200D. So Chinese and Japanese letters are word
//   characters ("表1" holds no number, "中SELECT" no keyword).
// - A \b never falls before a grapheme extender or a format character (combining marks,
//   U+200D, U+00AD, U+FEFF): those join the character before them, as ICU has it.
// - \d is any decimal digit (general category Nd), full-width and Arabic-Indic digits too.
// - Letters match case-insensitively through full case folding: "ſ" and "K" fold to "s" and
//   "k", "ß" to "ss", and the Latin ligatures (U+FB00..U+FB06) to their letters.
// - A line ends at LF, VT, FF, CR, NEL, U+2028 or U+2029 (ICU's "." and "$").
enum class SQLCharKind : quint8 {
    Other,         // none of the below: not part of a word
    Letter,        // a word character that folds to keyword letters (A-Z, "_", ß, ſ, ...)
    Digit,         // a decimal digit (also a word character)
    Word,          // any other word character
    Extend,        // a grapheme extender or format character
    LineFeed,      // U+000A
    OtherLineEnd,  // VT, FF, CR, NEL, U+2028, U+2029
    Quote,         // '
    DoubleQuote,   // "
    Dash,          // -
    Slash,         // /
    Dot,           // .
    HighSurrogate, // the first half of a pair; the pair is classified as one code point
};

// Character classes, built once from the ICU property data. Thread-safe after construction.
class SQLHighlightChars
{
public:
    // The one table of the process.
    [[nodiscard]] static const SQLHighlightChars &instance();

    [[nodiscard]] SQLCharKind kind(char16_t c) const { return SQLCharKind(m_bmp[c]); }
    // For a code point beyond the BMP (never Letter, line end or surrogate).
    [[nodiscard]] static SQLCharKind supplementaryKind(char32_t c);

    // The folded letters of a Letter character as 5-bit codes (A..Z = 1..26, "_" = 31), the
    // first in the lowest bits; the count goes to `count`.
    [[nodiscard]] quint32 foldCodes(char16_t c, int &count) const
    {
        if (c < 0x80) {
            count = 1;
            return c & 0x1F;
        }
        for (const FoldEntry &entry : m_folds) {
            if (entry.character == c) {
                count = entry.count;
                return entry.codes;
            }
        }
        count = 0;
        return 0;
    }

private:
    SQLHighlightChars();
    [[nodiscard]] static SQLCharKind classify(char32_t c);

    struct FoldEntry
    {
        char16_t character = 0;
        quint8 count = 0;
        quint32 codes = 0;
    };

    std::array<quint8, 0x10000> m_bmp{};
    // Non-ASCII letters that fold to keyword letters; Unicode 15 has eleven.
    std::array<FoldEntry, 16> m_folds{};
};
