// History panel and reading sheet benchmark, in process, with the software renderer: the panel
// opened on 1,000 versions of a 100 KB document (time to the first frame, cards made), the
// sheet showing a 1 MB version, coloured (time to the first frame), and comparisons of 1 MB
// texts (1,000 lines changed; two unrelated texts), with the memory used.
//
// Usage: QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software bench_versionviews
#include "benchsupport.h"
#include "appengine.h"
#include "datastore.h"
#include "testenvironment.h"
#include "textdiff.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

namespace {

// Milliseconds from `start` to the window's next frame.
double untilNextFrame(QQuickView &view, const QElapsedTimer &start)
{
    bool swapped = false;
    const auto connection = QObject::connect(&view, &QQuickWindow::frameSwapped, [&] { swapped = true; });
    view.update();
    while (!swapped)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    QObject::disconnect(connection);
    return start.nsecsElapsed() / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    ScratchHome home;
    DataStore *store = DataStore::shared();
    const QString base = corpusText(100 << 10);
    const SQLDocument document = store->createDocument(u"History"_s, base);
    store->setSelectedDocumentId(document.id);
    for (int i = 0; i < 1000; ++i) {
        store->updateDocumentContent(document.id, base + u"-- revision %1\n"_s.arg(i));
        store->saveVersion(document.id, u"Revision %1"_s.arg(i));
    }
    // The newest but one holds a megabyte.
    const QString megabyte = corpusText(1 << 20);
    store->updateDocumentContent(document.id, megabyte);
    store->saveVersion(document.id, u"A megabyte"_s);
    store->updateDocumentContent(document.id, base);
    store->saveVersion(document.id, u"Back"_s);
    std::printf("store: %lld versions of the document\n",
                qlonglong(store->selectedDocumentVersions().size()));

    QQuickView view;
    configureEngine(view.engine());
    view.resize(360, 800);
    view.show();
    if (!QTest::qWaitForWindowExposed(&view))
        qFatal("the window did not show");

    for (int run = 0; run < 3; ++run) {
        QElapsedTimer timer;
        timer.start();
        view.setSource(QUrl(u"qrc:/Varnholt/VersionHistoryView.qml"_s));
        QQuickItem *panel = view.rootObject();
        if (!panel)
            qFatal("the panel did not load");
        const double open = untilNextFrame(view, timer);
        const int cards =
            int(panel->findChildren<QQuickItem *>(QString(), Qt::FindChildrenRecursively).size());
        std::printf("panel open, 1,002 versions: %7.1f ms to the first frame (%d items in the panel)\n", open,
                    cards);

        timer.restart();
        panel->setProperty("viewingIndex", 1);
        const double sheet = untilNextFrame(view, timer);
        std::printf("sheet with the 1 MB version:  %7.1f ms to the first frame\n", sheet);
        panel->setProperty("viewingIndex", -1);
        QTest::qWait(100);
        view.setSource({});
        QTest::qWait(100);
    }
    // Comparisons: a megabyte against itself with 1,000 lines changed, and against another.
    QStringList lines = megabyte.split(u'\n');
    for (int i = 0; i < 1000; ++i)
        lines[(i * 7919) % lines.size()].append(u" -- changed"_s);
    const QString changed = lines.join(u'\n');
    const QString unrelated = corpusText(3 << 20).right(1 << 20);
    for (int run = 0; run < 3; ++run) {
        QElapsedTimer timer;
        timer.start();
        const qsizetype rows = TextDiff::compare(megabyte, changed).size();
        const double near = timer.nsecsElapsed() / 1e6;
        timer.restart();
        const qsizetype unrelatedRows = TextDiff::compare(megabyte, unrelated).size();
        const double far = timer.nsecsElapsed() / 1e6;
        std::printf(
            "compare 1 MB, 1,000 lines changed: %7.1f ms (%lld rows); unrelated 1 MB: %7.1f ms (%lld rows)\n",
            near, qlonglong(rows), far, qlonglong(unrelatedRows));
    }
    std::printf("peak memory %.0f MB\n", peakMegabytes());
    return 0;
}
