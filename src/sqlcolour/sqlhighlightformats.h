#pragma once

#include "sqlhighlightspan.h"

#include <QColor>
#include <QList>
#include <QTextCharFormat>
#include <QTextLayout>

#include <array>

class QTextDocument;

// The character formats of the colouring roles. Plain text and comments take colours of the
// theme (its primary and secondary text colours), given when the colouring is attached to a
// view; the other roles have fixed colours. Every format carries the font size; keywords are
// semibold, everything else regular.
class SQLHighlightFormats
{
public:
    static constexpr double defaultFontSize = 14.0;

    SQLHighlightFormats();
    SQLHighlightFormats(const QColor &plainColor, const QColor &commentColor, double fontSize);

    [[nodiscard]] QColor plainColor() const { return m_plainColor; }
    [[nodiscard]] QColor commentColor() const { return m_commentColor; }
    [[nodiscard]] double fontSize() const { return m_fontSize; }

    [[nodiscard]] static QColor colour(const SQLHighlightRgba &rgba);
    [[nodiscard]] QColor colour(SQLHighlightRole role) const;
    [[nodiscard]] const QTextCharFormat &format(SQLHighlightRole role, bool keywordWeight) const
    {
        return m_formats[std::size_t(role)][keywordWeight ? 1 : 0];
    }

    // Format ranges covering [0, length) of a text whose spans are `spans`: the spans' formats,
    // and the plain format in between (the plain font and colour lie under all text).
    [[nodiscard]] QList<QTextLayout::FormatRange> formatRanges(const QList<SQLHighlightSpan> &spans,
                                                               qsizetype length) const;

    // Puts the spans of the document's text (as documentText() gives it) on the document's
    // blocks, and has the document laid out again once.
    void applyToDocument(QTextDocument *document, const QList<SQLHighlightSpan> &spans) const;

    // A read-only document of `text` coloured by the read-only pass, in the sheet's font;
    // owned by `parent`.
    [[nodiscard]] QTextDocument *highlightedDocument(const QString &text, QObject *parent = nullptr) const;

    // The document's text with one line feed between blocks, positions equal to the
    // document's own.
    [[nodiscard]] static QString documentText(const QTextDocument *document);

private:
    void build();

    QColor m_plainColor;
    QColor m_commentColor;
    double m_fontSize = defaultFontSize;
    std::array<std::array<QTextCharFormat, 2>, 6> m_formats;
};
