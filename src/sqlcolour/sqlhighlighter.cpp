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

bool isLowSurrogate(char16_t c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}

char32_t surrogatePair(char16_t high, char16_t low)
{
    return 0x10000 + ((char32_t(high) - 0xD800) << 10) + (char32_t(low) - 0xDC00);
}

// One pass of either rule set, read as SQL is read: left to right, a string or comment runs
// from its opening mark to its closing one, and nothing inside it is a word, a number or another
// mark. Words are coloured only outside strings and comments.
//
// How the rules' expressions reduce to that:
// - The string and comment expressions ('[^']*', --.*$, /\*[\s\S]*?\*/ and, in the read-only
//   pass, "[^"]*") form one alternation matched leftmost and without overlap. A quote with no
//   partner after it, and a "/*" with no "*/" after it, start no match: they are plain and
//   reading goes on behind them.
// - Word rules (\bWORD\b, \b\d+\b) can only match whole runs of word characters, since each
//   needs a boundary at both ends and has no boundary inside. A run is scanned once and then
//   looked up. A run that contains an extender cannot match (the literal or \d stops there,
//   and no \b falls before an extender).
//
// `Colour` false reads the states only, for the state a line passes on.
template<bool ReadOnly, bool Colour>
class Scanner
{
public:
    Scanner(QStringView text, bool quoteFollows, bool closeFollows, SpanSink *sink)
        : m_text(text.utf16())
        , m_length(text.size())
        , m_chars(SQLHighlightChars::instance())
        , m_words(SQLHighlightWords::instance())
        , m_sink(sink)
        , m_quoteFollows(quoteFollows)
        , m_closeFollows(closeFollows)
    {}

    SQLLineState run(SQLLineState start)
    {
        qsizetype i = 0;
        if (start == SQLLineState::String)
            i = closeString(0, 0, u'\'', true);
        else if (start == SQLLineState::BlockComment)
            i = closeBlockComment(0, 0, true);
        const char16_t *const text = m_text;
        const qsizetype length = m_length;
        while (i < length) {
            switch (m_chars.kind(text[i])) {
            case SQLCharKind::Letter:
            case SQLCharKind::Digit:
            case SQLCharKind::Word:
                if constexpr (Colour)
                    i = word(i);
                else
                    ++i;
                break;
            case SQLCharKind::HighSurrogate:
                if (Colour && i + 1 < length && isLowSurrogate(text[i + 1])) {
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
            case SQLCharKind::Quote:
                i = closeString(i, i + 1, u'\'', m_quoteFollows);
                break;
            case SQLCharKind::DoubleQuote:
                if constexpr (ReadOnly)
                    i = closeString(i, i + 1, u'"', false);
                else
                    ++i;
                break;
            case SQLCharKind::Dash:
                i = i + 1 < length && text[i + 1] == u'-' ? lineComment(i) : i + 1;
                break;
            case SQLCharKind::Slash:
                i = i + 1 < length && text[i + 1] == u'*' ? closeBlockComment(i, i + 2, m_closeFollows)
                                                          : i + 1;
                break;
            default:
                ++i;
                break;
            }
        }
        if constexpr (Colour)
            m_sink->finish();
        return m_endState;
    }

private:
    void add(qsizetype start, qsizetype end, SQLHighlightRole role, bool keywordWeight = false)
    {
        if constexpr (Colour)
            m_sink->add(start, end, role, keywordWeight);
    }

    // A string opened at `open` (or carried into the line when `open` is 0 and `from` too),
    // closed by the next `quote` at or after `from`. Without one it is a string only when the
    // text after the line closes it; otherwise the opening quote is plain. Returns where
    // reading goes on.
    qsizetype closeString(qsizetype open, qsizetype from, char16_t quote, bool closedLater)
    {
        const qsizetype close = QStringView(m_text, m_length).indexOf(QChar(quote), from);
        if (close >= 0) {
            add(open, close + 1, SQLHighlightRole::String);
            return close + 1;
        }
        if (!closedLater)
            return from;
        add(open, m_length, SQLHighlightRole::String);
        m_endState = SQLLineState::String;
        return m_length;
    }

    // A block comment opened at `open`, closed by the first "*/" at or after `from`; the same
    // rules as a string otherwise.
    qsizetype closeBlockComment(qsizetype open, qsizetype from, bool closedLater)
    {
        if (!m_noCloseAfter) {
            const qsizetype close = QStringView(m_text, m_length).indexOf(u"*/", from);
            if (close >= 0) {
                add(open, close + 2, SQLHighlightRole::Comment);
                return close + 2;
            }
            // No later "/*" in the line can find a close either.
            m_noCloseAfter = true;
        }
        if (!closedLater)
            return open + 1;
        add(open, m_length, SQLHighlightRole::Comment);
        m_endState = SQLLineState::BlockComment;
        return m_length;
    }

    // A line comment from `open` to the end of its line: the next line feed, and in the editor
    // pass any other line end too.
    qsizetype lineComment(qsizetype open)
    {
        qsizetype i = open + 2;
        for (; i < m_length; ++i) {
            const SQLCharKind kind = m_chars.kind(m_text[i]);
            if (kind == SQLCharKind::LineFeed || (!ReadOnly && kind == SQLCharKind::OtherLineEnd))
                break;
        }
        add(open, i, SQLHighlightRole::Comment);
        return i;
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
        if (isNumber)
            role = SQLHighlightRole::Number;
        else if (wordFlags & SQLHighlightWords::IsType)
            role = SQLHighlightRole::Type;
        else if (keywordWeight)
            role = SQLHighlightRole::Keyword;
        if (role != SQLHighlightRole::Plain || keywordWeight)
            add(start, end, role, keywordWeight);
    }

    const char16_t *m_text = nullptr;
    qsizetype m_length = 0;
    const SQLHighlightChars &m_chars;
    const SQLHighlightWords &m_words;
    SpanSink *m_sink = nullptr;
    const bool m_quoteFollows = false;
    const bool m_closeFollows = false;

    bool m_noCloseAfter = false;
    qsizetype m_pendingDot = -1;
    SQLLineState m_endState = SQLLineState::Code;
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
    SpanSink sink(spans);
    Scanner<false, true>(text, false, false, &sink).run(SQLLineState::Code);
}

SQLLineState SQLHighlighter::editorLineSpans(QStringView line, SQLLineState start, bool quoteFollows,
                                             bool closeFollows, QList<SQLHighlightSpan> &spans)
{
    spans.clear();
    SpanSink sink(spans);
    return Scanner<false, true>(line, quoteFollows, closeFollows, &sink).run(start);
}

SQLLineState SQLHighlighter::editorLineEndState(QStringView line, SQLLineState start, bool quoteFollows,
                                                bool closeFollows)
{
    return Scanner<false, false>(line, quoteFollows, closeFollows, nullptr).run(start);
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
    SpanSink sink(spans);
    Scanner<true, true>(text, false, false, &sink).run(SQLLineState::Code);
}
