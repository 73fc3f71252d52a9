// Store benchmark: 10,000 documents with 100,000 versions (about 200 MB of JSON) made of real
// SQL. Prints how long saveData holds the calling thread, how long the writes take in all,
// how long loading takes, and the peak resident memory.
//
// Usage: bench_store [folder]   (default: a temporary folder, removed afterwards)
//        bench_store --load <folder>   (what the first run starts to time loading in a fresh process)
#include "benchsupport.h"
#include "datastore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

double ms(const QElapsedTimer &timer)
{
    return timer.nsecsElapsed() / 1e6;
}

} // namespace

int loadOnly(const QString &folder)
{
    QTemporaryDir temporary;
    QSettings settings(temporary.filePath(u"settings.ini"_s), QSettings::IniFormat);
    QElapsedTimer timer;
    timer.start();
    DataStore loaded(folder, &settings);
    const double elapsed = ms(timer);
    qsizetype versions = 0;
    for (const auto &list : loaded.versions())
        versions += list.size();
    std::printf("load in a fresh process: %.0f ms (%lld documents, %lld versions)\n", elapsed,
                static_cast<long long>(loaded.documents().size()), static_cast<long long>(versions));
    std::printf("peak memory after loading: %.0f MB\n", peakMegabytes());
    return 0;
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--load") == 0)
        return loadOnly(QString::fromLocal8Bit(argv[2]));
    QTemporaryDir temporary;
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : temporary.filePath(u"Varnholt"_s);

    QFile corpusFile(QStringLiteral(VARNHOLT_BENCH_CORPUS "/sql-1m.sql"));
    if (!corpusFile.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(corpusFile.fileName()));
        return 2;
    }
    const QString corpus = QString::fromUtf8(corpusFile.readAll());
    const auto slice = [&corpus](qsizetype n, qsizetype length) {
        return corpus.mid((n * 7919) % (corpus.size() - length), length);
    };

    constexpr int documentCount = 10000;
    constexpr int versionsPerDocument = 10;
    QSettings settings(temporary.filePath(u"settings.ini"_s), QSettings::IniFormat);
    {
        DataStore store(folder, &settings);
        std::printf("building %d documents with %d versions each...\n", documentCount, versionsPerDocument);
        std::fflush(stdout);
        for (int d = 0; d < documentCount; ++d) {
            const QUuid id = store.createDocument(u"文档 %1"_s.arg(d), slice(d, 2000)).id;
            for (int v = 0; v < versionsPerDocument; ++v) {
                store.updateDocumentContent(id, slice(d * 31 + v, 1900 + v * 20));
                store.saveVersion(id, u"note %1"_s.arg(v));
            }
        }
        QElapsedTimer total;
        total.start();
        store.flush();
        std::printf("initial write (after coalescing the build-up): %.0f ms\n", ms(total));

        // Saves after an edit: the GUI thread's share, then the whole write.
        QList<double> stalls;
        QList<double> documentSaves;
        for (int round = 0; round < 10; ++round) {
            store.updateDocumentContent(store.documents().at(round).id, slice(round, 2500));
            QElapsedTimer timer;
            timer.start();
            store.saveData();
            stalls.append(ms(timer));
            store.flush();
            documentSaves.append(ms(timer));
        }
        // A new version rewrites the versions file too.
        QList<double> versionSaves;
        for (int round = 0; round < 3; ++round) {
            QElapsedTimer timer;
            timer.start();
            store.saveVersion(store.documents().at(round).id, u"bench"_s);
            stalls.append(ms(timer));
            store.flush();
            versionSaves.append(ms(timer));
        }
        // Edits while a large write is under way: the first edit detaches the collection the
        // writer holds.
        QList<double> editStalls;
        store.saveVersion(store.documents().at(0).id, u"bench"_s);
        for (int round = 0; round < 50; ++round) {
            QElapsedTimer timer;
            timer.start();
            store.updateDocumentContent(store.documents().at(round).id, slice(round + 5, 2500));
            store.saveData();
            editStalls.append(ms(timer));
        }
        store.flush();
        std::sort(stalls.begin(), stalls.end());
        std::sort(editStalls.begin(), editStalls.end());
        std::sort(documentSaves.begin(), documentSaves.end());
        std::sort(versionSaves.begin(), versionSaves.end());
        const qint64 bytes = QFileInfo(folder + u"/sql_documents.json"_s).size() +
                             QFileInfo(folder + u"/sql_versions.json"_s).size();
        std::printf("files: %.1f MB\n", bytes / 1e6);
        std::printf("saveData on the calling thread: median %.3f ms, max %.3f ms\n",
                    stalls.at(stalls.size() / 2), stalls.constLast());
        std::printf("edit + saveData during a write: median %.3f ms, max %.3f ms\n",
                    editStalls.at(editStalls.size() / 2), editStalls.constLast());
        std::printf("whole save after an edit (documents file only): median %.0f ms\n",
                    documentSaves.at(documentSaves.size() / 2));
        std::printf("whole save after a new version (documents and versions): median %.0f ms\n",
                    versionSaves.at(versionSaves.size() / 2));
    }
    std::printf("peak memory while saving: %.0f MB\n", peakMegabytes());

    std::fflush(stdout);
    // Loading is timed in a process of its own, as at a real start.
    return QProcess::execute(QCoreApplication::applicationFilePath(), {u"--load"_s, folder});
}
