#include "sqlhighlightdriver.h"

#include "sqlhighlighter.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>

#include <algorithm>
#include <limits>

SQLHighlightDriver::SQLHighlightDriver(QObject *parent)
    : QObject(parent)
{
    m_sliceTimer.setSingleShot(true);
    m_sliceTimer.setInterval(0);
    connect(&m_sliceTimer, &QTimer::timeout, this, [this] { runSlice(m_budgetNs); });
}

SQLHighlightDriver::~SQLHighlightDriver() = default;

void SQLHighlightDriver::setDocument(QTextDocument *document)
{
    if (document == m_document)
        return;
    disconnect(m_changeConnection);
    disconnect(m_destroyConnection);
    m_sliceTimer.stop();
    m_document = document;
    m_blocks.clear();
    m_dirtyFrom = m_dirtyTo = -1;
    if (document) {
        // A document without a layout reports no contentsChange.
        document->documentLayout();
        m_changeConnection =
            connect(document, &QTextDocument::contentsChange, this, &SQLHighlightDriver::contentsChange);
        m_destroyConnection =
            connect(document, &QObject::destroyed, this, &SQLHighlightDriver::documentDestroyed);
        resetBlocks();
        colourVisibleAndEdited(-1, -1);
    }
    Q_EMIT documentChanged();
}

void SQLHighlightDriver::documentDestroyed()
{
    m_sliceTimer.stop();
    m_blocks.clear();
    m_document = nullptr;
    Q_EMIT documentChanged();
}

void SQLHighlightDriver::setFontSize(double fontSize)
{
    if (fontSize <= 0 || fontSize == m_formats.fontSize())
        return;
    setFormats(SQLHighlightFormats(m_formats.plainColor(), m_formats.commentColor(), fontSize));
    Q_EMIT fontSizeChanged();
}

void SQLHighlightDriver::setPlainColor(const QColor &color)
{
    if (color == m_formats.plainColor())
        return;
    setFormats(SQLHighlightFormats(color, m_formats.commentColor(), m_formats.fontSize()));
    Q_EMIT plainColorChanged();
}

void SQLHighlightDriver::setCommentColor(const QColor &color)
{
    if (color == m_formats.commentColor())
        return;
    setFormats(SQLHighlightFormats(m_formats.plainColor(), color, m_formats.fontSize()));
    Q_EMIT commentColorChanged();
}

void SQLHighlightDriver::setFormats(const SQLHighlightFormats &formats)
{
    m_formats = formats;
    applyHighlighting();
}

void SQLHighlightDriver::applyHighlighting()
{
    if (!m_document)
        return;
    for (quint8 &block : m_blocks)
        block &= quint8(~(Coloured | StateBits));
    m_scanFrom = 0;
    colourVisibleAndEdited(-1, -1);
}

void SQLHighlightDriver::setVisibleRange(int firstPosition, int lastPosition)
{
    if (firstPosition > lastPosition)
        std::swap(firstPosition, lastPosition);
    if (firstPosition == m_visibleFrom && lastPosition == m_visibleTo)
        return;
    m_visibleFrom = std::max(0, firstPosition);
    m_visibleTo = std::max(0, lastPosition);
    if (hasPendingWork())
        colourVisibleAndEdited(-1, -1);
}

void SQLHighlightDriver::setBudgetNs(qint64 nanoseconds)
{
    m_budgetNs = std::max<qint64>(0, nanoseconds);
}

bool SQLHighlightDriver::hasPendingWork() const
{
    return m_document && m_scanFrom < int(m_blocks.size());
}

void SQLHighlightDriver::runPendingSlice()
{
    m_sliceTimer.stop();
    runSlice(m_budgetNs);
}

void SQLHighlightDriver::finishPendingWork()
{
    m_sliceTimer.stop();
    while (hasPendingWork())
        runSlice(std::numeric_limits<qint64>::max());
}

