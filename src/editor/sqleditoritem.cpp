#include "sqleditoritem.h"

#include "sqleditoraccessible.h"
#include "sqltextlayout.h"

#include <QAccessible>
#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QInputMethod>
#include <QMimeData>
#include <QPainter>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <cmath>

namespace {

struct CursorMove
{
    QKeySequence::StandardKey key;
    QTextCursor::MoveOperation operation;
    QTextCursor::MoveMode mode;
};

// The desktop's keys for moving the caret, with and without Shift.
constexpr CursorMove cursorMoves[] = {
    {QKeySequence::MoveToNextChar, QTextCursor::NextCharacter, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToPreviousChar, QTextCursor::PreviousCharacter, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToNextWord, QTextCursor::NextWord, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToPreviousWord, QTextCursor::PreviousWord, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToNextLine, QTextCursor::Down, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToPreviousLine, QTextCursor::Up, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToStartOfLine, QTextCursor::StartOfLine, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToEndOfLine, QTextCursor::EndOfLine, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToStartOfBlock, QTextCursor::StartOfBlock, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToEndOfBlock, QTextCursor::EndOfBlock, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToStartOfDocument, QTextCursor::Start, QTextCursor::MoveAnchor},
    {QKeySequence::MoveToEndOfDocument, QTextCursor::End, QTextCursor::MoveAnchor},
    {QKeySequence::SelectNextChar, QTextCursor::NextCharacter, QTextCursor::KeepAnchor},
    {QKeySequence::SelectPreviousChar, QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor},
    {QKeySequence::SelectNextWord, QTextCursor::NextWord, QTextCursor::KeepAnchor},
    {QKeySequence::SelectPreviousWord, QTextCursor::PreviousWord, QTextCursor::KeepAnchor},
    {QKeySequence::SelectNextLine, QTextCursor::Down, QTextCursor::KeepAnchor},
    {QKeySequence::SelectPreviousLine, QTextCursor::Up, QTextCursor::KeepAnchor},
    {QKeySequence::SelectStartOfLine, QTextCursor::StartOfLine, QTextCursor::KeepAnchor},
    {QKeySequence::SelectEndOfLine, QTextCursor::EndOfLine, QTextCursor::KeepAnchor},
    {QKeySequence::SelectStartOfBlock, QTextCursor::StartOfBlock, QTextCursor::KeepAnchor},
    {QKeySequence::SelectEndOfBlock, QTextCursor::EndOfBlock, QTextCursor::KeepAnchor},
    {QKeySequence::SelectStartOfDocument, QTextCursor::Start, QTextCursor::KeepAnchor},
    {QKeySequence::SelectEndOfDocument, QTextCursor::End, QTextCursor::KeepAnchor},
};

// The keys the field handles itself, which must not reach the window's shortcuts first.
constexpr QKeySequence::StandardKey ownKeys[] = {
    QKeySequence::Undo,           QKeySequence::Redo,           QKeySequence::Copy,
    QKeySequence::Cut,            QKeySequence::Paste,          QKeySequence::SelectAll,
    QKeySequence::Delete,         QKeySequence::Backspace,      QKeySequence::DeleteStartOfWord,
    QKeySequence::DeleteEndOfWord, QKeySequence::MoveToNextPage, QKeySequence::MoveToPreviousPage,
    QKeySequence::SelectNextPage, QKeySequence::SelectPreviousPage,
};

bool isTypedText(const QKeyEvent *event)
{
    const QString text = event->text();
    if (text.isEmpty())
        return false;
    // Ctrl and Meta make commands; AltGr (Ctrl+Alt on some desktops) makes characters.
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if ((modifiers & Qt::ControlModifier) && !(modifiers & Qt::AltModifier))
        return false;
    if (modifiers & Qt::MetaModifier)
        return false;
    for (const QChar c : text) {
        if (c.category() == QChar::Other_Control && c != u'\t')
            return false;
    }
    return true;
}

} // namespace

