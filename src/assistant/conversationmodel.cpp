#include "conversationmodel.h"

#include "datastore.h"
#include "markdownblockmodel.h"

#include <QVariantMap>

using namespace Qt::StringLiterals;

ConversationModel::ConversationModel(DataStore *store, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
{
    if (store)
        connect(store, &DataStore::knowledgeItemsChanged, this, &ConversationModel::refreshLearned);
}

ConversationModel::~ConversationModel() = default;

QList<AIMessage> ConversationModel::plainMessages() const
{
    QList<AIMessage> plain;
    plain.reserve(m_messages.size());
    for (const ConversationMessage &entry : m_messages)
        plain.append(entry.message);
    return plain;
}

void ConversationModel::setMessages(const QList<ConversationMessage> &messages)
{
    const bool countChanges = messages.size() != m_messages.size();
    beginResetModel();
    m_messages = messages;
    m_blocks.clear();
    m_blocks.resize(std::size_t(m_messages.size()));
    endResetModel();
    if (countChanges)
        Q_EMIT countChanged();
}

void ConversationModel::append(const ConversationMessage &message)
{
    const int row = int(m_messages.size());
    beginInsertRows({}, row, row);
    m_messages.append(message);
    m_blocks.emplace_back();
    endInsertRows();
    Q_EMIT countChanged();
}

bool ConversationModel::markUndone(int row, const QUuid &itemId)
{
    if (row < 0 || row >= m_messages.size())
        return false;
    for (LearnedFact &fact : m_messages[row].learned) {
        if (fact.change.itemId == itemId && !fact.isUndone) {
            fact.isUndone = true;
            const QModelIndex changed = index(row);
            Q_EMIT dataChanged(changed, changed, {LearnedRole});
            return true;
        }
    }
    return false;
}

bool ConversationModel::canUndo(const LearnedFact &fact) const
{
    if (fact.isUndone || !m_store)
        return false;
    for (const KnowledgeItem &item : m_store->knowledgeItems()) {
        if (item.id == fact.change.itemId)
            return item.content == fact.change.content;
    }
    return false;
}

void ConversationModel::refreshLearned()
{
    for (int row = 0; row < m_messages.size(); ++row) {
        if (!m_messages.at(row).learned.isEmpty()) {
            const QModelIndex changed = index(row);
            Q_EMIT dataChanged(changed, changed, {LearnedRole});
        }
    }
}

int ConversationModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_messages.size());
}

QVariant ConversationModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const ConversationMessage &entry = m_messages.at(index.row());
    switch (role) {
    case MessageIdRole:
        return entry.message.id.toString(QUuid::WithoutBraces).toUpper();
    case MessageRoleRole:
        return int(entry.message.role);
    case ContentRole:
        return entry.message.content;
    case BlocksRole: {
        std::unique_ptr<MarkdownBlockModel> &blocks = m_blocks[std::size_t(index.row())];
        if (!blocks) {
            // Parented, so that the views never take it for theirs to delete.
            blocks = std::make_unique<MarkdownBlockModel>(const_cast<ConversationModel *>(this));
            blocks->setContent(entry.message.content);
        }
        return QVariant::fromValue(blocks.get());
    }
    case LearnedRole: {
        QVariantList learned;
        for (const LearnedFact &fact : entry.learned) {
            learned.append(QVariantMap{{u"itemId"_s, fact.change.itemId.toString(QUuid::WithoutBraces).toUpper()},
                                       {u"isNew"_s, fact.change.isNew},
                                       {u"content"_s, fact.change.content},
                                       {u"isUndone"_s, fact.isUndone},
                                       {u"canUndo"_s, canUndo(fact)}});
        }
        return learned;
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> ConversationModel::roleNames() const
{
    return {{MessageIdRole, "messageId"},
            {MessageRoleRole, "messageRole"},
            {ContentRole, "content"},
            {BlocksRole, "blocks"},
            {LearnedRole, "learned"}};
}
