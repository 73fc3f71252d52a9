#include "clock.h"
#include "datastore.h"
#include "storecodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

// A store on a temporary folder and settings file, on a clock the test moves by hand.
class Fixture
{
public:
    Fixture()
        : settings(dir.filePath(u"settings.ini"_s), QSettings::IniFormat)
    {
        Clock::setNowFunction([this] { return now; });
    }
    ~Fixture() { Clock::setNowFunction({}); }

    std::unique_ptr<DataStore> open()
    {
        auto store = std::make_unique<DataStore>(folder(), &settings);
        return store;
    }
    QString folder() const { return dir.filePath(u"Varnholt"_s); }
    QString path(QLatin1StringView name) const { return folder() + u'/' + name; }
    QByteArray read(QLatin1StringView name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(QLatin1StringView name, const QByteArray &bytes) const
    {
        QDir().mkpath(folder());
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }
    void tick(int seconds = 1) { now = now.addSecs(seconds); }

    QTemporaryDir dir;
    QSettings settings;
    QDateTime now = QDateTime(QDate(2026, 11, 23), QTime(10, 0, 0, 250), Qt::UTC);
};

class TestDataStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstStartSeedsTheSample()
    {
        Fixture f;
        auto store = f.open();
        QCOMPARE(store->documents().size(), 1);
        const SQLDocument sample = store->documents().constFirst();
        QCOMPARE(sample.name, u"示例：用户表"_s);
        QVERIFY(sample.content.startsWith(u"-- 创建用户表\nCREATE TABLE users ("_s));
        QVERIFY(sample.content.endsWith(u"'hashed_password_here');"_s));
        QCOMPARE(store->selectedDocumentId(), sample.id);
        QCOMPARE(store->lastOpenedDocumentId(), sample.id);
        QCOMPARE(f.settings.value(DataStore::lastOpenedDocKey).toString(),
                 sample.id.toString(QUuid::WithoutBraces).toUpper());
        store->flush();
        QCOMPARE(f.read(DataStore::versionsFileName), QByteArray("[\n\n]"));
        QCOMPARE(f.read(DataStore::knowledgeFileName), QByteArray("[\n\n]"));
        QCOMPARE(StoreCodec::decodeDocuments(f.read(DataStore::documentsFileName))->size(), 1);
        QCOMPARE(QFileInfo(f.folder()).permissions() & 0x7077,
                 QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QCOMPARE(QFile::permissions(f.path(DataStore::documentsFileName)) & 0x7077,
                 QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        QVERIFY(!store->isLoading());

        // Deleting the last document brings the sample back at the next start, with a new id.
        store->deleteDocument(sample.id);
        QVERIFY(store->documents().isEmpty());
        QVERIFY(store->selectedDocumentId().isNull());
        QVERIFY(!f.settings.contains(DataStore::lastOpenedDocKey));
        store.reset();
        store = f.open();
        QCOMPARE(store->documents().size(), 1);
        QVERIFY(store->documents().constFirst().id != sample.id);
    }

    void restoresTheSelection()
    {
        Fixture f;
        QUuid first, second;
        {
            auto store = f.open();
            first = store->documents().constFirst().id;
            second = store->createDocument(u"second"_s, QString()).id;
        }
        // The key names an existing document: it is selected, the key stays.
        QCOMPARE(f.open()->selectedDocumentId(), second);
        // The key names a deleted document, or is no id: the first document, and the key follows.
        for (const QString &stored : {QUuid::createUuid().toString(), u"not an id"_s}) {
            f.settings.setValue(DataStore::lastOpenedDocKey, stored);
            QCOMPARE(f.open()->selectedDocumentId(), first);
            QCOMPARE(f.settings.value(DataStore::lastOpenedDocKey).toString(),
                     first.toString(QUuid::WithoutBraces).toUpper());
        }
        f.settings.remove(DataStore::lastOpenedDocKey);
        QCOMPARE(f.open()->selectedDocumentId(), first);
        QVERIFY(f.settings.contains(DataStore::lastOpenedDocKey));
    }

    void documentOperations()
    {
        Fixture f;
        auto store = f.open();
        const QUuid sample = store->documents().constFirst().id;
        f.tick();
        const SQLDocument a = store->createDocument(u"Report"_s, QString());
        f.tick();
        const SQLDocument b = store->createDocument(u"Report"_s, QString());
        f.tick();
        const SQLDocument c = store->createDocument(u"  drafts "_s, QString());
        QCOMPARE(store->documents().size(), 4);
        QCOMPARE(store->selectedDocumentId(), c.id);
        QVERIFY(a.id != b.id);

        // Newest first; search by name only, case-insensitive, untrimmed.
        store->updateDocumentContent(a.id, u"select * from report"_s);
        QCOMPARE(store->sidebarDocuments(QString()).constFirst().id, c.id);
        QCOMPARE(store->sidebarDocuments(QString()).constLast().id, sample);
        QCOMPARE(store->sidebarDocuments(u"REPORT"_s).size(), 2);
        QCOMPARE(store->sidebarDocuments(u"select"_s).size(), 0);
        QCOMPARE(store->sidebarDocuments(u" drafts"_s).size(), 1);
        // Searches compare folded forms: decomposed and composed, full case folding, widths.
        const SQLDocument german = store->createDocument(u"Straße café ＳＱＬ"_s, QString());
        for (const QString &wanted : {u"STRASSE"_s, u"cafe\u0301"_s, u"sql"_s})
            QCOMPARE(store->sidebarDocuments(wanted).constFirst().id, german.id);

        // Renaming: empty names are refused, blanks are taken, dates move.
        const QDateTime before = store->document(b.id)->updatedAt;
        f.tick();
        store->setDocumentName(b.id, QString());
        QCOMPARE(store->document(b.id)->updatedAt, before);
        store->setDocumentName(b.id, u"   "_s);
        QCOMPARE(store->document(b.id)->name, u"   "_s);
        QCOMPARE(store->document(b.id)->updatedAt, f.now);
        QCOMPARE(store->document(b.id)->createdAt, b.createdAt);
        QCOMPARE(store->selectedDocumentId(), b.id);

        // Editing remembers the document at once but writes no file.
        store->flush();
        const QByteArray onDisk = f.read(DataStore::documentsFileName);
        store->updateDocumentContent(c.id, u"SELECT 2;"_s);
        QCOMPARE(store->lastOpenedDocumentId(), c.id);
        store->flush();
        QCOMPARE(f.read(DataStore::documentsFileName), onDisk);
        store->saveData();
        store->flush();
        QVERIFY(f.read(DataStore::documentsFileName).contains("SELECT 2;"));

        store->applyContentToSelectedDocument(u"SELECT 3;"_s);
        store->flush();
        QCOMPARE(store->document(c.id)->content, u"SELECT 3;"_s);
        QVERIFY(f.read(DataStore::documentsFileName).contains("SELECT 3;"));

        // Deleting a document that is not selected keeps the selection; deleting the selected
        // one selects the oldest, not the neighbour in the sidebar.
        store->saveVersion(a.id, u"v"_s);
        store->deleteDocument(a.id);
        QCOMPARE(store->selectedDocumentId(), c.id);
        QVERIFY(!store->versions().contains(a.id));
        store->deleteDocument(c.id);
        QCOMPARE(store->selectedDocumentId(), sample);
        QCOMPARE(store->lastOpenedDocumentId(), sample);
        store->flush();
        QVERIFY(
            !f.read(DataStore::versionsFileName).contains(a.id.toByteArray(QUuid::WithoutBraces).toUpper()));
    }

    // Names are one line: a pasted line break or tab becomes a space.
    void namesAreOneLine()
    {
        Fixture f;
        auto store = f.open();
        const SQLDocument made = store->createDocument(u"pasted\nname\twith\u2029breaks"_s, QString());
        QCOMPARE(made.name, u"pasted name with breaks"_s);
        store->setDocumentName(made.id, u"new\r\nname"_s);
        QCOMPARE(store->document(made.id)->name, u"new  name"_s);
    }

    // The last deletion can be taken back: the document where it was in the list, its versions,
    // selected; a second deletion or forgetDeletion() makes the first final.
    void undoDeletion()
    {
        Fixture f;
        auto store = f.open();
        const SQLDocument a = store->createDocument(u"a"_s, u"select 1;"_s);
        const SQLDocument b = store->createDocument(u"b"_s, u"select 2;"_s);
        store->saveVersion(a.id, u"v1"_s);
        const QList<SQLDocument> before = store->documents();
        QVERIFY(!store->undoDeletion());

        store->deleteDocument(a.id);
        QCOMPARE(store->lastDeletedName(), u"a"_s);
        QVERIFY(store->undoDeletion());
        QCOMPARE(store->documents(), before);
        QCOMPARE(store->versionsForDocument(a.id).size(), 1);
        QCOMPARE(store->selectedDocumentId(), a.id);
        QVERIFY(!store->undoDeletion());
        store->flush();
        QVERIFY(f.read(DataStore::versionsFileName).contains("v1"));

        store->deleteDocument(a.id);
        store->deleteDocument(b.id);
        QVERIFY(store->undoDeletion());
        QVERIFY(store->document(b.id));
        QVERIFY(!store->document(a.id));
        store->deleteDocument(b.id);
        store->forgetDeletion();
        QVERIFY(!store->undoDeletion());
        QVERIFY(!store->document(b.id));
    }

    void versions()
    {
        Fixture f;
        auto store = f.open();
        const QUuid id = store->documents().constFirst().id;
        QVERIFY(store->versionsForDocument(id).isEmpty());
        QVERIFY(!store->saveVersion(QUuid::createUuid(), u"x"_s));

        for (int n = 1; n <= 4; ++n) {
            store->updateDocumentContent(id, u"SELECT %1;"_s.arg(n));
            f.tick();
            QCOMPARE(store->saveVersion(id, u"note %1"_s.arg(n))->versionNumber, n);
        }
        const QDateTime createdAt = store->document(id)->createdAt;
        const QList<SQLVersion> listed = store->versionsForDocument(id);
        QCOMPARE(listed.constFirst().versionNumber, 4);
        QCOMPARE(listed.constLast().versionNumber, 1);
        QCOMPARE(store->selectedDocumentVersions(), listed);

        f.tick();
        store->restoreVersion(listed.at(1)); // version 3
        const SQLVersion restored = store->versionsForDocument(id).constFirst();
        QCOMPARE(restored.versionNumber, 5);
        QCOMPARE(restored.note, u"从 v3 恢复"_s);
        QCOMPARE(restored.content, u"SELECT 3;"_s);
        QCOMPARE(store->document(id)->content, u"SELECT 3;"_s);
        QCOMPARE(store->document(id)->updatedAt, f.now);
        QCOMPARE(store->document(id)->createdAt, createdAt);
        QCOMPARE(store->versions().value(id).size(), 5);

        // Saving twice without an edit makes two versions with one text.
        store->saveVersion(id, u"a"_s);
        store->saveVersion(id, u"b"_s);
        QCOMPARE(store->versionsForDocument(id).at(0).content, store->versionsForDocument(id).at(1).content);

        // Numbers restart after a clear; an empty list leaves no trace in the file.
        store->clearVersions(id);
        QVERIFY(store->versions().contains(id));
        store->flush();
        QCOMPARE(f.read(DataStore::versionsFileName), QByteArray("[\n\n]"));
        QCOMPARE(store->saveVersion(id, QString())->versionNumber, 1);

        // A restore of a version whose document is gone changes nothing.
        SQLVersion orphan = restored;
        orphan.documentId = QUuid::createUuid();
        const auto before = store->versions();
        store->restoreVersion(orphan);
        QCOMPARE(store->versions(), before);

        // Versions survive a restart, grouped and in order.
        store.reset();
        store = f.open();
        QCOMPARE(store->versionsForDocument(id).size(), 1);
    }

    void knowledgeKeywordRules()
    {
        Fixture f;
        auto store = f.open();
        QVERIFY(store->knowledgeAutoRecordingEnabled());
        store->setKnowledgeAutoRecordingEnabled(false);
        QVERIFY(!f.open()->knowledgeAutoRecordingEnabled());
        store->setKnowledgeAutoRecordingEnabled(true);

        const auto keywords = DataStore::extractKnowledgeKeywords(u"PostgreSQL 14.2 without CTE; MySQL表"_s);
        for (const char *k : {"postgres", "postgresql", "with", "cte", "mysql", "__version__"})
            QVERIFY2(keywords.contains(QString::fromUtf8(k)), k);
        QVERIFY(!DataStore::extractKnowledgeKeywords(u"MySQL表"_s).contains(u"mysql表"_s));
        QVERIFY(DataStore::extractKnowledgeKeywords(u"MySQL表"_s).contains(u"mysql"_s));

        const KnowledgeItem mysql = store->addKnowledgeItem(KnowledgeCategory::DatabaseVersion,
                                                            u"MySQL 5.7"_s, KnowledgeSource::UserAdded);
        const KnowledgeItem second = store->addKnowledgeItem(KnowledgeCategory::DatabaseVersion,
                                                             u"mysql on prod"_s, KnowledgeSource::AiDetected);
        store->addKnowledgeItem(KnowledgeCategory::SyntaxConstraint, u"不支持 CTE"_s,
                                KnowledgeSource::UserAdded);

        const auto detected = DataStore::extractKnowledgeKeywords(u"mysql 8.0"_s);
        QCOMPARE(store->findConflictingKnowledgeItem(KnowledgeCategory::DatabaseVersion, detected)->id,
                 mysql.id);
        QVERIFY(!store->findConflictingKnowledgeItem(KnowledgeCategory::Other, detected));
        QVERIFY(store->findConflictingKnowledgeItem(KnowledgeCategory::SyntaxConstraint,
                                                    DataStore::extractKnowledgeKeywords(u"CTE 可用"_s)));
        // A shared version number alone is no conflict; nor is a text with no keyword.
        QVERIFY(!store->findConflictingKnowledgeItem(KnowledgeCategory::DatabaseVersion,
                                                     DataStore::extractKnowledgeKeywords(u"build 5.7"_s)));

        f.tick();
        store->updateKnowledgeItem(mysql.id, std::nullopt, u"mysql 8.0"_s);
        const KnowledgeItem updated = store->knowledgeItems().constFirst();
        QCOMPARE(updated.content, u"mysql 8.0"_s);
        QCOMPARE(updated.source, KnowledgeSource::UserAdded);
        QCOMPARE(updated.createdAt, mysql.createdAt);
        QCOMPARE(updated.updatedAt, f.now);
        QCOMPARE(store->knowledgeItems().size(), 3);

        f.tick();
        store->updateKnowledgeItem(second.id, std::nullopt, std::nullopt);
        QCOMPARE(store->knowledgeItems().at(1).updatedAt, f.now);
        store->deleteKnowledgeItem(second.id);
        store->deleteKnowledgeItem(QUuid::createUuid());
        QCOMPARE(store->knowledgeItems().size(), 2);
        store->flush();
        QCOMPARE(StoreCodec::decodeKnowledge(f.read(DataStore::knowledgeFileName))->size(), 2);
    }

    void notifiesOnlyRealChanges()
    {
        Fixture f;
        auto store = f.open();
        QSignalSpy selection(store.get(), &DataStore::selectedDocumentIdChanged);
        QSignalSpy documents(store.get(), &DataStore::documentsChanged);
        QSignalSpy updated(store.get(), &DataStore::documentUpdated);
        QSignalSpy knowledge(store.get(), &DataStore::knowledgeItemsChanged);
        const QUuid id = store->selectedDocumentId();
        store->setSelectedDocumentId(id);
        store->setDocumentName(id, QString());
        store->updateKnowledgeItem(QUuid::createUuid(), KnowledgeCategory::Other, u"x"_s);
        QCOMPARE(selection.count() + documents.count() + knowledge.count(), 0);
        store->updateDocumentContent(id, u"x"_s);
        QCOMPARE(documents.count(), 1);
        QCOMPARE(updated.count(), 1);
        QCOMPARE(updated.constFirst().constFirst().toUuid(), id);
        QCOMPARE(selection.count(), 0);
    }

    void damagedFilesAreKeptAside()
    {
        Fixture f;
        const QByteArray damagedDocuments = "[{\"id\": \"cut off";
        const QByteArray damagedKnowledge = R"([{"category":"foo"}])";
        f.write(DataStore::documentsFileName, damagedDocuments);
        f.write(DataStore::knowledgeFileName, damagedKnowledge);
        auto store = f.open();
        // Loading goes on: the sample is seeded, and both files were moved aside first.
        QCOMPARE(store->documents().size(), 1);
        QCOMPARE(store->setAsideFiles().size(), 2);
        store->saveData();
        store->flush();
        const QStringList kept = store->setAsideFiles();
        QVERIFY(kept.at(0).contains(u"sql_documents.json.damaged-20261123T100000Z"_s));
        QFile documents(kept.at(0));
        QVERIFY(documents.open(QIODevice::ReadOnly));
        QCOMPARE(documents.readAll(), damagedDocuments);
        QFile knowledge(kept.at(1));
        QVERIFY(knowledge.open(QIODevice::ReadOnly));
        QCOMPARE(knowledge.readAll(), damagedKnowledge);
        QVERIFY(StoreCodec::decodeDocuments(f.read(DataStore::documentsFileName)));

        // A second damage in the same second gets a name of its own.
        store.reset();
        f.write(DataStore::documentsFileName, damagedDocuments);
        store = f.open();
        QCOMPARE(store->setAsideFiles().size(), 1);
        QVERIFY(store->setAsideFiles().constFirst().endsWith(u"-2"_s));
    }

    void unchangedCollectionsAreNotRewritten()
    {
        Fixture f;
        {
            auto store = f.open();
            store->addKnowledgeItem(KnowledgeCategory::Other, u"fact"_s, KnowledgeSource::UserAdded);
        }
        const QDateTime knowledgeWritten = QFileInfo(f.path(DataStore::knowledgeFileName)).lastModified();
        const QDateTime versionsWritten = QFileInfo(f.path(DataStore::versionsFileName)).lastModified();
        QTest::qWait(20);
        auto store = f.open();
        store->updateDocumentContent(store->selectedDocumentId(), u"changed"_s);
        store->saveData();
        store->flush();
        QCOMPARE(QFileInfo(f.path(DataStore::knowledgeFileName)).lastModified(), knowledgeWritten);
        QCOMPARE(QFileInfo(f.path(DataStore::versionsFileName)).lastModified(), versionsWritten);
        QVERIFY(f.read(DataStore::documentsFileName).contains("changed"));
    }
};

QTEST_GUILESS_MAIN(TestDataStore)
#include "tst_datastore.moc"
