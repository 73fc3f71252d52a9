#pragma once

#include <QAccessibleObject>

class SQLEditorItem;

// What screen readers see of the editor's text field: an editable, multi-line text whose
// characters, lines and caret they can read and whose selection they can set.
class SQLEditorAccessible : public QAccessibleObject, public QAccessibleTextInterface
{
public:
    explicit SQLEditorAccessible(SQLEditorItem *item);

    // Makes the editor's text fields answer through this class; once per process.
    static void install();

    // QAccessibleInterface
    [[nodiscard]] QAccessibleInterface *parent() const override;
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QWindow *window() const override;
    [[nodiscard]] QString text(QAccessible::Text type) const override;
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::EditableText; }
    [[nodiscard]] QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    // QAccessibleTextInterface
    void selection(int selectionIndex, int *startOffset, int *endOffset) const override;
    [[nodiscard]] int selectionCount() const override;
    void addSelection(int startOffset, int endOffset) override;
    void removeSelection(int selectionIndex) override;
    void setSelection(int selectionIndex, int startOffset, int endOffset) override;
    [[nodiscard]] int cursorPosition() const override;
    void setCursorPosition(int position) override;
    [[nodiscard]] QString text(int startOffset, int endOffset) const override;
    [[nodiscard]] QString textAtOffset(int offset, QAccessible::TextBoundaryType boundaryType, int *startOffset,
                                       int *endOffset) const override;
    [[nodiscard]] int characterCount() const override;
    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    [[nodiscard]] QString attributes(int offset, int *startOffset, int *endOffset) const override;

private:
    [[nodiscard]] SQLEditorItem *item() const;
};
