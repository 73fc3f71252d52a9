#pragma once

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QTextDocument>
#include <QQmlEngine>
#include <QTimer>
#include <QUuid>

class DataStore;
class SQLHighlightDriver;
class Preferences;


// The editor screen's state behind the text view: which document is shown, the text's way
// up into the store (brought up to date at most once per frame, written 0.8 s after the last
// change), the way down when another document is selected, the unsaved mark, the count,
// Format and versions.
//
// Text pushed into the view (a load) is told apart from typed text: it neither marks the
// document as changed nor moves its date.
class SQLEditorController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    // The text view's document; the controller loads texts into it and follows its edits.
    Q_PROPERTY(QTextDocument *textDocument READ textDocument WRITE setTextDocument NOTIFY textDocumentChanged)
    Q_PROPERTY(bool hasDocument READ hasDocument NOTIFY documentChanged)
    Q_PROPERTY(QString documentId READ documentIdText NOTIFY documentChanged)
    Q_PROPERTY(QString documentName READ documentName NOTIFY documentNameChanged)
    Q_PROPERTY(bool hasUnsavedChanges READ hasUnsavedChanges NOTIFY hasUnsavedChangesChanged)
    Q_PROPERTY(int characterCount READ characterCount NOTIFY characterCountChanged)
    Q_PROPERTY(bool isBlank READ isBlank NOTIFY isBlankChanged)
    Q_PROPERTY(QString currentContent READ currentContent NOTIFY currentContentChanged)
    Q_PROPERTY(double fontSize READ fontSize NOTIFY fontSizeChanged)
    // The theme's colours of plain text and comments; the other colours are fixed.
    Q_PROPERTY(QColor plainColor READ plainColor WRITE setPlainColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor commentColor READ commentColor WRITE setCommentColor NOTIFY coloursChanged)

public:
    static constexpr int autoSaveDelayMs = 800;
    // At most one trip of the text into the store per frame.
    static constexpr int syncDelayMs = 16;
    // Beyond this many characters a trip costs a frame or more (a copy of the text and its
    // count), so the text goes to the store when typing pauses, with the automatic save.
    static constexpr int largeTextCharacters = 200'000;

    explicit SQLEditorController(QObject *parent = nullptr);
    SQLEditorController(DataStore *store, Preferences *preferences, QObject *parent = nullptr);
    ~SQLEditorController() override;

    [[nodiscard]] QTextDocument *textDocument() const { return m_document; }
    void setTextDocument(QTextDocument *document);

    [[nodiscard]] bool hasDocument() const { return !m_documentId.isNull(); }
    [[nodiscard]] QString documentIdText() const;
    [[nodiscard]] QString documentName() const { return m_documentName; }
    [[nodiscard]] bool hasUnsavedChanges() const { return m_hasUnsavedChanges; }
    [[nodiscard]] int characterCount() const { return m_characterCount; }
    [[nodiscard]] bool isBlank() const { return m_isBlank; }
    [[nodiscard]] QString currentContent() const { return m_content; }
    [[nodiscard]] double fontSize() const;
    [[nodiscard]] QColor plainColor() const;
    void setPlainColor(const QColor &color);
    [[nodiscard]] QColor commentColor() const;
    void setCommentColor(const QColor &color);
    [[nodiscard]] SQLHighlightDriver *highlighter() const { return m_highlighter; }

    // Lays out the whole text with the formatter; undoable. Nothing for a blank text.
    Q_INVOKABLE void formatDocument();
    // Replaces the whole text as one edit that Undo takes back, and brings it into the store.
    // False when no document is shown in a view.
    bool replaceText(const QString &text);
    // Takes a version of the shown document with `note`, or the default note if it is empty.
    Q_INVOKABLE void saveVersion(const QString &note);
    // The number the next version will get.
    Q_INVOKABLE qint64 nextVersionNumber() const;
    // Renames the shown document; an empty name changes nothing.
    Q_INVOKABLE void renameDocument(const QString &name);
    // Brings the store's copy up to date now rather than at the next frame.
    Q_INVOKABLE void syncNow();

Q_SIGNALS:
    void textDocumentChanged();
    void documentChanged();
    void documentNameChanged();
    void hasUnsavedChangesChanged();
    void characterCountChanged();
    void isBlankChanged();
    void currentContentChanged();
    void fontSizeChanged();
    void coloursChanged();

private:
    void loadSelectedDocument();
    void pushText(const QString &text);
    void onContentsChange(int position, int removed, int added);
    void scheduleAutoSave(bool immediate);
    void autoSave();
    void clearUnsavedMarkWhenWritten();
    void setHasUnsavedChanges(bool value);
    void updateDerived(const QString &text);
    [[nodiscard]] QString documentText() const;

    QPointer<DataStore> m_store;
    Preferences *m_preferences = nullptr;
    QPointer<QTextDocument> m_document;
    QUuid m_documentId;
    QString m_documentName;
    QString m_content;
    bool m_hasUnsavedChanges = false;
    bool m_isUpdatingFromExternal = false;
    bool m_isSwitching = false;
    bool m_dirty = false;
    int m_characterCount = 0;
    bool m_isBlank = true;
    SQLHighlightDriver *m_highlighter = nullptr;
    QTimer m_syncTimer;
    QTimer m_autoSaveTimer;
};
