#pragma once

#include "knowledgeitem.h"
#include "sqldocument.h"
#include "sqlversion.h"

#include <QMap>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <QTimer>
#include <QUrl>
#include <QVariantList>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

class QLockFile;
class QSettings;
class StoreWriter;

using VersionMap = QMap<QUuid, QList<SQLVersion>>;

// The one store of everything the user writes: documents, their versions and the knowledge
// items, held in memory, loaded once at construction and written back as three JSON files.
//
// Writes are durable and atomic, and happen on a background thread from immutable snapshots
// of the collections, so that saving never stalls the window; `flush()` waits for them.
// A file that exists but cannot be read is moved aside, never overwritten, and what still reads
// of it is kept.
//
// The store writes only while it holds the lock of its folder: a second process on the same
// folder works in memory and says who holds it. A write that fails is reported at once
// (`saveFailure`) and tried again, and what could not be written can be exported elsewhere.
class DataStore : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<SQLDocument> documents READ documents NOTIFY documentsChanged)
    Q_PROPERTY(VersionMap versions READ versions NOTIFY versionsChanged)
    Q_PROPERTY(QList<KnowledgeItem> knowledgeItems READ knowledgeItems NOTIFY knowledgeItemsChanged)
    Q_PROPERTY(QUuid selectedDocumentId READ selectedDocumentId WRITE setSelectedDocumentId NOTIFY
                   selectedDocumentIdChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(bool knowledgeAutoRecordingEnabled READ knowledgeAutoRecordingEnabled WRITE
                   setKnowledgeAutoRecordingEnabled NOTIFY knowledgeAutoRecordingEnabledChanged)
    Q_PROPERTY(QStringList setAsideFiles READ setAsideFiles NOTIFY setAsideFilesChanged)
    // [{file, keptAs, recovered, found}]: damaged files of which `recovered` of `found` records
    // still read and were kept; the original lies at `keptAs`.
    Q_PROPERTY(QVariantList recoveredFiles READ recoveredFiles NOTIFY setAsideFilesChanged)
    Q_PROPERTY(QString dataDirectory READ dataDirectory CONSTANT)
    // Another process holds the folder: this one writes nothing. Says which, empty otherwise.
    Q_PROPERTY(QString lockHolder READ lockHolder CONSTANT)
    Q_PROPERTY(bool isReadOnly READ isReadOnly CONSTANT)
    // Why the newest write failed, while a file of the folder is not as the store holds it.
    Q_PROPERTY(QString saveFailure READ saveFailure NOTIFY writeStateChanged)
    // Something the user changed is not on disk (a failed write, or a read-only store).
    Q_PROPERTY(bool hasUnwrittenChanges READ hasUnwrittenChanges NOTIFY writeStateChanged)

public:
    static constexpr QLatin1StringView knowledgeAutoKey{"knowledge_auto_recording_enabled"};
    static constexpr QLatin1StringView lastOpenedDocKey{"last_opened_document_id"};
    static constexpr QLatin1StringView documentsFileName{"sql_documents.json"};
    static constexpr QLatin1StringView versionsFileName{"sql_versions.json"};
    static constexpr QLatin1StringView knowledgeFileName{"knowledge_items.json"};
    static constexpr QLatin1StringView lockFileName{".varnholt.lock"};
    // Store files larger than this are not read: a SQL store never comes near it, a runaway file
    // would take the machine's memory.
    static constexpr qint64 maxFileBytes = qint64(1) << 30;

    // A store on `dataDirectory` (made 0700 if missing; an existing folder keeps its mode) with
    // preferences in `settings`, which must outlive the store. Takes the folder's lock, then
    // loads at once.
    DataStore(const QString &dataDirectory, QSettings *settings, QObject *parent = nullptr);
    // Waits for pending writes.
    ~DataStore() override;

    // The application's store, made on first use: the "Varnholt" folder of the per-user
    // application data location, with the default settings.
    [[nodiscard]] static DataStore *shared();
    [[nodiscard]] static QString defaultDataDirectory();

    [[nodiscard]] const QList<SQLDocument> &documents() const { return m_documents; }
    [[nodiscard]] const VersionMap &versions() const { return m_versions; }
    [[nodiscard]] const QList<KnowledgeItem> &knowledgeItems() const { return m_knowledgeItems; }
    [[nodiscard]] QUuid selectedDocumentId() const { return m_selectedDocumentId; }
    void setSelectedDocumentId(const QUuid &id);
    [[nodiscard]] bool isLoading() const { return m_isLoading; }

    [[nodiscard]] std::optional<SQLDocument> selectedDocument() const;
    [[nodiscard]] std::optional<SQLDocument> document(const QUuid &id) const;
    [[nodiscard]] QList<SQLVersion> selectedDocumentVersions() const;

    [[nodiscard]] std::optional<QUuid> lastOpenedDocumentId() const;
    void setLastOpenedDocumentId(const std::optional<QUuid> &id);

    // Files the store found damaged or unreadable at start and moved aside, full paths.
    [[nodiscard]] QStringList setAsideFiles() const { return m_setAsideFiles; }
    [[nodiscard]] QVariantList recoveredFiles() const { return m_recoveredFiles; }
    [[nodiscard]] QString dataDirectory() const { return m_dataDirectory; }
    [[nodiscard]] QString lockHolder() const { return m_lockHolder; }
    [[nodiscard]] bool isReadOnly() const { return !m_lockHolder.isEmpty(); }
    [[nodiscard]] QString saveFailure() const;
    [[nodiscard]] bool hasUnwrittenChanges() const;
    // The documents file holds what the store holds.
    [[nodiscard]] bool areDocumentsWritten() const;
    // Writes the three collections to `folder` (made if missing), for when the store's own
    // folder cannot take them; the reason if that fails too.
    QString exportTo(const QString &folder);
    // The same for a folder a file dialog chose.
    Q_INVOKABLE QString exportToFolder(const QUrl &folder);
    // Writes what is not written, now, and waits for it.
    Q_INVOKABLE void retrySaving();
    // Saves, waits, and tells whether everything is on disk (before the window closes).
    Q_INVOKABLE bool saveAndWait();
    // Moves a file of the data folder that exists but cannot be used out of the way, under a name
    // that says so, and lists it in setAsideFiles. Gives the new path, or an empty string when
    // even that failed; such a file must not be written over.
    QString setAsideDamagedFile(const QString &path);

    // Writes the collections that changed since their last successful write. Returns at
    // once; the files are written in order on the store's writer thread.
    void saveData();
    // The knowledge file alone.
    void saveKnowledge();
    // Blocks until every requested write has finished (at quit, and in tests).
    void flush();
    // Writes a file of another subsystem's own in the data folder (durably, 0600), on the same
    // writer thread and in order with the store's files; see StoreWriter for `generation`.
    void writeFileInBackground(const QString &path, quint64 generation, std::function<QByteArray()> serialize);
    // Removes such a file, behind the writes queued before.
    void removeFileInBackground(const QString &path);
    // Whether the file holds `generation` of its data, or a later one.
    [[nodiscard]] bool isFileWritten(const QString &path, quint64 generation) const;

    // Documents
    // A document's name is one line: line breaks and tabs (a pasted name) become spaces.
    [[nodiscard]] static QString singleLineName(const QString &name);
    SQLDocument createDocument(const QString &name, const QString &content);
    // Deletes the document and its versions; the last deletion can be taken back until the next
    // one or forgetDeletion().
    void deleteDocument(const QUuid &id);
    // Brings the last deleted document back where it was, with its versions, and selects it;
    // false if there is none to bring back.
    bool undoDeletion();
    // The last deletion is final: nothing of it is kept any more.
    void forgetDeletion();
    [[nodiscard]] bool canUndoDeletion() const { return m_lastDeletion.has_value(); }
    [[nodiscard]] QString lastDeletedName() const
    {
        return m_lastDeletion ? m_lastDeletion->document.name : QString();
    }
    void setDocumentName(const QUuid &documentId, const QString &name);
    void updateDocumentContent(const QUuid &documentId, const QString &content);
    void applyContentToSelectedDocument(const QString &content);
    // The sidebar's listing: newest first, filtered by name when `searchText` is not empty.
    [[nodiscard]] QList<SQLDocument> sidebarDocuments(const QString &searchText) const;

    // Versions
    std::optional<SQLVersion> saveVersion(const QUuid &documentId, const QString &note);
    void restoreVersion(const SQLVersion &version);
    void clearVersions(const QUuid &documentId);
    // Highest number first.
    [[nodiscard]] QList<SQLVersion> versionsForDocument(const QUuid &documentId) const;

    // Knowledge
    [[nodiscard]] bool knowledgeAutoRecordingEnabled() const;
    void setKnowledgeAutoRecordingEnabled(bool enabled);
    KnowledgeItem addKnowledgeItem(KnowledgeCategory category, const QString &content,
                                   KnowledgeSource source);
    void updateKnowledgeItem(const QUuid &id, std::optional<KnowledgeCategory> category,
                             std::optional<QString> content);
    void deleteKnowledgeItem(const QUuid &id);
    [[nodiscard]] static QSet<QString> extractKnowledgeKeywords(const QString &text);
    [[nodiscard]] static bool hasKeywordConflict(const QSet<QString> &sharedKeywords);
    [[nodiscard]] std::optional<KnowledgeItem>
    findConflictingKnowledgeItem(KnowledgeCategory category, const QSet<QString> &keywords) const;

Q_SIGNALS:
    void documentsChanged();
    // Finer notices for list models, sent together with documentsChanged.
    void documentUpdated(const QUuid &id);
    // A document is gone; what other subsystems keep for it can go too (and keep it at hand
    // until deletionForgotten(), for documentRestored()).
    void documentDeleted(const QUuid &id);
    void documentRestored(const QUuid &id);
    void deletionForgotten();
    void versionsChanged();
    void knowledgeItemsChanged();
    void selectedDocumentIdChanged();
    void isLoadingChanged();
    void knowledgeAutoRecordingEnabledChanged();
    void setAsideFilesChanged();
    // A write finished or failed; what is unwritten may have changed.
    void writeStateChanged();
    // Failed writes are tried again: subsystems with files of their own write them again.
    void retryRequested();

private:
    enum class Collection { Documents, Versions, Knowledge };

    void takeLock();
    void loadData();
    void onWritten(const QString &path, quint64 generation, const QString &error);
    void applyWriteReports();
    void setIsLoading(bool loading);
    void selectAndRemember(const QUuid &id);
    void markChanged(Collection collection);
    void requestWrite(Collection collection);
    [[nodiscard]] QString filePath(Collection collection) const;
    [[nodiscard]] qsizetype indexOfDocument(const QUuid &id) const;
    // Applies `change` to the first document with `id` and moves its date; false if none.
    bool changeDocument(const QUuid &id, const std::function<void(SQLDocument &)> &change);

    QList<SQLDocument> m_documents;
    VersionMap m_versions;
    struct Deletion
    {
        SQLDocument document;
        QList<SQLVersion> versions;
        qsizetype index = 0;
    };
    std::optional<Deletion> m_lastDeletion;
    QList<KnowledgeItem> m_knowledgeItems;
    QUuid m_selectedDocumentId;
    bool m_isLoading = false;

    QString m_dataDirectory;
    QSettings *m_settings = nullptr;
    QStringList m_setAsideFiles;
    QVariantList m_recoveredFiles;
    std::unique_ptr<QLockFile> m_lock;
    QString m_lockHolder;
    // Files whose newest write failed, with the reason; cleared by a later success.
    QMap<QString, QString> m_failedWrites;
    // Reports from the writer thread, taken on the store's thread.
    std::mutex m_reportsMutex;
    QList<std::pair<QString, QString>> m_reports;
    QTimer m_retryTimer;
    // Changes made while the store cannot write (another process holds the folder).
    bool m_hasReadOnlyChanges = false;
    // Files that could be neither read nor moved aside: never written over.
    bool m_unwritable[3] = {false, false, false};
    // Bumped at every change of a collection; a collection is written when its generation
    // differs from the one last written.
    quint64 m_generation[3] = {1, 1, 1};
    std::unique_ptr<StoreWriter> m_writer;
};