SQLEditorItem::SQLEditorItem(QQuickItem *parent)
    : QQuickPaintedItem(parent)
    , m_document(new QTextDocument(this))
{
    setFlag(ItemAcceptsInputMethod);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::MiddleButton);
    setAcceptHoverEvents(true);
    QQuickItem::setCursor(QCursor(Qt::IBeamCursor));
    setActiveFocusOnTab(true);
    setOpaquePainting(true);
    static const bool accessible = (SQLEditorAccessible::install(), true);
    Q_UNUSED(accessible)

    // The layout goes in before anything asks the document for one: Qt's own would lay out
    // the whole text.
    m_document->setUndoRedoEnabled(true);
    m_document->setDocumentMargin(0);
    m_layout = new SQLTextLayout(m_document);
    m_document->setDocumentLayout(m_layout);
    m_cursor = QTextCursor(m_document);
    m_lineCount = m_layout->lineCount();
    // The margin is a change of the root frame, which the document would offer to undo.
    m_document->clearUndoRedoStacks();

    connect(m_document, &QTextDocument::contentsChange, this, &SQLEditorItem::contentsChange);
    connect(m_document, &QTextDocument::contentsChanged, this, &SQLEditorItem::textChanged);
    connect(m_document, &QTextDocument::undoAvailable, this, &SQLEditorItem::canUndoChanged);
    connect(m_document, &QTextDocument::redoAvailable, this, &SQLEditorItem::canRedoChanged);
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, &SQLEditorItem::canPasteChanged);
    connect(m_layout, &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &SQLEditorItem::documentSizeChanged);
    connect(m_layout, &QAbstractTextDocumentLayout::update, this, [this] { update(); });
    m_finder = new SQLTextFinder(this);
    m_finder->setDocument(m_document);
    connect(m_finder, &SQLTextFinder::matchesChanged, this, [this] { update(); });

    m_blinkTimer.setInterval(std::max(100, QGuiApplication::styleHints()->cursorFlashTime() / 2));
    connect(&m_blinkTimer, &QTimer::timeout, this, [this] {
        m_caretShown = !m_caretShown;
        update(cursorRectangle().toAlignedRect().adjusted(-2, -2, 2, 2));
    });
    m_autoScrollTimer.setInterval(30);
    connect(&m_autoScrollTimer, &QTimer::timeout, this, &SQLEditorItem::autoScroll);
    setFont(m_font);
}

SQLEditorItem::~SQLEditorItem() = default;

QString SQLEditorItem::text() const
{
    return m_document->toPlainText();
}

void SQLEditorItem::setFont(const QFont &font)
{
    if (font == m_font && m_layout->lineHeight() > 1)
        return;
    m_font = font;
    m_layout->setFont(font);
    QTextOption option = m_document->defaultTextOption();
    option.setTabStopDistance(QFontMetricsF(font).horizontalAdvance(indentUnit.toString()));
    m_document->setDefaultTextOption(option);
    Q_EMIT fontChanged();
    Q_EMIT contentHeightChanged();
    update();
}

void SQLEditorItem::setTextColor(const QColor &color)
{
    if (color == m_textColor)
        return;
    m_textColor = color;
    Q_EMIT coloursChanged();
    update();
}

void SQLEditorItem::setFindHighlightColor(const QColor &color)
{
    if (color == m_findHighlightColor)
        return;
    m_findHighlightColor = color;
    Q_EMIT coloursChanged();
    update();
}

void SQLEditorItem::setSelectionColor(const QColor &color)
{
    if (color == m_selectionColor)
        return;
    m_selectionColor = color;
    Q_EMIT coloursChanged();
    update();
}

void SQLEditorItem::setSelectedTextColor(const QColor &color)
{
    if (color == m_selectedTextColor)
        return;
    m_selectedTextColor = color;
    Q_EMIT coloursChanged();
    update();
}

void SQLEditorItem::setHorizontalPadding(qreal padding)
{
    if (qFuzzyCompare(padding, m_horizontalPadding))
        return;
    m_horizontalPadding = padding;
    updateTextWidth();
    Q_EMIT paddingChanged();
}

void SQLEditorItem::setVerticalPadding(qreal padding)
{
    if (qFuzzyCompare(padding, m_verticalPadding))
        return;
    m_verticalPadding = padding;
    Q_EMIT paddingChanged();
    Q_EMIT contentHeightChanged();
    update();
}

void SQLEditorItem::setCursorPosition(int position)
{
    QTextCursor cursor = m_cursor;
    cursor.setPosition(std::clamp(position, 0, m_document->characterCount() - 1));
    setCursor(cursor);
}

QString SQLEditorItem::selectedText() const
{
    QString text = m_cursor.selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text;
}

qreal SQLEditorItem::lineHeight() const
{
    return m_layout->lineHeight();
}

qreal SQLEditorItem::contentY() const
{
    return m_topLine * lineHeight() + m_topOffset;
}

qreal SQLEditorItem::contentHeight() const
{
    return m_layout->lineCount() * lineHeight() + 2 * m_verticalPadding;
}

