#pragma once

#include "sqlhighlighter.h"
#include "sqlhighlightformats.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTextDocument>
#include <QTimer>

#include <vector>

// Keeps a text document coloured by the editor pass while it is edited, at once, without
// colouring the whole text on every keystroke.
//
// Each line block is coloured on its own. What a block's colours depend on besides its own
// text is its carried state: whether it starts in code, inside a string or inside a block
// comment, and whether a quote or a "*/" follows it to close what it leaves open. The driver
// keeps per block the state each possible start leads to (read from the block's text once per
// change), so the state at any block is a short walk over bytes, and the state its colours were
// made for. After an edit it recolours the edited blocks and the visible ones whose state
// changed, and leaves the rest (a quote typed at the top changes every line below) to idle
// slices of bounded time. Once no work is pending, every block's formats equal the whole-text
// editor pass clipped to it.
//
// Formats go onto the blocks' layouts (QTextLayout::setFormats) and each batch marks its range
// dirty once, so the view lays the lines out again once per batch rather than once per block.
class SQLHighlightDriver : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QTextDocument *document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(double fontSize READ fontSize WRITE setFontSize NOTIFY fontSizeChanged)
    Q_PROPERTY(QColor plainColor READ plainColor WRITE setPlainColor NOTIFY plainColorChanged)
    Q_PROPERTY(QColor commentColor READ commentColor WRITE setCommentColor NOTIFY commentColorChanged)

public:
    // Colouring work per keystroke and per idle slice; a block is never split, so one more block
    // may run over it. The view's own layout pass for a batch comes on top: Qt's document layout
    // moves every line below the batch, whatever the batch's size.
    static constexpr qint64 defaultBudgetNs = 3'000'000;

    explicit SQLHighlightDriver(QObject *parent = nullptr);
    ~SQLHighlightDriver() override;

    [[nodiscard]] QTextDocument *document() const { return m_document; }
    // Colours the document's visible part now and the rest in idle slices.
    void setDocument(QTextDocument *document);

    [[nodiscard]] double fontSize() const { return m_formats.fontSize(); }
    void setFontSize(double fontSize);
    [[nodiscard]] QColor plainColor() const { return m_formats.plainColor(); }
    void setPlainColor(const QColor &color);
    [[nodiscard]] QColor commentColor() const { return m_formats.commentColor(); }
    void setCommentColor(const QColor &color);

    // The characters the view shows; coloured first after every change. Pending blocks that
    // come into view are coloured at once.
    Q_INVOKABLE void setVisibleRange(int firstPosition, int lastPosition);

    // Colours the whole document anew: the visible part now, the rest in idle slices.
    Q_INVOKABLE void applyHighlighting();

    [[nodiscard]] bool hasPendingWork() const;
    [[nodiscard]] qint64 budgetNs() const { return m_budgetNs; }
    void setBudgetNs(qint64 nanoseconds);

    // One idle slice, as the timer runs it (for tests and benchmarks).
    void runPendingSlice();
    // All pending work at once, without a time bound (for tests and hosts that need the
    // final colours now).
    void finishPendingWork();

Q_SIGNALS:
    void documentChanged();
    void fontSizeChanged();
    void plainColorChanged();
    void commentColorChanged();

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
    [[nodiscard]] SQLLineState stateAt(int blockNumber) const;
    [[nodiscard]] quint8 colourKey(int blockNumber, SQLLineState start) const;
    [[nodiscard]] std::pair<int, int> visibleBlocks() const;
    // Colours the visible blocks, then the edited ones, within the budget; returns the first
    // edited block left uncoloured.
    int colourVisibleAndEdited(int editedFirst, int editedLast);
    int colourBlocks(int from, int to, const QElapsedTimer &timer, qint64 budgetNs, bool mustProgress);
    void colourBlock(const QTextBlock &block, SQLLineState start, bool quoteFollows, bool closeFollows);
    void flushDirty();
    void runSlice(qint64 budgetNs);
    void schedule();

    QPointer<QTextDocument> m_document;
    QMetaObject::Connection m_changeConnection;
    QMetaObject::Connection m_destroyConnection;
    SQLHighlightFormats m_formats;
    QTimer m_sliceTimer;
    qint64 m_budgetNs = defaultBudgetNs;

    std::vector<Block> m_blocks;
    // The last block holding a quote, and a "*/"; or -1.
    int m_lastQuoteBlock = -1;
    int m_lastCloseBlock = -1;
    // Every block before this one is coloured for its current text and state.
    int m_scanFrom = 0;
    int m_visibleFrom = -1;
    int m_visibleTo = -1;

    // The character range whose formats changed since the last markContentsDirty().
    int m_dirtyFrom = -1;
    int m_dirtyTo = -1;

    QList<SQLHighlightSpan> m_spans;
};
