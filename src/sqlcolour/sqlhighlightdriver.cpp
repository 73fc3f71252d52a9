#include "sqlhighlightdriver.h"

#include "sqlhighlighter.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>

#include <algorithm>
#include <array>
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
    for (Block &block : m_blocks)
        block.bits &= quint8(~(Coloured | KeyBits));
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
    const int oldLastClose = m_lastCloseBlock;
    const SQLLineState oldStateAfter = stateAt(lastOld + 1);
    m_blocks.erase(m_blocks.begin() + first, m_blocks.begin() + lastOld + 1);
    m_blocks.insert(m_blocks.begin() + first, std::size_t(lastNew - first + 1), Block{});
    readBlocks(firstBlock, first, lastNew);
    m_lastQuoteBlock = findLastBlockWith(HasQuote);
    m_lastCloseBlock = findLastBlockWith(HasClose);
    const SQLLineState newStateAfter = stateAt(lastNew + 1);

    // Blocks before the edit keep their text and their start states; only whether a quote or
    // a "*/" follows them can change, for those from the old or the new last one on. Blocks
    // behind the edit keep what follows them; they start as before unless the edit changed
    // the state it leaves.
    int lowest = first;
    for (const auto &[before, after] :
         {std::pair(oldLastQuote, m_lastQuoteBlock), std::pair(oldLastClose, m_lastCloseBlock)}) {
        if (before != after)
            lowest = std::min(lowest, std::max(0, std::min(before, after)));
    }
    const int oldScanFrom = m_scanFrom;
    m_scanFrom = std::min(oldScanFrom, lowest);

    const int editedEnd = colourVisibleAndEdited(first, lastNew);
    if (oldStateAfter == newStateAfter && m_scanFrom == first && oldScanFrom > first && editedEnd > lastNew) {
        // Only the edited blocks needed colour, and they have it.
        m_scanFrom = oldScanFrom > lastOld ? oldScanFrom + (count - oldCount) : lastNew + 1;
        if (!hasPendingWork())
            m_sliceTimer.stop();
    }
}

void SQLHighlightDriver::resetBlocks()
{
    m_blocks.assign(std::size_t(m_document->blockCount()), Block{});
    readBlocks(m_document->begin(), 0, int(m_blocks.size()) - 1);
    m_lastQuoteBlock = findLastBlockWith(HasQuote);
    m_lastCloseBlock = findLastBlockWith(HasClose);
    m_scanFrom = 0;
}

namespace {

constexpr int transitionShift(bool quoteFollows, bool closeFollows, SQLLineState start)
{
    return 2 * ((int(quoteFollows) | int(closeFollows) << 1) * 3 + int(start));
}

constexpr std::array<SQLLineState, 3> lineStates = {SQLLineState::Code, SQLLineState::String,
                                                    SQLLineState::BlockComment};

// A block without quotes and comment marks leaves every state as it found it.
constexpr quint32 unchangedTransitions = [] {
    quint32 transitions = 0;
    for (const bool quote : {false, true}) {
        for (const bool close : {false, true}) {
            for (const SQLLineState state : lineStates)
                transitions |= quint32(state) << transitionShift(quote, close, state);
        }
    }
    return transitions;
}();

} // namespace

void SQLHighlightDriver::readBlocks(QTextBlock block, int first, int last)
{
    for (int number = first; number <= last && block.isValid(); ++number, block = block.next()) {
        const QString text = block.text();
        Block &info = m_blocks[std::size_t(number)];
        info.bits = quint8((text.contains(u'\'') ? HasQuote : 0) | (text.contains(u"/*") ? HasOpen : 0) |
                           (text.contains(u"*/") ? HasClose : 0));
        if (!info.bits) {
            info.transitions = unchangedTransitions;
            continue;
        }
        // What follows matters only to a block that can leave a string or comment open: the
        // others take the ends already read for the same start without it.
        const bool quoteMatters = info.bits & HasQuote;
        const bool closeMatters = info.bits & HasOpen;
        info.transitions = 0;
        for (const bool quote : {false, true}) {
            for (const bool close : {false, true}) {
                const bool quoteRead = quote && quoteMatters;
                const bool closeRead = close && closeMatters;
                for (const SQLLineState state : lineStates) {
                    const SQLLineState end =
                        quoteRead == quote && closeRead == close
                            ? SQLHighlighter::editorLineEndState(text, state, quote, close)
                            : SQLLineState(info.transitions >> transitionShift(quoteRead, closeRead, state) &
                                           3);
                    info.transitions |= quint32(end) << transitionShift(quote, close, state);
                }
            }
        }
    }
}

int SQLHighlightDriver::findLastBlockWith(quint8 bit) const
{
    for (int number = int(m_blocks.size()); number-- > 0;) {
        if (m_blocks[std::size_t(number)].bits & bit)
            return number;
    }
    return -1;
}

SQLLineState SQLHighlightDriver::endState(int blockNumber, SQLLineState start) const
{
    return SQLLineState((m_blocks[std::size_t(blockNumber)].transitions >>
                         transitionShift(quoteFollows(blockNumber), closeFollows(blockNumber), start)) &
                        3);
}

SQLLineState SQLHighlightDriver::stateAt(int blockNumber) const
{
    SQLLineState state = SQLLineState::Code;
    const int end = std::min(blockNumber, int(m_blocks.size()));
    for (int number = 0; number < end; ++number)
        state = endState(number, state);
    return state;
}

quint8 SQLHighlightDriver::colourKey(int blockNumber, SQLLineState start) const
{
    const quint8 bits = m_blocks[std::size_t(blockNumber)].bits;
    return quint8(int(start) << KeyShift |
                  ((bits & HasQuote) && quoteFollows(blockNumber) ? KeyQuoteFollows : 0) |
                  ((bits & HasOpen) && closeFollows(blockNumber) ? KeyCloseFollows : 0));
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
    SQLLineState state = stateAt(from);
    QTextBlock block;
    int blockNumber = -1;
    for (int number = from; number <= to; ++number) {
        Block &info = m_blocks[std::size_t(number)];
        const quint8 key = colourKey(number, state);
        if (!(info.bits & Coloured) || (info.bits & KeyBits) != key) {
            if (!mustProgress && timer.nsecsElapsed() >= budgetNs)
                return number;
            mustProgress = false;
            block = blockNumber == number - 1 && block.isValid() ? block.next()
                                                                 : m_document->findBlockByNumber(number);
            blockNumber = number;
            colourBlock(block, state, quoteFollows(number), closeFollows(number));
            info.bits = quint8((info.bits & (HasQuote | HasOpen | HasClose)) | Coloured | key);
        }
        state = endState(number, state);
    }
    return to + 1;
}

void SQLHighlightDriver::colourBlock(const QTextBlock &block, SQLLineState start, bool quoteFollows,
                                     bool closeFollows)
{
    const QString text = block.text();
    SQLHighlighter::editorLineSpans(text, start, quoteFollows, closeFollows, m_spans);
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