bool SQLEditorItem::canUndo() const
{
    return m_document->isUndoAvailable();
}

void SQLEditorItem::setAccessibleName(const QString &name)
{
    if (name == m_accessibleName)
        return;
    m_accessibleName = name;
    Q_EMIT accessibleNameChanged();
}

bool SQLEditorItem::canPaste() const
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    return data && data->hasText();
}

bool SQLEditorItem::canRedo() const
{
    return m_document->isRedoAvailable();
}

void SQLEditorItem::setContentY(qreal y)
{
    scrollToLine(y);
}

void SQLEditorItem::scrollToLine(qreal y)
{
    const qreal limit = std::max<qreal>(0, contentHeight() - height());
    y = std::clamp(y, qreal(0), limit);
    const int line = int(y / lineHeight());
    const qreal offset = y - line * lineHeight();
    if (line == m_topLine && qFuzzyCompare(offset + 1, m_topOffset + 1))
        return;
    m_topLine = line;
    m_topOffset = offset;
    Q_EMIT contentYChanged();
    update();
}

// Blocks above the view count as one line until they are laid out. Before scrolling up into
// them they are laid out, and the view's own line moved by what they grew, so that a scroll
// by a few lines moves the text by those lines.
void SQLEditorItem::layOutLinesAbove(qreal y)
{
    const int wanted = std::max(0, int(y / lineHeight()));
    if (wanted >= m_topLine)
        return;
    const QTextBlock top = m_layout->blockAtLine(m_topLine).first;
    int grown = 0;
    for (QTextBlock block = m_layout->blockAtLine(wanted).first;
         block.isValid() && block.blockNumber() < top.blockNumber(); block = block.next()) {
        const int before = block.lineCount();
        m_layout->ensureLaidOut(block);
        grown += block.lineCount() - before;
    }
    m_topLine += grown;
}

QPointF SQLEditorItem::documentOrigin() const
{
    return {m_horizontalPadding, m_verticalPadding - contentY()};
}

void SQLEditorItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.width() != oldGeometry.width())
        updateTextWidth();
}

void SQLEditorItem::updateTextWidth()
{
    m_layout->setTextWidth(std::max<qreal>(1, width() - 2 * m_horizontalPadding));
}

void SQLEditorItem::documentSizeChanged()
{
    m_lineCount = m_layout->lineCount();
    Q_EMIT contentHeightChanged();
}

void SQLEditorItem::contentsChange(int position, int removed, int added)
{
    const int before = m_lineCount;
    m_lineCount = m_layout->lineCount();
    if (position == 0 && !m_document->isUndoAvailable() && added == m_document->characterCount()) {
        // A new text (setPlainText): shown from its top, with the caret at its start.
        clearPreedit();
        m_cursor = QTextCursor(m_document);
        m_topLine = 0;
        m_topOffset = 0;
        Q_EMIT contentYChanged();
    } else if (removed != added || before != m_lineCount) {
        // An edit above the view moves the view's line with the text it shows.
        const QTextBlock top = m_layout->blockAtLine(m_topLine).first;
        if (position < top.position())
            m_topLine = std::max(0, m_topLine + m_lineCount - before);
    }
    if (removed != added || added == 0) {
        Q_EMIT cursorPositionChanged();
        Q_EMIT selectionChanged();
    }
    if (QAccessible::isActive() && !m_layout->isColouring())
        announceTextChange(position, removed, added);
    Q_EMIT contentHeightChanged();
    update();
}

void SQLEditorItem::announceTextChange(int position, int removed, int added)
{
    QTextCursor inserted(m_document);
    // A new text is counted with the document's closing separator, which is not text.
    const int last = m_document->characterCount() - 1;
    inserted.setPosition(std::min(position, last));
    inserted.setPosition(std::min(position + added, last), QTextCursor::KeepAnchor);
    QString text = inserted.selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    // The removed characters are gone from the document; screen readers get their count.
    const QString gone(removed, u' ');
    if (removed == 0) {
        QAccessibleTextInsertEvent event(this, position, text);
        QAccessible::updateAccessibility(&event);
    } else if (text.isEmpty()) {
        QAccessibleTextRemoveEvent event(this, position, gone);
        QAccessible::updateAccessibility(&event);
    } else {
        QAccessibleTextUpdateEvent event(this, position, gone, text);
        QAccessible::updateAccessibility(&event);
    }
}