void SQLHighlightDriver::contentsChange(int position, int removed, int added)
{
    if (!m_document)
        return;
    // The view's range moves with the text before it until the view says otherwise.
    const auto shift = [&](int &visible) {
        if (visible > position)
            visible = std::max(position, visible + added - removed);
    };
    shift(m_visibleFrom);
    shift(m_visibleTo);
    const int count = m_document->blockCount();
    const int oldCount = int(m_blocks.size());
    QTextBlock lastBlock = m_document->findBlock(position + added);
    if (!lastBlock.isValid())
        lastBlock = m_document->lastBlock();
    QTextBlock firstBlock = m_document->findBlock(position);
    if (!firstBlock.isValid())
        firstBlock = lastBlock;
    const int first = firstBlock.blockNumber();
    const int lastNew = lastBlock.blockNumber();
    // Blocks [first, lastOld] of the old text became [first, lastNew]; the rest kept their text.
    const int lastOld = lastNew - (count - oldCount);

    if (oldCount == 0 || lastOld < first || lastOld >= oldCount || lastNew < first) {
        // A change we cannot place (the block list went out of step): start over.
        resetBlocks();
        colourVisibleAndEdited(-1, -1);
        return;
    }

    const int oldLastQuote = m_lastQuoteBlock;
    quint8 oldParity = 0;
    for (int number = first; number <= lastOld; ++number)
        oldParity ^= m_blocks[std::size_t(number)] & QuoteOdd;
    m_blocks.erase(m_blocks.begin() + first, m_blocks.begin() + lastOld + 1);
    m_blocks.insert(m_blocks.begin() + first, std::size_t(lastNew - first + 1), quint8(0));
    readBlockBits(firstBlock, first, lastNew);
    quint8 newParity = 0;
    for (int number = first; number <= lastNew; ++number)
        newParity ^= m_blocks[std::size_t(number)] & QuoteOdd;
    m_lastQuoteBlock = findLastQuoteBlock();

    // Blocks before the edit keep their text and the quotes before them; only whether a quote
    // follows them can change, for those from the old or the new last quote on. Blocks behind
    // the edit keep whether a quote follows them; they start inside a string or not as before
    // unless the edit changed the parity of the quotes.
    int lowest = first;
    if (oldLastQuote < first)
        lowest = std::min(lowest, std::max(0, oldLastQuote));
    if (m_lastQuoteBlock < first)
        lowest = std::min(lowest, std::max(0, m_lastQuoteBlock));
    const int oldScanFrom = m_scanFrom;
    m_scanFrom = std::min(oldScanFrom, lowest);

    const int editedEnd = colourVisibleAndEdited(first, lastNew);
    if (oldParity == newParity && m_scanFrom == first && oldScanFrom > first && editedEnd > lastNew) {
        // Only the edited blocks needed colour, and they have it.
        m_scanFrom = oldScanFrom > lastOld ? oldScanFrom + (count - oldCount) : lastNew + 1;
        if (!hasPendingWork())
            m_sliceTimer.stop();
    }
}

void SQLHighlightDriver::resetBlocks()
{
    m_blocks.assign(std::size_t(m_document->blockCount()), quint8(0));
    readBlockBits(m_document->begin(), 0, int(m_blocks.size()) - 1);
    m_lastQuoteBlock = findLastQuoteBlock();
    m_scanFrom = 0;
}

void SQLHighlightDriver::readBlockBits(QTextBlock block, int first, int last)
{
    for (int number = first; number <= last && block.isValid(); ++number, block = block.next()) {
        const qsizetype quotes = SQLHighlighter::quoteCount(block.text());
        m_blocks[std::size_t(number)] = quint8((quotes % 2 ? QuoteOdd : 0) | (quotes > 0 ? HasQuote : 0));
    }
}

int SQLHighlightDriver::findLastQuoteBlock() const
{
    for (int number = int(m_blocks.size()); number-- > 0;) {
        if (m_blocks[std::size_t(number)] & HasQuote)
            return number;
    }
    return -1;
}

bool SQLHighlightDriver::startsInString(int blockNumber) const
{
    quint8 parity = 0;
    const quint8 *blocks = m_blocks.data();
    for (int number = 0; number < blockNumber; ++number)
        parity ^= blocks[number];
    return parity & QuoteOdd;
}

