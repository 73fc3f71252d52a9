#include "sqlhighlightdriver.h"

#include "sqlhighlighter.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>

#include <algorithm>
#include <array>

SQLHighlightDriver::SQLHighlightDriver(QObject *parent)
    : QObject(parent)
{
}

SQLHighlightDriver::~SQLHighlightDriver() = default;

void SQLHighlightDriver::setDocument(QTextDocument *document)
{
    if (document == m_document)
        return;
    disconnect(m_changeConnection);
    disconnect(m_destroyConnection);
    m_document = document;
    m_blocks.clear();
    if (document) {
        // A document without a layout reports no contentsChange.
        document->documentLayout();
        m_changeConnection =
            connect(document, &QTextDocument::contentsChange, this, &SQLHighlightDriver::contentsChange);
        m_destroyConnection =
            connect(document, &QObject::destroyed, this, &SQLHighlightDriver::documentDestroyed);
        resetBlocks();
    }
    Q_EMIT documentChanged();
}

void SQLHighlightDriver::documentDestroyed()
{
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
    for (Block &block : m_blocks)
        block.bits &= quint8(~(Coloured | KeyBits));
    Q_EMIT coloursChanged();
}

bool SQLHighlightDriver::colourBlock(const QTextBlock &block)
{
    // Between an edit and its contentsChange the block list may be out of step with the text;
    // the edited blocks lose their colours when the change arrives and are asked for again.
    if (!m_document || block.document() != m_document.data() ||
        int(m_blocks.size()) != m_document->blockCount())
        return false;
    if (!colour(block, block.blockNumber()))
        return false;
    // Outside a change this hands the layout the block now; inside one the change that is
    // being reported takes it in.
    m_document->markContentsDirty(block.position(), block.length());
    return true;
}

void SQLHighlightDriver::colourAll()
{
    if (!m_document)
        return;
    if (int(m_blocks.size()) != m_document->blockCount())
        resetBlocks();
    bool changed = false;
    int number = 0;
    for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next(), ++number)
        changed = colour(block, number) || changed;
    if (changed)
        m_document->markContentsDirty(0, m_document->characterCount());
}

bool SQLHighlightDriver::colour(const QTextBlock &block, int blockNumber)
{
    if (blockNumber < 0 || blockNumber >= int(m_blocks.size()))
        return false;
    const SQLLineState start = startState(blockNumber);
    const quint8 key = colourKey(blockNumber, start);
    Block &info = m_blocks[std::size_t(blockNumber)];
    if ((info.bits & Coloured) && (info.bits & KeyBits) == key)
        return false;
    const QString text = block.text();
    SQLHighlighter::editorLineSpans(text, start, quoteFollows(blockNumber), closeFollows(blockNumber), m_spans);
    block.layout()->setFormats(m_formats.formatRanges(m_spans, text.size()));
    info.bits = quint8((info.bits & (HasQuote | HasOpen | HasClose)) | Coloured | key);
    return true;
}

void SQLHighlightDriver::contentsChange(int position, int removed, int added)
{
    Q_UNUSED(removed)
    if (!m_document)
        return;
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
        return;
    }

    const int oldLastQuote = m_lastQuoteBlock;
    const int oldLastClose = m_lastCloseBlock;
    m_blocks.erase(m_blocks.begin() + first, m_blocks.begin() + lastOld + 1);
    m_blocks.insert(m_blocks.begin() + first, std::size_t(lastNew - first + 1), Block{});
    readBlocks(firstBlock, first, lastNew);
    m_lastQuoteBlock = findLastBlockWith(HasQuote);
    m_lastCloseBlock = findLastBlockWith(HasClose);

    // Blocks before the edit keep their text and their start states; only whether a quote or
    // a "*/" follows them can change, for those from the old or the new last one on. Start
    // states from there on are read again when asked for; a block whose key comes out as
    // before keeps its formats.
    int lowest = first;
    for (const auto &[before, after] :
         {std::pair(oldLastQuote, m_lastQuoteBlock), std::pair(oldLastClose, m_lastCloseBlock)}) {
        if (before != after)
            lowest = std::min(lowest, std::max(0, std::min(before, after)));
    }
    m_startsKnown = std::min(m_startsKnown, lowest);
}

void SQLHighlightDriver::resetBlocks()
{
    m_blocks.assign(std::size_t(m_document->blockCount()), Block{});
    readBlocks(m_document->begin(), 0, int(m_blocks.size()) - 1);
    m_lastQuoteBlock = findLastBlockWith(HasQuote);
    m_lastCloseBlock = findLastBlockWith(HasClose);
    m_startsKnown = 0;
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

SQLLineState SQLHighlightDriver::startState(int blockNumber)
{
    if (m_startsKnown == 0) {
        m_blocks.front().start = SQLLineState::Code;
        m_startsKnown = 1;
    }
    for (; m_startsKnown <= blockNumber; ++m_startsKnown) {
        const int previous = m_startsKnown - 1;
        m_blocks[std::size_t(m_startsKnown)].start =
            endState(previous, m_blocks[std::size_t(previous)].start);
    }
    return m_blocks[std::size_t(blockNumber)].start;
}

quint8 SQLHighlightDriver::colourKey(int blockNumber, SQLLineState start) const
{
    const quint8 bits = m_blocks[std::size_t(blockNumber)].bits;
    return quint8(int(start) << KeyShift |
                  ((bits & HasQuote) && quoteFollows(blockNumber) ? KeyQuoteFollows : 0) |
                  ((bits & HasOpen) && closeFollows(blockNumber) ? KeyCloseFollows : 0));
}
