#include "sqltokenchars.h"

#include <QString>
#include <QTextBoundaryFinder>

#include <bitset>
#include <memory>

namespace {

// Whether a break falls between `before` and `after`, as QTextBoundaryFinder sees it.
bool breaksBetween(char32_t before, char32_t after)
{
    const char32_t pair[] = {before, after};
    const QString text = QString::fromUcs4(pair, 2);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(QChar::requiresSurrogates(before) ? 2 : 1);
    return finder.isAtBoundary();
}

// The two properties for the whole Basic Multilingual Plane, read from QTextBoundaryFinder in
// one pass over "a c a c a ..." (every code unit between two letters), so that the scanners
// agree with the platform's clusters without a table of our own to keep up to date.
struct BmpProperties
{
    std::bitset<0x10000> prepend;
    std::bitset<0x10000> joiner;

    BmpProperties()
    {
        QString probe(2 * 0x10000 + 1, u'a');
        for (char32_t c = 0; c < 0x10000; ++c) {
            if (!QChar::isSurrogate(c))
                probe[qsizetype(2 * c + 1)] = QChar(char16_t(c));
        }
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, probe);
        for (char32_t c = 0; c < 0x10000; ++c) {
            if (QChar::isSurrogate(c))
                continue;
            finder.setPosition(qsizetype(2 * c + 1));
            joiner[c] = !finder.isAtBoundary();
            finder.setPosition(qsizetype(2 * c + 2));
            prepend[c] = !finder.isAtBoundary();
        }
    }
};

const BmpProperties &bmpProperties()
{
    static const auto properties = std::make_unique<BmpProperties>();
    return *properties;
}

} // namespace

bool SqlTokenChars::isPrependSlow(char32_t codePoint)
{
    if (codePoint < 0x10000)
        return bmpProperties().prepend[codePoint];
    return !breaksBetween(codePoint, u'a');
}

bool SqlTokenChars::isJoinerSlow(char32_t codePoint)
{
    if (codePoint < 0x10000)
        return bmpProperties().joiner[codePoint];
    return !breaksBetween(u'a', codePoint);
}

qsizetype SqlTokenChars::trimmedStart(QStringView text)
{
    qsizetype start = 0;
    while (start < text.size()) {
        const qsizetype space = whiteSpaceAt(text, start);
        if (space == 0)
            break;
        start += space;
    }
    return start;
}

qsizetype SqlTokenChars::trimmedEnd(QStringView text)
{
    qsizetype end = text.size();
    while (end > 0) {
        const QStringView head = text.first(end);
        if (end > 1 && head[end - 1] == u'\n' && head[end - 2] == u'\r')
            end -= 2;
        else if (whiteSpaceAt(head, end - 1) > 0)
            --end;
        else
            break;
    }
    return end;
}
