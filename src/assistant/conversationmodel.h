#pragma once

#include "conversationmessage.h"

#include <QAbstractListModel>
#include <QList>

#include <memory>

class DataStore;
class MarkdownBlockModel;

// The messages of the conversation on show, for the panel's list.
//
// The blocks of a reply are split and rendered once, when its row is first shown, and kept:
// scrolling back and forth costs no Markdown work. What a reply taught comes with whether it can
// still be undone: the fact is not undone yet and the store still holds what the reply wrote.
class ConversationModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)

public:
    enum Role {
        MessageIdRole = Qt::UserRole + 1,
        // AIEnums::AIMessageRole as an integer.
        MessageRoleRole,
        ContentRole,
        // A MarkdownBlockModel of the content.
        BlocksRole,
        // A list of {itemId, isNew, content, isUndone, canUndo}.
        LearnedRole,
    };
    Q_ENUM(Role)

    // `store` (may be null) answers whether facts can still be undone.
    explicit ConversationModel(DataStore *store, QObject *parent = nullptr);
    ~ConversationModel() override;

    [[nodiscard]] const QList<ConversationMessage> &messages() const { return m_messages; }
    [[nodiscard]] QList<AIMessage> plainMessages() const;
    void setMessages(const QList<ConversationMessage> &messages);
    void append(const ConversationMessage &message);
    // Marks the fact about `itemId` in the message as undone; false if there is none.
    bool markUndone(int row, const QUuid &itemId);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Whether the store still holds what `fact` wrote, so that undoing it takes nothing else back.
    [[nodiscard]] bool canUndo(const LearnedFact &fact) const;

Q_SIGNALS:
    void countChanged();

private:
    void refreshLearned();

    DataStore *m_store = nullptr;
    QList<ConversationMessage> m_messages;
    // Made when a row is first shown; parallel to m_messages.
    mutable std::vector<std::unique_ptr<MarkdownBlockModel>> m_blocks;
};
