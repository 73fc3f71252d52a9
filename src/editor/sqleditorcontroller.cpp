#include "sqleditorcontroller.h"

#include "datastore.h"
#include "graphemes.h"
#include "localizedtext.h"
#include "preferences.h"
#include "sqlformatter.h"
#include "sqlhighlightdriver.h"
#include "sqltextlayout.h"

#include <QTextCursor>
#include <QTextDocument>

using namespace Qt::StringLiterals;

SQLEditorController::SQLEditorController(QObject *parent)
    : SQLEditorController(DataStore::shared(), Preferences::shared(), parent)
{}

SQLEditorController::SQLEditorController(DataStore *store, Preferences *preferences, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_preferences(preferences)
    , m_highlighter(new SQLHighlightDriver(this))
{
    m_highlighter->setFontSize(preferences->editorFontSize());
    m_syncTimer.setSingleShot(true);
    m_syncTimer.setInterval(syncDelayMs);
    connect(&m_syncTimer, &QTimer::timeout, this, &SQLEditorController::syncNow);
    m_autoSaveTimer.setSingleShot(true);
    connect(&m_autoSaveTimer, &QTimer::timeout, this, &SQLEditorController::autoSave);

    connect(store, &DataStore::selectedDocumentIdChanged, this, [this] {
        if (m_isSwitching)
            return;
        // The text typed into the document that goes must reach the store first. Storing it
        // selects that document again, so the new selection is put back after it.
        if (m_dirty) {
            const QUuid wanted = m_store->selectedDocumentId();
            m_isSwitching = true;
            syncNow();
            m_store->setSelectedDocumentId(wanted);
            m_isSwitching = false;
        }
        loadSelectedDocument();
        if (hasDocument())
            m_store->setLastOpenedDocumentId(m_documentId);
        else
            scheduleAutoSave(true); // the pane goes away
    });
    connect(store, &DataStore::documentsChanged, this, [this] {
        const std::optional<SQLDocument> shown = m_store->document(m_documentId);
        const QString name = shown ? shown->name : QString();
        if (name != m_documentName) {
            m_documentName = name;
            Q_EMIT documentNameChanged();
        }
    });
    connect(store, &DataStore::writeStateChanged, this, [this] {
        if (m_hasUnsavedChanges)
            clearUnsavedMarkWhenWritten();
    });
    connect(preferences, &Preferences::editorFontSizeChanged, this, [this] {
        // A new size colours again at once; the text stays as it is.
        m_highlighter->setFontSize(m_preferences->editorFontSize());
        Q_EMIT fontSizeChanged();
    });
    loadSelectedDocument();
}

SQLEditorController::~SQLEditorController()
{
    // Leaving the screen saves what is waiting at once.
    syncNow();
    if (m_autoSaveTimer.isActive() && m_store)
        m_store->saveData();
}

double SQLEditorController::fontSize() const
{
    return m_preferences->editorFontSize();
}

QString SQLEditorController::documentIdText() const
{
    return m_documentId.isNull() ? QString() : m_documentId.toString(QUuid::WithoutBraces).toUpper();
}

QColor SQLEditorController::plainColor() const
{
    return m_highlighter->plainColor();
}

void SQLEditorController::setPlainColor(const QColor &color)
{
    if (color == m_highlighter->plainColor())
        return;
    m_highlighter->setPlainColor(color);
    Q_EMIT coloursChanged();
}

QColor SQLEditorController::commentColor() const
{
    return m_highlighter->commentColor();
}

void SQLEditorController::setCommentColor(const QColor &color)
{
    if (color == m_highlighter->commentColor())
        return;
    m_highlighter->setCommentColor(color);
    Q_EMIT coloursChanged();
}

void SQLEditorController::setTextDocument(QTextDocument *document)
{
    if (m_document == document)
        return;
    if (m_document)
        disconnect(m_document, nullptr, this, nullptr);
    m_document = document;
    if (document) {
        // A document tells of its changes only once it has a layout; a view gives it one.
        document->documentLayout();
        connect(document, &QTextDocument::contentsChange, this, &SQLEditorController::onContentsChange);
    }
    m_highlighter->setDocument(document);
    // The editor's own layout colours each block as it lays it out.
    if (auto *layout = document ? qobject_cast<SQLTextLayout *>(document->documentLayout()) : nullptr)
        layout->setHighlighter(m_highlighter);
    // A new view shows the text it is given, whatever it had.
    pushText(m_content);
    Q_EMIT textDocumentChanged();
}

void SQLEditorController::loadSelectedDocument()
{
    const std::optional<SQLDocument> selected = m_store ? m_store->selectedDocument() : std::nullopt;
    if (!selected) {
        if (!m_documentId.isNull()) {
            m_documentId = QUuid();
            Q_EMIT documentChanged();
        }
        return; // the text stays as it was until the next load
    }
    const bool changed = selected->id != m_documentId;
    m_documentId = selected->id;
    if (m_documentName != selected->name) {
        m_documentName = selected->name;
        Q_EMIT documentNameChanged();
    }
    setHasUnsavedChanges(false);
    m_dirty = false;
    m_syncTimer.stop();
    pushText(selected->content);
    updateDerived(selected->content);
    if (changed)
        Q_EMIT documentChanged();
}

void SQLEditorController::pushText(const QString &text)
{
    if (!m_document)
        return;
    m_isUpdatingFromExternal = true;
    // A load is not an edit: setting the text also empties the undo stack.
    m_document->setPlainText(text);
    m_isUpdatingFromExternal = false;
}

void SQLEditorController::onContentsChange(int, int removed, int added)
{
    if (m_isUpdatingFromExternal || m_documentId.isNull() || (removed == 0 && added == 0))
        return;
    m_dirty = true;
    setHasUnsavedChanges(true);
    scheduleAutoSave(false);
    if (m_document->characterCount() > largeTextCharacters)
        m_syncTimer.stop(); // the automatic save takes the text
    else if (!m_syncTimer.isActive())
        m_syncTimer.start();
}

QString SQLEditorController::documentText() const
{
    if (!m_document)
        return m_content;
    // toPlainText() would turn no-break spaces into blanks; keep the text as typed.
    QString text = m_document->toRawText();
    for (QChar &c : text) {
        if (c == QChar::ParagraphSeparator || c == QChar::LineSeparator)
            c = u'\n';
    }
    return text;
}

void SQLEditorController::syncNow()
{
    m_syncTimer.stop();
    if (!m_dirty || !m_store)
        return;
    m_dirty = false;
    const QString text = documentText();
    m_store->updateDocumentContent(m_documentId, text);
    updateDerived(text);
}

void SQLEditorController::updateDerived(const QString &text)
{
    if (m_content != text) {
        m_content = text;
        Q_EMIT currentContentChanged();
    }
    const int count = int(graphemeCount(text));
    if (count != m_characterCount) {
        m_characterCount = count;
        Q_EMIT characterCountChanged();
    }
    const bool blank = QStringView(text).trimmed().isEmpty();
    if (blank != m_isBlank) {
        m_isBlank = blank;
        Q_EMIT isBlankChanged();
    }
}

void SQLEditorController::scheduleAutoSave(bool immediate)
{
    m_autoSaveTimer.start(immediate ? 0 : autoSaveDelayMs);
}

void SQLEditorController::autoSave()
{
    syncNow();
    if (m_store)
        m_store->saveData();
    clearUnsavedMarkWhenWritten();
}

// The mark goes out only once the documents file really holds the text; a failed write keeps it.
void SQLEditorController::clearUnsavedMarkWhenWritten()
{
    if (!m_dirty && (!m_store || m_store->areDocumentsWritten()))
        setHasUnsavedChanges(false);
}

void SQLEditorController::setHasUnsavedChanges(bool value)
{
    if (m_hasUnsavedChanges == value)
        return;
    m_hasUnsavedChanges = value;
    Q_EMIT hasUnsavedChangesChanged();
}

void SQLEditorController::formatDocument()
{
    syncNow();
    if (m_isBlank || !m_document)
        return;
    const QString formatted = formatSQL(m_content);
    if (formatted != m_content)
        replaceText(formatted);
}

bool SQLEditorController::replaceText(const QString &text)
{
    if (!m_document || m_documentId.isNull())
        return false;
    syncNow();
    // One edit of the whole text, so that Undo brings the old text back.
    QTextCursor cursor(m_document);
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    cursor.endEditBlock();
    syncNow();
    return true;
}

qint64 SQLEditorController::nextVersionNumber() const
{
    qint64 highest = 0;
    if (m_store) {
        for (const SQLVersion &version : m_store->versions().value(m_documentId))
            highest = std::max(highest, version.versionNumber);
    }
    return highest + 1;
}

void SQLEditorController::saveVersion(const QString &note)
{
    if (!m_store || m_store->selectedDocumentId().isNull())
        return;
    syncNow();
    const QString chosen =
        note.isEmpty() ? localized(u"Version update", u"版本更新", u"バージョン更新") : note;
    m_store->saveVersion(m_store->selectedDocumentId(), chosen);
    m_store->saveData();
    clearUnsavedMarkWhenWritten();
}

void SQLEditorController::renameDocument(const QString &name)
{
    if (m_store && !m_documentId.isNull())
        m_store->setDocumentName(m_documentId, name);
}
