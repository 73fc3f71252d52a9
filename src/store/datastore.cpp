#include "datastore.h"

#include "appsettings.h"
#include "clock.h"
#include "durablefile.h"
#include "textfolding.h"
#include "storecodec.h"
#include "storewriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int firstRetryMs = 5000;
constexpr qint64 maxVersionNumber = (qint64(1) << 53) - 1;
constexpr int lastRetryMs = 60000;

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
    m_writer = std::make_unique<StoreWriter>(
        [this](const QString &path, quint64 generation, const QString &error) {
            Q_UNUSED(generation)
            {
                std::lock_guard lock(m_reportsMutex);
                m_reports.append({path, error});
            }
            QMetaObject::invokeMethod(this, &DataStore::applyWriteReports, Qt::QueuedConnection);
        });
    m_retryTimer.setSingleShot(true);
    m_retryTimer.setInterval(firstRetryMs);
    connect(&m_retryTimer, &QTimer::timeout, this, [this] {
        m_retryTimer.setInterval(std::min(m_retryTimer.interval() * 2, lastRetryMs));
        saveData();
        Q_EMIT retryRequested();
    });
    takeLock();
    loadData();
}

DataStore::~DataStore()
{
    flush();
    // The writer is done; the folder may go to another process.
    m_writer.reset();
}

