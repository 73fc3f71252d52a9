#include "sqltextlayout.h"

#include "sqlhighlightdriver.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <cmath>

SQLTextLayout::SQLTextLayout(QTextDocument *document)
    : QAbstractTextDocumentLayout(document)
    , m_blockCount(document->blockCount())
{
    setFont(document->defaultFont());
}

void SQLTextLayout::setTextWidth(qreal width)
{
    width = std::max<qreal>(0, width);
    if (qFuzzyCompare(width + 1, m_textWidth + 1))
        return;
    m_textWidth = width;
    dropLayouts();
}

void SQLTextLayout::setFont(const QFont &font)
{
    if (font == m_font && m_lineHeight > 1)
        return;
    m_font = font;
    const QFontMetricsF metrics(font);
    m_lineHeight = std::max<qreal>(1, std::ceil(metrics.lineSpacing()));
    m_ascent = metrics.ascent();
    // The document's default font is what every block's characters resolve to; setting it tells
    // the layout that the whole text changed, which drops the laid-out lines.
    document()->setDefaultFont(font);
    dropLayouts();
}

void SQLTextLayout::dropLayouts()
{
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        block.clearLayout();
    Q_EMIT documentSizeChanged(documentSize());
    Q_EMIT update();
}

bool SQLTextLayout::isLaidOut(const QTextBlock &block)
{
    return block.layout()->lineCount() > 0;
}

void SQLTextLayout::setHighlighter(SQLHighlightDriver *highlighter)
{
    if (highlighter == m_highlighter)
        return;
    disconnect(m_coloursConnection);
    m_highlighter = highlighter;
    if (highlighter) {
        // New colours (a theme, a font size) reshape the lines shown when they are painted next.
        m_coloursConnection = connect(highlighter, &SQLHighlightDriver::coloursChanged, this,
                                      [this] { Q_EMIT update(); });
    }
    Q_EMIT update();
}

bool SQLTextLayout::ensureLaidOut(const QTextBlock &block)
{
    if (!block.isValid())
        return false;
    bool recoloured = false;
    if (m_highlighter) {
        const QScopedValueRollback colouring(m_colouring, true);
        recoloured = m_highlighter->colourBlock(block);
    }
    if (!recoloured && isLaidOut(block))
        return false;
    const int before = block.lineCount();
    layOut(block);
    return block.lineCount() != before;
}

void SQLTextLayout::layOut(const QTextBlock &block)
{
    QTextLayout *layout = block.layout();
    QTextOption option = document()->defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout->setTextOption(option);
    int count = 0;
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLineWidth(m_textWidth);
        // Every baseline sits where the font's would: a line with taller glyphs from a fallback
        // font (Chinese, Japanese) must not push its text below its neighbours'.
        line.setPosition(QPointF(0, count * m_lineHeight + m_ascent - line.ascent()));
        ++count;
    }
    layout->endLayout();
    // Only the block tree's count moves the lines below; it is kept in step with the layout.
    const_cast<QTextBlock &>(block).setLineCount(std::max(1, count));
}

int SQLTextLayout::lineCount() const
{
    return document()->lineCount();
}

std::pair<QTextBlock, int> SQLTextLayout::blockAtLine(int line) const
{
    line = std::clamp(line, 0, std::max(0, lineCount() - 1));
    QTextBlock block = document()->findBlockByLineNumber(line);
    if (!block.isValid())
        block = document()->lastBlock();
    return {block, std::clamp(line - block.firstLineNumber(), 0, std::max(0, block.lineCount() - 1))};
}

int SQLTextLayout::lineOfPosition(int position)
{
    const QTextBlock block = document()->findBlock(position);
    if (!block.isValid())
        return std::max(0, lineCount() - 1);
    ensureLaidOut(block);
    const QTextLine line = block.layout()->lineForTextPosition(position - block.position());
    return block.firstLineNumber() + (line.isValid() ? line.lineNumber() : 0);
}

int SQLTextLayout::positionAt(const QPointF &point)
{
    if (point.y() < 0)
        return 0;
    const int wanted = int(point.y() / m_lineHeight);
    if (wanted >= lineCount()) {
        const QTextBlock last = document()->lastBlock();
        return last.position() + last.length() - 1;
    }
    auto [block, index] = blockAtLine(wanted);
    // Laying the block out can change its line count; ask again for the line in it.
    if (ensureLaidOut(block)) {
        std::tie(block, index) = blockAtLine(wanted);
        ensureLaidOut(block);
    }
    const QTextLine line = block.layout()->lineAt(std::min(index, block.layout()->lineCount() - 1));
    if (!line.isValid())
        return block.position();
    return block.position() + line.xToCursor(point.x());
}

void SQLTextLayout::draw(QPainter *painter, const PaintContext &context)
{
    const QRectF clip = context.clip.isValid() ? context.clip : QRectF(0, 0, m_textWidth, documentSize().height());
    int line = std::max(0, int(clip.top() / m_lineHeight));
    const int end = int(std::ceil(clip.bottom() / m_lineHeight));
    painter->setPen(context.palette.color(QPalette::Text));
    while (line < end && line < lineCount()) {
        const QTextBlock block = blockAtLine(line).first;
        ensureLaidOut(block);
        block.layout()->draw(painter, QPointF(0, block.firstLineNumber() * m_lineHeight));
        line = block.firstLineNumber() + block.lineCount();
    }
}

int SQLTextLayout::hitTest(const QPointF &point, Qt::HitTestAccuracy) const
{
    return const_cast<SQLTextLayout *>(this)->positionAt(point);
}

QSizeF SQLTextLayout::documentSize() const
{
    return {m_textWidth, lineCount() * m_lineHeight};
}

QRectF SQLTextLayout::frameBoundingRect(QTextFrame *) const
{
    return {QPointF(0, 0), documentSize()};
}

QRectF SQLTextLayout::blockBoundingRect(const QTextBlock &block) const
{
    if (!block.isValid())
        return {};
    // Cursor movement by lines asks for this; it needs the block's lines.
    const_cast<SQLTextLayout *>(this)->ensureLaidOut(block);
    return {0, block.firstLineNumber() * m_lineHeight, m_textWidth, block.lineCount() * m_lineHeight};
}

void SQLTextLayout::documentChanged(int from, int charsRemoved, int charsAdded)
{
    if (m_colouring)
        return;
    QTextDocument *document = this->document();
    const int blockCount = document->blockCount();
    const bool sizeMayChange = blockCount != m_blockCount;
    m_blockCount = blockCount;
    // Blocks touched by the change lose their lines, kept as a count until they are laid out
    // again; new blocks count as one line. Colour changes come here too, as changes of equal
    // length, and need their lines shaped again with the new formats.
    Q_UNUSED(charsRemoved)
    QTextBlock block = document->findBlock(from);
    const int end = from + charsAdded;
    for (; block.isValid() && block.position() <= end; block = block.next())
        block.clearLayout();
    if (sizeMayChange)
        Q_EMIT documentSizeChanged(documentSize());
    Q_EMIT update();
}