QRectF SQLEditorItem::lineRectangle(int position, int preeditOffset) const
{
    const QTextBlock block = m_document->findBlock(position);
    if (!block.isValid())
        return {};
    m_layout->ensureLaidOut(block);
    const QTextLayout *layout = block.layout();
    const int inBlock = position - block.position() + preeditOffset;
    const QTextLine line = layout->lineForTextPosition(inBlock);
    if (!line.isValid())
        return {};
    const QPointF origin = documentOrigin();
    const qreal x = line.cursorToX(inBlock);
    const qreal y = (block.firstLineNumber() + line.lineNumber()) * lineHeight();
    return {origin.x() + x, origin.y() + y, 1, lineHeight()};
}

QRectF SQLEditorItem::cursorRectangle() const
{
    const int offset = m_preeditText.isEmpty() ? 0 : m_preeditCursor;
    QRectF rectangle = lineRectangle(m_cursor.position(), offset);
    rectangle.setWidth(std::max<qreal>(1, qreal(window() ? window()->devicePixelRatio() : 1)));
    return rectangle;
}

int SQLEditorItem::positionAt(qreal x, qreal y) const
{
    const QPointF origin = documentOrigin();
    return m_layout->positionAt(QPointF(x - origin.x(), y - origin.y()));
}

void SQLEditorItem::paint(QPainter *painter)
{
    painter->setRenderHint(QPainter::TextAntialiasing);
    const QPointF origin = documentOrigin();
    const qreal lineHeight = this->lineHeight();
    const qreal top = contentY() - m_verticalPadding;
    const int firstLine = std::max(0, int(top / lineHeight));
    const QRectF clip(0, 0, width(), height());

    QTextBlock block = m_layout->blockAtLine(firstLine).first;
    // Laying out the first block shown can change where the lines below it start; nothing
    // above it moves.
    m_layout->ensureLaidOut(block);
    const QTextBlock preeditBlock = m_preeditText.isEmpty() ? QTextBlock() : m_cursor.block();
    painter->setPen(m_textColor);
    for (; block.isValid(); block = block.next()) {
        const qreal y = origin.y() + block.firstLineNumber() * lineHeight;
        if (y > height())
            break;
        m_layout->ensureLaidOut(block);
        QTextLayout *layout = block.layout();
        QList<QTextLayout::FormatRange> selections;
        const int blockStart = block.position();
        const int blockEnd = blockStart + block.length();
        for (const SQLTextFinder::Match &match : m_finder->matchesIn(blockStart, blockEnd)) {
            QTextLayout::FormatRange range;
            range.start = std::max(0, match.start - blockStart);
            range.length = std::min(blockEnd, match.end()) - blockStart - range.start;
            range.format.setBackground(m_findHighlightColor);
            selections.append(range);
        }
        if (m_cursor.hasSelection() && m_cursor.selectionStart() < blockEnd &&
            m_cursor.selectionEnd() >= blockStart) {
            QTextLayout::FormatRange range;
            range.start = std::max(0, m_cursor.selectionStart() - blockStart);
            range.length = std::min(block.length(), m_cursor.selectionEnd() - blockStart) - range.start;
            range.format.setBackground(m_selectionColor);
            if (m_selectedTextColor.isValid())
                range.format.setForeground(m_selectedTextColor);
            // A selection that goes on past the block's end covers the rest of its last line.
            if (m_cursor.selectionEnd() >= blockEnd)
                range.format.setProperty(QTextFormat::FullWidthSelection, true);
            selections.append(range);
        }
        if (block == preeditBlock) {
            QTextLayout::FormatRange range;
            range.start = layout->preeditAreaPosition();
            range.length = int(m_preeditText.size());
            range.format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
            selections.append(range);
        }
        layout->draw(painter, QPointF(origin.x(), y), selections, clip);
    }
    if (hasActiveFocus() && m_caretShown && m_preeditCursorVisible) {
        const QRectF caret = cursorRectangle();
        painter->fillRect(caret, m_textColor);
    }
}

bool SQLEditorItem::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        auto *key = static_cast<QKeyEvent *>(event);
        // Typed characters and the field's own keys are the field's, not the window's.
        // Tab and Shift+Tab indent; with Ctrl they move between the window's parts.
        const bool indentKey = (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) &&
                               !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        bool own = isTypedText(key) || indentKey ||
                   key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        for (const CursorMove &move : cursorMoves)
            own = own || key->matches(move.key);
        for (const QKeySequence::StandardKey standard : ownKeys)
            own = own || key->matches(standard);
        if (own) {
            event->accept();
            return true;
        }
    }
    return QQuickPaintedItem::event(event);
}

