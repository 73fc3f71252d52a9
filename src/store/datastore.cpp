#include "datastore.h"

#include "appsettings.h"
#include "clock.h"
#include "durablefile.h"
#include "storecodec.h"
#include "storewriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString sampleName = u"示例：用户表"_s;
const QString sampleContent =
    u"-- 创建用户表\nCREATE TABLE users (\n    id INT PRIMARY KEY AUTO_INCREMENT,\n"
    "    username VARCHAR(50) NOT NULL UNIQUE,\n    email VARCHAR(100) NOT NULL UNIQUE,\n"
    "    password_hash VARCHAR(255) NOT NULL,\n    created_at TIMESTAMP DEFAULT CURRENT_TIMESTAMP,\n"
    "    updated_at TIMESTAMP DEFAULT CURRENT_TIMESTAMP ON UPDATE CURRENT_TIMESTAMP\n);\n\n"
    "-- 创建索引\nCREATE INDEX idx_users_email ON users(email);\n"
    "CREATE INDEX idx_users_username ON users(username);\n\n"
    "-- 插入示例数据\nINSERT INTO users (username, email, password_hash) VALUES\n"
    "('admin', 'admin@example.com', 'hashed_password_here'),\n"
    "('user1', 'user1@example.com', 'hashed_password_here');"_s;

const QStringList databaseKeywords{
    u"mysql"_s,   u"postgresql"_s, u"postgres"_s, u"oracle"_s, u"sqlserver"_s,  u"sql server"_s, u"sqlite"_s,
    u"mariadb"_s, u"hive"_s,       u"spark"_s,    u"presto"_s, u"clickhouse"_s, u"tidb"_s};
const QStringList syntaxKeywords{u"cte"_s,       u"with"_s,      u"lateral"_s, u"window"_s,
                                 u"partition"_s, u"recursive"_s, u"json"_s,    u"array"_s,
                                 u"pivot"_s,     u"unpivot"_s,   u"merge"_s,   u"upsert"_s};
const QStringList tableKeywords{u"hive表"_s, u"mysql表"_s, u"分区表"_s, u"临时表"_s,
                                u"外部表"_s, u"内部表"_s,  u"视图"_s};
const QString versionMarker = u"__version__"_s;

// Moves a file that exists but cannot be used out of the way, under a name that says so
// and that no other file has. Returns the new path, or an empty string if it could not.
QString setAside(const QString &path)
{
    const QString stamp = Clock::now().toUTC().toString(u"yyyyMMdd'T'HHmmss'Z'"_s);
    QString target = u"%1.damaged-%2"_s.arg(path, stamp);
    for (int n = 2; QFileInfo::exists(target); ++n)
        target = u"%1.damaged-%2-%3"_s.arg(path, stamp).arg(n);
    return QFile::rename(path, target) ? target : QString();
}

} // namespace

DataStore::DataStore(const QString &dataDirectory, QSettings *settings, QObject *parent)
    : QObject(parent)
    , m_dataDirectory(QDir::cleanPath(dataDirectory))
    , m_settings(settings)
{
    m_writer = std::make_unique<StoreWriter>();
    loadData();
}

DataStore::~DataStore()
{
    flush();
}

DataStore *DataStore::shared()
{
    static DataStore instance(defaultDataDirectory(), applicationSettings());
    return &instance;
}

QString DataStore::defaultDataDirectory()
{
    // The generic location rather than AppDataLocation, which would add the organisation
    // name: the folder is ~/.local/share/Varnholt whatever the application object says.
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Varnholt"_s;
}

void DataStore::setIsLoading(bool loading)
{
    if (m_isLoading == loading)
        return;
    m_isLoading = loading;
    Q_EMIT isLoadingChanged();
}

