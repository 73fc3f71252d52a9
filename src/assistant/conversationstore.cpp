#include "conversationstore.h"

#include "datastore.h"
#include "durablefile.h"

using namespace Qt::StringLiterals;

ConversationStore::ConversationStore(DataStore *store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    connect(store, &DataStore::documentDeleted, this, [this](const QUuid &documentId) {
        // Kept at hand while the deletion can be taken back.
        m_deleted = {documentId, load(documentId)};
        remove(documentId);
    });
    connect(store, &DataStore::documentRestored, this, [this](const QUuid &documentId) {
        if (m_deleted.first == documentId && !m_deleted.second.isEmpty())
            save(documentId, m_deleted.second);
        m_deleted = {};
    });
    connect(store, &DataStore::deletionForgotten, this, [this] { m_deleted = {}; });
    // A write that failed is tried again with the conversation it was to write.
    connect(store, &DataStore::retryRequested, this, [this] {
        forgetWritten();
        for (auto pending = m_pending.begin(); pending != m_pending.end(); ++pending) {
            pending->generation = ++m_generations[pending.key()];
            m_store->writeFileInBackground(filePath(pending.key()), pending->generation,
                                           [messages = pending->messages] {
                                               return ConversationMessage::encodeList(messages);
                                           });
        }
    });
}

ConversationStore *ConversationStore::shared()
{
    static ConversationStore instance(DataStore::shared());
    return &instance;
}

QString ConversationStore::folder() const
{
    return m_store->dataDirectory() + u'/' + folderName;
}

QString ConversationStore::filePath(const QUuid &documentId) const
{
    return folder() + u'/' + documentId.toString(QUuid::WithoutBraces).toUpper() + u".json"_s;
}

QList<ConversationMessage> ConversationStore::load(const QUuid &documentId)
{
    if (documentId.isNull())
        return {};
    forgetWritten();
    if (const auto pending = m_pending.constFind(documentId); pending != m_pending.cend())
        return pending->messages;
    const QString path = filePath(documentId);
    const FileRead read = readRegularFile(path, maxFileBytes);
    if (read.status == FileRead::Status::Missing)
        return {};
    if (read.status == FileRead::Status::Read) {
        if (std::optional<QList<ConversationMessage>> messages = ConversationMessage::decodeList(read.bytes))
            return *messages;
    }
    if (m_store->setAsideDamagedFile(path).isEmpty())
        m_unwritable.insert(documentId);
    return {};
}

void ConversationStore::save(const QUuid &documentId, const QList<ConversationMessage> &messages)
{
    if (documentId.isNull() || m_unwritable.contains(documentId))
        return;
    makePrivateFolder(folder());
    forgetWritten();
    const quint64 generation = ++m_generations[documentId];
    m_pending.insert(documentId, {generation, messages});
    // The list is shared, not copied; the writer encodes it off this thread.
    m_store->writeFileInBackground(filePath(documentId), generation,
                                   [messages] { return ConversationMessage::encodeList(messages); });
}

void ConversationStore::remove(const QUuid &documentId)
{
    // The generation keeps counting: a save queued behind the removal must not look written.
    m_pending.remove(documentId);
    m_store->removeFileInBackground(filePath(documentId));
}

void ConversationStore::forgetWritten()
{
    m_pending.removeIf([this](const QHash<QUuid, Pending>::iterator &entry) {
        return m_store->isFileWritten(filePath(entry.key()), entry->generation);
    });
}
