#include "aiservice.h"
#include "chattestserver.h"
#include "conversationcontroller.h"
#include "conversationstore.h"
#include "datastore.h"
#include "languagemanager.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Ending = ChatTestServer::Ending;

namespace {

QByteArray event(const QString &text)
{
    const QJsonObject choice{{u"delta"_s, QJsonObject{{u"content"_s, text}}}};
    return "data: " + QJsonDocument(QJsonObject{{u"choices"_s, QJsonArray{choice}}}).toJson(QJsonDocument::Compact) +
           "\n\n";
}

// A reply streamed in `pieces`, each after `delayMs`, then "[DONE]" unless it is cut off.
ChatTestServer::Reply streamed(const QStringList &pieces, int delayMs = 20, Ending ending = Ending::Complete)
{
    ChatTestServer::Reply reply{200, {}, ending, {}};
    for (const QString &piece : pieces)
        reply.pieces.append({event(piece), delayMs});
    if (ending == Ending::Complete)
        reply.pieces.append({"data: [DONE]\n\n", delayMs});
    return reply;
}

// A controller on temporary files, speaking to a proxy of its own.
struct Fixture
{
    Fixture()
    {
        AIServiceConfig config;
        config.proxyBaseURL = server.baseUrl();
        config.proxyChatURL = server.baseUrl() + u"/api/chat"_s;
        config.transferTimeout = 1s;
        service = std::make_unique<AIService>(store.get(), &language, config);
        conversations = std::make_unique<ConversationStore>(store.get());
        open();
    }
    ~Fixture()
    {
        controller.reset();
        store->flush();
    }
    // A new controller, as when the panel opens again or the application starts again.
    void open()
    {
        controller.reset();
        controller = std::make_unique<ConversationController>(store.get(), service.get(), conversations.get(),
                                                              &language);
        controller->setCurrentSQL(u"SELECT * FROM users;"_s);
    }
    QUuid document() const { return store->selectedDocumentId(); }
    [[nodiscard]] QStringList shown() const
    {
        QStringList lines;
        for (const ConversationMessage &entry : controller->messages()->messages())
            lines.append(AIEnums::rawValue(entry.message.role) + u": "_s + entry.message.content);
        return lines;
    }
    [[nodiscard]] QStringList stored(const QUuid &id)
    {
        store->flush();
        QStringList lines;
        for (const ConversationMessage &entry : conversations->load(id))
            lines.append(AIEnums::rawValue(entry.message.role) + u": "_s + entry.message.content);
        return lines;
    }
    // The messages of the last request, role and content.
    [[nodiscard]] QJsonArray lastRequestMessages() const
    {
        return QJsonDocument::fromJson(server.requests().constLast().body).object().value("messages"_L1).toArray();
    }
    bool waitForReply() const
    {
        return QTest::qWaitFor([this] { return !controller->isStreaming(); }, 5000);
    }
    bool waitForText() const
    {
        return QTest::qWaitFor([this] { return !controller->streamingContent().isEmpty(); }, 5000);
    }

    QTemporaryDir dir;
    QSettings settings{dir.filePath(u"settings.ini"_s), QSettings::IniFormat};
    std::unique_ptr<DataStore> store = std::make_unique<DataStore>(dir.filePath(u"data"_s), &settings);
    LanguageManager language{&settings, [] { return QStringList{u"en-US"_s}; }};
    ChatTestServer server{AIServiceConfig().signingKey};
    std::unique_ptr<AIService> service;
    std::unique_ptr<ConversationStore> conversations;
    std::unique_ptr<ConversationController> controller;
};

const QString note = u"\n\n*[Output interrupted]*"_s;

} // namespace

