#include "chattransport.h"
#include "qttranslations.h"
#include "servicefixture.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <QTimer>
#include <future>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Ending = ChatTestServer::Ending;

namespace {

// A streamed reply of `count` pieces "a", "b", … without [DONE], each `delayMs` after the last.
QList<ChatTestServer::Piece> letters(int count, int delayMs)
{
    QList<ChatTestServer::Piece> pieces;
    for (int i = 0; i < count; ++i)
        pieces.append({delta(QByteArray(1, char('a' + i))) + "\n", delayMs});
    return pieces;
}

} // namespace

// The chat call as its callers and the network may treat it: deleted from its own signals, cut
// off, answered with an error that holds its body back, dropped before answering.
class TestAIChatCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(makeTestCertificate()); }

    // A receiver may delete the call from any of its signals, or while it runs an event loop in
    // which the call goes on and ends.
    void deletedByAReceiver_data()
    {
        QTest::addColumn<QString>("signal");
        QTest::addColumn<int>("status");
        QTest::newRow("chunkReceived") << u"chunkReceived"_s << 200;
        QTest::newRow("finished") << u"finished"_s << 200;
        QTest::newRow("failed") << u"failed"_s << 500;
        QTest::newRow("isRunningChanged") << u"isRunningChanged"_s << 200;
        QTest::newRow("event loop in chunkReceived") << u"loop"_s << 200;
    }
    void deletedByAReceiver()
    {
        QFETCH(QString, signal);
        QFETCH(int, status);
        Fixture f;
        f.server.setReply({status, letters(3, 30), Ending::Complete, {}});
        QPointer<AIChatCall> call = f.service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {});
        QStringList chunks;
        bool nested = false;
        connect(call, &AIChatCall::chunkReceived, this, [&](const QString &text) {
            chunks.append(text);
            if (signal == "chunkReceived"_L1)
                delete call;
            else if (signal == "loop"_L1 && !nested) {
                // The rest of the reply, its end and the deferred deletion all happen in here.
                nested = true;
                QEventLoop loop;
                QTimer::singleShot(1000, &loop, &QEventLoop::quit);
                loop.exec();
            }
        });
        connect(call, &AIChatCall::finished, this, [&] {
            if (signal == "finished"_L1)
                delete call;
        });
        connect(call, &AIChatCall::failed, this, [&] {
            if (signal == "failed"_L1)
                delete call;
        });
        connect(call, &AIChatCall::isRunningChanged, this, [&] {
            if (signal == "isRunningChanged"_L1)
                delete call;
        });
        QTRY_VERIFY_WITH_TIMEOUT(call.isNull(), 5000);
        QTest::qWait(200);
        QVERIFY(!f.service.isLoading());
        QCOMPARE(chunks.value(0), status == 200 ? u"a"_s : QString());
        if (signal == "loop"_L1)
            QCOMPARE(chunks, (QStringList{u"a"_s, u"ab"_s, u"abc"_s}));
    }

    // A reply cut off after a 200 is a failure, whatever Qt calls the fault: here the compressed
    // body fails its check sum after the pieces have arrived, and the fact they mark is not
    // recorded.
    void cutReplyRecordsNothing()
    {
        Fixture f;
        QByteArray text = delta("MySQL 5.7 [KNOWLEDGE:数据库版本:MySQL 5.7]") + "\n";
        for (int i = 0; i < 200; ++i)
            text += delta(QByteArray::number(i * 7919)) + "\n";
        QByteArray compressed = qCompress(text, 9).mid(4);
        // The check sum at the end of the stream is wrong.
        compressed[compressed.size() - 1] = char(compressed.at(compressed.size() - 1) ^ 0x55);
        f.server.setExtraHeaders("Content-Encoding: deflate\r\n");
        const qsizetype half = compressed.size() / 2;
        f.server.setReply(
            {200, {{compressed.first(half), 10}, {compressed.sliced(half), 100}}, Ending::Complete, {}});
        const Outcome outcome =
            await(f.service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {}));
        QVERIFY(outcome.chunks.value(0).contains("[KNOWLEDGE:"_L1));
        QVERIFY2(outcome.text.startsWith("Network error: "_L1), qPrintable(outcome.text));
        QVERIFY(f.store.knowledgeItems().isEmpty());
    }

    // An error status is known at the headers: a server that holds the body back (here for
    // good) does not keep the user waiting for the 30-second time-out. A one-shot call waits a
    // few seconds for the body's message.
    void errorStatusJudgedAtTheHeaders()
    {
        Fixture f(FixtureOptions{false, true, 30s});
        f.server.setReply({429, {}, Ending::Stall, {}});
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(await(f.service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {}), 3000).text,
                 u"API error: HTTP 429"_s);
        QCOMPARE(await(f.service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {}), 9000).text,
                 u"API error: HTTP 429"_s);
        QCOMPARE_LT(clock.elapsed(), 9000);
    }

    // Qt's own words in an error, such as a refused connection's, come in the language in force.
    void transportErrorsInTheLanguageInForce()
    {
        Fixture f;
        QtTranslations qtTexts(&f.language);
        const QString refusedAt = f.server.baseUrl();
        AIServiceConfig config = f.config({});
        // A port that nothing listens on any more.
        {
            QTcpServer closed;
            closed.listen(QHostAddress::LocalHost);
            config.proxyChatURL = u"http://127.0.0.1:%1/api/chat"_s.arg(closed.serverPort());
        }
        config.proxyBaseURL = config.proxyChatURL;
        AIService service(&f.store, &f.language, config);
        const QString english =
            await(service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {})).error.detail();
        f.language.setCurrentLanguage(AppLanguage::Ja);
        QCOMPARE(qtTexts.installedLocale(), u"ja"_s);
        const QString japanese =
            await(service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {})).error.detail();
        QVERIFY2(!english.isEmpty() && japanese != english, qPrintable(english + u" / "_s + japanese));
        f.language.setCurrentLanguage(AppLanguage::En);
        QVERIFY(qtTexts.installedLocale().isEmpty());
        QCOMPARE(await(service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {})).error.detail(),
                 english);
    }

    // The server offers HTTP/2 first; this Qt's HPACK decoder is not trusted with it.
    void http2RefusedWhileUnfixed()
    {
        if (certificatePem.isEmpty())
            QSKIP("no openssl or no TLS");
        QVERIFY(!ChatTransport::http2IsSafe(QVersionNumber(6, 4, 2)));
        Fixture f(true);
        f.server.setReply({200, {{messageBody(u"Hi"_s), 0}}, Ending::Complete, {}});
        QCOMPARE(await(f.service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {})).text, u"ok:Hi"_s);
        QCOMPARE_NE(f.server.requests().constFirst().protocol, QByteArray("h2"));
    }

    // While the GUI thread is busy, Qt takes in no more of a fast reply than its read buffer:
    // beyond that the server's writes wait (what the sockets of the system hold aside). The
    // server runs in a thread of its own, so that it writes on while this thread sleeps.
    void readBufferBounded()
    {
        std::promise<quint16> port;
        std::atomic<qint64> written = 0;
        constexpr int pieceCount = 1000;
        std::unique_ptr<QThread> server(QThread::create([&port, &written] {
            QTcpServer listener;
            listener.listen(QHostAddress::LocalHost);
            port.set_value(listener.serverPort());
            if (!listener.waitForNewConnection(10000))
                return;
            QTcpSocket *socket = listener.nextPendingConnection();
            QByteArray request;
            while (!request.contains("\r\n\r\n") && socket->waitForReadyRead(10000))
                request += socket->readAll();
            socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + delta("a") + "\n");
            socket->waitForBytesWritten(2000);
            // The bound is set as the headers arrive; until the client has seen them, Qt's own
            // network thread reads ahead without one.
            QThread::msleep(300);
            const QByteArray piece = delta(QByteArray(100 * 1024, 'x')) + "\n";
            for (int i = 0; i < pieceCount && socket->state() == QAbstractSocket::ConnectedState; ++i) {
                socket->write(piece);
                while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten(2000)) {
                }
                written += piece.size();
            }
        }));
        server->start();
        Fixture f;
        AIServiceConfig config = f.config({});
        config.proxyBaseURL = u"http://127.0.0.1:%1"_s.arg(port.get_future().get());
        config.proxyChatURL = config.proxyBaseURL + u"/api/chat"_s;
        AIService service(&f.store, &f.language, config);
        AIChatCall *call = service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {});
        QSignalSpy chunks(call, &AIChatCall::chunkReceived);
        QVERIFY(chunks.wait());
        QThread::msleep(1000);
        const qint64 taken = written;
        call->cancel();
        QTRY_VERIFY_WITH_TIMEOUT(server->isFinished(), 10000);
        QCOMPARE_LT(taken, pieceCount * 100 * 1024 / 2);
    }

    // A request goes out once: not again when the kept-alive connection it went on closes
    // before the answer, nor when a fresh one does.
    void neverPostedTwice()
    {
        Fixture f(FixtureOptions{false, true, 5s});
        f.server.setKeepAlive(true);
        f.server.setReply({200, {{messageBody(u"Hi"_s), 0}}, Ending::Complete, {}});
        QCOMPARE(await(f.service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {})).text, u"ok:Hi"_s);
        f.server.dropUnanswered(1);
        const QString unanswered =
            await(f.service.sendMessage(u"q"_s, {}, AIAssistantMode::FreeChat, {})).text;
        QCOMPARE(unanswered, u"Network error: The connection closed before the server answered; the request "
                             "was not sent again."_s);
        QCOMPARE(f.server.requests().size(), 2);

        Fixture fresh;
        fresh.server.dropUnanswered(1);
        const Outcome outcome =
            await(fresh.service.sendMessageStreaming(u"q"_s, {}, AIAssistantMode::FreeChat, {}));
        QVERIFY(outcome.text.startsWith("Network error: "_L1));
        QCOMPARE(fresh.server.requests().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestAIChatCall)
#include "tst_aichatcall.moc"
