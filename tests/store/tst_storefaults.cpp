#include "datastore.h"
#include "storecodec.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

QStringList leftovers(const QString &folder)
{
    return QDir(folder).entryList({u"*varnholt-tmp*"_s}, QDir::Files | QDir::Hidden);
}

} // namespace

// What the store does when the machine misbehaves: a killed process, a full disk, a folder it
// may not write to.
class TestStoreFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void killedWhileSavingLeavesWholeFiles()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath(u"Varnholt"_s);
        const QString settings = dir.filePath(u"settings.ini"_s);
        auto *random = QRandomGenerator::global();
        for (int round = 0; round < 20; ++round) {
            QProcess saver;
            saver.start(QStringLiteral(STORE_SAVE_LOOP), {folder, settings});
            QVERIFY(saver.waitForReadyRead(10000));
            QTest::qWait(int(random->bounded(5, 400)));
            ::kill(pid_t(saver.processId()), SIGKILL);
            QVERIFY(saver.waitForFinished(10000));

            QString error;
            QVERIFY2(StoreCodec::decodeDocuments(readFile(folder + u"/sql_documents.json"_s), &error),
                     qPrintable(error));
            QVERIFY2(StoreCodec::decodeVersions(readFile(folder + u"/sql_versions.json"_s), &error),
                     qPrintable(error));
            QVERIFY2(StoreCodec::decodeKnowledge(readFile(folder + u"/knowledge_items.json"_s), &error),
                     qPrintable(error));
        }
        // The temporary files of the killed writers go at the next start.
        QSettings store_settings(settings, QSettings::IniFormat);
        DataStore store(folder, &store_settings);
        QVERIFY(store.setAsideFiles().isEmpty());
        QCOMPARE(leftovers(folder), QStringList());
    }

    void fullDiskKeepsTheOldFile()
    {
        if (::geteuid() != 0)
            QSKIP("mounting a small tmpfs needs root; the full-disk test did not run");
        QTemporaryDir dir;
        const QString mountPoint = dir.filePath(u"small"_s);
        QDir().mkpath(mountPoint);
        if (!run(u"mount"_s, {u"-t"_s, u"tmpfs"_s, u"-o"_s, u"size=256k"_s, u"tmpfs"_s, mountPoint}))
            QSKIP("cannot mount a tmpfs here; the full-disk test did not run");
        const auto unmount = qScopeGuard([&] { run(u"umount"_s, {mountPoint}); });

        QSettings settings(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        DataStore store(mountPoint, &settings);
        const QUuid id = store.selectedDocumentId();
        store.updateDocumentContent(id, u"SELECT 'small enough';"_s);
        store.saveData();
        store.flush();
        const QByteArray before = readFile(mountPoint + u"/sql_documents.json"_s);
        QVERIFY(before.contains("small enough"));

        // 600 kB of text cannot fit in 256 kB.
        store.updateDocumentContent(id, u"SELECT 'far too large';\n"_s.repeated(25000));
        store.saveData();
        store.flush();
        QCOMPARE(readFile(mountPoint + u"/sql_documents.json"_s), before);
        QCOMPARE(leftovers(mountPoint), QStringList());
        QVERIFY(store.document(id)->content.size() > 500000); // memory keeps the edit

        // Once there is room again, the next save goes through.
        store.updateDocumentContent(id, u"SELECT 'fits again';"_s);
        store.saveData();
        store.flush();
        QVERIFY(readFile(mountPoint + u"/sql_documents.json"_s).contains("fits again"));
    }

    void readOnlyFolderKeepsWorkingInMemory()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath(u"Varnholt"_s);
        QSettings settings(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        QUuid id;
        {
            DataStore store(folder, &settings);
            id = store.selectedDocumentId();
        }
        const QByteArray before = readFile(folder + u"/sql_documents.json"_s);

        // Root writes through permission bits: make the folder read-only by mounting it so.
        bool mounted = false;
        if (::geteuid() == 0) {
            mounted = run(u"mount"_s, {u"--bind"_s, folder, folder}) &&
                      run(u"mount"_s, {u"-o"_s, u"remount,bind,ro"_s, folder});
            if (!mounted)
                QSKIP("cannot make a read-only bind mount here; the read-only test did not run");
        } else {
            QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        }
        const auto restore = qScopeGuard([&] {
            if (mounted)
                run(u"umount"_s, {folder});
            QFile::setPermissions(folder,
                                  QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        });

        DataStore store(folder, &settings);
        QCOMPARE(store.selectedDocumentId(), id);
        const SQLDocument created = store.createDocument(u"in memory"_s, u"SELECT 1;"_s);
        store.updateDocumentContent(id, u"edited"_s);
        store.saveVersion(id, u"v"_s);
        store.saveData();
        store.flush();
        QCOMPARE(store.documents().size(), 2);
        QCOMPARE(store.document(created.id)->content, u"SELECT 1;"_s);
        QCOMPARE(store.versionsForDocument(id).size(), 1);
        QCOMPARE(readFile(folder + u"/sql_documents.json"_s), before);
    }
};

QTEST_GUILESS_MAIN(TestStoreFaults)
#include "tst_storefaults.moc"
