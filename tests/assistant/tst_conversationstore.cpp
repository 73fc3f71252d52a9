#include "conversationstore.h"
#include "datastore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSemaphore>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

ConversationMessage reply(const QString &text, QList<LearnedFact> learned = {})
{
    return {AIMessage::create(AIMessageRole::Assistant, text), std::move(learned)};
}

mode_t modeOf(const QString &path)
{
    struct stat status
    {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 0777 : 0;
}

LearnedFact fact(bool isNew, const QString &content, const QString &previous = {})
{
    return {{QUuid::createUuid(), isNew, KnowledgeCategory::DatabaseVersion, content, previous}, false};
}

} // namespace

// Conversation files: their form, where they live, damaged ones, and deleted documents.
class TestConversationStore : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<DataStore> m_store;
    std::unique_ptr<ConversationStore> m_conversations;

    void reopen()
    {
        m_conversations.reset();
        m_store.reset();
        m_store = std::make_unique<DataStore>(m_dir.filePath(u"data"_s), m_settings.get());
        m_conversations = std::make_unique<ConversationStore>(m_store.get());
    }
    QUuid firstDocument() const { return m_store->documents().constFirst().id; }
    void write(const QUuid &id, const QByteArray &bytes) const
    {
        QDir().mkpath(m_conversations->folder());
        QFile file(m_conversations->filePath(id));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }

