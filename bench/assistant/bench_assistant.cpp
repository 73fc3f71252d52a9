// Assistant panel benchmark, in process, with the software renderer, against a chat proxy on
// 127.0.0.1 that runs on a thread of its own:
//  - opening a conversation of 200 messages (about 1 MB), and scrolling through it;
//  - sending a message in a store with 200 conversations on disk: the longest event-loop pause;
//  - a 20 KB reply streamed in small pieces: the panel's work per update and the longest pause;
//  - a finished reply of 1 MB on one line: to the next frame.
//
// Usage: QT_QPA_PLATFORM=offscreen bench_assistant
#include "benchsupport.h"
#include "aiservice.h"
#include "appengine.h"
#include "chattestserver.h"
#include "conversationcontroller.h"
#include "conversationstore.h"
#include "datastore.h"
#include "languagemanager.h"
#include "markdownblockmodel.h"
#include "testenvironment.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <algorithm>
#include <cstdio>
#include <ctime>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

namespace {

QString corpus()
{
    QFile file(QStringLiteral(VARNHOLT_BENCH_CORPUS "/sql-1m.sql"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    return QString::fromUtf8(file.readAll());
}

// A reply of about `size` characters as a model writes them: paragraphs, a list, code spans,
// bold, and SQL blocks taken from the corpus at `offset`.
QString replyOf(const QString &sql, qsizetype offset, qsizetype size)
{
    QString text;
    int part = 0;
    while (text.size() < size) {
        text += u"## Step %1\n\nThis part of the query **joins** the `orders` table with `users`, and the "
                "filter on `status` keeps *paid* orders only. An index on `(status, created_at)` helps:\n\n"
                "- the filter reads the index instead of the table\n- the grouping reads it in order\n\n"_s.arg(++part);
        const qsizetype start = sql.indexOf(u'\n', (offset + part * 997) % (sql.size() - 2000)) + 1;
        text += u"```sql\n"_s + sql.mid(start, 600) + u"\n```\n\n"_s;
    }
    return text.left(size);
}

QByteArray event(const QString &text)
{
    const QJsonObject choice{{u"delta"_s, QJsonObject{{u"content"_s, text}}}};
    return "data: " + QJsonDocument(QJsonObject{{u"choices"_s, QJsonArray{choice}}}).toJson(QJsonDocument::Compact) +
           "\n\n";
}

struct Pauses
{
    double longest = 0;
    // Returns to the loop later than a frame's time.
    int overFrame = 0;
    int frames = 0;
};

// Runs the event loop until `done` or `limitMs`, timing every return to the loop.
Pauses runLoop(QQuickWindow *window, const std::function<bool()> &done, int limitMs)
{
    Pauses pauses;
    const auto connection = QObject::connect(window, &QQuickWindow::frameSwapped, [&] { ++pauses.frames; });
    QElapsedTimer total;
    total.start();
    QElapsedTimer tick;
    tick.start();
    while (!done() && total.elapsed() < limitMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        const double pause = tick.nsecsElapsed() / 1e6;
        pauses.longest = std::max(pauses.longest, pause);
        if (pause > 16.7)
            ++pauses.overFrame;
        tick.restart();
    }
    QObject::disconnect(connection);
    return pauses;
}

// CPU time of the calling thread, in milliseconds.
double threadCpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

double toNextFrame(QQuickWindow *window, const std::function<void()> &change)
{
    bool swapped = false;
    const auto connection = QObject::connect(window, &QQuickWindow::frameSwapped, [&] { swapped = true; });
    QElapsedTimer timer;
    timer.start();
    change();
    window->requestUpdate();
    while (!swapped && timer.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    QObject::disconnect(connection);
    return timer.nsecsElapsed() / 1e6;
}

} // namespace

// Tells which events take long, when VARNHOLT_BENCH_SLOW_EVENTS is set.
class TimedApplication : public QGuiApplication
{
public:
    using QGuiApplication::QGuiApplication;
    bool notify(QObject *receiver, QEvent *event) override
    {
        if (!qEnvironmentVariableIsSet("VARNHOLT_BENCH_SLOW_EVENTS"))
            return QGuiApplication::notify(receiver, event);
        QElapsedTimer timer;
        timer.start();
        const int type = event->type();
        const bool result = QGuiApplication::notify(receiver, event);
        if (timer.elapsed() > 9)
            std::printf("  slow event %d to %s: %lld ms\n", type, receiver->metaObject()->className(),
                        timer.elapsed());
        return result;
    }
};

int main(int argc, char **argv)
{
    static ScratchHome home;
    qputenv("QT_QUICK_BACKEND", "software");
    TimedApplication app(argc, argv);
    QGuiApplication::setApplicationName(u"Varnholt"_s);
    const QString sql = corpus();

    // The proxy answers on its own thread, so that its work is not counted as the panel's.
    QThread serverThread;
    serverThread.start();
    ChatTestServer *server = nullptr;
    {
        QObject context;
        context.moveToThread(&serverThread);
        QMetaObject::invokeMethod(
            &context, [&] { server = new ChatTestServer(AIServiceConfig().signingKey); },
            Qt::BlockingQueuedConnection);
    }
    AIServiceConfig config;
    config.proxyBaseURL = server->baseUrl();
    config.proxyChatURL = server->baseUrl() + u"/api/chat"_s;
    DataStore *store = DataStore::shared();
    AIService::setShared(new AIService(store, LanguageManager::shared(), config, &app));

    // 200 documents with a conversation each; the last one's is 200 messages, about 1 MB.
    ConversationStore *conversations = ConversationStore::shared();
    QUuid big;
    QElapsedTimer preparing;
    preparing.start();
    for (int d = 0; d < 200; ++d) {
        const QUuid id = store->createDocument(u"Document %1"_s.arg(d), sql.mid(d * 500, 400)).id;
        QList<ConversationMessage> messages;
        const int count = d == 199 ? 200 : 20;
        for (int m = 0; m < count; m++) {
            const bool user = m % 2 == 0;
            messages.append(ConversationMessage::fromMessage(AIMessage::create(
                user ? AIMessageRole::User : AIMessageRole::Assistant,
                user ? u"Please explain the meaning and purpose of this SQL"_s : replyOf(sql, d * 7919 + m, 10000))));
        }
        conversations->save(id, messages);
        big = id;
    }
    store->flush();
    std::printf("prepared 200 documents and conversations in %.0f ms\n", preparing.nsecsElapsed() / 1e6);

    QQmlApplicationEngine engine;
    configureEngine(&engine);
    engine.load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    QTest::qWait(1200);
    QObject *content = window->findChild<QObject *>(u"contentView"_s);
    store->setSelectedDocumentId(store->documents().constFirst().id);
    QMetaObject::invokeMethod(content, "setShowAIAssistant", Q_ARG(bool, true));
    QTest::qWait(800);

    // Opening the big conversation: the selection changes, the list shows its bottom.
    const double opening = toNextFrame(window, [&] { store->setSelectedDocumentId(big); });
    auto *list = window->findChild<QQuickItem *>(u"messageList"_s);
    std::printf("open a conversation of 200 messages (%.1f MB on disk): %.1f ms to the next frame, %lld rows "
                "built\n",
                QFile(conversations->filePath(big)).size() / 1048576.0, opening,
                qlonglong(list->property("contentItem").value<QQuickItem *>()->childItems().size()));
    QTest::qWait(500);

    // Scrolling from the bottom to the top, 60 points every 16 ms (about 3,600 points a second).
    QTimer scroller;
    scroller.setInterval(16);
    QObject::connect(&scroller, &QTimer::timeout, [list] {
        list->setProperty("contentY", list->property("contentY").toReal() - 60);
    });
    QElapsedTimer scrolling;
    scrolling.start();
    scroller.start();
    const Pauses scroll = runLoop(
        window, [list] { return list->property("contentY").toReal() <= list->property("originY").toReal(); }, 60000);
    scroller.stop();
    std::printf("scroll to the top: %.0f ms, %d frames (%.0f a second), longest event-loop pause %.1f ms, %d "
                "over 16.7 ms\n",
                scrolling.nsecsElapsed() / 1e6, scroll.frames, scroll.frames / (scrolling.nsecsElapsed() / 1e9),
                scroll.longest, scroll.overFrame);
    QTest::qWait(300);

    // Sending: the proxy holds its answer back, so the pause is the panel's own.
    auto *controller = window->findChild<ConversationController *>(u"conversationController"_s);
    QMetaObject::invokeMethod(server, [server] { server->setReply({200, {}, ChatTestServer::Ending::Stall, {}}); },
                              Qt::BlockingQueuedConnection);
    controller->setInputText(u"Why is it slow?"_s);
    QElapsedTimer sending;
    sending.start();
    controller->sendInput();
    const double sendCall = sending.nsecsElapsed() / 1e6;
    const Pauses afterSend = runLoop(window, [] { return false; }, 600);
    std::printf("send with 200 conversations on disk: the call %.1f ms, then the longest pause %.1f ms (%d over "
                "16.7 ms)\n",
                sendCall, afterSend.longest, afterSend.overFrame);
    controller->stopStreaming();
    QTest::qWait(300);

    // A 20 KB reply in pieces of about 24 characters, every 4 ms.
    const QString reply = replyOf(sql, 12345, 20000);
    ChatTestServer::Reply streamed{200, {}, ChatTestServer::Ending::Complete, {}};
    for (qsizetype at = 0; at < reply.size(); at += 24)
        streamed.pieces.append({event(reply.mid(at, 24)), 4});
    streamed.pieces.append({"data: [DONE]\n\n", 4});
    QMetaObject::invokeMethod(server, [server, streamed] { server->setReply(streamed); },
                              Qt::BlockingQueuedConnection);
    // The panel's own work per update: splitting and rendering the reply so far.
    MarkdownBlockModel probe;
    QList<double> updates;
    for (qsizetype at = 24; at < reply.size(); at += 24 * 4) {
        QElapsedTimer timer;
        timer.start();
        probe.setContent(reply.left(at));
        updates.append(timer.nsecsElapsed() / 1e6);
    }
    std::sort(updates.begin(), updates.end());
    controller->setInputText(u"Explain it step by step"_s);
    controller->sendInput();
    const double cpuBefore = threadCpuMs();
    const Pauses streaming = runLoop(window, [controller] { return !controller->isStreaming(); }, 60000);
    const double cpuPerPiece = (threadCpuMs() - cpuBefore) / double(streamed.pieces.size());
    std::printf("stream a 20 KB reply in %lld pieces: split and render per update median %.2f ms, worst %.2f ms; "
                "GUI thread %.2f ms of CPU a piece (view and drawing included); %d frames, longest event-loop "
                "pause %.1f ms, %d over 16.7 ms\n",
                qlonglong(streamed.pieces.size()), updates.at(updates.size() / 2), updates.constLast(), cpuPerPiece,
                streaming.frames, streaming.longest, streaming.overFrame);

    // A finished reply of 1 MB on one line.
    const QString line = QString(u"SELECT 'abc', 1 "_s).repeated(65536);
    QMetaObject::invokeMethod(server,
                              [server, line] {
                                  server->setReply({200, {{event(line), 0}, {"data: [DONE]\n\n", 0}},
                                                    ChatTestServer::Ending::Complete, {}});
                              },
                              Qt::BlockingQueuedConnection);
    controller->setInputText(u"One line"_s);
    QElapsedTimer oneLine;
    oneLine.start();
    controller->sendInput();
    const Pauses longLine = runLoop(window, [controller] { return !controller->isStreaming(); }, 60000);
    const double settled = toNextFrame(window, [] {});
    std::printf("a reply of 1 MB on one line: done after %.0f ms, longest pause %.1f ms, then a frame in %.1f ms\n",
                oneLine.nsecsElapsed() / 1e6, longLine.longest, settled);

    std::printf("peak memory: %.0f MB\n", peakMegabytes());
    QMetaObject::invokeMethod(server, [server] { delete server; }, Qt::BlockingQueuedConnection);
    serverThread.quit();
    serverThread.wait();
    return 0;
}
