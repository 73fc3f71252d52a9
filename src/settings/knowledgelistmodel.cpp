#include "knowledgelistmodel.h"

#include "clock.h"
#include "datastore.h"
#include "datetexts.h"
#include "languagemanager.h"

#include <QSet>

using namespace Qt::StringLiterals;

KnowledgeListModel::KnowledgeListModel(QObject *parent)
    : KnowledgeListModel(DataStore::shared(), parent)
{}

KnowledgeListModel::KnowledgeListModel(DataStore *store, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
{
    connect(store, &DataStore::knowledgeItemsChanged, this, &KnowledgeListModel::refresh);
    connect(LanguageManager::shared(), &LanguageManager::currentLanguageChanged, this,
            &KnowledgeListModel::timesChanged);
    m_clockTimer.setInterval(30'000);
    connect(&m_clockTimer, &QTimer::timeout, this, &KnowledgeListModel::timesChanged);
    m_clockTimer.start();
    m_rows = groupedRows();
    for (const Row &row : std::as_const(m_rows))
        ++m_groupSizes[row.category];
}

int KnowledgeListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant KnowledgeListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case ItemIdRole:
        return row.id.toString(QUuid::WithoutBraces).toUpper();
    case CategoryRole:
        return QVariant::fromValue(row.category);
    case CategoryKeyRole:
        return KnowledgeEnums::rawValue(row.category);
    case Qt::DisplayRole:
    case ContentRole:
        return row.content;
    case SourceRole:
        return QVariant::fromValue(row.source);
    case RelativeTimeRole:
        return ::relativeTimeText(row.createdAt, Clock::now(), LanguageManager::shared()->resolvedLanguage());
    default:
        return {};
    }
}

QHash<int, QByteArray> KnowledgeListModel::roleNames() const
{
    return {{ItemIdRole, "itemId"},   {CategoryRole, "category"}, {CategoryKeyRole, "categoryKey"},
            {ContentRole, "content"}, {SourceRole, "source"},     {RelativeTimeRole, "relativeTime"}};
}

QVariantMap KnowledgeListModel::groupSizes() const
{
    QVariantMap sizes;
    for (auto it = m_groupSizes.cbegin(); it != m_groupSizes.cend(); ++it)
        sizes.insert(KnowledgeEnums::rawValue(it.key()), it.value());
    return sizes;
}

void KnowledgeListModel::addItem(KnowledgeCategory category, const QString &content)
{
    if (m_store)
        m_store->addKnowledgeItem(category, content, KnowledgeSource::UserAdded);
}

void KnowledgeListModel::updateItem(const QString &id, KnowledgeCategory category, const QString &content)
{
    if (m_store)
        m_store->updateKnowledgeItem(QUuid::fromString(id), category, content);
}

void KnowledgeListModel::deleteItem(const QString &id)
{
    if (m_store)
        m_store->deleteKnowledgeItem(QUuid::fromString(id));
}

QList<KnowledgeListModel::Row> KnowledgeListModel::groupedRows() const
{
    QList<Row> rows;
    if (!m_store)
        return rows;
    const QList<KnowledgeItem> &items = m_store->knowledgeItems();
    rows.reserve(items.size());
    for (const KnowledgeCategory category : KnowledgeEnums::allCategories) {
        for (const KnowledgeItem &item : items) {
            if (item.category == category)
                rows.append(Row{item.id, item.category, item.content, item.source, item.createdAt});
        }
    }
    return rows;
}

void KnowledgeListModel::refresh()
{
    const QList<Row> rows = groupedRows();
    const qsizetype oldCount = m_rows.size();
    QHash<QUuid, KnowledgeCategory> categories;
    categories.reserve(rows.size());
    for (const Row &row : rows)
        categories.insert(row.id, row.category);

    // Rows that went, or moved to another group, leave first; the rest keep their order, so the
    // new list is the old one with rows put in between.
    for (qsizetype i = m_rows.size() - 1; i >= 0; --i) {
        const auto kept = categories.constFind(m_rows.at(i).id);
        if (kept == categories.cend() || *kept != m_rows.at(i).category) {
            beginRemoveRows({}, int(i), int(i));
            m_rows.remove(i);
            endRemoveRows();
        }
    }
    QSet<QUuid> remaining;
    for (const Row &row : std::as_const(m_rows))
        remaining.insert(row.id);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const Row &row = rows.at(i);
        if (i < m_rows.size() && m_rows.at(i).id == row.id) {
            Row &was = m_rows[i];
            if (was.content != row.content) {
                was.content = row.content;
                Q_EMIT dataChanged(index(int(i)), index(int(i)), {ContentRole, Qt::DisplayRole});
            }
            continue;
        }
        if (remaining.contains(row.id)) {
            // The store reordered its items: no small change says that.
            beginResetModel();
            m_rows = rows;
            endResetModel();
            break;
        }
        beginInsertRows({}, int(i), int(i));
        m_rows.insert(i, row);
        endInsertRows();
    }

    QHash<KnowledgeCategory, int> sizes;
    for (const Row &row : std::as_const(m_rows))
        ++sizes[row.category];
    if (m_rows.size() != oldCount)
        Q_EMIT countChanged();
    if (sizes != m_groupSizes) {
        m_groupSizes = sizes;
        Q_EMIT groupsChanged();
    }
}

void KnowledgeListModel::timesChanged()
{
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {RelativeTimeRole});
}
