#include "contentcontroller.h"

#include "datastore.h"
#include "localizedtext.h"
#include "sqleditorcontroller.h"

#include <QPointer>

ContentController::ContentController(QObject *parent)
    : ContentController(DataStore::shared(), parent)
{}

ContentController::ContentController(DataStore *store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{}

void ContentController::setCurrentEditorContent(const QString &content)
{
    if (m_currentEditorContent == content)
        return;
    m_currentEditorContent = content;
    Q_EMIT currentEditorContentChanged();
}

void ContentController::setEditor(SQLEditorController *editor)
{
    if (editor == m_editor)
        return;
    m_editor = editor;
    Q_EMIT editorChanged();
}

void ContentController::reloadEditor()
{
    ++m_editorContentTrigger;
    Q_EMIT editorContentTriggerChanged();
    const QUuid id = m_store->selectedDocumentId();
    if (id.isNull())
        return;
    m_store->setSelectedDocumentId(QUuid());
    // The id read now, not the selection then: a selection made in between is overwritten.
    QTimer::singleShot(50, m_store, [store = QPointer(m_store), id] {
        if (store)
            store->setSelectedDocumentId(id);
    });
}

void ContentController::keepTypedText(const QUuid &documentId, const QString &note)
{
    const std::optional<SQLDocument> document = m_store->document(documentId);
    if (!document)
        return;
    const QList<SQLVersion> versions = m_store->versionsForDocument(documentId);
    if (versions.isEmpty() || versions.constFirst().content != document->content)
        m_store->saveVersion(documentId, note);
}

void ContentController::restoreVersion(const QString &versionId)
{
    const QUuid documentId = m_store->selectedDocumentId();
    const QUuid id(versionId);
    // What was typed last is part of the text that is kept.
    if (m_editor)
        m_editor->syncNow();
    const QList<SQLVersion> versions = m_store->versionsForDocument(documentId);
    const auto found = std::find_if(versions.cbegin(), versions.cend(),
                                    [&id](const SQLVersion &version) { return version.id == id; });
    if (documentId.isNull() || found == versions.cend())
        return;
    const SQLVersion version = *found;
    if (const std::optional<SQLDocument> document = m_store->document(documentId);
        document && document->content != version.content) {
        keepTypedText(
            documentId,
            localized(u"Before restoring v%1", u"恢复 v%1 之前", u"v%1 復元前").arg(version.versionNumber));
    }
    m_store->restoreVersion(version);
    reloadEditor();
}

void ContentController::applySQL(const QString &sql)
{
    const QUuid id = m_store->selectedDocumentId();
    if (id.isNull())
        return;
    // What was typed last is part of the text that is kept.
    if (m_editor)
        m_editor->syncNow();
    const std::optional<SQLDocument> document = m_store->document(id);
    if (document && document->content == sql)
        return;
    keepTypedText(id, localized(u"Before applying AI SQL", u"应用 AI SQL 之前", u"AI SQL 適用前"));
    if (m_editor && m_editor->documentIdText() == id.toString(QUuid::WithoutBraces).toUpper() &&
        m_editor->replaceText(sql)) {
        m_store->saveData();
        setCurrentEditorContent(sql);
        return;
    }
    m_store->applyContentToSelectedDocument(sql);
    setCurrentEditorContent(sql);
    reloadEditor();
}
