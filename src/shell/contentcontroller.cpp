#include "contentcontroller.h"

#include "datastore.h"

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
    if (m_store->selectedDocumentId().isNull())
        return;
    m_store->applyContentToSelectedDocument(sql);
    setCurrentEditorContent(sql);
    reloadEditor();
}
