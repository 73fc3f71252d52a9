#include "sqlhighlighter.h"

#include "sqlhighlightchars.h"
#include "sqlhighlightwords.h"

namespace {

// Collects spans, merging each with the one before when they touch and look the same.
class SpanSink
{
public:
    explicit SpanSink(QList<SQLHighlightSpan> &spans)
        : m_spans(spans)
    {}

    void add(qsizetype start, qsizetype end, SQLHighlightRole role, bool keywordWeight)
    {
        if (m_pending.length > 0 && m_pending.end() == start && m_pending.role == role &&
            m_pending.hasKeywordWeight == keywordWeight) {
            m_pending.length += end - start;
            return;
        }
        if (m_pending.length > 0)
            m_spans.append(m_pending);
        m_pending = SQLHighlightSpan{start, end - start, role, keywordWeight};
    }

    void finish()
    {
        if (m_pending.length > 0)
            m_spans.append(m_pending);
        m_pending = {};
    }

private:
    QList<SQLHighlightSpan> &m_spans;
    SQLHighlightSpan m_pending;
};

qsizetype lastIndexOf(const char16_t *text, qsizetype length, char16_t wanted)
{
    // Whole chunks first, without an early exit inside, so that the compare is vectorised.
    constexpr qsizetype chunk = 16;
    qsizetype end = length;
    while (end >= chunk) {
        bool any = false;
        for (qsizetype i = end - chunk; i < end; ++i)
            any |= text[i] == wanted;
        if (any)
            break;
        end -= chunk;
    }
    for (qsizetype i = end; i-- > 0;) {
        if (text[i] == wanted)
            return i;
    }
    return -1;
}

bool isLowSurrogate(char16_t c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}

char32_t surrogatePair(char16_t high, char16_t low)
{
    return 0x10000 + ((char32_t(high) - 0xD800) << 10) + (char32_t(low) - 0xDC00);
}

// One pass of either rule set. Every rule of the set is applied at once: the scanner keeps,
// for each rule, whether the current position lies inside one of its matches, and colours by
// the last rule that covers a position.
//
// How the expressions reduce to that:
// - Word rules (\bWORD\b, \b\d+\b) can only match whole runs of word characters, since each
//   needs a boundary at both ends and has no boundary inside. A run is scanned once and then
//   looked up. A run that contains an extender cannot match (the literal or \d stops there,
//   and no \b falls before an extender).
// - '[^']*' pairs the first quote with the second, the third with the fourth, and so on; an
//   odd last quote starts no match. Likewise for double quotes.
// - A line comment starts at the first "--" of a line outside another comment match.
// - A block comment runs from "/*" to the first "*/" that begins at least two characters
//   later; the search resumes behind it.
template<bool ReadOnly>
class Scanner
{
public:
    Scanner(QStringView text, bool startsInString, bool quoteFollows, QList<SQLHighlightSpan> &spans)
        : m_text(text.utf16())
        , m_length(text.size())
        , m_chars(SQLHighlightChars::instance())
        , m_words(SQLHighlightWords::instance())
        , m_sink(spans)
        , m_quoteFollows(quoteFollows)
    {
        m_lastQuote = lastIndexOf(m_text, m_length, u'\'');
        if constexpr (ReadOnly)
            m_lastDoubleQuote = lastIndexOf(m_text, m_length, u'"');
        m_inString = startsInString && (m_lastQuote >= 0 || quoteFollows);
        m_base = baseAt(0);
    }