void SQLEditorItem::keyPressEvent(QKeyEvent *event)
{
    if (handleShortcut(event) || handleMove(event) || handleEdit(event)) {
        event->accept();
        restartBlink();
        return;
    }
    event->ignore();
}

bool SQLEditorItem::handleShortcut(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Undo))
        undo();
    else if (event->matches(QKeySequence::Redo))
        redo();
    else if (event->matches(QKeySequence::Copy))
        copy();
    else if (event->matches(QKeySequence::Cut))
        cut();
    else if (event->matches(QKeySequence::Paste))
        paste();
    else if (event->matches(QKeySequence::SelectAll))
        selectAll();
    else
        return false;
    return true;
}

bool SQLEditorItem::handleMove(QKeyEvent *event)
{
    if (event->matches(QKeySequence::MoveToNextPage) || event->matches(QKeySequence::MoveToPreviousPage)) {
        movePage(event->matches(QKeySequence::MoveToNextPage) ? 1 : -1, QTextCursor::MoveAnchor);
        return true;
    }
    if (event->matches(QKeySequence::SelectNextPage) || event->matches(QKeySequence::SelectPreviousPage)) {
        movePage(event->matches(QKeySequence::SelectNextPage) ? 1 : -1, QTextCursor::KeepAnchor);
        return true;
    }
    for (const CursorMove &move : cursorMoves) {
        if (!event->matches(move.key))
            continue;
        QTextCursor cursor = m_cursor;
        // Left and Right with a selection go to its edge, as in every text field.
        if (move.mode == QTextCursor::MoveAnchor && cursor.hasSelection() &&
            (move.operation == QTextCursor::NextCharacter || move.operation == QTextCursor::PreviousCharacter)) {
            cursor.setPosition(move.operation == QTextCursor::NextCharacter ? cursor.selectionEnd()
                                                                           : cursor.selectionStart());
        } else {
            cursor.movePosition(move.operation, move.mode);
        }
        setCursor(cursor);
        return true;
    }
    return false;
}

void SQLEditorItem::movePage(int direction, QTextCursor::MoveMode mode)
{
    const int lines = std::max(1, int(height() / lineHeight()) - 1);
    // The lines above are laid out first, so that the caret and the view move by the same lines.
    if (direction < 0)
        layOutLinesAbove(contentY() - lines * lineHeight());
    const QRectF caret = cursorRectangle();
    QTextCursor cursor = m_cursor;
    cursor.movePosition(direction > 0 ? QTextCursor::Down : QTextCursor::Up, mode, lines);
    setCursor(cursor);
    // The caret keeps its place on the screen while the text moves under it.
    scrollToLine(contentY() + direction * lines * lineHeight());
    const QRectF moved = cursorRectangle();
    if (moved.top() < 0 || moved.bottom() > height())
        scrollToLine(contentY() + moved.top() - caret.top());
}

bool SQLEditorItem::handleEdit(QKeyEvent *event)
{
    QTextCursor cursor = m_cursor;
    if (event->matches(QKeySequence::Delete)) {
        if (!cursor.hasSelection())
            cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    } else if (event->matches(QKeySequence::Backspace) ||
               (event->key() == Qt::Key_Backspace && !(event->modifiers() & ~Qt::ShiftModifier))) {
        if (cursor.hasSelection())
            cursor.removeSelectedText();
        else
            cursor.deletePreviousChar();
    } else if (event->matches(QKeySequence::DeleteStartOfWord)) {
        if (!cursor.hasSelection())
            cursor.movePosition(QTextCursor::PreviousWord, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    } else if (event->matches(QKeySequence::DeleteEndOfWord)) {
        if (!cursor.hasSelection())
            cursor.movePosition(QTextCursor::NextWord, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
            return false;
        cursor.insertBlock();
    } else if (event->key() == Qt::Key_Backtab ||
               (event->key() == Qt::Key_Tab && (event->modifiers() & Qt::ShiftModifier))) {
        if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
            return false;
        indentLines(true);
        return true;
    } else if (event->key() == Qt::Key_Tab) {
        if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
            return false;
        if (cursor.hasSelection() && cursor.document()->findBlock(cursor.selectionStart()) !=
                                         cursor.document()->findBlock(cursor.selectionEnd())) {
            indentLines(false);
            return true;
        }
        cursor.insertText(indentUnit.toString());
    } else if (isTypedText(event)) {
        cursor.insertText(event->text());
    } else {
        return false;
    }
    setCursor(cursor);
    return true;
}

// Tab over lines puts an indent before each; Shift+Tab takes up to one indent (spaces or a tab)
// from each line of the selection, or from the caret's line. One undo step either way.
void SQLEditorItem::indentLines(bool outdent)
{
    QTextBlock first = m_document->findBlock(m_cursor.selectionStart());
    QTextBlock last = m_document->findBlock(m_cursor.selectionEnd());
    // A selection that ends at a line's start leaves that line alone.
    if (last != first && m_cursor.selectionEnd() == last.position())
        last = last.previous();
    QTextCursor edit(m_document);
    edit.beginEditBlock();
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        edit.setPosition(block.position());
        if (!outdent) {
            edit.insertText(indentUnit.toString());
        } else {
            const QString text = block.text();
            qsizetype count = 0;
            if (text.startsWith(u'\t'))
                count = 1;
            else
                while (count < indentUnit.size() && count < text.size() && text.at(count) == u' ')
                    ++count;
            edit.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor, int(count));
            edit.removeSelectedText();
        }
        if (block == last)
            break;
    }
    edit.endEditBlock();
    cursorChanged(true);
}

