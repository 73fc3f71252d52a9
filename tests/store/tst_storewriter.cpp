#include "storewriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

} // namespace

// The writer's queue: order, coalescing, removals, generations.
class TestStoreWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void burstLeavesTheNewestSnapshot()
    {
        QTemporaryDir dir;
        const QString a = dir.filePath(u"a.json"_s);
        const QString b = dir.filePath(u"b.json"_s);
        StoreWriter writer;
        // The first write holds the thread until the burst is queued behind it.
        QSemaphore started;
        QSemaphore release;
        std::atomic<int> serialized = 0;
        writer.submit(a, 1, [&] {
            started.release();
            release.acquire();
            ++serialized;
            return QByteArray("a1");
        });
        started.acquire();
        for (int generation = 2; generation <= 50; ++generation) {
            writer.submit(b, generation, [&, generation]() -> QByteArray {
                ++serialized;
                return "b" + QByteArray::number(generation);
            });
            writer.submit(a, generation, [&, generation]() -> QByteArray {
                ++serialized;
                return "a" + QByteArray::number(generation);
            });
        }
        release.release();
        writer.flush();
        QCOMPARE(read(a), "a50");
        QCOMPARE(read(b), "b50");
        QCOMPARE(serialized.load(), 3);
        QCOMPARE(writer.writtenGeneration(a), 50u);
        QVERIFY(writer.lastError().isEmpty());

        // What is on disk already is not written again.
        writer.submit(a, 50, [&] {
            ++serialized;
            return QByteArray("again");
        });
        writer.flush();
        QCOMPARE(serialized.load(), 3);
    }

    void removalFollowsTheWritesBeforeIt()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"c.json"_s);
        StoreWriter writer;
        QSemaphore started;
        QSemaphore release;
        writer.submit(dir.filePath(u"first.json"_s), 1, [&] {
            started.release();
            release.acquire();
            return QByteArray("x");
        });
        started.acquire();
        writer.submit(path, 1, [] { return QByteArray("queued, then dropped"); });
        writer.remove(path);
        release.release();
        writer.flush();
        QVERIFY(!QFile::exists(path));

        writer.submit(path, 2, [] { return QByteArray("c2"); });
        writer.flush();
        QCOMPARE(read(path), "c2");
        writer.remove(path);
        writer.flush();
        QVERIFY(!QFile::exists(path));
        QCOMPARE(writer.writtenGeneration(path), 0u);
        // The same generation after a removal is written again: the file is gone.
        writer.submit(path, 2, [] { return QByteArray("c2"); });
        writer.flush();
        QCOMPARE(read(path), "c2");
        // Removing what is not there is no failure.
        writer.remove(dir.filePath(u"never.json"_s));
        writer.flush();
        QVERIFY(writer.lastError().isEmpty());
    }

    void failedWriteSaysWhy()
    {
        QTemporaryDir dir;
        // A folder cannot be made where a file stands.
        QFile blocker(dir.filePath(u"blocker"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        const QString path = dir.filePath(u"blocker/d.json"_s);
        QStringList reports;
        StoreWriter writer([&](const QString &reported, quint64 generation, const QString &error) {
            reports.append(u"%1 %2 %3"_s.arg(QFileInfo(reported).fileName()).arg(generation).arg(error.isEmpty()));
        });
        writer.submit(path, 1, [] { return QByteArray("d"); });
        writer.flush();
        QVERIFY(writer.lastError().contains(u"blocker"_s));
        QCOMPARE(writer.writtenGeneration(path), 0u);
        QCOMPARE(reports, QStringList{u"d.json 1 0"_s});
    }

    // A folder deleted while the application runs is made again at the next write; a file that
    // went is written again though its data did not change.
    void goneFoldersAndFilesAreWrittenAgain()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath(u"data"_s);
        const QString path = folder + u"/e.json"_s;
        StoreWriter writer;
        writer.submit(path, 1, [] { return QByteArray("e"); });
        writer.flush();
        QVERIFY(QDir(folder).removeRecursively());
        writer.submit(path, 1, [] { return QByteArray("e"); });
        writer.flush();
        QCOMPARE(read(path), "e");
        struct stat status
        {};
        QCOMPARE(::stat(QFile::encodeName(folder).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0700));
    }
};

QTEST_GUILESS_MAIN(TestStoreWriter)
#include "tst_storewriter.moc"
