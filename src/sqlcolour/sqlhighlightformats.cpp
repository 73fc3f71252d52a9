#include "sqlhighlightformats.h"

#include "sqlhighlighter.h"

#include <QFontDatabase>
#include <QTextBlock>
#include <QTextDocument>

SQLHighlightFormats::SQLHighlightFormats()
    : SQLHighlightFormats(QColor(0, 0, 0), QColor(0, 0, 0, 128), defaultFontSize)
{}

SQLHighlightFormats::SQLHighlightFormats(const QColor &plainColor, const QColor &commentColor,
                                         double fontSize)
    : m_plainColor(plainColor)
    , m_commentColor(commentColor)
    , m_fontSize(fontSize > 0 ? fontSize : defaultFontSize)
{
    build();
}

QColor SQLHighlightFormats::colour(const SQLHighlightRgba &rgba)
{
    return QColor::fromRgbF(rgba.red, rgba.green, rgba.blue, rgba.alpha);
}

QColor SQLHighlightFormats::colour(SQLHighlightRole role) const
{
    switch (role) {
    case SQLHighlightRole::Plain:
        return m_plainColor;
    case SQLHighlightRole::Keyword:
        return colour(highlightKeywordColour);
    case SQLHighlightRole::Type:
        return colour(highlightTypeColour);
    case SQLHighlightRole::String:
        return colour(highlightStringColour);
    case SQLHighlightRole::Number:
        return colour(highlightNumberColour);
    case SQLHighlightRole::Comment:
        return m_commentColor;
    }
    return m_plainColor;
}

void SQLHighlightFormats::build()
{
    for (std::size_t role = 0; role < m_formats.size(); ++role) {
        for (std::size_t weight = 0; weight < 2; ++weight) {
            QTextCharFormat format;
            format.setForeground(colour(SQLHighlightRole(role)));
            format.setFontWeight(weight ? highlightKeywordWeight : highlightPlainWeight);
            format.setFontPointSize(m_fontSize);
            m_formats[role][weight] = format;
        }
    }
}

QList<QTextLayout::FormatRange> SQLHighlightFormats::formatRanges(const QList<SQLHighlightSpan> &spans,
                                                                  qsizetype length) const
{
    QList<QTextLayout::FormatRange> ranges;
    ranges.reserve(spans.size() * 2 + 1);
    const QTextCharFormat &plain = format(SQLHighlightRole::Plain, false);
    qsizetype position = 0;
    for (const SQLHighlightSpan &span : spans) {
        const qsizetype start = std::min(span.start, length);
        const qsizetype end = std::min(span.end(), length);
        if (start > position)
            ranges.append({int(position), int(start - position), plain});
        if (end > start)
            ranges.append({int(start), int(end - start), format(span.role, span.hasKeywordWeight)});
        position = std::max(position, end);
    }
    if (length > position)
        ranges.append({int(position), int(length - position), plain});
    return ranges;
}

void SQLHighlightFormats::applyToDocument(QTextDocument *document, const QList<SQLHighlightSpan> &spans) const
{
    if (!document)
        return;
    auto span = spans.cbegin();
    QList<SQLHighlightSpan> blockSpans;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        const qsizetype blockStart = block.position();
        const qsizetype blockEnd = blockStart + block.length() - 1;
        while (span != spans.cend() && span->end() <= blockStart)
            ++span;
        blockSpans.clear();
        for (auto it = span; it != spans.cend() && it->start < blockEnd; ++it) {
            const qsizetype start = std::max(it->start, blockStart);
            const qsizetype end = std::min(it->end(), blockEnd);
            if (start < end)
                blockSpans.append({start - blockStart, end - start, it->role, it->hasKeywordWeight});
        }
        block.layout()->setFormats(formatRanges(blockSpans, blockEnd - blockStart));
    }
    document->markContentsDirty(0, document->characterCount());
}

QTextDocument *SQLHighlightFormats::highlightedDocument(const QString &text, QObject *parent) const
{
    auto *document = new QTextDocument(parent);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(m_fontSize);
    document->setDefaultFont(font);
    document->setPlainText(text);
    applyToDocument(document, SQLHighlighter::highlightedContent(documentText(document)));
    return document;
}

QString SQLHighlightFormats::documentText(const QTextDocument *document)
{
    QString text;
    if (!document)
        return text;
    text.reserve(document->characterCount());
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        if (block != document->begin())
            text.append(u'\n');
        text.append(block.text());
    }
    return text;
}
