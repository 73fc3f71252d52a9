#include "documentlistmodel.h"

#include "clock.h"
#include "datastore.h"
#include "datetexts.h"
#include "languagemanager.h"
#include "localizedtext.h"

using namespace Qt::StringLiterals;

namespace {

QString idText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

} // namespace

DocumentListModel::DocumentListModel(QObject *parent)
    : DocumentListModel(DataStore::shared(), parent)
{}

DocumentListModel::DocumentListModel(DataStore *store, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
{
    connect(store, &DataStore::documentsChanged, this, &DocumentListModel::refresh);
    connect(store, &DataStore::selectedDocumentIdChanged, this, [this] {
        const QUuid previous = std::exchange(m_selectedId, m_store->selectedDocumentId());
        for (int row = 0; row < m_rows.size(); ++row) {
            if (m_rows.at(row).id == previous || m_rows.at(row).id == m_selectedId)
                Q_EMIT dataChanged(index(row), index(row), {IsSelectedRole});
        }
        updateSelectedRow();
    });
    connect(LanguageManager::shared(), &LanguageManager::currentLanguageChanged, this, [this] {
        if (!m_rows.isEmpty())
            Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {RelativeTimeRole});
    });
    m_clockTimer.setInterval(30'000);
    connect(&m_clockTimer, &QTimer::timeout, this, [this] {
        if (!m_rows.isEmpty())
            Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {RelativeTimeRole});
    });
    m_clockTimer.start();
    m_selectedId = store->selectedDocumentId();
    m_rows = listedRows();
    m_totalCount = int(store->documents().size());
    updateSelectedRow();
}

int DocumentListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant DocumentListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case IdRole:
        return idText(row.id);
    case Qt::DisplayRole:
    case NameRole:
        return row.name;
    case RelativeTimeRole:
        return ::relativeTimeText(row.updatedAt, Clock::now(), LanguageManager::shared()->resolvedLanguage());
    case IsSelectedRole:
        return row.id == m_selectedId;
    default:
        return {};
    }
}

QHash<int, QByteArray> DocumentListModel::roleNames() const
{
    return {{IdRole, "documentId"},
            {NameRole, "name"},
            {RelativeTimeRole, "relativeTime"},
            {IsSelectedRole, "isSelected"}};
}

void DocumentListModel::setSearchText(const QString &text)
{
    if (m_searchText == text)
        return;
    m_searchText = text;
    Q_EMIT searchTextChanged();
    refresh();
}

int DocumentListModel::totalCount() const
{
    return m_totalCount;
}

QList<DocumentListModel::Row> DocumentListModel::listedRows() const
{
    QList<Row> rows;
    if (!m_store)
        return rows;
    const QList<SQLDocument> listed = m_store->sidebarDocuments(m_searchText);
    rows.reserve(listed.size());
    for (const SQLDocument &document : listed)
        rows.append(Row{document.id, document.name, document.updatedAt});
    return rows;
}

void DocumentListModel::refresh()
{
    const QList<Row> rows = listedRows();
    const int oldCount = int(m_rows.size());
    const auto sameIds = [](const QList<Row> &a, qsizetype aFrom, const QList<Row> &b, qsizetype bFrom,
                            qsizetype count) {
        for (qsizetype i = 0; i < count; ++i) {
            if (a.at(aFrom + i).id != b.at(bFrom + i).id)
                return false;
        }
        return true;
    };

    if (rows.size() == m_rows.size() && sameIds(rows, 0, m_rows, 0, rows.size())) {
        // The usual case while typing: one row's time moved.
        for (int row = 0; row < rows.size(); ++row) {
            const Row &now = rows.at(row);
            Row &was = m_rows[row];
            if (now.name != was.name || now.updatedAt != was.updatedAt) {
                was = now;
                Q_EMIT dataChanged(index(row), index(row), {NameRole, RelativeTimeRole});
            }
        }
    } else if (rows.size() == m_rows.size() + 1) {
        // One document more: find where it stands.
        qsizetype at = 0;
        while (at < m_rows.size() && m_rows.at(at).id == rows.at(at).id)
            ++at;
        if (sameIds(rows, at + 1, m_rows, at, m_rows.size() - at)) {
            beginInsertRows({}, int(at), int(at));
            m_rows.insert(at, rows.at(at));
            endInsertRows();
        } else {
            beginResetModel();
            m_rows = rows;
            endResetModel();
        }
    } else if (rows.size() + 1 == m_rows.size()) {
        qsizetype at = 0;
        while (at < rows.size() && m_rows.at(at).id == rows.at(at).id)
            ++at;
        if (sameIds(rows, at, m_rows, at + 1, rows.size() - at)) {
            beginRemoveRows({}, int(at), int(at));
            m_rows.remove(at);
            endRemoveRows();
        } else {
            beginResetModel();
            m_rows = rows;
            endResetModel();
        }
    } else {
        beginResetModel();
        m_rows = rows;
        endResetModel();
    }
    updateSelectedRow();
    if (m_rows.size() != oldCount)
        Q_EMIT countChanged();
    const int total = m_store ? int(m_store->documents().size()) : 0;
    if (total != m_totalCount) {
        m_totalCount = total;
        Q_EMIT totalCountChanged();
    }
}

void DocumentListModel::select(const QString &id)
{
    if (m_store)
        m_store->setSelectedDocumentId(QUuid::fromString(id));
}

void DocumentListModel::updateSelectedRow()
{
    int selected = -1;
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row).id == m_selectedId) {
            selected = int(row);
            break;
        }
    }
    if (selected == m_selectedRow)
        return;
    m_selectedRow = selected;
    Q_EMIT selectedRowChanged();
}

void DocumentListModel::selectRow(int row)
{
    if (m_store && row >= 0 && row < m_rows.size())
        m_store->setSelectedDocumentId(m_rows.at(row).id);
}

QString DocumentListModel::idAt(int row) const
{
    return row >= 0 && row < m_rows.size() ? idText(m_rows.at(row).id) : QString();
}

void DocumentListModel::deleteDocument(const QString &id)
{
    if (m_store)
        m_store->deleteDocument(QUuid::fromString(id));
}

bool DocumentListModel::undoDeletion()
{
    return m_store && m_store->undoDeletion();
}

QString DocumentListModel::lastDeletedName() const
{
    return m_store ? m_store->lastDeletedName() : QString();
}

void DocumentListModel::forgetDeletion()
{
    if (m_store)
        m_store->forgetDeletion();
}

void DocumentListModel::createDocument(const QString &name)
{
    if (!m_store)
        return;
    const QString chosen = name.isEmpty() ? localized(u"Untitled SQL", u"未命名 SQL", u"無題の SQL") : name;
    const SQLDocument document = m_store->createDocument(chosen, QString());
    m_store->setSelectedDocumentId(document.id);
}