void SQLEditorItem::setCursor(const QTextCursor &cursor)
{
    m_cursor = cursor;
    cursorChanged(true);
}

void SQLEditorItem::cursorChanged(bool scroll)
{
    if (scroll)
        ensureCursorVisible();
    Q_EMIT cursorPositionChanged();
    Q_EMIT selectionChanged();
    if (hasActiveFocus())
        QGuiApplication::inputMethod()->update(Qt::ImQueryInput);
    // One move is one announcement, however many paths report it.
    if (QAccessible::isActive()
        && std::pair(m_cursor.anchor(), m_cursor.position()) != m_announcedCursor) {
        m_announcedCursor = {m_cursor.anchor(), m_cursor.position()};
        QAccessibleTextCursorEvent moved(this, m_cursor.position());
        QAccessible::updateAccessibility(&moved);
        if (m_cursor.hasSelection()) {
            QAccessibleTextSelectionEvent selected(this, m_cursor.selectionStart(), m_cursor.selectionEnd());
            QAccessible::updateAccessibility(&selected);
        }
    }
    update();
}

void SQLEditorItem::ensureCursorVisible()
{
    const int line = m_layout->lineOfPosition(m_cursor.position());
    const qreal top = line * lineHeight();
    const qreal bottom = top + lineHeight() + 2 * m_verticalPadding;
    if (top < contentY())
        scrollToLine(top);
    else if (bottom > contentY() + height())
        scrollToLine(bottom - height());
}

void SQLEditorItem::goToLine(int line)
{
    const QTextBlock block = m_document->findBlockByNumber(std::clamp(line, 1, m_document->blockCount()) - 1);
    QTextCursor cursor(m_document);
    cursor.setPosition(block.position());
    setCursor(cursor);
    ensureCursorVisible();
}

void SQLEditorItem::select(int start, int end)
{
    const int last = m_document->characterCount() - 1;
    QTextCursor cursor(m_document);
    cursor.setPosition(std::clamp(start, 0, last));
    cursor.setPosition(std::clamp(end, 0, last), QTextCursor::KeepAnchor);
    setCursor(cursor);
    updatePrimarySelection();
}

void SQLEditorItem::selectAll()
{
    QTextCursor cursor(m_document);
    cursor.select(QTextCursor::Document);
    m_cursor = cursor;
    cursorChanged(false);
    updatePrimarySelection();
}

void SQLEditorItem::copy()
{
    if (m_cursor.hasSelection())
        QGuiApplication::clipboard()->setText(selectedText());
}

void SQLEditorItem::cut()
{
    if (!m_cursor.hasSelection())
        return;
    copy();
    QTextCursor cursor = m_cursor;
    cursor.removeSelectedText();
    setCursor(cursor);
}

void SQLEditorItem::paste()
{
    const QString text = QGuiApplication::clipboard()->text();
    if (text.isEmpty())
        return;
    QTextCursor cursor = m_cursor;
    cursor.insertText(text);
    setCursor(cursor);
}

void SQLEditorItem::undo()
{
    clearPreedit();
    m_document->undo(&m_cursor);
    cursorChanged(true);
}

void SQLEditorItem::redo()
{
    clearPreedit();
    m_document->redo(&m_cursor);
    cursorChanged(true);
}

void SQLEditorItem::updatePrimarySelection()
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (clipboard->supportsSelection() && m_cursor.hasSelection())
        clipboard->setText(selectedText(), QClipboard::Selection);
}

