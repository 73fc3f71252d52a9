#include "versionlistmodel.h"

#include "clock.h"
#include "datastore.h"
#include "languagemanager.h"

#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace {

qsizetype characterCount(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() > 0)
        ++count;
    return count;
}

} // namespace

VersionListModel::VersionListModel(QObject *parent)
    : VersionListModel(DataStore::shared(), parent)
{}

VersionListModel::VersionListModel(DataStore *store, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
{
    connect(store, &DataStore::versionsChanged, this, &VersionListModel::refresh);
    connect(store, &DataStore::selectedDocumentIdChanged, this, &VersionListModel::refresh);
    const auto agedTexts = [this] {
        if (!m_versions.isEmpty())
            Q_EMIT dataChanged(index(0), index(int(m_versions.size()) - 1),
                               {RelativeTimeRole, FormattedDateRole});
    };
    connect(LanguageManager::shared(), &LanguageManager::currentLanguageChanged, this, agedTexts);
    m_clockTimer.setInterval(30'000);
    connect(&m_clockTimer, &QTimer::timeout, this, agedTexts);
    m_clockTimer.start();
    m_versions = store->selectedDocumentVersions();
}

int VersionListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_versions.size());
}

QVariant VersionListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const SQLVersion &version = m_versions.at(index.row());
    const AppLanguage language = LanguageManager::shared()->resolvedLanguage();
    switch (role) {
    case IdRole:
        return version.id.toString(QUuid::WithoutBraces).toUpper();
    case VersionNumberRole:
        return version.versionNumber;
    case Qt::DisplayRole:
    case NoteRole:
        return version.note;
    case RelativeTimeRole:
        return version.relativeTimeText(language, Clock::now());
    case FormattedDateRole:
        return version.formattedDate(language);
    case IsLatestRole:
        return index.row() == 0;
    default:
        return {};
    }
}

QHash<int, QByteArray> VersionListModel::roleNames() const
{
    return {{IdRole, "versionId"},
            {VersionNumberRole, "versionNumber"},
            {NoteRole, "note"},
            {RelativeTimeRole, "relativeTime"},
            {FormattedDateRole, "formattedDate"},
            {IsLatestRole, "isLatest"}};
}

QVariantMap VersionListModel::versionAt(int row) const
{
    if (row < 0 || row >= m_versions.size())
        return {};
    const SQLVersion &version = m_versions.at(row);
    return {{u"id"_s, version.id.toString(QUuid::WithoutBraces).toUpper()},
            {u"versionNumber"_s, version.versionNumber},
            {u"note"_s, version.note},
            {u"content"_s, version.content},
            {u"formattedDate"_s, version.formattedDate(LanguageManager::shared()->resolvedLanguage())},
            {u"characterCount"_s, characterCount(version.content)}};
}

void VersionListModel::clearAll()
{
    if (m_store && !m_store->selectedDocumentId().isNull())
        m_store->clearVersions(m_store->selectedDocumentId());
}

void VersionListModel::refresh()
{
    if (!m_store)
        return;
    const int oldCount = int(m_versions.size());
    // The whole list: a restore or a new version puts a row on top and moves every index.
    beginResetModel();
    m_versions = m_store->selectedDocumentVersions();
    endResetModel();
    if (m_versions.size() != oldCount)
        Q_EMIT countChanged();
}