    void run()
    {
        const char16_t *const text = m_text;
        const qsizetype length = m_length;
        qsizetype i = 0;
        while (i < length) {
            switch (m_chars.kind(text[i])) {
            case SQLCharKind::Other:
            case SQLCharKind::Extend:
            case SQLCharKind::Dot:
                ++i;
                break;
            case SQLCharKind::Letter:
            case SQLCharKind::Digit:
            case SQLCharKind::Word:
                i = word(i);
                break;
            case SQLCharKind::HighSurrogate:
                if (i + 1 < length && isLowSurrogate(text[i + 1])) {
                    const SQLCharKind kind =
                        SQLHighlightChars::supplementaryKind(surrogatePair(text[i], text[i + 1]));
                    if (kind == SQLCharKind::Word || kind == SQLCharKind::Digit)
                        i = word(i);
                    else
                        i += 2;
                } else {
                    ++i;
                }
                break;
            case SQLCharKind::LineFeed:
                lineEnd(i);
                ++i;
                break;
            case SQLCharKind::OtherLineEnd:
                if constexpr (!ReadOnly)
                    lineEnd(i);
                ++i;
                break;
            case SQLCharKind::Quote:
                quote(i);
                ++i;
                break;
            case SQLCharKind::DoubleQuote:
                if constexpr (ReadOnly)
                    doubleQuote(i);
                ++i;
                break;
            case SQLCharKind::Dash:
                if (!m_inLineComment && i + 1 < length && text[i + 1] == u'-') {
                    m_inLineComment = true;
                    setBaseAt(i);
                    i += 2;
                } else {
                    ++i;
                }
                break;
            case SQLCharKind::Slash:
                if constexpr (ReadOnly)
                    slash(i);
                ++i;
                break;
            }
        }
        if (m_base != SQLHighlightRole::Plain && length > m_stretchStart)
            m_sink.add(m_stretchStart, length, m_base, false);
        m_sink.finish();
    }

private:
    // The colour a character takes from the string and comment rules alone.
    [[nodiscard]] SQLHighlightRole baseAt(qsizetype position) const
    {
        if (m_inLineComment || position < m_blockCommentEnd)
            return SQLHighlightRole::Comment;
        if (m_inString || m_inDoubleString)
            return SQLHighlightRole::String;
        return SQLHighlightRole::Plain;
    }

    // The string or comment state changed at `position`.
    void setBaseAt(qsizetype position)
    {
        const SQLHighlightRole base = baseAt(position);
        if (base == m_base)
            return;
        if (m_base != SQLHighlightRole::Plain && position > m_stretchStart)
            m_sink.add(m_stretchStart, position, m_base, false);
        m_base = base;
        m_stretchStart = position;
    }

    void lineEnd(qsizetype i)
    {
        if (m_inLineComment) {
            m_inLineComment = false;
            setBaseAt(i);
        }
    }

    void quote(qsizetype i)
    {
        if (m_inString) {
            m_inString = false;
            setBaseAt(i + 1);
        } else if (i != m_lastQuote || m_quoteFollows) {
            m_inString = true;
            setBaseAt(i);
        }
    }

    void doubleQuote(qsizetype i)
    {
        if (m_inDoubleString) {
            m_inDoubleString = false;
            setBaseAt(i + 1);
        } else if (i != m_lastDoubleQuote) {
            m_inDoubleString = true;
            setBaseAt(i);
        }
    }

    void slash(qsizetype i)
    {
        if (i >= m_blockCommentEnd && !m_blockCommentsDone && i + 1 < m_length && m_text[i + 1] == u'*') {
            const qsizetype close = QStringView(m_text, m_length).indexOf(u"*/", i + 2);
            if (close < 0) {
                // No later "/*" can find a close either.
                m_blockCommentsDone = true;
            } else {
                m_blockCommentEnd = close + 2;
                setBaseAt(i);
            }
        } else if (i + 1 == m_blockCommentEnd) {
            setBaseAt(i + 1);
        }
    }

    // Scans the run of word characters at `start`, colours it, and returns its end.
    qsizetype word(qsizetype start)
    {
        const char16_t *const text = m_text;
        const qsizetype length = m_length;
        bool matchable = true; // no extender inside
        bool allDigits = true;
        bool letters = true;
        SQLHighlightWords::Key key;
        qsizetype i = start;
        while (i < length) {
            const char16_t c = text[i];
            const SQLCharKind kind = m_chars.kind(c);
            if (kind == SQLCharKind::Letter) {
                allDigits = false;
                if (letters) {
                    if (c < 0x80) {
                        key.append(c & 0x1F);
                    } else {
                        int count = 0;
                        quint32 codes = m_chars.foldCodes(c, count);
                        for (; count > 0; --count, codes >>= 5)
                            key.append(codes & 0x1F);
                    }
                }
                ++i;
            } else if (kind == SQLCharKind::Digit) {
                letters = false;
                ++i;
            } else if (kind == SQLCharKind::Word) {
                letters = false;
                allDigits = false;
                ++i;
            } else if (kind == SQLCharKind::Extend) {
                matchable = false;
                ++i;
            } else if (kind == SQLCharKind::HighSurrogate && i + 1 < length && isLowSurrogate(text[i + 1])) {
                const SQLCharKind wide = SQLHighlightChars::supplementaryKind(surrogatePair(c, text[i + 1]));
                if (wide == SQLCharKind::Digit) {
                    letters = false;
                } else if (wide == SQLCharKind::Word) {
                    letters = false;
                    allDigits = false;
                } else if (wide == SQLCharKind::Extend) {
                    matchable = false;
                } else {
                    break;
                }
                i += 2;
            } else {
                break;
            }
        }
        colourWord(start, i, matchable && allDigits, matchable && letters ? m_words.flags(key) : quint8(0));
        return i;
    }