void DataStore::takeLock()
{
    // The folder is made private when it is made; one that exists keeps the mode its owner gave it.
    makePrivateFolder(m_dataDirectory);
    m_lock = std::make_unique<QLockFile>(m_dataDirectory + u'/' + lockFileName);
    // Never stale by age: only a lock whose process is gone is taken over.
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(0) || m_lock->error() != QLockFile::LockFailedError)
        return; // held, or a folder we cannot write in: the writes will say so
    qint64 pid = 0;
    QString host;
    QString application;
    m_lock->getLockInfo(&pid, &host, &application);
    m_lockHolder = u"%1 (PID %2, %3)"_s.arg(application.isEmpty() ? u"?"_s : application).arg(pid).arg(host);
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

    // Left-overs of a crash are ours to remove only while no other process writes here.
    if (!isReadOnly())
        removeStaleTemporaryFiles(m_dataDirectory);

    const QDir dir(m_dataDirectory);
    // Reads one file. A file that is missing leaves the collection empty and is written at
    // the next save; one that exists but cannot be read or decoded is moved aside first, and
    // if even that fails, it is never written over in this session. Of a damaged file, every
    // record that still reads on its own is kept.
    const auto load = [&](Collection collection, QLatin1StringView fileName, const auto &decodeAndAssign,
                          const auto &recoverAndAssign) {
        const QString path = dir.filePath(fileName);
        const FileRead read = readRegularFile(path, maxFileBytes);
        if (read.status == FileRead::Status::Missing)
            return;
        const int slot = int(collection);
        if (read.status == FileRead::Status::Read && decodeAndAssign(read.bytes)) {
            m_writer->markWritten(path, m_generation[slot]);
            return;
        }
        qsizetype found = 0;
        const qsizetype recovered =
            read.status == FileRead::Status::Read ? recoverAndAssign(read.bytes, &found) : 0;
        const QString kept = setAsideDamagedFile(path);
        if (kept.isEmpty())
            m_unwritable[slot] = true;
        if (recovered > 0) {
            m_recoveredFiles.append(QVariantMap{{u"file"_s, QString(fileName)},
                                                {u"keptAs"_s, kept},
                                                {u"recovered"_s, recovered},
                                                {u"found"_s, found}});
            // What was kept goes to a new file at once, before anything else can happen.
            ++m_generation[slot];
            requestWrite(collection);
        }
    };

    load(
        Collection::Documents, documentsFileName,
        [this](const QByteArray &bytes) {
            auto documents = StoreCodec::decodeDocuments(bytes);
            if (documents)
                m_documents = std::move(*documents);
            return documents.has_value();
        },
        [this](const QByteArray &bytes, qsizetype *found) {
            m_documents = StoreCodec::recoverDocuments(bytes, found);
            return m_documents.size();
        });
    load(
        Collection::Versions, versionsFileName,
        [this](const QByteArray &bytes) {
            auto versions = StoreCodec::decodeVersions(bytes);
            if (versions)
                m_versions = StoreCodec::groupVersions(std::move(*versions));
            return versions.has_value();
        },
        [this](const QByteArray &bytes, qsizetype *found) {
            QList<SQLVersion> versions = StoreCodec::recoverVersions(bytes, found);
            const qsizetype count = versions.size();
            m_versions = StoreCodec::groupVersions(std::move(versions));
            return count;
        });
    load(
        Collection::Knowledge, knowledgeFileName,
        [this](const QByteArray &bytes) {
            auto items = StoreCodec::decodeKnowledge(bytes);
            if (items)
                m_knowledgeItems = std::move(*items);
            return items.has_value();
        },
        [this](const QByteArray &bytes, qsizetype *found) {
            m_knowledgeItems = StoreCodec::recoverKnowledge(bytes, found);
            return m_knowledgeItems.size();
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
    if (isReadOnly()) {
        // Kept in memory only; the user is told, and may export it.
        if (!m_hasReadOnlyChanges && m_generation[slot] != m_writer->writtenGeneration(filePath(collection))) {
            m_hasReadOnlyChanges = true;
            Q_EMIT writeStateChanged();
        }
        return;
    }
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
    applyWriteReports();
}

void DataStore::writeFileInBackground(const QString &path, quint64 generation,
                                      std::function<QByteArray()> serialize)
{
    if (isReadOnly()) {
        if (!m_hasReadOnlyChanges) {
            m_hasReadOnlyChanges = true;
            Q_EMIT writeStateChanged();
        }
        return;
    }
    m_writer->submit(path, generation, std::move(serialize));
}

void DataStore::removeFileInBackground(const QString &path)
{
    if (!isReadOnly())
        m_writer->remove(path);
}

void DataStore::applyWriteReports()
{
    QList<std::pair<QString, QString>> reports;
    {
        std::lock_guard lock(m_reportsMutex);
        reports.swap(m_reports);
    }
    if (reports.isEmpty())
        return;
    for (const auto &[path, error] : std::as_const(reports)) {
        if (error.isEmpty())
            m_failedWrites.remove(path);
        else
            m_failedWrites.insert(path, error);
    }
    if (m_failedWrites.isEmpty()) {
        m_retryTimer.stop();
        m_retryTimer.setInterval(firstRetryMs);
    } else if (!m_retryTimer.isActive()) {
        m_retryTimer.start();
    }
    // Every report may change what is unwritten, even when no failure came or went.
    Q_EMIT writeStateChanged();
}

QString DataStore::saveFailure() const
{
    return m_failedWrites.isEmpty() ? QString() : m_failedWrites.first();
}

bool DataStore::hasUnwrittenChanges() const
{
    if (m_hasReadOnlyChanges || !m_failedWrites.isEmpty())
        return true;
    for (const Collection collection : {Collection::Documents, Collection::Versions, Collection::Knowledge}) {
        const int slot = int(collection);
        if (!m_unwritable[slot] && m_writer->writtenGeneration(filePath(collection)) != m_generation[slot])
            return true;
    }
    return false;
}

bool DataStore::areDocumentsWritten() const
{
    const QString path = filePath(Collection::Documents);
    return !m_failedWrites.contains(path) &&
           m_writer->writtenGeneration(path) == m_generation[int(Collection::Documents)];
}

void DataStore::retrySaving()
{
    saveData();
    Q_EMIT retryRequested();
    flush();
}

QString DataStore::exportToFolder(const QUrl &folder)
{
    if (!folder.isLocalFile())
        return u"%1 is not a local folder"_s.arg(folder.toDisplayString());
    return exportTo(folder.toLocalFile());
}

bool DataStore::saveAndWait()
{
    saveData();
    flush();
    return !hasUnwrittenChanges();
}

QString DataStore::exportTo(const QString &folder)
{
    QString error;
    if (!makePrivateFolder(folder, &error))
        return error;
    const QDir dir(folder);
    const std::pair<QLatin1StringView, QByteArray> files[] = {
        {documentsFileName, StoreCodec::encodeDocuments(m_documents)},
        {versionsFileName, StoreCodec::encodeVersions(m_versions)},
        {knowledgeFileName, StoreCodec::encodeKnowledge(m_knowledgeItems)},
    };
    for (const auto &[name, bytes] : files) {
        if (!writeFileDurably(dir.filePath(name), bytes, &error))
            return error;
    }
    return {};
}

bool DataStore::isFileWritten(const QString &path, quint64 generation) const
{
    return m_writer->writtenGeneration(path) >= generation;
}

// Documents

QString DataStore::singleLineName(const QString &name)
{
    QString line = name;
    for (QChar &c : line) {
        if (c == u'\n' || c == u'\r' || c == u'\t' || c == u'\v' || c == u'\f' || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = u' ';
    }
    return line;
}

SQLDocument DataStore::createDocument(const QString &name, const QString &content)
{
    SQLDocument document;
    document.id = QUuid::createUuid();
    document.name = singleLineName(name);
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
    const auto found = std::find_if(m_documents.cbegin(), m_documents.cend(),
                                    [&id](const SQLDocument &d) { return d.id == id; });
    if (found == m_documents.cend())
        return;
    forgetDeletion();
    Deletion deletion{*found, m_versions.take(id), found - m_documents.cbegin()};
    m_documents.removeAt(deletion.index);
    m_lastDeletion = std::move(deletion);
    markChanged(Collection::Documents);
    Q_EMIT documentDeleted(id);
    if (!m_lastDeletion->versions.isEmpty())
        markChanged(Collection::Versions);
    if (m_selectedDocumentId == id) {
        const QUuid next = m_documents.isEmpty() ? QUuid() : m_documents.constFirst().id;
        setSelectedDocumentId(next);
        setLastOpenedDocumentId(next.isNull() ? std::nullopt : std::optional(next));
    }
    saveData();
}

bool DataStore::undoDeletion()
{
    if (!m_lastDeletion)
        return false;
    Deletion deletion = std::move(*m_lastDeletion);
    m_lastDeletion.reset();
    const QUuid id = deletion.document.id;
    m_documents.insert(std::min(deletion.index, m_documents.size()), std::move(deletion.document));
    markChanged(Collection::Documents);
    if (!deletion.versions.isEmpty()) {
        m_versions.insert(id, std::move(deletion.versions));
        markChanged(Collection::Versions);
    }
    Q_EMIT documentRestored(id);
    saveData();
    selectAndRemember(id);
    return true;
}

void DataStore::forgetDeletion()
{
    if (!m_lastDeletion)
        return;
    m_lastDeletion.reset();
    Q_EMIT deletionForgotten();
}

void DataStore::setDocumentName(const QUuid &documentId, const QString &typed)
{
    if (typed.isEmpty())
        return;
    const QString name = singleLineName(typed);
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
    const QString wanted = foldedForSearch(searchText);
    for (const SQLDocument &document : m_documents) {
        if (searchText.isEmpty() || foldedForSearch(document.name).contains(wanted))
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
    // Numbers stop at the largest a JSON reader keeps exact; only a hand-edited file gets there.
    version.versionNumber = std::min(highest, maxVersionNumber - 1) + 1;
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
