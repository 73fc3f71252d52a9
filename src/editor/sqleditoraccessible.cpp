#include "sqleditoraccessible.h"

#include "sqleditoritem.h"

#include <QQuickWindow>
#include <QTextBlock>
#include <QTextDocument>

SQLEditorAccessible::SQLEditorAccessible(SQLEditorItem *item)
    : QAccessibleObject(item)
{}

void SQLEditorAccessible::install()
{
    QAccessible::installFactory([](const QString &, QObject *object) -> QAccessibleInterface * {
        if (auto *item = qobject_cast<SQLEditorItem *>(object))
            return new SQLEditorAccessible(item);
        return nullptr;
    });
}

SQLEditorItem *SQLEditorAccessible::item() const
{
    return static_cast<SQLEditorItem *>(object());
}

QAccessibleInterface *SQLEditorAccessible::parent() const
{
    QQuickItem *parent = item()->parentItem();
    // The nearest item that screen readers know, up to the window.
    while (parent && !QAccessible::queryAccessibleInterface(parent))
        parent = parent->parentItem();
    if (parent)
        return QAccessible::queryAccessibleInterface(parent);
    return item()->window() ? QAccessible::queryAccessibleInterface(item()->window()) : nullptr;
}

QWindow *SQLEditorAccessible::window() const
{
    return item()->window();
}

QString SQLEditorAccessible::text(QAccessible::Text type) const
{
    switch (type) {
    case QAccessible::Name:
        return item()->accessibleName();
    case QAccessible::Value:
        return item()->text();
    default:
        return {};
    }
}

QRect SQLEditorAccessible::rect() const
{
    const QRectF scene = item()->mapRectToScene(item()->boundingRect());
    if (!item()->window())
        return scene.toAlignedRect();
    return QRect(item()->window()->mapToGlobal(scene.topLeft().toPoint()), scene.size().toSize());
}

QAccessible::State SQLEditorAccessible::state() const
{
    QAccessible::State state;
    state.editable = true;
    state.multiLine = true;
    state.focusable = true;
    state.focused = item()->hasActiveFocus();
    state.selectableText = true;
    state.invisible = !item()->isVisible();
    return state;
}

void *SQLEditorAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface *>(this);
    return QAccessibleObject::interface_cast(type);
}

void SQLEditorAccessible::selection(int selectionIndex, int *startOffset, int *endOffset) const
{
    *startOffset = *endOffset = 0;
    if (selectionIndex == 0 && item()->selectionStart() != item()->selectionEnd()) {
        *startOffset = item()->selectionStart();
        *endOffset = item()->selectionEnd();
    }
}

int SQLEditorAccessible::selectionCount() const
{
    return item()->selectionStart() != item()->selectionEnd() ? 1 : 0;
}

void SQLEditorAccessible::addSelection(int startOffset, int endOffset)
{
    item()->select(startOffset, endOffset);
}

void SQLEditorAccessible::removeSelection(int selectionIndex)
{
    if (selectionIndex == 0)
        item()->setCursorPosition(item()->cursorPosition());
}

void SQLEditorAccessible::setSelection(int selectionIndex, int startOffset, int endOffset)
{
    if (selectionIndex == 0)
        item()->select(startOffset, endOffset);
}

int SQLEditorAccessible::cursorPosition() const
{
    return item()->cursorPosition();
}

void SQLEditorAccessible::setCursorPosition(int position)
{
    item()->setCursorPosition(position);
}

QString SQLEditorAccessible::text(int startOffset, int endOffset) const
{
    QTextCursor cursor(item()->document());
    const int last = characterCount();
    cursor.setPosition(std::clamp(startOffset, 0, last));
    cursor.setPosition(std::clamp(endOffset, 0, last), QTextCursor::KeepAnchor);
    QString text = cursor.selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    return text;
}

QString SQLEditorAccessible::textAtOffset(int offset, QAccessible::TextBoundaryType boundaryType, int *startOffset,
                                          int *endOffset) const
{
    QTextDocument *document = item()->document();
    offset = std::clamp(offset, 0, characterCount());
    const QTextBlock block = document->findBlock(offset);
    if (boundaryType == QAccessible::LineBoundary || boundaryType == QAccessible::ParagraphBoundary) {
        // Lines as the text has them: a screen reader reads a statement's line, not a wrapped
        // piece of it, and a block far off screen need not be laid out for it.
        *startOffset = block.position();
        *endOffset = block.position() + block.length() - (block.next().isValid() ? 0 : 1);
        return text(*startOffset, *endOffset);
    }
    if (boundaryType == QAccessible::NoBoundary) {
        *startOffset = 0;
        *endOffset = characterCount();
        return item()->text();
    }
    QTextCursor cursor(document);
    cursor.setPosition(offset);
    if (boundaryType == QAccessible::CharBoundary)
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
    else if (boundaryType == QAccessible::SentenceBoundary)
        cursor.select(QTextCursor::BlockUnderCursor);
    else
        cursor.select(QTextCursor::WordUnderCursor);
    *startOffset = cursor.selectionStart();
    *endOffset = cursor.selectionEnd();
    return text(*startOffset, *endOffset);
}

int SQLEditorAccessible::characterCount() const
{
    return item()->document()->characterCount() - 1;
}

QRect SQLEditorAccessible::characterRect(int offset) const
{
    const QRectF local = item()->positionToRectangle(offset);
    const QRectF scene = item()->mapRectToScene(local);
    if (!item()->window())
        return scene.toAlignedRect();
    return QRect(item()->window()->mapToGlobal(scene.topLeft().toPoint()), scene.size().toSize());
}

int SQLEditorAccessible::offsetAtPoint(const QPoint &point) const
{
    QPointF local = point;
    if (item()->window())
        local = item()->mapFromScene(item()->window()->mapFromGlobal(point));
    return item()->positionAt(local.x(), local.y());
}

void SQLEditorAccessible::scrollToSubstring(int startIndex, int)
{
    item()->setCursorPosition(startIndex);
}

QString SQLEditorAccessible::attributes(int offset, int *startOffset, int *endOffset) const
{
    *startOffset = *endOffset = offset;
    return {};
}
