#pragma once

#include "sqlhighlighter.h"
#include "sqlhighlightformats.h"

#include <QObject>
#include <QPointer>
#include <QTextDocument>

#include <vector>

// Keeps a text document's blocks coloured by the editor pass while it is edited, one block at
// a time as a view asks for it, so that the cost follows what is shown, not the size of the text.
//
// Each line block is coloured on its own. What a block's colours depend on besides its own
// text is its carried state: whether it starts in code, inside a string or inside a block
// comment, and whether a quote or a "*/" follows it to close what it leaves open. The driver
// keeps per block the state each possible start leads to (read from the block's text once per
// change), the start states up to the last block asked for, and the key (start state and the
// closers that mattered) its formats were made for. A view calls colourBlock() before laying a
// block out; a block whose key still holds keeps its formats, so a quote typed at the top
// recolours only the lines a view then shows, and the rest when they are scrolled to. Blocks no
// view asks for get no layout and no formats at all. After colourBlock() for every block (as
// colourAll() does), every block's formats equal the whole-text editor pass clipped to it.
//
// Formats go onto the blocks' layouts (QTextLayout::setFormats). Qt records that as a pending
// change of the document, which would otherwise widen the next edit's reported change; the
// driver hands it to the document's layout at once (markContentsDirty).
class SQLHighlightDriver : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QTextDocument *document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(double fontSize READ fontSize WRITE setFontSize NOTIFY fontSizeChanged)
    Q_PROPERTY(QColor plainColor READ plainColor WRITE setPlainColor NOTIFY plainColorChanged)
    Q_PROPERTY(QColor commentColor READ commentColor WRITE setCommentColor NOTIFY commentColorChanged)

public:
    explicit SQLHighlightDriver(QObject *parent = nullptr);
    ~SQLHighlightDriver() override;

    [[nodiscard]] QTextDocument *document() const { return m_document; }
    void setDocument(QTextDocument *document);

    [[nodiscard]] double fontSize() const { return m_formats.fontSize(); }
    void setFontSize(double fontSize);
    [[nodiscard]] QColor plainColor() const { return m_formats.plainColor(); }
    void setPlainColor(const QColor &color);
    [[nodiscard]] QColor commentColor() const { return m_formats.commentColor(); }
    void setCommentColor(const QColor &color);

    // Gives `block` the formats of its text and start state unless it has them; true if it
    // changed them (the block's lines must then be laid out again). Views call it for every
    // block they lay out or paint.
    bool colourBlock(const QTextBlock &block);
    // Colours every block now (for tests and hosts that need every block's final formats).
    void colourAll();

Q_SIGNALS:
    void documentChanged();
    void fontSizeChanged();
    void plainColorChanged();
    void commentColorChanged();
    // Every block's colours went stale (a new theme or font size); views repaint what they show.
    void coloursChanged();

private:
    enum BlockBit : quint8 {
        HasQuote = 1, // the block holds a quote
        HasOpen = 2,  // the block holds a "/*"
        HasClose = 4, // the block holds a "*/"
        Coloured = 8, // the formats match the text, for the key below
        KeyShift = 4, // the key: the start state and the closers that mattered
        KeyQuoteFollows = 0x40,
        KeyCloseFollows = 0x80,
        KeyBits = 0xF0,
    };

    struct Block
    {
        // The state after the block for each start state and each pair of (a quote follows, a
        // "*/" follows), two bits each; see endState().
        quint32 transitions = 0;
        quint8 bits = 0;
        // The state the block starts in; valid for the first m_startsKnown blocks.
        SQLLineState start = SQLLineState::Code;
    };

    void contentsChange(int position, int removed, int added);
    void documentDestroyed();
    void setFormats(const SQLHighlightFormats &formats);
    void resetBlocks();
    void readBlocks(QTextBlock block, int first, int last);
    [[nodiscard]] int findLastBlockWith(quint8 bit) const;
    [[nodiscard]] bool quoteFollows(int blockNumber) const { return blockNumber < m_lastQuoteBlock; }
    [[nodiscard]] bool closeFollows(int blockNumber) const { return blockNumber < m_lastCloseBlock; }
    [[nodiscard]] SQLLineState endState(int blockNumber, SQLLineState start) const;
    [[nodiscard]] SQLLineState startState(int blockNumber);
    [[nodiscard]] quint8 colourKey(int blockNumber, SQLLineState start) const;
    // Puts the block's formats on its layout if they are stale; true if it did.
    bool colour(const QTextBlock &block, int blockNumber);

    QPointer<QTextDocument> m_document;
    QMetaObject::Connection m_changeConnection;
    QMetaObject::Connection m_destroyConnection;
    SQLHighlightFormats m_formats;

    std::vector<Block> m_blocks;
    // The last block holding a quote, and a "*/"; or -1.
    int m_lastQuoteBlock = -1;
    int m_lastCloseBlock = -1;
    int m_startsKnown = 0;
    QList<SQLHighlightSpan> m_spans;
};
