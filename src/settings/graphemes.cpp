#include "graphemes.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>

#include <memory>

namespace {

constexpr char16_t CR = u'\r';
constexpr char16_t LF = u'\n';

bool isAsciiControl(char16_t c)
{
    return c < 0x20 || c == 0x7f;
}

char32_t codePointBefore(QStringView text, qsizetype i)
{
    const char16_t low = text[i - 1].unicode();
    if (QChar::isLowSurrogate(low) && i >= 2 && QChar::isHighSurrogate(text[i - 2].unicode()))
        return QChar::surrogateToUcs4(text[i - 2].unicode(), low);
    return low;
}

// True when a cluster boundary before the ASCII character at `i` follows from its left
// neighbour alone. Only CR LF and a Prepend character can hold an ASCII character to what
// stands before it; no rule joins an ASCII character to what follows it except CR LF and the
// extending characters after it, which are never ASCII.
bool isSafeBoundary(QStringView text, qsizetype i)
{
    const char16_t c = text[i].unicode();
    const char16_t previous = text[i - 1].unicode();
    if (previous < 0x80)
        return !(previous == CR && c == LF);
    if (isAsciiControl(c))
        return true;
    return u_getIntPropertyValue(codePointBefore(text, i), UCHAR_GRAPHEME_CLUSTER_BREAK) != U_GCB_PREPEND;
}

class ClusterCounter
{
public:
    qsizetype count(QStringView segment)
    {
        UErrorCode status = U_ZERO_ERROR;
        if (!m_iterator) {
            m_iterator.reset(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
            if (U_FAILURE(status) || !m_iterator) {
                m_iterator.reset();
                return segment.size();
            }
        }
        UText *utext = utext_openUChars(nullptr, reinterpret_cast<const UChar *>(segment.utf16()),
                                        segment.size(), &status);
        if (U_FAILURE(status))
            return segment.size();
        m_iterator->setText(utext, status);
        qsizetype clusters = 0;
        if (U_SUCCESS(status)) {
            m_iterator->first();
            while (m_iterator->next() != icu::BreakIterator::DONE)
                ++clusters;
        }
        utext_close(utext);
        return U_SUCCESS(status) ? clusters : segment.size();
    }

private:
    std::unique_ptr<icu::BreakIterator> m_iterator;
};

} // namespace

qsizetype graphemeCount(QStringView text)
{
    const qsizetype size = text.size();
    if (size == 0)
        return 0;

    thread_local ClusterCounter counter;
    qsizetype clusters = 0;
    qsizetype segmentStart = 0;
    bool segmentHasOtherText = text[0].unicode() >= 0x80;
    for (qsizetype i = 1; i < size; ++i) {
        const char16_t c = text[i].unicode();
        if (c >= 0x80) {
            segmentHasOtherText = true;
            continue;
        }
        if (!isSafeBoundary(text, i))
            continue;
        clusters += segmentHasOtherText ? counter.count(text.sliced(segmentStart, i - segmentStart)) : 1;
        segmentStart = i;
        segmentHasOtherText = false;
    }
    clusters += segmentHasOtherText ? counter.count(text.sliced(segmentStart)) : 1;
    return clusters;
}
