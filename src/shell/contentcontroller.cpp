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

void ContentController::applySQL(const QString &sql)
{
    const QUuid id = m_store->selectedDocumentId();
    if (id.isNull())
        return;
    // What was typed last is part of the text that is kept.
    if (m_editor)
        m_editor->syncNow();
    if (const std::optional<SQLDocument> document = m_store->document(id)) {
        if (document->content == sql)
            return;
        const QList<SQLVersion> versions = m_store->versionsForDocument(id);
        if (versions.isEmpty() || versions.constFirst().content != document->content)
            m_store->saveVersion(id, localized(u"Before applying AI SQL", u"应用 AI SQL 之前", u"AI SQL 適用前"));
    }
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
