#pragma once

#include "sqltextfinder.h"

#include <QColor>
#include <QElapsedTimer>
#include <QFont>
#include <QPointer>
#include <QQmlEngine>
#include <QQuickPaintedItem>
#include <QTextCursor>
#include <QTimer>

class QTextDocument;
class SQLTextLayout;

// The editor's text field: a plain text document, wrapped, edited through QTextCursor so that
// undo and redo stay the document's own, whose cost follows the lines on screen. Only the
// blocks in view are laid out and painted; the rest of the text is a count of lines.
//
// The item is its own viewport: `contentY` is the scroll position in pixels, over lines of one
// height, and a scroll bar beside it follows `contentY` and `contentHeight`.
class SQLEditorItem : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QTextDocument *document READ document CONSTANT)
    Q_PROPERTY(QString text READ text NOTIFY textChanged)
    Q_PROPERTY(QFont font READ font WRITE setFont NOTIFY fontChanged)
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor selectionColor READ selectionColor WRITE setSelectionColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor selectedTextColor READ selectedTextColor WRITE setSelectedTextColor NOTIFY coloursChanged)
    // Find and replace over the text; its matches are shown behind the text in
    // `findHighlightColor` while it is active.
    Q_PROPERTY(SQLTextFinder *finder READ finder CONSTANT)
    Q_PROPERTY(QColor findHighlightColor READ findHighlightColor WRITE setFindHighlightColor NOTIFY coloursChanged)
    Q_PROPERTY(qreal horizontalPadding READ horizontalPadding WRITE setHorizontalPadding NOTIFY paddingChanged)
    Q_PROPERTY(qreal verticalPadding READ verticalPadding WRITE setVerticalPadding NOTIFY paddingChanged)
    Q_PROPERTY(int cursorPosition READ cursorPosition WRITE setCursorPosition NOTIFY cursorPositionChanged)
    Q_PROPERTY(int selectionStart READ selectionStart NOTIFY selectionChanged)
    Q_PROPERTY(int selectionEnd READ selectionEnd NOTIFY selectionChanged)
    Q_PROPERTY(QString selectedText READ selectedText NOTIFY selectionChanged)
    Q_PROPERTY(QString preeditText READ preeditText NOTIFY preeditTextChanged)
    Q_PROPERTY(qreal contentY READ contentY WRITE setContentY NOTIFY contentYChanged)
    Q_PROPERTY(qreal contentHeight READ contentHeight NOTIFY contentHeightChanged)
    Q_PROPERTY(qreal lineHeight READ lineHeight NOTIFY fontChanged)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY canUndoChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY canRedoChanged)
    Q_PROPERTY(bool canPaste READ canPaste NOTIFY canPasteChanged)
    // The name screen readers give the field.
    Q_PROPERTY(QString accessibleName READ accessibleName WRITE setAccessibleName NOTIFY accessibleNameChanged)