private Q_SLOTS:
    void init()
    {
        m_settings = std::make_unique<QSettings>(m_dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        reopen();
    }
    void cleanup()
    {
        m_conversations.reset();
        m_store.reset();
        QDir(m_dir.filePath(u"data"_s)).removeRecursively();
    }

    void roundTripInItsOwnPrivateFile()
    {
        const QUuid id = firstDocument();
        const QList<ConversationMessage> messages{
            ConversationMessage::fromMessage(AIMessage::create(AIMessageRole::User, u"解释 \"这段\"\nSQL"_s)),
            reply(u"Use LIMIT."_s, {fact(true, u"MySQL 5.7"_s), fact(false, u"mysql 8.0"_s, u"MySQL 5.7"_s)}),
            reply(QString())};
        const mode_t oldMask = ::umask(0);
        m_conversations->save(id, messages);
        m_store->flush();
        ::umask(oldMask);

        const QString path = m_conversations->filePath(id);
        QCOMPARE(QFileInfo(path).fileName(), id.toString(QUuid::WithoutBraces).toUpper() + u".json"_s);
        QCOMPARE(modeOf(path), mode_t(0600));
        QCOMPARE(modeOf(m_conversations->folder()), mode_t(0700));

        // Readers of plain messages read the file too; "learned" is an extra key.
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const std::optional<QList<AIMessage>> plain = AIMessage::decodeList(bytes);
        QVERIFY(plain);
        QCOMPARE(plain->size(), 3);
        QCOMPARE(plain->at(0).content, messages.at(0).message.content);
        const QJsonObject second = QJsonDocument::fromJson(bytes).array().at(1).toObject();
        QCOMPARE(second.value("learned"_L1).toArray().size(), 2);
        QVERIFY(!QJsonDocument::fromJson(bytes).array().at(0).toObject().contains("learned"_L1));

        reopen();
        QCOMPARE(m_conversations->load(id), messages);
        // An empty conversation is stored as such.
        m_conversations->save(id, {});
        m_store->flush();
        QFile empty(path);
        QVERIFY(empty.open(QIODevice::ReadOnly));
        QCOMPARE(empty.readAll(), "[]");
    }

    // Shown again before its file is written, a conversation shows its newest messages.
    void aSaveNotYetOnDiskIsReadFromMemory()
    {
        const QUuid id = firstDocument();
        m_conversations->save(id, {reply(u"old"_s)});
        m_store->flush();
        QSemaphore started;
        QSemaphore release;
        m_store->writeFileInBackground(m_dir.filePath(u"data/stall"_s), 1, [&] {
            started.release();
            release.acquire();
            return QByteArray();
        });
        started.acquire();
        m_conversations->save(id, {reply(u"old"_s), reply(u"new"_s)});
        QCOMPARE(m_conversations->load(id).size(), 2);
        release.release();
        m_store->flush();
        QCOMPARE(m_conversations->load(id).size(), 2);
    }

    void damagedFilesAreSetAsideAndTheConversationStartsEmpty_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("not JSON") << QByteArray("[{\"id\":");
        QTest::newRow("not an array") << QByteArray("{}");
        QTest::newRow("a message without timestamp")
            << QByteArray(R"([{"id":"6F9619FF-8B86-D011-B42D-00C04FC964FF","role":"user","content":"x"}])");
        QTest::newRow("an unknown role")
            << QByteArray(R"([{"id":"6F9619FF-8B86-D011-B42D-00C04FC964FF","role":"tool","content":"x","timestamp":1}])");
        QTest::newRow("invalid UTF-8") << QByteArray("[\"\xff\"]");
    }
    void damagedFilesAreSetAsideAndTheConversationStartsEmpty()
    {
        QFETCH(QByteArray, bytes);
        const QUuid id = firstDocument();
        write(id, bytes);
        QSignalSpy setAside(m_store.get(), &DataStore::setAsideFilesChanged);
        QVERIFY(m_conversations->load(id).isEmpty());
        QCOMPARE(setAside.size(), 1);
        const QString kept = m_store->setAsideFiles().constLast();
        QVERIFY(kept.startsWith(m_conversations->filePath(id) + u".damaged-"_s));
        QFile original(kept);
        QVERIFY(original.open(QIODevice::ReadOnly));
        QCOMPARE(original.readAll(), bytes);
        QVERIFY(!QFileInfo::exists(m_conversations->filePath(id)));

        // The next save writes a fresh file beside the kept one.
        m_conversations->save(id, {reply(u"new"_s)});
        m_store->flush();
        QCOMPARE(m_conversations->load(id).size(), 1);
    }

    void onlyRegularFilesAreRead()
    {
        const QUuid id = firstDocument();
        QDir().mkpath(m_conversations->folder());
        QVERIFY(::mkfifo(QFile::encodeName(m_conversations->filePath(id)).constData(), 0600) == 0);
        // Would block for ever if the FIFO were opened for a plain read.
        QVERIFY(m_conversations->load(id).isEmpty());
        QVERIFY(m_store->setAsideFiles().constLast().contains(u".damaged-"_s));
    }

    void aDamagedLearnedNoteIsDroppedAloneTheMessageStays()
    {
        const QUuid id = firstDocument();
        write(id, R"([{"id":"6F9619FF-8B86-D011-B42D-00C04FC964FF","role":"assistant","content":"ok","timestamp":1.5,
                       "learned":[{"itemId":"nope"},{"itemId":"6F9619FF-8B86-D011-B42D-00C04FC964FE","isNew":true,
                       "category":"tableType","content":"Hive","previousContent":"","undone":true}]}])");
        const QList<ConversationMessage> loaded = m_conversations->load(id);
        QCOMPARE(loaded.size(), 1);
        QCOMPARE(loaded.first().message.content, u"ok"_s);
        QCOMPARE(loaded.first().learned.size(), 1);
        QCOMPARE(loaded.first().learned.first().change.category, KnowledgeCategory::TableType);
        QVERIFY(loaded.first().learned.first().isUndone);
        QVERIFY(m_store->setAsideFiles().isEmpty());
    }

    void deletingTheDocumentRemovesItsConversation()
    {
        const QUuid id = firstDocument();
        m_conversations->save(id, {reply(u"a"_s)});
        // Removed behind the write queued before it.
        m_store->deleteDocument(id);
        m_store->flush();
        QVERIFY(!QFileInfo::exists(m_conversations->filePath(id)));
        QVERIFY(m_conversations->load(id).isEmpty());
    }

    // A deletion taken back brings the conversation back; one made final leaves nothing.
    void undoneDeletionBringsTheConversationBack()
    {
        const QUuid id = firstDocument();
        m_conversations->save(id, {reply(u"kept"_s)});
        m_store->deleteDocument(id);
        QVERIFY(m_store->undoDeletion());
        m_store->flush();
        QCOMPARE(m_conversations->load(id).size(), 1);
        QCOMPARE(m_conversations->load(id).first().message.content, u"kept"_s);

        m_store->deleteDocument(id);
        m_store->forgetDeletion();
        QVERIFY(!m_store->undoDeletion());
        m_store->flush();
        QVERIFY(!QFileInfo::exists(m_conversations->filePath(id)));
    }
};

QTEST_GUILESS_MAIN(TestConversationStore)
#include "tst_conversationstore.moc"