    void colourWord(qsizetype start, qsizetype end, bool isNumber, quint8 wordFlags)
    {
        if constexpr (ReadOnly) {
            // \b\d+(?:\.\d+)?\b: a digit run right behind "<digits>." continues that number,
            // unless those digits were themselves the fraction of one.
            if (isNumber) {
                const bool isFraction = m_pendingDot >= 0 && start == m_pendingDot + 1;
                m_pendingDot = !isFraction && end < m_length && m_text[end] == u'.' ? end : -1;
                if (isFraction)
                    --start;
            } else {
                m_pendingDot = -1;
            }
        }
        const bool keywordWeight = (wordFlags & SQLHighlightWords::IsKeyword) != 0;
        SQLHighlightRole role = SQLHighlightRole::Plain;
        if (m_inLineComment || start < m_blockCommentEnd)
            role = SQLHighlightRole::Comment;
        else if (isNumber)
            role = SQLHighlightRole::Number;
        else if (m_inString || m_inDoubleString)
            role = SQLHighlightRole::String;
        else if (wordFlags & SQLHighlightWords::IsType)
            role = SQLHighlightRole::Type;
        else if (keywordWeight)
            role = SQLHighlightRole::Keyword;
        if (role == m_base && !keywordWeight)
            return;
        if (m_base != SQLHighlightRole::Plain && start > m_stretchStart)
            m_sink.add(m_stretchStart, start, m_base, false);
        m_sink.add(start, end, role, keywordWeight);
        m_stretchStart = end;
    }

    const char16_t *m_text = nullptr;
    qsizetype m_length = 0;
    const SQLHighlightChars &m_chars;
    const SQLHighlightWords &m_words;
    SpanSink m_sink;
    const bool m_quoteFollows = false;

    qsizetype m_lastQuote = -1;
    qsizetype m_lastDoubleQuote = -1;
    bool m_inString = false;
    bool m_inDoubleString = false;
    bool m_inLineComment = false;
    qsizetype m_blockCommentEnd = 0;
    bool m_blockCommentsDone = false;
    qsizetype m_pendingDot = -1;

    // The string/comment colour in force, and where its not yet written stretch began.
    SQLHighlightRole m_base = SQLHighlightRole::Plain;
    qsizetype m_stretchStart = 0;
};

} // namespace

QList<SQLHighlightSpan> SQLHighlighter::editorSpans(QStringView text)
{
    QList<SQLHighlightSpan> spans;
    editorSpans(text, spans);
    return spans;
}

void SQLHighlighter::editorSpans(QStringView text, QList<SQLHighlightSpan> &spans)
{
    spans.clear();
    Scanner<false>(text, false, false, spans).run();
}

void SQLHighlighter::editorLineSpans(QStringView line, bool startsInString, bool quoteFollows,
                                     QList<SQLHighlightSpan> &spans)
{
    spans.clear();
    Scanner<false>(line, startsInString, quoteFollows, spans).run();
}

QList<SQLHighlightSpan> SQLHighlighter::highlightedContent(QStringView text)
{
    QList<SQLHighlightSpan> spans;
    highlightedContent(text, spans);
    return spans;
}

void SQLHighlighter::highlightedContent(QStringView text, QList<SQLHighlightSpan> &spans)
{
    spans.clear();
    Scanner<true>(text, false, false, spans).run();
}

qsizetype SQLHighlighter::quoteCount(QStringView text)
{
    qsizetype count = 0;
    for (const QChar c : text)
        count += c == u'\'';
    return count;
}