void SQLEditorItem::clearPreedit()
{
    if (m_preeditText.isEmpty())
        return;
    QTextBlock block = m_cursor.block();
    block.layout()->setPreeditArea(-1, QString());
    block.clearLayout();
    m_preeditText.clear();
    m_preeditCursorVisible = true;
    Q_EMIT preeditTextChanged();
    update();
}

void SQLEditorItem::inputMethodEvent(QInputMethodEvent *event)
{
    const bool edits = !event->commitString().isEmpty() || event->replacementLength() > 0;
    clearPreedit();
    if (edits) {
        QTextCursor cursor = m_cursor;
        cursor.beginEditBlock();
        if (event->replacementLength() > 0) {
            cursor.clearSelection();
            cursor.setPosition(std::max(0, cursor.position() + event->replacementStart()));
            cursor.setPosition(std::min(m_document->characterCount() - 1,
                                        cursor.position() + event->replacementLength()),
                               QTextCursor::KeepAnchor);
        }
        cursor.insertText(event->commitString());
        cursor.endEditBlock();
        m_cursor = cursor;
    }
    m_preeditCursor = int(event->preeditString().size());
    m_preeditCursorVisible = true;
    for (const QInputMethodEvent::Attribute &attribute : event->attributes()) {
        if (attribute.type == QInputMethodEvent::Cursor) {
            m_preeditCursor = attribute.start;
            m_preeditCursorVisible = attribute.length != 0;
        } else if (attribute.type == QInputMethodEvent::Selection && !edits) {
            select(attribute.start, attribute.start + attribute.length);
        }
    }
    if (!event->preeditString().isEmpty()) {
        if (m_cursor.hasSelection()) {
            // Composition replaces the selection, as typing does.
            m_cursor.removeSelectedText();
        }
        m_preeditText = event->preeditString();
        QTextBlock block = m_cursor.block();
        block.layout()->setPreeditArea(m_cursor.position() - block.position(), m_preeditText);
        block.clearLayout();
        m_layout->ensureLaidOut(block);
        documentSizeChanged();
        Q_EMIT preeditTextChanged();
    }
    event->accept();
    cursorChanged(true);
    restartBlink();
}

QVariant SQLEditorItem::inputMethodQuery(Qt::InputMethodQuery query) const
{
    const QTextBlock block = m_cursor.block();
    switch (query) {
    case Qt::ImEnabled:
        return isEnabled();
    case Qt::ImHints:
        return int(Qt::ImhMultiLine | Qt::ImhNoAutoUppercase);
    case Qt::ImCursorRectangle:
        return cursorRectangle();
    case Qt::ImAnchorRectangle:
        return lineRectangle(m_cursor.anchor(), 0);
    case Qt::ImFont:
        return m_font;
    case Qt::ImCursorPosition:
        return m_cursor.position() - block.position();
    case Qt::ImAnchorPosition:
        return m_cursor.anchor() - block.position();
    case Qt::ImAbsolutePosition:
        return m_cursor.position();
    case Qt::ImSurroundingText:
        return block.text();
    case Qt::ImTextBeforeCursor:
        return block.text().left(m_cursor.position() - block.position());
    case Qt::ImTextAfterCursor:
        return block.text().mid(m_cursor.position() - block.position());
    case Qt::ImCurrentSelection:
        return selectedText();
    case Qt::ImMaximumTextLength:
        return QVariant();
    case Qt::ImReadOnly:
        return false;
    default:
        return QQuickPaintedItem::inputMethodQuery(query);
    }
}

void SQLEditorItem::selectAround(int position, SelectionUnit unit, bool extend)
{
    QTextCursor picked(m_document);
    picked.setPosition(position);
    if (unit == SelectionUnit::Word) {
        picked.select(QTextCursor::WordUnderCursor);
    } else if (unit == SelectionUnit::Line) {
        picked.movePosition(QTextCursor::StartOfBlock);
        picked.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        // The whole line, with its end, as a triple click picks it in other fields.
        picked.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
    }
    if (!extend) {
        m_pickedStart = picked.selectionStart();
        m_pickedEnd = picked.selectionEnd();
        setCursor(picked);
        return;
    }
    // Dragging after a double or triple click grows the selection by whole words or lines.
    QTextCursor cursor(m_document);
    if (picked.selectionStart() < m_pickedStart) {
        cursor.setPosition(m_pickedEnd);
        cursor.setPosition(picked.selectionStart(), QTextCursor::KeepAnchor);
    } else {
        cursor.setPosition(m_pickedStart);
        cursor.setPosition(std::max(picked.selectionEnd(), m_pickedEnd), QTextCursor::KeepAnchor);
    }
    setCursor(cursor);
}

