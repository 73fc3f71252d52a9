#include "clock.h"
#include "datastore.h"
#include "storecodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

mode_t modeOf(const QString &path)
{
    struct stat status
    {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 0777 : 0;
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void write(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

SQLDocument document(const QString &name, const QString &content = u"SELECT 1;"_s)
{
    const QDateTime when = QDateTime(QDate(2026, 11, 24), QTime(9, 0), Qt::UTC);
    return {QUuid::createUuid(), name, content, when, when, {}, false};
}

} // namespace

// What keeps the user's work: the folder's lock, failed writes said and retried, the folder made
// again, only regular files read, links kept, private modes, and what still reads of a damaged file.
class TestStoreSafety : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<QSettings> m_settings;

    [[nodiscard]] QString folder() const { return m_dir.filePath(u"data/Varnholt"_s); }
    [[nodiscard]] QString path(QLatin1StringView name) const { return folder() + u'/' + name; }
    std::unique_ptr<DataStore> open() { return std::make_unique<DataStore>(folder(), m_settings.get()); }

private Q_SLOTS:
    void init()
    {
        QDir(m_dir.filePath(u"data"_s)).removeRecursively();
        m_settings = std::make_unique<QSettings>(m_dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        m_settings->clear();
    }

    void aSecondStoreOnTheFolderWritesNothingAndSaysWhoHoldsIt()
    {
        auto first = open();
        first->flush();
        const QByteArray before = read(path(DataStore::documentsFileName));
        // A write of the first that a second start must not take for a crash's left-over.
        write(folder() + u"/.sql_versions.json.varnholt-tmp-inflight"_s, "x");

        auto second = open();
        QVERIFY(second->isReadOnly());
        QVERIFY(second->lockHolder().contains(QString::number(QCoreApplication::applicationPid())));
        QVERIFY(QFile::exists(folder() + u"/.sql_versions.json.varnholt-tmp-inflight"_s));
        QSignalSpy state(second.get(), &DataStore::writeStateChanged);
        second->createDocument(u"only in memory"_s, u"SELECT 2;"_s);
        second->flush();
        QCOMPARE(read(path(DataStore::documentsFileName)), before);
        QVERIFY(second->hasUnwrittenChanges());
        QVERIFY(!state.isEmpty());

        // What it holds can still go elsewhere.
        const QString elsewhere = m_dir.filePath(u"exported"_s);
        QVERIFY(second->exportTo(elsewhere).isEmpty());
        QCOMPARE(StoreCodec::decodeDocuments(read(elsewhere + u'/' + DataStore::documentsFileName))->size(), 2);

        second.reset();
        first.reset();
        // The lock is free again, and a crash's left-over goes.
        auto third = open();
        QVERIFY(!third->isReadOnly());
        QVERIFY(!QFile::exists(folder() + u"/.sql_versions.json.varnholt-tmp-inflight"_s));
    }

    void aLockLeftByAProcessThatIsGoneIsTakenOver()
    {
        QDir().mkpath(folder());
        // QLockFile's form: pid, application, host. No process has this pid.
        write(path(DataStore::lockFileName), "999999999\nvarnholt\n" + QSysInfo::machineHostName().toUtf8() + "\n");
        auto store = open();
        QVERIFY(!store->isReadOnly());
        store->createDocument(u"written"_s, u"SELECT 3;"_s);
        store->flush();
        QVERIFY(read(path(DataStore::documentsFileName)).contains("written"));
    }

    void aFailedWriteIsSaidKeptAndTriedAgain()
    {
        auto store = open();
        store->flush();
        // A folder where the documents file should be: no write can replace it.
        QVERIFY(QFile::remove(path(DataStore::documentsFileName)));
        QVERIFY(QDir().mkpath(path(DataStore::documentsFileName)));
        store->createDocument(u"kept in memory"_s, u"SELECT 4;"_s);
        store->flush();
        QVERIFY(store->saveFailure().contains(DataStore::documentsFileName));
        QVERIFY(store->hasUnwrittenChanges());
        QVERIFY(!store->areDocumentsWritten());
        // The other two files do not depend on it.
        QCOMPARE(read(path(DataStore::knowledgeFileName)), "[\n\n]");

        QVERIFY(QDir(path(DataStore::documentsFileName)).removeRecursively());
        QSignalSpy retried(store.get(), &DataStore::retryRequested);
        store->retrySaving();
        QCOMPARE(retried.size(), 1);
        QVERIFY(store->saveFailure().isEmpty());
        QVERIFY(!store->hasUnwrittenChanges());
        QVERIFY(read(path(DataStore::documentsFileName)).contains("kept in memory"));
    }

    void aDeletedFolderIsMadeAgainWithEveryFile()
    {
        auto store = open();
        store->flush();
        QVERIFY(QDir(folder()).removeRecursively());
        store->createDocument(u"after the folder went"_s, QString());
        store->flush();
        QCOMPARE(modeOf(folder()), mode_t(0700));
        QVERIFY(read(path(DataStore::documentsFileName)).contains("after the folder went"));
        // Unchanged, but gone: written again.
        QCOMPARE(read(path(DataStore::versionsFileName)), "[\n\n]");
        QCOMPARE(read(path(DataStore::knowledgeFileName)), "[\n\n]");
    }

    void onlyRegularFilesAreRead()
    {
        QDir().mkpath(folder());
        QVERIFY(::mkfifo(QFile::encodeName(path(DataStore::documentsFileName)).constData(), 0600) == 0);
        QVERIFY(QFile::link(u"/dev/zero"_s, path(DataStore::versionsFileName)));
        // Two gigabytes that take no room: refused by their size, not read.
        QFile huge(path(DataStore::knowledgeFileName));
        QVERIFY(huge.open(QIODevice::WriteOnly));
        QVERIFY(huge.resize(qint64(2) << 30));
        huge.close();
        auto store = open(); // would hang on the FIFO, or read /dev/zero for ever
        QCOMPARE(store->setAsideFiles().size(), 3);
        QCOMPARE(store->documents().size(), 1); // the sample
        QVERIFY(store->versions().isEmpty());
        QVERIFY(store->knowledgeItems().isEmpty());
    }

    void aLinkedFileStaysLinked()
    {
        const QString elsewhere = m_dir.filePath(u"synced/documents.json"_s);
        write(elsewhere, StoreCodec::encodeDocuments({document(u"linked"_s)}));
        QDir().mkpath(folder());
        QVERIFY(QFile::link(elsewhere, path(DataStore::documentsFileName)));
        auto store = open();
        QCOMPARE(store->documents().constFirst().name, u"linked"_s);
        store->createDocument(u"through the link"_s, QString());
        store->flush();
        QVERIFY(QFileInfo(path(DataStore::documentsFileName)).isSymLink());
        QVERIFY(read(elsewhere).contains("through the link"));
    }

    void everythingOfOursIsPrivateWhateverTheUmask()
    {
        const mode_t old = ::umask(0);
        auto store = open();
        store->flush();
        ::umask(old);
        QCOMPARE(modeOf(m_dir.filePath(u"data"_s)), mode_t(0700));
        QCOMPARE(modeOf(folder()), mode_t(0700));
        QCOMPARE(modeOf(path(DataStore::documentsFileName)), mode_t(0600));
    }

    // One bad byte no longer costs the other records.
    void whatStillReadsOfADamagedFileIsKept()
    {
        QList<SQLDocument> documents;
        for (int i = 0; i < 40; ++i)
            documents.append(document(u"document %1"_s.arg(i)));
        QByteArray bytes = StoreCodec::encodeDocuments(documents);
        bytes.replace("document 17", "document \xff\x31\x37");
        write(path(DataStore::documentsFileName), bytes);
        QList<SQLVersion> versions;
        versions.append({QUuid::createUuid(), documents.at(3).id, u"v"_s, u"n"_s, documents.at(3).createdAt, 1});
        write(path(DataStore::versionsFileName), StoreCodec::encodeVersions(StoreCodec::groupVersions(versions)));

        auto store = open();
        QCOMPARE(store->documents().size(), 39);
        QCOMPARE(store->versionsForDocument(documents.at(3).id).size(), 1);
        QCOMPARE(store->recoveredFiles().size(), 1);
        const QVariantMap recovered = store->recoveredFiles().constFirst().toMap();
        QCOMPARE(recovered.value(u"recovered"_s).toInt(), 39);
        QCOMPARE(recovered.value(u"found"_s).toInt(), 40);
        QCOMPARE(read(recovered.value(u"keptAs"_s).toString()), bytes);
        store->flush();
        QCOMPARE(StoreCodec::decodeDocuments(read(path(DataStore::documentsFileName)))->size(), 39);
    }

    // Hand-edited numbers: a whole number written as a fraction reads; numbers never overflow.
    void versionNumbers()
    {
        const SQLDocument only = document(u"numbers"_s);
        write(path(DataStore::documentsFileName), StoreCodec::encodeDocuments({only}));
        QByteArray versions = StoreCodec::encodeVersions(
            StoreCodec::groupVersions({{QUuid::createUuid(), only.id, u"a"_s, u""_s, only.createdAt, 5},
                                       {QUuid::createUuid(), only.id, u"b"_s, u""_s, only.createdAt, 1},
                                       {QUuid::createUuid(), only.id, u"c"_s, u""_s, only.createdAt, 9007199254740990}}));
        versions.replace("\"versionNumber\" : 5", "\"versionNumber\" : 5.0");
        write(path(DataStore::versionsFileName), versions);
        auto store = open();
        QVERIFY(store->setAsideFiles().isEmpty());
        QCOMPARE(store->versionsForDocument(only.id).size(), 3);
        QCOMPARE(store->saveVersion(only.id, u"next"_s)->versionNumber, 9007199254740991);
        QCOMPARE(store->saveVersion(only.id, u"at the end"_s)->versionNumber, 9007199254740991);
    }

    // Versions 1 and 5, stored in that order or the other: the next is 6.
    void theNextVersionFollowsTheHighest()
    {
        const SQLDocument only = document(u"gaps"_s);
        write(path(DataStore::documentsFileName), StoreCodec::encodeDocuments({only}));
        write(path(DataStore::versionsFileName),
              StoreCodec::encodeVersions(
                  StoreCodec::groupVersions({{QUuid::createUuid(), only.id, u"5"_s, u""_s, only.createdAt, 5},
                                             {QUuid::createUuid(), only.id, u"1"_s, u""_s, only.createdAt, 1}})));
        auto store = open();
        QCOMPARE(store->saveVersion(only.id, u"n"_s)->versionNumber, 6);
    }

    // Many documents of the same date keep the file's order after a restart.
    void equalDatesKeepTheirOrder()
    {
        QList<SQLDocument> documents;
        for (int i = 0; i < 60; ++i)
            documents.append(document(u"same time %1"_s.arg(i)));
        write(path(DataStore::documentsFileName), StoreCodec::encodeDocuments(documents));
        auto store = open();
        const QList<SQLDocument> listed = store->sidebarDocuments(QString());
        for (int i = 0; i < 60; ++i)
            QCOMPARE(listed.at(i).name, documents.at(i).name);
    }

    // A burst of saves leaves the newest snapshot on disk.
    void aBurstLeavesTheNewest()
    {
        auto store = open();
        const QUuid id = store->documents().constFirst().id;
        for (int i = 0; i < 500; ++i) {
            store->updateDocumentContent(id, u"SELECT %1;"_s.arg(i));
            store->saveData();
        }
        store->flush();
        QCOMPARE(StoreCodec::decodeDocuments(read(path(DataStore::documentsFileName)))->constFirst().content,
                 u"SELECT 499;"_s);
    }

    // A valid file whose unknown key holds what looks like a cut between records.
    void aCutInsideAValueDoesNotSetAValidFileAside()
    {
        QList<SQLDocument> documents;
        const QString filler = QString(2000, u'x');
        for (int i = 0; i < 9000; ++i)
            documents.append(document(u"d%1"_s.arg(i), filler));
        QByteArray bytes = StoreCodec::encodeDocuments(documents);
        QVERIFY(bytes.size() > 16 << 20);
        // An unknown key in the middle record, with records of its own at the same indentation.
        const qsizetype middle = bytes.indexOf("\"name\" : \"d4500\"");
        bytes.insert(middle, "\"extra\" : [\n  {\n  },\n  {\n  }\n],\n    ");
        write(path(DataStore::documentsFileName), bytes);
        auto store = open();
        QVERIFY(store->setAsideFiles().isEmpty());
        QCOMPARE(store->documents().size(), 9000);
    }
};

QTEST_GUILESS_MAIN(TestStoreSafety)
#include "tst_storesafety.moc"
