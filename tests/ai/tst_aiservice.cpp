#include "aiprompts.h"
#include "clock.h"
#include "servicefixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Ending = ChatTestServer::Ending;

class TestAIService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(makeTestCertificate()); }

    void signedRequestOverTls()
    {
        if (certificatePem.isEmpty())
            QSKIP("no openssl or no TLS");
        Fixture f(true);
        QFile recorded(QStringLiteral(VARNHOLT_TEST_VECTORS
                                      "/sse/openai-python/json_object_long_181_events.d61558011839.sse"));
        QVERIFY(recorded.open(QIODevice::ReadOnly));
        f.server.setReply({200, ChatTestServer::split(recorded.readAll(), 1000), Ending::Complete, {}});
        Clock::setNowFunction([] { return QDateTime::fromMSecsSinceEpoch(1763332800123, Qt::UTC); });
        const QList<AIMessage> history{AIMessage::create(AIMessageRole::User, u"你好"_s)};
        const Outcome outcome = await(
            f.service.sendMessageStreaming(u"你好"_s, u"SELECT 1;"_s, AIAssistantMode::Explain, history));
        Clock::setNowFunction({});
        QVERIFY(outcome.text.startsWith("ok:{\n    \"location\": \"San Francisco, CA\""_L1));
        QVERIFY(outcome.text.contains(u"18°C"_s));
        QCOMPARE(f.server.requests().size(), 1);
        const ChatTestServer::Request request = f.server.requests().first();
        QCOMPARE(request.target, "POST /api/chat");
        QCOMPARE(request.headers.value("content-type"), "application/json");
        QCOMPARE(request.headers.value("x-timestamp"), "1763332800123");
        QVERIFY(request.signatureValid);
        QVERIFY(!request.headers.contains("authorization"));
        QVERIFY(request.body.contains("\"content\":\"你好\""));
        const QJsonObject body = QJsonDocument::fromJson(request.body).object();
        QCOMPARE(body.value("stream"_L1), QJsonValue(true));
        QCOMPARE(body.value("messages"_L1).toArray().size(), 3);

        // Without the authority the certificate is refused, and nothing is sent.
        Fixture untrusted(true, false);
        QVERIFY(await(untrusted.service.sendMessage(u"x"_s, {}, AIAssistantMode::FreeChat, {}))
                    .text.startsWith("Network error: "_L1));
        QVERIFY(untrusted.server.requests().isEmpty());
    }

    void exchange_data()
    {
        QTest::addColumn<bool>("streaming");
        QTest::addColumn<int>("status");
        QTest::addColumn<QList<QByteArray>>("pieces");
        QTest::addColumn<Ending>("ending");
        QTest::addColumn<QStringList>("chunks");
        QTest::addColumn<QString>("outcome");
        const auto oneShot = [](const char *name, int status, const QByteArray &body, const char *outcome) {
            QTest::newRow(name) << false << status << QList<QByteArray>{body} << Ending::Complete
                                << QStringList() << QString::fromUtf8(outcome);
        };
        const QByteArray reply =
            R"({"choices":[{"message":{"role":"assistant","content":" Hi [KNOWLEDGE:其他:x]"}}]})";
        const char *undecodable =
            "Network error: The data couldn't be read because it isn't in the correct format.";
        oneShot("message", 200, reply, "ok:Hi");
        oneShot("empty content", 200, R"({"choices":[{"message":{"role":"assistant","content":""}}]})",
                "ok:");
        oneShot("not JSON", 200, "<html>", undecodable);
        oneShot("numeric error code", 200, R"({"error":{"code":401}})", undecodable);
        oneShot("error and choices", 200, R"({"error":{"message":"quota"},"choices":[]})",
                "API error: quota");
        oneShot("error without message", 200, R"({"error":{"code":"x"}})", "API error: 未知错误");
        oneShot("no choices", 200, R"({"choices":[]})", "AI returned no content");
        oneShot("choice without message", 200, R"({"choices":[{"message":null}]})", "AI returned no content");
        oneShot("401 bad signature", 401, R"({"error":{"message":"bad signature"}})",
                "API error: bad signature");
        oneShot("500 text", 500, "oops", "API error: HTTP 500");
        oneShot("503 busy", 503, R"({"error":{"message":"busy"}})", "API error: busy");
        oneShot("403 without error", 403, "{}", "API error: HTTP 403");
        oneShot("201 is no success", 201, reply, "API error: HTTP 201");
        oneShot("body over 8 MB", 200, QByteArray(8 * 1024 * 1024 + 1, ' '),
                "Network error: The response is larger than 8 MB.");

        const auto stream = [](const char *name, QList<QByteArray> pieces, const QStringList &chunks,
                               const char *outcome, Ending ending = Ending::Complete, int status = 200) {
            QTest::newRow(name) << true << status << pieces << ending << chunks << QString::fromUtf8(outcome);
        };
        const QByteArray hel = delta("Hel");
        const QByteArray lo = delta("lo");
        const QByteArray chinese = delta("你好") + "\n";
        stream("LF, role-only first delta, null and empty content",
               {R"(data: {"choices":[{"delta":{"role":"assistant","content":null}}]})"
                "\n\n" +
                    hel + "\n\n",
                delta("") + "\n\n" + lo + "\n\ndata: [DONE]\n\n"},
               {u"Hel"_s, u"Hel"_s, u"Hello"_s}, "ok:Hello");
        stream("CRLF, no [DONE]", {hel + "\r\n\r\n", lo + "\r\n"}, {u"Hel"_s, u"Hello"_s}, "ok:Hello");
        stream("CR, line end split", {hel + "\r", "\r" + lo + "\r", "\n" + delta("!")},
               {u"Hel"_s, u"Hello"_s, u"Hello!"_s}, "ok:Hello!");
        stream("UTF-8 character split",
               {chinese.left(chinese.indexOf("你") + 1), chinese.mid(chinese.indexOf("你") + 1)}, {u"你好"_s},
               "ok:你好");
        stream("usage chunk, data after [DONE]",
               {hel + "\n" +
                    R"(data: {"choices":[],"usage":{"total_tokens":3}})"
                    "\n",
                "data: [DONE]\n" + lo + "\n"},
               {u"Hel"_s}, "ok:Hel");
        stream("marker only", {delta("[KNOWLEDGE:其他:x]")}, {u"[KNOWLEDGE:其他:x]"_s}, "ok:");
        stream("only [DONE]", {"data: [DONE]\n\n"}, {}, "AI returned no content");
        stream("error object",
               {R"(data: {"error":{"message":"x"}})"
                "\n\ndata: [DONE]\n\n"},
               {}, "AI returned no content");
        stream("status 500", {R"({"error":{"message":"busy"}})"}, {}, "API error: HTTP 500", Ending::Complete,
               500);
        stream("dropped mid-stream", {hel + "\n"}, {u"Hel"_s}, "Network error: ", Ending::Drop);
        stream("stalled", {hel + "\n"}, {u"Hel"_s}, "Network error: The request timed out.", Ending::Stall);
        QTest::newRow("stalled one-shot") << false << 200 << QList<QByteArray>() << Ending::Stall
                                          << QStringList() << u"Network error: The request timed out."_s;
        stream("line over 1 MB", {"data: " + QByteArray(1024 * 1024, 'x')}, {},
               "Network error: A line of the response is longer than 1 MB.");
        const QByteArray mega = delta(QByteArray(1000 * 1024, 'x')) + "\n";
        stream("text over 8 MB", QList<QByteArray>(9, mega), {u"(8 chunks)"_s},
               "Network error: The response is larger than 8 MB.");
    }
    void exchange()
    {
        QFETCH(bool, streaming);
        QFETCH(int, status);
        QFETCH(QList<QByteArray>, pieces);
        QFETCH(Ending, ending);
        QFETCH(QStringList, chunks);
        QFETCH(QString, outcome);
        Fixture f;
        QList<ChatTestServer::Piece> timed;
        for (const QByteArray &piece : pieces)
            timed.append({piece, 20});
        f.server.setReply({status, timed, ending, {}});
        QSignalSpy loading(&f.service, &AIService::isLoadingChanged);
        QSignalSpy streamText(&f.service, &AIService::currentStreamTextChanged);
        AIChatCall *call = streaming
                               ? f.service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {})
                               : f.service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {});
        QVERIFY(f.service.isLoading());
        const Outcome result = await(call);
        // An outcome ending in a blank is followed by the platform's own text.
        QVERIFY2(outcome.endsWith(u' ') ? result.text.startsWith(outcome) : result.text == outcome,
                 qPrintable(result.text));
        if (chunks.value(0).startsWith(u'('))
            QCOMPARE(u"(%1 chunks)"_s.arg(result.chunks.size()), chunks.first());
        else
            QCOMPARE(result.chunks, chunks);
        QCOMPARE(f.service.currentStreamText(), result.chunks.isEmpty() ? QString() : result.chunks.last());
        QCOMPARE(streamText.size(), QSet<QString>(result.chunks.cbegin(), result.chunks.cend()).size());
        QCOMPARE(loading.size(), 2);
        QVERIFY(!f.service.isLoading());
        QVERIFY(f.server.requests().constFirst().signatureValid);
    }

    // The time-out is a time without data, not a limit on the whole exchange.
    void slowStreamOutlastsTheTimeout()
    {
        Fixture f;
        f.server.setReply(
            {200, QList<ChatTestServer::Piece>(4, {delta("a") + "\n", 400}), Ending::Complete, {}});
        QCOMPARE(await(f.service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {})).text,
                 u"ok:aaaa"_s);
    }

    // The panel shows what a reply taught beside that reply, so the facts travel with its call.
    void callCarriesTheFactsItsReplyRecorded()
    {
        Fixture f;
        f.server.setReply({200,
                           {{delta("Use LIMIT.\\n\\n[KNOWLEDGE:数据库版本:MySQL 5.7]") + "\n", 10}},
                           Ending::Complete,
                           {}});
        AIChatCall *call = f.service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {});
        QList<KnowledgeChange> recorded;
        connect(call, &AIChatCall::finished, this, [&] { recorded = call->recordedKnowledge(); });
        QCOMPARE(await(call).text, u"ok:Use LIMIT."_s);
        QCOMPARE(recorded.size(), 1);
        QCOMPARE(recorded.first().content, u"MySQL 5.7"_s);
        QCOMPARE(recorded.first().itemId, f.store.knowledgeItems().constFirst().id);
    }

    void cancelEndsTheCallAtOnce()
    {
        Fixture f;
        f.server.setReply({200, {{delta("a") + "\n", 10}, {delta("b") + "\n", 300}}, Ending::Complete, {}});
        AIChatCall *call = f.service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {});
        QSignalSpy failed(call, &AIChatCall::failed);
        connect(call, &AIChatCall::chunkReceived, call, [&] {
            call->cancel();
            QVERIFY(failed.isEmpty());
        });
        const Outcome outcome = await(call);
        QCOMPARE(outcome.chunks, QStringList{u"a"_s});
        QVERIFY(outcome.error.isCancellation());
        QCOMPARE(outcome.text, u"Network error: cancelled"_s);
        QVERIFY(!f.service.isLoading());
    }

    void redirectsStayOnTheHost()
    {
        Fixture f;
        ChatTestServer elsewhere(AIServiceConfig().signingKey);
        f.server.setReply(
            {307,
             {},
             Ending::Complete,
             elsewhere.baseUrl().replace("127.0.0.1"_L1, "localhost"_L1).toUtf8() + "/api/chat"});
        QCOMPARE(await(f.service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {})).text,
                 u"Network error: Insecure redirect"_s);
        QVERIFY(elsewhere.requests().isEmpty());
    }

    void unconfigured_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("chat");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("empty") << QString() << QString()
                               << u"Invalid AI configuration, please check settings"_s;
        QTest::newRow("upper-case scheme") << u"HTTPS://x.org"_s << u"https://x.org/api/chat"_s
                                           << u"Invalid AI configuration, please check settings"_s;
        QTest::newRow("bad chat address")
            << u"https://x.org"_s << u"https://x .org/api/chat"_s << u"Invalid API address"_s;
        QTest::newRow("not HTTP") << u"https://x.org"_s << u"ftp://x.org/api/chat"_s
                                  << u"Invalid server response"_s;
    }
    void unconfigured()
    {
        QFETCH(QString, base);
        QFETCH(QString, chat);
        QFETCH(QString, outcome);
        Fixture f;
        AIServiceConfig config;
        config.proxyBaseURL = base;
        config.proxyChatURL = chat;
        AIService service(&f.store, &f.language, config);
        QSignalSpy loading(&service, &AIService::isLoadingChanged);
        QCOMPARE(await(service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {})).text,
                 outcome);
        // Only a call that got as far as sending touches the state.
        QCOMPARE(loading.size(), outcome.startsWith("Invalid server"_L1) ? 2 : 0);
        QSignalSpy tested(service.testConnection(), &AIConnectionTest::finished);
        QVERIFY(tested.wait());
        const bool named = !outcome.startsWith("Invalid AI"_L1);
        QCOMPARE(tested.first(),
                 (QVariantList{false, named ? outcome : u"Please complete API configuration first"_s}));
    }

    void connectionTest_data()
    {
        QTest::addColumn<AppLanguage>("language");
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QVariantList>("result");
        QTest::newRow("short") << AppLanguage::En << u"Hello there!"_s
                               << QVariantList{true,
                                               u"Connection successful! AI response: Hello there!..."_s};
        const QString fifty = u"e\u0301👍🏽"_s.repeated(25);
        QTest::newRow("fifty characters")
            << AppLanguage::ZhHans << fifty
            << QVariantList{true, QString(u"连接成功！ AI 回复: "_s + fifty + u"..."_s)};
        QTest::newRow("longer") << AppLanguage::Ja << u"あ"_s.repeated(60)
                                << QVariantList{true, QString(u"接続成功！ AI の応答: "_s +
                                                              u"あ"_s.repeated(50) + u"..."_s)};
        QTest::newRow("refused") << AppLanguage::En << QString()
                                 << QVariantList{false, u"API error: HTTP 500"_s};
    }
    void connectionTest()
    {
        QFETCH(AppLanguage, language);
        QFETCH(QString, reply);
        QFETCH(QVariantList, result);
        Fixture f;
        f.language.setCurrentLanguage(language);
        f.server.setReply({reply.isEmpty() ? 500 : 200, {{messageBody(reply), 0}}, Ending::Complete, {}});
        QSignalSpy finished(f.service.testConnection(), &AIConnectionTest::finished);
        QVERIFY(finished.wait());
        QCOMPARE(finished.first(), result);
        const QJsonObject body = QJsonDocument::fromJson(f.server.requests().first().body).object();
        QCOMPARE(body.value("messages"_L1).toArray().last().toObject().value("content"_L1).toString(),
                 u"请用一句话回复：你好"_s);
        QCOMPARE(body.value("stream"_L1), QJsonValue(false));
    }

    void basePrompts()
    {
        // A word that only the prompt of its mode holds, in en, zh-Hans and ja.
        const QList<std::pair<AIAssistantMode, QStringList>> words{
            {AIAssistantMode::Explain, {u"teaching"_s, u"教学"_s, u"教育"_s}},
            {AIAssistantMode::Optimize, {u"optimization expert"_s, u"优化专家"_s, u"最適化エキスパート"_s}},
            {AIAssistantMode::FixError, {u"debugging"_s, u"调试"_s, u"デバッグ"_s}},
            {AIAssistantMode::FreeChat, {u"friendly"_s, u"友好"_s, u"フレンドリー"_s}}};
        const QList<AppLanguage> languages{AppLanguage::En, AppLanguage::ZhHans, AppLanguage::Ja};
        for (const auto &[mode, word] : words) {
            for (qsizetype i = 0; i < languages.size(); ++i) {
                const QString prompt = AIPrompts::basePrompt(mode, languages[i]);
                QVERIFY(prompt.section(u'\n', 0, 0).contains(word[i]));
                // Only the Chinese prompts leave the language of the answer unsaid.
                const bool zh = languages[i] == AppLanguage::ZhHans;
                QCOMPARE(prompt.count(u'\n'), 12 + (mode == AIAssistantMode::FixError) + !zh);
                const QString last = prompt.section(u'\n', -1);
                QCOMPARE(last == u"- You must respond in English only"_s ||
                             last == u"- 必ず日本語で回答してください"_s,
                         !zh);
            }
        }
    }

    void knowledgeBlock()
    {
        Fixture f;
        f.desktopLanguages = {u"ja-JP"_s, u"en-US"_s};
        QCOMPARE(f.service.buildSystemPrompt(AIAssistantMode::Optimize),
                 AIPrompts::basePrompt(AIAssistantMode::Optimize, AppLanguage::Ja) +
                     AIPrompts::markerInstruction(AppLanguage::Ja));
        for (const auto &[category, content] : {std::pair{KnowledgeCategory::Other, u"o1"_s},
                                                {KnowledgeCategory::TableType, u"Hive 表"_s},
                                                {KnowledgeCategory::Other, u"o2"_s},
                                                {KnowledgeCategory::DatabaseVersion, u"MySQL 5.7"_s}})
            f.store.addKnowledgeItem(category, content, KnowledgeSource::UserAdded);
        QCOMPARE(
            AIPrompts::knowledgeBlock(f.store.knowledgeItems(), AppLanguage::En),
            u"\n\n[User Environment & Preferences]\nThe following are confirmed user environment info and "
            u"preferences. Please strictly follow them:\n"
            u"\n▸ Database Version:\n  - MySQL 5.7\n"
            u"\n▸ Table Type:\n  - Hive 表\n"
            u"\n▸ Other:\n  - o1\n  - o2\n"_s);
        // The service follows the language in force: "system" with a Japanese desktop.
        const QString japanese = f.service.buildKnowledgeBlock();
        QVERIFY(japanese.startsWith(
            u"\n\n【ユーザー環境と設定】\n以下はユーザーが確認した環境情報と設定です。"_s));
        QVERIFY(japanese.contains(u"\n▸ テーブルタイプ:\n  - Hive 表\n"_s));
        QCOMPARE(f.service.buildSystemPrompt(AIAssistantMode::Explain),
                 AIPrompts::basePrompt(AIAssistantMode::Explain, AppLanguage::Ja) + japanese +
                     AIPrompts::markerInstruction(AppLanguage::Ja));
        f.language.setCurrentLanguage(AppLanguage::ZhHans);
        QVERIFY(f.service.buildKnowledgeBlock().startsWith(u"\n\n【用户环境与偏好】\n"_s));
    }

    void assembleMessages()
    {
        Fixture f;
        QList<AIMessage> history;
        for (int i = 0; i < 15; ++i)
            history.append(AIMessage::create(
                QList{AIMessageRole::User, AIMessageRole::Assistant, AIMessageRole::System}[i % 3],
                QString::number(i)));
        const QList<OpenAIChatMessage> messages =
            f.service.assembleMessages(u"Why?"_s, u"SELECT 1;"_s, AIAssistantMode::FixError, history);
        QCOMPARE(messages.size(), 12);
        QCOMPARE(messages.first(),
                 (OpenAIChatMessage{u"system"_s, f.service.buildSystemPrompt(AIAssistantMode::FixError)}));
        // The last ten records as they stand, oldest first.
        for (int i = 0; i < 10; ++i)
            QCOMPARE(messages.at(i + 1),
                     (OpenAIChatMessage{AIEnums::rawValue(history.at(i + 5).role), QString::number(i + 5)}));
        QCOMPARE(
            messages.last(),
            (OpenAIChatMessage{u"user"_s, u"当前 SQL 内容：\n```sql\nSELECT 1;\n```\n\n用户问题：Why?"_s}));
        QCOMPARE(f.service.assembleMessages(u"Why?"_s, u""_s, AIAssistantMode::FixError, {}).last().content,
                 u"Why?"_s);
        QCOMPARE(f.service.assembleMessages(u"Why?"_s, {}, AIAssistantMode::FixError, {}).size(), 2);
    }

    void markers_data()
    {
        QTest::addColumn<bool>("recording");
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<int>("changes");
        QTest::newRow("at the end") << true << u"Use LIMIT.\n\n[KNOWLEDGE:数据库版本:MySQL 5.7]"_s
                                    << u"Use LIMIT."_s << QStringList{u"databaseVersion:MySQL 5.7"_s} << 1;
        QTest::newRow("groups trimmed") << true << u"[KNOWLEDGE: 表类型 :\tHive\u3000]"_s << u""_s
                                        << QStringList{u"tableType:Hive"_s} << 1;
        QTest::newRow("English word")
            << true << u"[KNOWLEDGE:database:MySQL]"_s << u""_s << QStringList{u"other:MySQL"_s} << 1;
        QTest::newRow("mid-sentence, two markers")
            << true << u" a[KNOWLEDGE:偏好设置:小写]b [KNOWLEDGE:语法限制:a:b]\n"_s << u"ab"_s
            << QStringList{u"preference:小写"_s, u"syntaxConstraint:a:b"_s} << 2;
        QTest::newRow("line breaks kept")
            << true << u"[KNOWLEDGE:其他:\nx\n]"_s << u""_s << QStringList{u"other:\nx\n"_s} << 1;
        QTest::newRow("no match") << true << u"[KNOWLEDGE::x] [KNOWLEDGE:a:] [knowledge:a:b] [KNOWLEDGE:a:b"_s
                                  << u"[KNOWLEDGE::x] [KNOWLEDGE:a:] [knowledge:a:b] [KNOWLEDGE:a:b"_s
                                  << QStringList() << 0;
        QTest::newRow("recording off")
            << false << u"x [KNOWLEDGE:表类型:Hive]"_s << u"x"_s << QStringList() << 0;
        QTest::newRow("replaced in its category")
            << true
            << u"[KNOWLEDGE:数据库版本:MySQL 5.7][KNOWLEDGE:其他:mysql 8][KNOWLEDGE:数据库版本:mysql 8.0]"_s
            << u""_s << QStringList{u"databaseVersion:mysql 8.0"_s, u"other:mysql 8"_s} << 3;
        QTest::newRow("no keyword, no conflict") << true << u"[KNOWLEDGE:其他:x][KNOWLEDGE:其他:x]"_s << u""_s
                                                 << QStringList{u"other:x"_s, u"other:x"_s} << 2;
    }
    void markers()
    {
        QFETCH(bool, recording);
        QFETCH(QString, reply);
        QFETCH(QString, text);
        QFETCH(QStringList, items);
        QFETCH(int, changes);
        Fixture f;
        f.store.setKnowledgeAutoRecordingEnabled(recording);
        QSignalSpy recorded(&f.service, &AIService::knowledgeRecorded);
        QCOMPARE(f.service.extractKnowledgeMarkers(reply), text);
        QCOMPARE(f.items(), items);
        QCOMPARE(recorded.size(), changes ? 1 : 0);

        // Replaying the reported changes gives the store's items: each names what it replaced.
        QMap<QUuid, QString> replayed;
        const auto reported =
            changes ? recorded.first().first().value<QList<KnowledgeChange>>() : QList<KnowledgeChange>();
        QCOMPARE(reported.size(), changes);
        for (const KnowledgeChange &change : reported) {
            QCOMPARE(change.isNew, !replayed.contains(change.itemId));
            QCOMPARE(change.previousContent, replayed.value(change.itemId));
            replayed.insert(change.itemId, change.content);
        }
        for (const KnowledgeItem &item : f.store.knowledgeItems())
            QCOMPARE(replayed.take(item.id), item.content);
        QVERIFY(replayed.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAIService)
#include "tst_aiservice.moc"
