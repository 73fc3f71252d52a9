#pragma once

#include "conversationmessage.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QUuid>

class DataStore;

// Keeps each document's conversation with the assistant as a file of its own in the data folder,
// "conversations/<UUID>.json" (0600, in a 0700 folder), so that a message costs one small write
// and not a rewrite of everything. Files are written durably on the store's writer thread, in
// order with the store's own files; a conversation is read when its document is shown.
//
// A conversation whose newest save is not on disk yet (or could not be written) is read from
// memory, so that a document shown again at once shows what it had.
//
// A file that exists but cannot be read or decoded is set aside like the store's files (and
// listed with them) and the conversation starts empty; if it cannot even be moved, it is not
// written over in this session. Deleting a document removes its conversation.
class ConversationStore : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1StringView folderName{"conversations"};
    // A conversation larger than this is not read: nothing in the panel can make one.
    static constexpr qint64 maxFileBytes = qint64(64) << 20;

    // Keeps the conversations in `store`'s data folder; `store` must outlive it.
    explicit ConversationStore(DataStore *store, QObject *parent = nullptr);

    // The application's conversations, on the shared store.
    [[nodiscard]] static ConversationStore *shared();

    [[nodiscard]] QString folder() const;
    [[nodiscard]] QString filePath(const QUuid &documentId) const;

    // The stored conversation of the document, empty when it has none.
    [[nodiscard]] QList<ConversationMessage> load(const QUuid &documentId);
    // Stores the conversation; an empty one is stored as an empty array. Returns at once.
    void save(const QUuid &documentId, const QList<ConversationMessage> &messages);

private:
    struct Pending
    {
        quint64 generation = 0;
        QList<ConversationMessage> messages;
    };

    void remove(const QUuid &documentId);
    void forgetWritten();

    DataStore *m_store = nullptr;
    // Saved, and not known to be on disk yet; shares its data with the writer's snapshot.
    QHash<QUuid, Pending> m_pending;
    // The conversation of the last deleted document, for its return.
    std::pair<QUuid, QList<ConversationMessage>> m_deleted;
    // Bumped at every save, so that the writer can drop older queued snapshots.
    QHash<QUuid, quint64> m_generations;
    // Damaged files that could not be moved aside.
    QSet<QUuid> m_unwritable;
};