std::pair<int, int> SQLHighlightDriver::visibleBlocks() const
{
    if (m_visibleFrom < 0 || !m_document)
        return {0, -1};
    QTextBlock from = m_document->findBlock(m_visibleFrom);
    QTextBlock to = m_document->findBlock(m_visibleTo);
    if (!from.isValid())
        from = m_document->lastBlock();
    if (!to.isValid())
        to = m_document->lastBlock();
    return {from.blockNumber(), to.blockNumber()};
}

int SQLHighlightDriver::colourVisibleAndEdited(int editedFirst, int editedLast)
{
    QElapsedTimer timer;
    timer.start();
    const auto [visibleFirst, visibleLast] = visibleBlocks();
    const int last = int(m_blocks.size()) - 1;
    bool done = true;
    if (visibleFirst <= visibleLast)
        done =
            colourBlocks(visibleFirst, std::min(visibleLast, last), timer, m_budgetNs, false) > visibleLast;
    int editedEnd = editedFirst;
    if (done && editedFirst >= 0)
        editedEnd = colourBlocks(editedFirst, std::min(editedLast, last), timer, m_budgetNs, false);
    flushDirty();
    if (hasPendingWork())
        schedule();
    return editedEnd;
}

int SQLHighlightDriver::colourBlocks(int from, int to, const QElapsedTimer &timer, qint64 budgetNs,
                                     bool mustProgress)
{
    bool inString = startsInString(from);
    QTextBlock block;
    int blockNumber = -1;
    for (int number = from; number <= to; ++number) {
        const quint8 bits = m_blocks[std::size_t(number)];
        const bool quoteFollows = number < m_lastQuoteBlock;
        const bool endsInString = inString != bool(bits & QuoteOdd);
        const quint8 state =
            quint8((inString ? ColouredInString : 0) | (endsInString && !quoteFollows ? ColouredRunsOff : 0));
        if (!(bits & Coloured) || (bits & StateBits) != state) {
            if (!mustProgress && timer.nsecsElapsed() >= budgetNs)
                return number;
            mustProgress = false;
            block = blockNumber == number - 1 && block.isValid() ? block.next()
                                                                 : m_document->findBlockByNumber(number);
            blockNumber = number;
            colourBlock(block, inString, quoteFollows);
            m_blocks[std::size_t(number)] = quint8((bits & (QuoteOdd | HasQuote)) | Coloured | state);
        }
        inString = endsInString;
    }
    return to + 1;
}

void SQLHighlightDriver::colourBlock(const QTextBlock &block, bool inString, bool quoteFollows)
{
    const QString text = block.text();
    SQLHighlighter::editorLineSpans(text, inString, quoteFollows, m_spans);
    const QList<QTextLayout::FormatRange> ranges = m_formats.formatRanges(m_spans, text.size());
    block.layout()->setFormats(ranges);
    const int from = block.position();
    const int to = from + block.length();
    m_dirtyFrom = m_dirtyFrom < 0 ? from : std::min(m_dirtyFrom, from);
    m_dirtyTo = std::max(m_dirtyTo, to);
}

void SQLHighlightDriver::flushDirty()
{
    if (m_dirtyFrom < 0 || !m_document)
        return;
    const int from = m_dirtyFrom;
    const int length = std::min(m_dirtyTo, m_document->characterCount()) - from;
    m_dirtyFrom = m_dirtyTo = -1;
    // Inside a change this widens the change the view lays out after all listeners; outside
    // one the view lays the range out now.
    if (length > 0)
        m_document->markContentsDirty(from, length);
}

void SQLHighlightDriver::runSlice(qint64 budgetNs)
{
    if (!m_document)
        return;
    if (int(m_blocks.size()) != m_document->blockCount())
        resetBlocks();
    QElapsedTimer timer;
    timer.start();
    const int last = int(m_blocks.size()) - 1;
    if (m_scanFrom <= last)
        m_scanFrom = colourBlocks(m_scanFrom, last, timer, budgetNs, true);
    flushDirty();
    if (hasPendingWork() && budgetNs != std::numeric_limits<qint64>::max())
        schedule();
}

void SQLHighlightDriver::schedule()
{
    if (!m_sliceTimer.isActive())
        m_sliceTimer.start();
}