void DataStore::loadData()
{
    setIsLoading(true);

    if (QDir().mkpath(m_dataDirectory))
        QFile::setPermissions(m_dataDirectory,
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    removeStaleTemporaryFiles(m_dataDirectory);

    const QDir dir(m_dataDirectory);
    // Reads one file. A file that is missing leaves the collection empty and is written at
    // the next save; one that exists but cannot be read or decoded is moved aside first, and
    // if even that fails, it is never written over in this session.
    const auto load = [&](Collection collection, QLatin1StringView fileName, const auto &decodeAndAssign) {
        const QString path = dir.filePath(fileName);
        QFile file(path);
        if (!file.exists())
            return;
        const int slot = int(collection);
        if (file.open(QIODevice::ReadOnly)) {
            // Mapping spares a copy of what can be hundreds of megabytes; reading is the
            // fallback for files that cannot be mapped (empty ones included).
            const qint64 size = file.size();
            uchar *mapped = size > 0 ? file.map(0, size) : nullptr;
            const QByteArray bytes =
                mapped ? QByteArray::fromRawData(reinterpret_cast<const char *>(mapped), size)
                       : file.readAll();
            const bool decoded = file.error() == QFileDevice::NoError && decodeAndAssign(bytes);
            if (mapped)
                file.unmap(mapped);
            if (decoded) {
                m_writer->markWritten(path, m_generation[slot]);
                return;
            }
            file.close();
        }
        if (setAsideDamagedFile(path).isEmpty())
            m_unwritable[slot] = true;
    };

    load(Collection::Documents, documentsFileName, [this](const QByteArray &bytes) {
        auto documents = StoreCodec::decodeDocuments(bytes);
        if (documents)
            m_documents = std::move(*documents);
        return documents.has_value();
    });
    load(Collection::Versions, versionsFileName, [this](const QByteArray &bytes) {
        auto versions = StoreCodec::decodeVersions(bytes);
        if (versions)
            m_versions = StoreCodec::groupVersions(std::move(*versions));
        return versions.has_value();
    });
    load(Collection::Knowledge, knowledgeFileName, [this](const QByteArray &bytes) {
        auto items = StoreCodec::decodeKnowledge(bytes);
        if (items)
            m_knowledgeItems = std::move(*items);
        return items.has_value();
    });
    if (!m_documents.isEmpty())
        Q_EMIT documentsChanged();
    if (!m_versions.isEmpty())
        Q_EMIT versionsChanged();
    if (!m_knowledgeItems.isEmpty())
        Q_EMIT knowledgeItemsChanged();

    if (m_documents.isEmpty())
        createDocument(sampleName, sampleContent);

    const std::optional<QUuid> lastOpened = lastOpenedDocumentId();
    if (lastOpened && indexOfDocument(*lastOpened) >= 0) {
        setSelectedDocumentId(*lastOpened);
    } else {
        const QUuid first = m_documents.isEmpty() ? QUuid() : m_documents.constFirst().id;
        setSelectedDocumentId(first);
        setLastOpenedDocumentId(first.isNull() ? std::nullopt : std::optional(first));
    }

    setIsLoading(false);
}

QString DataStore::setAsideDamagedFile(const QString &path)
{
    const QString kept = setAside(path);
    if (!kept.isEmpty()) {
        m_setAsideFiles.append(kept);
        Q_EMIT setAsideFilesChanged();
    }
    return kept;
}

void DataStore::setSelectedDocumentId(const QUuid &id)
{
    if (m_selectedDocumentId == id)
        return;
    m_selectedDocumentId = id;
    Q_EMIT selectedDocumentIdChanged();
}

std::optional<SQLDocument> DataStore::document(const QUuid &id) const
{
    const qsizetype index = indexOfDocument(id);
    return index < 0 ? std::nullopt : std::optional(m_documents.at(index));
}

std::optional<SQLDocument> DataStore::selectedDocument() const
{
    return m_selectedDocumentId.isNull() ? std::nullopt : document(m_selectedDocumentId);
}

QList<SQLVersion> DataStore::selectedDocumentVersions() const
{
    return m_selectedDocumentId.isNull() ? QList<SQLVersion>() : versionsForDocument(m_selectedDocumentId);
}

std::optional<QUuid> DataStore::lastOpenedDocumentId() const
{
    const QVariant stored = m_settings->value(lastOpenedDocKey);
    if (!stored.isValid())
        return std::nullopt;
    return StoreCodec::parseUuid(stored.toString());
}

void DataStore::setLastOpenedDocumentId(const std::optional<QUuid> &id)
{
    if (id && !id->isNull())
        m_settings->setValue(lastOpenedDocKey, id->toString(QUuid::WithoutBraces).toUpper());
    else
        m_settings->remove(lastOpenedDocKey);
}

void DataStore::selectAndRemember(const QUuid &id)
{
    setSelectedDocumentId(id);
    setLastOpenedDocumentId(id);
}

qsizetype DataStore::indexOfDocument(const QUuid &id) const
{
    const auto it = std::find_if(m_documents.cbegin(), m_documents.cend(),
                                 [&id](const SQLDocument &document) { return document.id == id; });
    return it == m_documents.cend() ? -1 : it - m_documents.cbegin();
}

bool DataStore::changeDocument(const QUuid &id, const std::function<void(SQLDocument &)> &change)
{
    const qsizetype index = indexOfDocument(id);
    if (index < 0)
        return false;
    SQLDocument &document = m_documents[index];
    change(document);
    document.updatedAt = Clock::now();
    markChanged(Collection::Documents);
    Q_EMIT documentUpdated(id);
    return true;
}

void DataStore::markChanged(Collection collection)
{
    ++m_generation[int(collection)];
    switch (collection) {
    case Collection::Documents:
        Q_EMIT documentsChanged();
        break;
    case Collection::Versions:
        Q_EMIT versionsChanged();
        break;
    case Collection::Knowledge:
        Q_EMIT knowledgeItemsChanged();
        break;
    }
}

void DataStore::requestWrite(Collection collection)
{
    const int slot = int(collection);
    if (m_unwritable[slot])
        return;
    const QString path = filePath(collection);
    // The lambdas own copies of the collections: cheap here, and immutable for the writer.
    switch (collection) {
    case Collection::Documents:
        m_writer->submit(path, m_generation[slot],
                         [documents = m_documents] { return StoreCodec::encodeDocuments(documents); });
        break;
    case Collection::Versions:
        m_writer->submit(path, m_generation[slot],
                         [versions = m_versions] { return StoreCodec::encodeVersions(versions); });
        break;
    case Collection::Knowledge:
        m_writer->submit(path, m_generation[slot],
                         [items = m_knowledgeItems] { return StoreCodec::encodeKnowledge(items); });
        break;
    }
}

QString DataStore::filePath(Collection collection) const
{
    static constexpr QLatin1StringView names[] = {documentsFileName, versionsFileName, knowledgeFileName};
    return m_dataDirectory + u'/' + names[int(collection)];
}

void DataStore::saveData()
{
    requestWrite(Collection::Documents);
    requestWrite(Collection::Versions);
    requestWrite(Collection::Knowledge);
}

void DataStore::saveKnowledge()
{
    requestWrite(Collection::Knowledge);
}

void DataStore::flush()
{
    m_writer->flush();
}

void DataStore::writeFileInBackground(const QString &path, quint64 generation,
                                      std::function<QByteArray()> serialize)
{
    m_writer->submit(path, generation, std::move(serialize));
}

void DataStore::removeFileInBackground(const QString &path)
{
    m_writer->remove(path);
}

bool DataStore::isFileWritten(const QString &path, quint64 generation) const
{
    return m_writer->writtenGeneration(path) >= generation;
}

// Documents

SQLDocument DataStore::createDocument(const QString &name, const QString &content)
{
    SQLDocument document;
    document.id = QUuid::createUuid();
    document.name = name;
    document.content = content;
    document.createdAt = Clock::now();
    document.updatedAt = Clock::now();
    m_documents.append(document);
    markChanged(Collection::Documents);
    saveData();
    selectAndRemember(document.id);
    return document;
}

void DataStore::deleteDocument(const QUuid &id)
{
    const qsizetype removed = m_documents.removeIf([&id](const SQLDocument &d) { return d.id == id; });
    if (removed > 0) {
        markChanged(Collection::Documents);
        Q_EMIT documentDeleted(id);
    }
    if (m_versions.remove(id) > 0)
        markChanged(Collection::Versions);
    if (m_selectedDocumentId == id) {
        const QUuid next = m_documents.isEmpty() ? QUuid() : m_documents.constFirst().id;
        setSelectedDocumentId(next);
        setLastOpenedDocumentId(next.isNull() ? std::nullopt : std::optional(next));
    }
    saveData();
}

void DataStore::setDocumentName(const QUuid &documentId, const QString &name)
{
    if (name.isEmpty())
        return;
    if (!changeDocument(documentId, [&name](SQLDocument &document) { document.name = name; }))
        return;
    saveData();
    selectAndRemember(documentId);
}

void DataStore::updateDocumentContent(const QUuid &documentId, const QString &content)
{
    if (changeDocument(documentId, [&content](SQLDocument &document) { document.content = content; }))
        selectAndRemember(documentId);
}

void DataStore::applyContentToSelectedDocument(const QString &content)
{
    const QUuid id = m_selectedDocumentId;
    if (id.isNull() || !changeDocument(id, [&content](SQLDocument &document) { document.content = content; }))
        return;
    saveData();
    selectAndRemember(id);
}

QList<SQLDocument> DataStore::sidebarDocuments(const QString &searchText) const
{
    QList<SQLDocument> listed;
    listed.reserve(m_documents.size());
    for (const SQLDocument &document : m_documents) {
        if (searchText.isEmpty() || document.name.contains(searchText, Qt::CaseInsensitive))
            listed.append(document);
    }
    std::stable_sort(listed.begin(), listed.end(),
                     [](const SQLDocument &a, const SQLDocument &b) { return a.createdAt > b.createdAt; });
    return listed;
}

// Versions

std::optional<SQLVersion> DataStore::saveVersion(const QUuid &documentId, const QString &note)
{
    const qsizetype index = indexOfDocument(documentId);
    if (index < 0)
        return std::nullopt;
    QList<SQLVersion> &list = m_versions[documentId];
    qint64 highest = 0;
    for (const SQLVersion &version : std::as_const(list))
        highest = std::max(highest, version.versionNumber);
    SQLVersion version;
    version.id = QUuid::createUuid();
    version.documentId = documentId;
    version.content = m_documents.at(index).content;
    version.note = note;
    version.createdAt = Clock::now();
    version.versionNumber = highest + 1;
    list.append(version);
    markChanged(Collection::Versions);
    saveData();
    return version;
}

void DataStore::restoreVersion(const SQLVersion &version)
{
    if (!changeDocument(version.documentId,
                        [&version](SQLDocument &document) { document.content = version.content; }))
        return;
    // The same note in every language of the interface.
    saveVersion(version.documentId, u"从 v%1 恢复"_s.arg(version.versionNumber));
    saveData();
}

void DataStore::clearVersions(const QUuid &documentId)
{
    m_versions[documentId] = {};
    markChanged(Collection::Versions);
    saveData();
}

QList<SQLVersion> DataStore::versionsForDocument(const QUuid &documentId) const
{
    QList<SQLVersion> sorted = m_versions.value(documentId);
    std::stable_sort(sorted.begin(), sorted.end(), [](const SQLVersion &a, const SQLVersion &b) {
        return a.versionNumber > b.versionNumber;
    });
    return sorted;
}

// Knowledge

bool DataStore::knowledgeAutoRecordingEnabled() const
{
    return m_settings->value(knowledgeAutoKey, true).toBool();
}

void DataStore::setKnowledgeAutoRecordingEnabled(bool enabled)
{
    const bool changed = enabled != knowledgeAutoRecordingEnabled();
    m_settings->setValue(knowledgeAutoKey, enabled);
    if (changed)
        Q_EMIT knowledgeAutoRecordingEnabledChanged();
}

KnowledgeItem DataStore::addKnowledgeItem(KnowledgeCategory category, const QString &content,
                                          KnowledgeSource source)
{
    KnowledgeItem item;
    item.id = QUuid::createUuid();
    item.category = category;
    item.content = content;
    item.source = source;
    item.createdAt = Clock::now();
    item.updatedAt = Clock::now();
    m_knowledgeItems.append(item);
    markChanged(Collection::Knowledge);
    saveKnowledge();
    return item;
}

void DataStore::updateKnowledgeItem(const QUuid &id, std::optional<KnowledgeCategory> category,
                                    std::optional<QString> content)
{
    const auto it = std::find_if(m_knowledgeItems.begin(), m_knowledgeItems.end(),
                                 [&id](const KnowledgeItem &item) { return item.id == id; });
    if (it == m_knowledgeItems.end())
        return;
    if (category)
        it->category = *category;
    if (content)
        it->content = *content;
    it->updatedAt = Clock::now();
    markChanged(Collection::Knowledge);
    saveKnowledge();
}

void DataStore::deleteKnowledgeItem(const QUuid &id)
{
    if (m_knowledgeItems.removeIf([&id](const KnowledgeItem &item) { return item.id == id; }) > 0)
        markChanged(Collection::Knowledge);
    saveKnowledge();
}

QSet<QString> DataStore::extractKnowledgeKeywords(const QString &text)
{
    QSet<QString> keywords;
    const QString lower = text.toLower();
    for (const QString &keyword : databaseKeywords) {
        if (lower.contains(keyword))
            keywords.insert(keyword);
    }
    for (const QString &keyword : syntaxKeywords) {
        if (lower.contains(keyword))
            keywords.insert(keyword);
    }
    for (const QString &keyword : tableKeywords) {
        if (text.contains(keyword))
            keywords.insert(keyword);
    }
    // A version number marks the text, though no rule acts on the mark yet.
    static const QRegularExpression versionNumber(u"\\d+\\.\\d+(\\.\\d+)?"_s);
    if (versionNumber.match(text).hasMatch())
        keywords.insert(versionMarker);
    return keywords;
}

bool DataStore::hasKeywordConflict(const QSet<QString> &sharedKeywords)
{
    const auto anyOf = [&sharedKeywords](const QStringList &list) {
        return std::any_of(list.cbegin(), list.cend(), [&sharedKeywords](const QString &keyword) {
            return sharedKeywords.contains(keyword);
        });
    };
    return anyOf(databaseKeywords) || anyOf(syntaxKeywords) || anyOf(tableKeywords);
}

std::optional<KnowledgeItem> DataStore::findConflictingKnowledgeItem(KnowledgeCategory category,
                                                                     const QSet<QString> &keywords) const
{
    for (const KnowledgeItem &item : m_knowledgeItems) {
        if (item.category != category)
            continue;
        const QSet<QString> shared = extractKnowledgeKeywords(item.content).intersect(keywords);
        if (!shared.isEmpty() && hasKeywordConflict(shared))
            return item;
    }
    return std::nullopt;
}
