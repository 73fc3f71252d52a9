#pragma once

#include <QAbstractTextDocumentLayout>
#include <QFont>
#include <QPointer>

class QTextBlock;
class SQLHighlightDriver;

// A document layout for the editor whose cost follows what is shown, not the size of the text.
//
// Lines are all one height, so a line's place is its number times that height. A block is laid
// out (wrapped to the width) only when something asks for it, usually the view painting it;
// until then it counts as one line. The document keeps each block's line count in its block
// tree, so finding the block at a line and the line of a block are logarithmic however long the
// text. An edit lays out again only the blocks it touched that were laid out before; a change of
// width or font drops every layout and the view lays out what it shows again. A block is given
// its colours just before it is laid out or painted, so colouring follows what is shown too.
class SQLTextLayout : public QAbstractTextDocumentLayout
{
    Q_OBJECT

public:
    explicit SQLTextLayout(QTextDocument *document);

    void setTextWidth(qreal width);
    [[nodiscard]] qreal textWidth() const { return m_textWidth; }
    // The font every line is measured with; sets the line height.
    void setFont(const QFont &font);
    [[nodiscard]] qreal lineHeight() const { return m_lineHeight; }
    // The colouring asked for each block's formats before the block is laid out or painted.
    void setHighlighter(SQLHighlightDriver *highlighter);

    // Colours `block` and wraps it to the width now if it is not laid out with its current
    // colours; true if its line count changed.
    bool ensureLaidOut(const QTextBlock &block);
    // True while new colours are being handed to a block: the document reports them as a
    // change of equal length, though no character changed.
    [[nodiscard]] bool isColouring() const { return m_colouring; }
    [[nodiscard]] static bool isLaidOut(const QTextBlock &block);
    // The visual line count of the whole text, with the blocks not laid out counted as one.
    [[nodiscard]] int lineCount() const;
    // The block that holds visual line `line` (clamped to the text), and the line's index in it.
    [[nodiscard]] std::pair<QTextBlock, int> blockAtLine(int line) const;
    // The visual line of the text position `position` (laying its block out).
    [[nodiscard]] int lineOfPosition(int position);
    // The text position nearest to `point`, in document coordinates (lines from y = 0).
    [[nodiscard]] int positionAt(const QPointF &point);

    // QAbstractTextDocumentLayout
    void draw(QPainter *painter, const PaintContext &context) override;
    [[nodiscard]] int hitTest(const QPointF &point, Qt::HitTestAccuracy accuracy) const override;
    [[nodiscard]] int pageCount() const override { return 1; }
    [[nodiscard]] QSizeF documentSize() const override;
    [[nodiscard]] QRectF frameBoundingRect(QTextFrame *frame) const override;
    [[nodiscard]] QRectF blockBoundingRect(const QTextBlock &block) const override;

protected:
    void documentChanged(int from, int charsRemoved, int charsAdded) override;

private:
    void layOut(const QTextBlock &block);
    void dropLayouts();

    QPointer<SQLHighlightDriver> m_highlighter;
    QMetaObject::Connection m_coloursConnection;
    // Set while the highlighter puts formats on a block: Qt reports that as a change of the
    // block, which must not drop the lines about to be laid out.
    bool m_colouring = false;
    QFont m_font;
    qreal m_textWidth = 0;
    qreal m_lineHeight = 1;
    qreal m_ascent = 0;
    int m_blockCount = 1;
};