// The panel's rules against a real proxy on 127.0.0.1 and real files.
class TestConversationController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void quickActionToAStoredReply()
    {
        Fixture f;
        f.server.setReply(streamed({u"It lists "_s, u"every user."_s}));
        QSignalSpy chunks(f.controller.get(), &ConversationController::streamingContentChanged);
        f.controller->handleQuickAction(AIAssistantMode::Explain);
        // The question is kept before the reply comes.
        QCOMPARE(f.stored(f.document()), QStringList{u"user: Please explain the meaning and purpose of this SQL"_s});
        QVERIFY(f.controller->isStreaming());
        QVERIFY(f.waitForReply());
        QVERIFY(chunks.size() >= 2);
        const QStringList expected{u"user: Please explain the meaning and purpose of this SQL"_s,
                                   u"assistant: It lists every user."_s};
        QCOMPARE(f.shown(), expected);
        QCOMPARE(f.stored(f.document()), expected);
        QVERIFY(f.controller->streamingContent().isEmpty());
        QCOMPARE(f.controller->streamingBlocks()->rowCount(), 0);

        // The request: the explain prompt, the history ending in the question, the wrapped question.
        const QJsonArray sent = f.lastRequestMessages();
        QCOMPARE(sent.size(), 3);
        QVERIFY(sent.at(0)["content"_L1].toString().startsWith(u"You are a professional SQL teaching assistant"_s));
        QCOMPARE(sent.at(1)["content"_L1].toString(), u"Please explain the meaning and purpose of this SQL"_s);
        QCOMPARE(sent.at(2)["content"_L1].toString(),
                 u"当前 SQL 内容：\n```sql\nSELECT * FROM users;\n```\n\n用户问题：Please explain the meaning and purpose of this SQL"_s);

        // Typed text after a quick action goes out in its mode; Return sends, the field empties.
        f.server.setReply(streamed({u"ok"_s}));
        f.controller->setInputText(u"  and why? "_s);
        f.controller->submitInput();
        QVERIFY(f.controller->inputText().isEmpty());
        QVERIFY(f.waitForReply());
        QVERIFY(f.lastRequestMessages().at(0)["content"_L1].toString().startsWith(u"You are a professional SQL teaching"_s));
        QCOMPARE(f.shown().at(2), u"user:   and why? "_s);

        // The conversation is there again for a new panel, and after a restart.
        f.open();
        QCOMPARE(f.shown().size(), 4);
        QCOMPARE(f.controller->selectedMode(), AIAssistantMode::FreeChat);
    }

    void nothingIsSentWithoutTextOrWhileAReplyIsUnderWay()
    {
        Fixture f;
        f.controller->submitInput();
        f.controller->sendInput();
        f.controller->setCurrentSQL(QString());
        f.controller->handleQuickAction(AIAssistantMode::Optimize);
        QCOMPARE(f.controller->selectedMode(), AIAssistantMode::Optimize);
        QVERIFY(f.shown().isEmpty());

        f.server.setReply(streamed({u"a"_s, u"b"_s}, 100));
        f.controller->setInputText(u"first"_s);
        f.controller->submitInput();
        f.controller->setInputText(u"second"_s);
        f.controller->submitInput();
        QCOMPARE(f.controller->inputText(), u"second"_s);
        QVERIFY(f.waitForReply());
        QCOMPARE(f.server.requests().size(), 1);
    }

    void stopKeepsWhatArrivedWithTheNote()
    {
        Fixture f;
        // Before the first words: nothing is added.
        f.server.setReply(streamed({u"late"_s}, 300));
        f.controller->setInputText(u"q"_s);
        f.controller->sendInput();
        f.controller->stopStreaming();
        QVERIFY(!f.controller->isStreaming());
        QTest::qWait(500);
        QCOMPARE(f.shown(), QStringList{u"user: q"_s});

        // Mid-stream: the words so far, with the note, and nothing recorded from a marker in them.
        f.server.setReply(streamed({u"[KNOWLEDGE:表类型:Hive] Part"_s, u" two"_s}, 150));
        f.controller->setInputText(u"q2"_s);
        f.controller->sendInput();
        QVERIFY(f.waitForText());
        f.controller->stopStreaming();
        QTest::qWait(400);
        QCOMPARE(f.shown().last(), u"assistant: [KNOWLEDGE:表类型:Hive] Part"_s + note);
        QVERIFY(f.store->knowledgeItems().isEmpty());
        QCOMPARE(f.stored(f.document()).size(), 3);
    }

    void aSwitchOrAClosedPanelKeepsTheReplyWithItsDocument()
    {
        Fixture f;
        const QUuid first = f.document();
        const QUuid second = f.store->createDocument(u"Second"_s, u"SELECT 2;"_s).id;
        f.store->setSelectedDocumentId(first);
        QSignalSpy switched(f.controller.get(), &ConversationController::conversationSwitched);

        f.server.setReply(streamed({u"For the first"_s, u" document"_s}, 150));
        f.controller->setInputText(u"q"_s);
        f.controller->sendInput();
        QVERIFY(f.waitForText());
        f.store->setSelectedDocumentId(second);
        QCOMPARE(switched.size(), 1);
        QVERIFY(!f.controller->isStreaming());
        QVERIFY(f.shown().isEmpty());
        QCOMPARE(f.stored(first), (QStringList{u"user: q"_s, u"assistant: For the first"_s + note}));

        // The panel goes while a reply for the second document is written.
        f.controller->setInputText(u"q"_s);
        f.controller->sendInput();
        QVERIFY(f.waitForText());
        f.controller.reset();
        QCOMPARE(f.stored(second), (QStringList{u"user: q"_s, u"assistant: For the first"_s + note}));

        // Looking at a document does not write its conversation.
        const QUuid third = f.store->createDocument(u"Third"_s, u"SELECT 3;"_s).id;
        f.open();
        f.store->setSelectedDocumentId(first);
        f.store->flush();
        QVERIFY(!QFile::exists(f.conversations->filePath(third)));

        // With nothing selected nothing is shown or kept.
        f.open();
        f.store->setSelectedDocumentId(QUuid());
        QVERIFY(!f.controller->hasDocument());
        QVERIFY(f.shown().isEmpty());
        f.controller->setInputText(u"lost?"_s);
        f.controller->sendInput();
        QVERIFY(f.waitForReply());
        QCOMPARE(f.stored(first).size(), 2);
        QCOMPARE(f.stored(second).size(), 2);
    }

    void everyFailureIsAnAlertAndTheQuestionStays_data()
    {
        QTest::addColumn<ChatTestServer::Reply>("reply");
        QTest::addColumn<QString>("alert");
        QTest::addColumn<QString>("kept");
        QTest::newRow("refused") << ChatTestServer::Reply{500, {{"busy", 0}}, Ending::Complete, {}}
                                 << u"API error: HTTP 500"_s << QString();
        QTest::newRow("no content") << ChatTestServer::Reply{200, {{"data: [DONE]\n\n", 0}}, Ending::Complete, {}}
                                    << u"AI returned no content"_s << QString();
        QTest::newRow("stalled") << streamed({}, 0, Ending::Stall) << u"Network error: The request timed out."_s
                                 << QString();
        // A reply cut off on the way is kept, as a stopped one is.
        QTest::newRow("cut off") << streamed({u"Half a [KNOWLEDGE:其他:x]"_s}, 20, Ending::Drop)
                                 << u"Network error: "_s << u"assistant: Half a [KNOWLEDGE:其他:x]"_s + note;
    }
    void everyFailureIsAnAlertAndTheQuestionStays()
    {
        QFETCH(ChatTestServer::Reply, reply);
        QFETCH(QString, alert);
        QFETCH(QString, kept);
        Fixture f;
        f.server.setReply(reply);
        f.controller->setInputText(u"why?"_s);
        f.controller->sendInput();
        QVERIFY(QTest::qWaitFor([&] { return !f.controller->errorMessage().isEmpty(); }, 5000));
        QVERIFY2(f.controller->errorMessage().startsWith(alert), qPrintable(f.controller->errorMessage()));
        QVERIFY(!f.controller->isStreaming());
        QStringList expected{u"user: why?"_s};
        if (!kept.isEmpty())
            expected.append(kept);
        QCOMPARE(f.stored(f.document()), expected);
        QVERIFY(f.store->knowledgeItems().isEmpty());
        f.controller->dismissError();
        QVERIFY(f.controller->errorMessage().isEmpty());
    }

    void withoutAConnectionTheUserIsToldAndTheQuestionStays()
    {
        Fixture f;
        f.service = std::make_unique<AIService>(f.store.get(), &f.language, AIServiceConfig());
        f.open();
        QVERIFY(!f.controller->isConfigured());
        f.language.setCurrentLanguage(AppLanguage::Ja);
        f.controller->setInputText(u"q"_s);
        f.controller->sendInput();
        QCOMPARE(f.controller->errorMessage(), u"設定で API を設定してください"_s);
        QVERIFY(!f.controller->isStreaming());
        QCOMPARE(f.stored(f.document()), QStringList{u"user: q"_s});
        QVERIFY(f.server.requests().isEmpty());
    }

    void whatARepliesTaughtIsKeptWithItAndCanBeUndone()
    {
        Fixture f;
        const KnowledgeItem older = f.store->addKnowledgeItem(KnowledgeCategory::DatabaseVersion, u"MySQL 5.7"_s,
                                                              KnowledgeSource::UserAdded);
        f.server.setReply(streamed({u"Noted.\n\n[KNOWLEDGE:数据库版本:MySQL 8.0]"_s,
                                    u"[KNOWLEDGE:表类型:Hive tables]"_s}));
        f.controller->setInputText(u"We moved to MySQL 8.0"_s);
        f.controller->sendInput();
        QVERIFY(f.waitForReply());
        QCOMPARE(f.shown().last(), u"assistant: Noted."_s);
        const ConversationMessage reply = f.controller->messages()->messages().constLast();
        QCOMPARE(reply.learned.size(), 2);
        QVERIFY(!reply.learned.at(0).change.isNew);
        QCOMPARE(reply.learned.at(0).change.previousContent, u"MySQL 5.7"_s);
        QVERIFY(reply.learned.at(1).change.isNew);

        const QModelIndex row = f.controller->messages()->index(1);
        const auto learned = [&] { return row.data(ConversationModel::LearnedRole).toList(); };
        QVERIFY(learned().at(0).toMap().value(u"canUndo"_s).toBool());

        // What was taught stays with the reply after a restart.
        f.open();
        QCOMPARE(f.controller->messages()->messages().constLast().learned, reply.learned);

        // Undo: the replaced item gets its text back, the new one goes; both lines say so.
        const QModelIndex reopened = f.controller->messages()->index(1);
        f.controller->undoLearnedFact(1, reply.learned.at(0).change.itemId.toString());
        f.controller->undoLearnedFact(1, reply.learned.at(1).change.itemId.toString());
        QCOMPARE(f.store->knowledgeItems().size(), 1);
        QCOMPARE(f.store->knowledgeItems().constFirst().id, older.id);
        QCOMPARE(f.store->knowledgeItems().constFirst().content, u"MySQL 5.7"_s);
        for (const QVariant &fact : reopened.data(ConversationModel::LearnedRole).toList()) {
            QVERIFY(fact.toMap().value(u"isUndone"_s).toBool());
            QVERIFY(!fact.toMap().value(u"canUndo"_s).toBool());
        }
        f.open();
        QVERIFY(f.controller->messages()->messages().constLast().learned.at(1).isUndone);
    }

    void undoTakesBackOnlyWhatTheReplyWrote()
    {
        Fixture f;
        f.server.setReply(streamed({u"[KNOWLEDGE:偏好设置:lower case]"_s}));
        f.controller->setInputText(u"q"_s);
        f.controller->sendInput();
        QVERIFY(f.waitForReply());
        const KnowledgeChange change = f.controller->messages()->messages().constLast().learned.constFirst().change;
        // The user edited the fact since: undoing would throw the edit away.
        f.store->updateKnowledgeItem(change.itemId, std::nullopt, u"snake case"_s);
        const QModelIndex row = f.controller->messages()->index(1);
        QVERIFY(!row.data(ConversationModel::LearnedRole).toList().at(0).toMap().value(u"canUndo"_s).toBool());
        f.controller->undoLearnedFact(1, change.itemId.toString());
        QCOMPARE(f.store->knowledgeItems().constFirst().content, u"snake case"_s);
    }

    void fixErrorAsksAboutThePastedError()
    {
        Fixture f;
        f.controller->handleQuickAction(AIAssistantMode::FixError);
        QVERIFY(f.controller->showErrorInput());
        QVERIFY(!f.controller->isEmptyState());
        QVERIFY(f.shown().isEmpty());
        f.server.setReply(streamed({u"Fixed."_s}));
        f.controller->setErrorInputText(u"ERROR 1054: Unknown column '%1'"_s);
        f.controller->submitErrorInput();
        QVERIFY(!f.controller->showErrorInput());
        QVERIFY(f.controller->errorInputText().isEmpty());
        QVERIFY(f.waitForReply());
        QCOMPARE(f.shown().first(),
                 u"user: Encountered an error when executing this SQL:\n\nERROR 1054: Unknown column '%1'\n\n"
                 "Please help analyze the cause and fix it"_s);
        QVERIFY(f.lastRequestMessages().at(0)["content"_L1].toString().startsWith(u"You are a professional SQL debugging"_s));

        // Without SQL, or without an error, nothing goes out.
        f.controller->handleQuickAction(AIAssistantMode::FixError);
        f.controller->submitErrorInput();
        f.controller->setErrorInputText(u"e"_s);
        f.controller->setCurrentSQL(QString());
        f.controller->submitErrorInput();
        QCOMPARE(f.server.requests().size(), 1);
        f.controller->closeErrorInput();
        QVERIFY(!f.controller->showErrorInput());
        QVERIFY(f.controller->errorInputText().isEmpty());
    }

    void clearingCanBeTakenBackUntilTheNextMessage()
    {
        Fixture f;
        f.server.setReply(streamed({u"a"_s}));
        f.controller->setInputText(u"q"_s);
        f.controller->sendInput();
        QVERIFY(f.waitForReply());
        f.controller->clearConversation();
        QVERIFY(f.shown().isEmpty());
        QVERIFY(f.stored(f.document()).isEmpty());
        QVERIFY(f.controller->canRestoreCleared());
        f.controller->restoreCleared();
        QCOMPARE(f.stored(f.document()).size(), 2);

        f.controller->clearConversation();
        f.controller->setInputText(u"new"_s);
        f.controller->sendInput();
        QVERIFY(!f.controller->canRestoreCleared());
        QVERIFY(f.waitForReply());
        QCOMPARE(f.shown().first(), u"user: new"_s);
    }

    // The disclosure shows exactly what goes out.
    void contextPreviewIsTheNextRequest()
    {
        Fixture f;
        f.store->addKnowledgeItem(KnowledgeCategory::TableType, u"Hive"_s, KnowledgeSource::UserAdded);
        f.server.setReply(streamed({u"a"_s}));
        for (int i = 0; i < 7; ++i) {
            f.controller->setInputText(u"question %1"_s.arg(i));
            const QVariantList preview = f.controller->contextPreview();
            f.controller->sendInput();
            QVERIFY(f.waitForReply());
            const QJsonArray sent = f.lastRequestMessages();
            QCOMPARE(preview.size(), sent.size());
            for (qsizetype j = 0; j < sent.size(); ++j) {
                QCOMPARE(preview.at(j).toMap().value(u"role"_s).toString(), sent.at(j)["role"_L1].toString());
                QCOMPARE(preview.at(j).toMap().value(u"content"_s).toString(), sent.at(j)["content"_L1].toString());
            }
        }
        QCOMPARE(f.lastRequestMessages().size(), 12);
    }
};

QTEST_GUILESS_MAIN(TestConversationController)
#include "tst_conversationcontroller.moc"
