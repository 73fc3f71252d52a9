// Window benchmark, in process, with the software renderer: time from start to the first
// frame with a store of 1,000 documents, and from a keystroke to the next frame in 1 MB and
// 10 MB documents (plain letters and a quote typed near the top), jumps and a fling over them,
// and after pasting 2 MB and 10 MB of Japanese INSERTs into a new document, with the memory used.
//
// Usage: QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software bench_window [1mb] [10mb] [paste] [oldview]
// ("oldview": the same loads, keys and paste in Qt Quick's own TextArea, for comparison).
// (no rows named: all of them)
#include "benchsupport.h"
#include "appengine.h"
#include "datastore.h"
#include "storecodec.h"
#include "testenvironment.h"

#include <QDir>
#include <QElapsedTimer>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

namespace {

QElapsedTimer processClock;

void writeStore(const QString &folder)
{
    QDir().mkpath(folder);
    QList<SQLDocument> documents;
    const QString small = corpusText(4000);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (int i = 0; i < 1000; ++i)
        documents.append(SQLDocument{QUuid::createUuid(),
                                     u"Document %1"_s.arg(i),
                                     small,
                                     now.addSecs(-i * 60),
                                     now.addSecs(-i * 60),
                                     {},
                                     false});
    documents.append(
        SQLDocument{QUuid::createUuid(), u"One megabyte"_s, corpusText(1 << 20), now, now, {}, false});
    documents.append(
        SQLDocument{QUuid::createUuid(), u"Ten megabytes"_s, corpusText(10 << 20), now, now, {}, false});
    QFile file(folder + u"/sql_documents.json"_s);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write the store");
    file.write(StoreCodec::encodeDocuments(documents));
}

struct Figures
{
    double median = 0;
    double worst = 0;
};

// Sends `key` to the window `count` times and measures each time to the frame that follows.
Figures keystrokes(QQuickWindow *window, int count, const std::function<void(int)> &press)
{
    QList<double> times;
    for (int i = 0; i < count; ++i) {
        bool swapped = false;
        const auto connection =
            QObject::connect(window, &QQuickWindow::frameSwapped, [&] { swapped = true; });
        QElapsedTimer timer;
        timer.start();
        press(i);
        window->requestUpdate();
        while (!swapped && timer.elapsed() < 2000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        times.append(timer.nsecsElapsed() / 1e6);
        QObject::disconnect(connection);
        QTest::qWait(20);
    }
    std::sort(times.begin(), times.end());
    return {times.at(times.size() / 2), times.constLast()};
}

// Japanese INSERTs (a public install script's data), repeated up to `size` characters.
QString japaneseInserts(qsizetype size)
{
    QFile file(QStringLiteral(VARNHOLT_BENCH_CORPUS "/src/eccube_insert_data.sql"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    const QString piece = QString::fromUtf8(file.readAll());
    QString text;
    while (text.size() < size)
        text += piece;
    text.truncate(size);
    return text.left(text.lastIndexOf(u'\n') + 1);
}

// Runs the event loop until no pass of it has taken over 20 ms for `quiet` ms (or `limit` ms
// passed); returns the longest pause of the loop.
double longestPauseUntilQuiet(int quiet, int limit)
{
    QElapsedTimer total;
    total.start();
    QElapsedTimer tick;
    tick.start();
    qint64 longest = 0;
    QElapsedTimer idle;
    idle.start();
    while (idle.elapsed() < quiet && total.elapsed() < limit) {
        QElapsedTimer busy;
        busy.start();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        if (busy.nsecsElapsed() > 20'000'000)
            idle.restart();
        longest = std::max(longest, tick.nsecsElapsed());
        tick.restart();
    }
    return longest / 1e6;
}

// The same figures for Qt Quick's own text view (a TextArea in a ScrollView), plain, without
// colours: its best case, for comparison with the editor field.
void oldView()
{
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(R"(
        import QtQuick
        import QtQuick.Controls
        Window {
            width: 1200; height: 750; visible: true
            ScrollView {
                anchors.fill: parent
                TextArea { objectName: "oldView"; font.family: "monospace"; wrapMode: TextEdit.Wrap; focus: true }
            }
        })",
                      QUrl());
    std::unique_ptr<QObject> root(component.create());
    auto *window = qobject_cast<QQuickWindow *>(root.get());
    if (!window)
        qFatal("%s", qPrintable(component.errorString()));
    auto *area = window->findChild<QQuickItem *>(u"oldView"_s);
    QTest::qWaitForWindowExposed(window);
    QTest::qWait(300);
    for (const int megabytes : {1, 10}) {
        const QString text = corpusText(qsizetype(megabytes) << 20);
        const Figures load = keystrokes(window, 1, [&](int) { area->setProperty("text", text); });
        area->forceActiveFocus();
        area->setProperty("cursorPosition", 200);
        const Figures letters = keystrokes(window, 20, [window](int) { QTest::keyClick(window, Qt::Key_A); });
        std::printf("old view, %d MB: loaded, first frame after %.0f ms; keystroke to next frame median %.1f ms, "
                    "worst %.1f ms\n",
                    megabytes, load.median, letters.median, letters.worst);
    }
    area->setProperty("text", QString());
    QTest::qWait(300);
    QGuiApplication::clipboard()->setText(japaneseInserts(2 << 20));
    const Figures paste = keystrokes(window, 1, [window](int) { QTest::keyClick(window, Qt::Key_V, Qt::ControlModifier); });
    const Figures after = keystrokes(window, 5, [window](int) { QTest::keyClick(window, Qt::Key_A); });
    std::printf("old view: paste of 2 MB into an empty view: %.0f ms to the next frame; keystroke after it median "
                "%.0f ms, worst %.0f ms (each wait is cut at 2 s)\n",
                paste.median, after.median, after.worst);
}

} // namespace

int main(int argc, char **argv)
{
    processClock.start();
    static ScratchHome home;
    qputenv("QT_QUICK_BACKEND", "software");
    writeStore(home.dataFolder());
    const double prepared = processClock.nsecsElapsed() / 1e6;

    QElapsedTimer start;
    start.start();
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(u"Varnholt"_s);
    QQmlApplicationEngine engine;
    configureEngine(&engine);
    engine.load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    bool firstFrame = false;
    QObject::connect(window, &QQuickWindow::frameSwapped, [&] { firstFrame = true; });
    while (!firstFrame)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    std::printf("start to first frame, 1,000 documents: %.0f ms (store files prepared in %.0f ms before)\n",
                start.nsecsElapsed() / 1e6, prepared);
    QTest::qWait(1000);

    DataStore *store = DataStore::shared();
    auto *area = window->findChild<QQuickItem *>(u"sqlTextArea"_s);
    const QStringList rows = QCoreApplication::arguments().mid(1);
    const auto runs = [&rows](QStringView row) { return rows.isEmpty() || rows.contains(row); };
    for (const char *name : {"One megabyte", "Ten megabytes"}) {
        if (!runs(QLatin1StringView(name).left(3) == u"One" ? u"1mb" : u"10mb"))
            continue;
        const double residentBefore = residentMegabytes();
        QElapsedTimer loading;
        loading.start();
        for (const SQLDocument &document : store->documents()) {
            if (document.name == QLatin1StringView(name))
                store->setSelectedDocumentId(document.id);
        }
        bool shown = false;
        const auto frame = QObject::connect(window, &QQuickWindow::frameSwapped, [&] { shown = true; });
        while (!shown)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        QObject::disconnect(frame);
        const double loaded = loading.nsecsElapsed() / 1e6;
        // Nothing is coloured in the background: the lines shown were coloured for that frame.
        const double settle = longestPauseUntilQuiet(500, 10000);
        std::printf("%s: loaded into the editor, first frame after %.0f ms; then longest event-loop pause %.1f ms\n",
                    name, loaded, settle);
        area->forceActiveFocus();
        area->setProperty("cursorPosition", 200);
        const Figures letters = keystrokes(window, 200, [window](int) { QTest::keyClick(window, Qt::Key_A); });
        const Figures quotes = keystrokes(window, 20, [window](int i) {
            QTest::keyClick(window, i % 2 ? Qt::Key_Backspace : Qt::Key_Apostrophe);
        });
        // The text goes to the store and to disk when typing pauses.
        const double pause = longestPauseUntilQuiet(1500, 10000);
        std::printf(
            "%s: keystroke to next frame median %.1f ms, worst %.1f ms; quote near the top median %.1f ms, "
            "worst %.1f ms; when typing pauses, longest pause %.1f ms\n",
            name, letters.median, letters.worst, quotes.median, quotes.worst, pause);
        // Jumps to points all over the text, as a drag of the scroll bar makes them; none to
        // where the view already is, which would paint nothing.
        const Figures jumps = keystrokes(window, 20, [area](int i) {
            area->setProperty("contentY",
                              area->property("contentHeight").toDouble() * ((i * 7) % 20 + 0.5) / 20.0);
        });
        std::printf("%s: jump to a point of the text, to the next frame median %.1f ms, worst %.1f ms\n", name,
                    jumps.median, jumps.worst);
        // A fling: the wheel's pixel steps of a touchpad, one a frame, over two seconds.
        QList<double> frameTimes;
        QElapsedTimer flingClock;
        flingClock.start();
        for (int i = 0; i < 120; ++i) {
            const Figures step = keystrokes(window, 1, [window](int) {
                QWheelEvent wheel(QPointF(600, 300), QPointF(600, 300), QPoint(0, -90), QPoint(0, -90),
                                  Qt::NoButton, {}, Qt::ScrollUpdate, false);
                QCoreApplication::sendEvent(window, &wheel);
            });
            frameTimes.append(step.worst);
        }
        std::sort(frameTimes.begin(), frameTimes.end());
        std::printf("%s: fling, wheel step to next frame median %.1f ms, worst %.1f ms\n", name,
                    frameTimes.at(frameTimes.size() / 2), frameTimes.constLast());
        // The find bar: a pattern typed a key at a time; each key searches the whole text (in
        // slices past the first few megabytes).
        QObject *findBar = window->findChild<QObject *>(u"findBar"_s);
        QMetaObject::invokeMethod(findBar, "open", Q_ARG(bool, false));
        const QString pattern = u"values ("_s;
        const Figures finding = keystrokes(window, int(pattern.size()), [window, &pattern](int i) {
            QTest::sendKeyEvent(QTest::Press, window, Qt::Key_unknown, pattern.at(i), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, window, Qt::Key_unknown, pattern.at(i), Qt::NoModifier);
        });
        const double searchPause = longestPauseUntilQuiet(300, 20000);
        std::printf("%s: a key in the find field to next frame median %.1f ms, worst %.1f ms; %d matches, "
                    "longest pause while searching %.1f ms\n",
                    name, finding.median, finding.worst,
                    area->property("finder").value<QObject *>()->property("matchCount").toInt(), searchPause);
        QMetaObject::invokeMethod(findBar, "close");
        std::printf("%s: memory held after loading, typing and scrolling: %.0f MB more than before\n", name,
                    residentMegabytes() - residentBefore);
    }
    // A user's paste of 2 MB and of 10 MB of Japanese INSERTs into a new, empty document.
    for (const int megabytes : {2, 10}) {
        if (!runs(u"paste"))
            break;
        const QString pasted = japaneseInserts(qsizetype(megabytes) << 20);
        const SQLDocument fresh = store->createDocument(u"Pasted"_s, QString());
        store->setSelectedDocumentId(fresh.id);
        QTest::qWait(300);
        QGuiApplication::clipboard()->setText(pasted);
        area->forceActiveFocus();
        const double before = residentMegabytes();
        const Figures paste = keystrokes(window, 1, [window](int) { QTest::keyClick(window, Qt::Key_V, Qt::ControlModifier); });
        const double settle = longestPauseUntilQuiet(500, 120000);
        std::printf("paste of %d MB into a new document: %.0f ms to the next frame, then longest pause %.0f ms; "
                    "memory held %.0f MB more than before\n",
                    megabytes, paste.median, settle, residentMegabytes() - before);
        const Figures after = keystrokes(window, 200, [window](int) { QTest::keyClick(window, Qt::Key_A); });
        std::printf("after the paste: keystroke to next frame median %.1f ms, worst %.1f ms\n", after.median,
                    after.worst);
        QTest::keyClick(window, Qt::Key_Home, Qt::ControlModifier);
        longestPauseUntilQuiet(300, 10000);
        const Figures top = keystrokes(window, 200, [window](int) { QTest::keyClick(window, Qt::Key_A); });
        std::printf("after the paste, at the top: keystroke to next frame median %.1f ms, worst %.1f ms\n", top.median,
                    top.worst);
    }
    if (runs(u"oldview"))
        oldView();
    std::printf("peak memory: %.0f MB\n", peakMegabytes());
    return 0;
}