public:
    // What Tab puts in and Shift+Tab takes out at a line start.
    static constexpr QStringView indentUnit = u"    ";

    explicit SQLEditorItem(QQuickItem *parent = nullptr);
    ~SQLEditorItem() override;

    [[nodiscard]] QTextDocument *document() const { return m_document; }
    [[nodiscard]] SQLTextLayout *textLayout() const { return m_layout; }
    [[nodiscard]] QString text() const;
    [[nodiscard]] QFont font() const { return m_font; }
    void setFont(const QFont &font);
    [[nodiscard]] QColor textColor() const { return m_textColor; }
    void setTextColor(const QColor &color);
    [[nodiscard]] QColor selectionColor() const { return m_selectionColor; }
    void setSelectionColor(const QColor &color);
    [[nodiscard]] SQLTextFinder *finder() const { return m_finder; }
    [[nodiscard]] QColor findHighlightColor() const { return m_findHighlightColor; }
    void setFindHighlightColor(const QColor &color);
    [[nodiscard]] QColor selectedTextColor() const { return m_selectedTextColor; }
    void setSelectedTextColor(const QColor &color);
    [[nodiscard]] qreal horizontalPadding() const { return m_horizontalPadding; }
    void setHorizontalPadding(qreal padding);
    [[nodiscard]] qreal verticalPadding() const { return m_verticalPadding; }
    void setVerticalPadding(qreal padding);

    [[nodiscard]] int cursorPosition() const { return m_cursor.position(); }
    void setCursorPosition(int position);
    [[nodiscard]] int selectionStart() const { return m_cursor.selectionStart(); }
    [[nodiscard]] int selectionEnd() const { return m_cursor.selectionEnd(); }
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] QString preeditText() const { return m_preeditText; }
    [[nodiscard]] QTextCursor textCursor() const { return m_cursor; }

    [[nodiscard]] qreal contentY() const;
    void setContentY(qreal y);
    [[nodiscard]] qreal contentHeight() const;
    [[nodiscard]] qreal lineHeight() const;
    [[nodiscard]] bool canUndo() const;
    [[nodiscard]] bool canRedo() const;
    // The clipboard holds text.
    [[nodiscard]] bool canPaste() const;
    [[nodiscard]] QString accessibleName() const { return m_accessibleName; }
    void setAccessibleName(const QString &name);

    // Where the caret is drawn, in the item's coordinates.
    [[nodiscard]] Q_INVOKABLE QRectF cursorRectangle() const;
    // Where the character at `position` is drawn, in the item's coordinates.
    [[nodiscard]] Q_INVOKABLE QRectF positionToRectangle(int position) const { return lineRectangle(position, 0); }
    // The text position at a point of the item.
    [[nodiscard]] Q_INVOKABLE int positionAt(qreal x, qreal y) const;

    Q_INVOKABLE void select(int start, int end);
    Q_INVOKABLE void selectAll();
    Q_INVOKABLE void copy();
    Q_INVOKABLE void cut();
    Q_INVOKABLE void paste();
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    // Scrolls the least that shows the caret's line.
    Q_INVOKABLE void ensureCursorVisible();
    // Puts the caret at the start of line `line` (from 1, clamped to the text's lines) and
    // scrolls to it.
    Q_INVOKABLE void goToLine(int line);

    void paint(QPainter *painter) override;
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    void textChanged();
    void fontChanged();
    void coloursChanged();
    void paddingChanged();
    void cursorPositionChanged();
    void selectionChanged();
    void preeditTextChanged();
    void contentYChanged();
    void contentHeightChanged();
    void canUndoChanged();
    void canRedoChanged();
    void canPasteChanged();
    void accessibleNameChanged();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    enum class SelectionUnit { Character, Word, Line };

    bool handleShortcut(QKeyEvent *event);
    bool handleMove(QKeyEvent *event);
    bool handleEdit(QKeyEvent *event);
    void movePage(int direction, QTextCursor::MoveMode mode);
    void indentLines(bool outdent);
    void setCursor(const QTextCursor &cursor);
    void cursorChanged(bool scroll);
    void selectAround(int position, SelectionUnit unit, bool extend);
    void dragTo(const QPointF &point);
    void autoScroll();
    // Tells screen readers what an edit inserted and how much it removed.
    void announceTextChange(int position, int removed, int added);
    void contentsChange(int position, int removed, int added);
    void documentSizeChanged();
    void scrollToLine(qreal y);
    void layOutLinesAbove(qreal y);
    void updateTextWidth();
    void restartBlink();
    void updatePrimarySelection();
    void clearPreedit();
    [[nodiscard]] QPointF documentOrigin() const;
    [[nodiscard]] QRectF lineRectangle(int position, int preeditOffset) const;

    QTextDocument *m_document = nullptr;
    SQLTextLayout *m_layout = nullptr;
    QTextCursor m_cursor;
    // The caret and anchor screen readers were last told of.
    std::pair<int, int> m_announcedCursor{-1, -1};
    QFont m_font;
    QColor m_textColor = Qt::black;
    QColor m_selectionColor = QColor(0, 120, 215, 90);
    SQLTextFinder *m_finder = nullptr;
    QColor m_findHighlightColor = QColor(255, 200, 0, 110);
    QColor m_selectedTextColor;
    qreal m_horizontalPadding = 0;
    qreal m_verticalPadding = 0;

    // The scroll position as the first visual line shown and the pixels of it above the view.
    int m_topLine = 0;
    qreal m_topOffset = 0;
    int m_lineCount = 1;

    QString m_accessibleName;
    QString m_preeditText;
    int m_preeditCursor = 0;
    bool m_preeditCursorVisible = true;

    bool m_caretShown = true;
    QTimer m_blinkTimer;

    // Mouse selection: the unit a double or triple click picked, the range first picked, and
    // the pointer while it is held outside the view.
    SelectionUnit m_selectionUnit = SelectionUnit::Character;
    int m_pickedStart = 0;
    int m_pickedEnd = 0;
    bool m_selecting = false;
    QPointF m_dragPoint;
    QTimer m_autoScrollTimer;
    QElapsedTimer m_lastDoubleClick;
    QPointF m_doubleClickPoint;
};