void SQLEditorItem::mousePressEvent(QMouseEvent *event)
{
    forceActiveFocus(Qt::MouseFocusReason);
    clearPreedit();
    const QPointF point = event->position();
    const int position = positionAt(point.x(), point.y());
    if (event->button() == Qt::MiddleButton) {
        QClipboard *clipboard = QGuiApplication::clipboard();
        if (clipboard->supportsSelection()) {
            QTextCursor cursor(m_document);
            cursor.setPosition(position);
            cursor.insertText(clipboard->text(QClipboard::Selection));
            setCursor(cursor);
        }
        event->accept();
        return;
    }
    const bool tripleClick = m_lastDoubleClick.isValid() &&
                             m_lastDoubleClick.elapsed() < QGuiApplication::styleHints()->mouseDoubleClickInterval() &&
                             (point - m_doubleClickPoint).manhattanLength() < 6;
    m_lastDoubleClick.invalidate();
    m_selecting = true;
    if (tripleClick) {
        m_selectionUnit = SelectionUnit::Line;
        selectAround(position, SelectionUnit::Line, false);
    } else if (event->modifiers() & Qt::ShiftModifier) {
        QTextCursor cursor = m_cursor;
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        setCursor(cursor);
    } else {
        m_selectionUnit = SelectionUnit::Character;
        QTextCursor cursor = m_cursor;
        cursor.setPosition(position);
        setCursor(cursor);
    }
    restartBlink();
    event->accept();
}

void SQLEditorItem::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const QPointF point = event->position();
    m_lastDoubleClick.start();
    m_doubleClickPoint = point;
    m_selecting = true;
    m_selectionUnit = SelectionUnit::Word;
    selectAround(positionAt(point.x(), point.y()), SelectionUnit::Word, false);
    event->accept();
}

void SQLEditorItem::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_selecting)
        return;
    m_dragPoint = event->position();
    dragTo(m_dragPoint);
    const bool outside = m_dragPoint.y() < 0 || m_dragPoint.y() > height();
    if (outside && !m_autoScrollTimer.isActive())
        m_autoScrollTimer.start();
    else if (!outside)
        m_autoScrollTimer.stop();
    event->accept();
}

void SQLEditorItem::dragTo(const QPointF &point)
{
    const int position = positionAt(point.x(), std::clamp<qreal>(point.y(), 0, height() - 1));
    if (m_selectionUnit != SelectionUnit::Character) {
        selectAround(position, m_selectionUnit, true);
        return;
    }
    QTextCursor cursor = m_cursor;
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    setCursor(cursor);
}

// While a drag holds the pointer above or below the view, the text scrolls towards it, faster
// the farther it is.
void SQLEditorItem::autoScroll()
{
    const qreal distance = m_dragPoint.y() < 0 ? m_dragPoint.y() : m_dragPoint.y() - height();
    if (!m_selecting || distance == 0) {
        m_autoScrollTimer.stop();
        return;
    }
    const qreal step = std::clamp(distance / 2, -4 * lineHeight(), 4 * lineHeight());
    if (step < 0)
        layOutLinesAbove(contentY() + step);
    scrollToLine(contentY() + step);
    dragTo(m_dragPoint);
}

void SQLEditorItem::mouseReleaseEvent(QMouseEvent *event)
{
    m_selecting = false;
    m_autoScrollTimer.stop();
    updatePrimarySelection();
    event->accept();
}

void SQLEditorItem::wheelEvent(QWheelEvent *event)
{
    qreal delta = 0;
    if (!event->pixelDelta().isNull())
        delta = -event->pixelDelta().y();
    else
        delta = -event->angleDelta().y() / 120.0 * QGuiApplication::styleHints()->wheelScrollLines() *
                lineHeight();
    if (delta == 0) {
        event->ignore();
        return;
    }
    if (delta < 0)
        layOutLinesAbove(contentY() + delta);
    scrollToLine(contentY() + delta);
    event->accept();
}

void SQLEditorItem::focusInEvent(QFocusEvent *event)
{
    QQuickPaintedItem::focusInEvent(event);
    restartBlink();
    update();
}

void SQLEditorItem::focusOutEvent(QFocusEvent *event)
{
    QQuickPaintedItem::focusOutEvent(event);
    m_blinkTimer.stop();
    update();
}

void SQLEditorItem::restartBlink()
{
    m_caretShown = true;
    if (hasActiveFocus() && QGuiApplication::styleHints()->cursorFlashTime() > 0)
        m_blinkTimer.start();
    update();
}
