#include "datastore.h"
#include "documenttransfer.h"

#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

// Files dropped or opened become documents; the selected document goes out as a file.
class TestDocumentTransfer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void severalFilesAtOnceAndOneThatIsNotText()
    {
        QTemporaryDir dir;
        QSettings settings(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        DataStore store(dir.filePath(u"data"_s), &settings);
        const qsizetype before = store.documents().size();
        const auto write = [&](const QString &name, const QByteArray &bytes) {
            QFile file(dir.filePath(name));
            file.open(QIODevice::WriteOnly);
            file.write(bytes);
            return QUrl::fromLocalFile(file.fileName());
        };
        const QList<QUrl> urls{write(u"first.sql"_s, "SELECT 1;"),
                               write(u"latin1.sql"_s, "SELECT 'caf\xE9';"),
                               write(u"second.sql"_s, QByteArray("\xFF\xFE" "S\0;\0", 6)),
                               QUrl::fromLocalFile(dir.filePath(u"missing.sql"_s)),
                               QUrl(u"https://example.org/x.sql"_s)};
        ::mkfifo(QFile::encodeName(dir.filePath(u"pipe.sql"_s)).constData(), 0600);

        DocumentTransfer transfer(&store);
        QSignalSpy imported(&transfer, &DocumentTransfer::imported);
        transfer.importFiles(urls + QList<QUrl>{QUrl::fromLocalFile(dir.filePath(u"pipe.sql"_s))});
        QVERIFY(transfer.isBusy());
        QVERIFY(imported.wait(10000));
        QCOMPARE(imported.first().first().toInt(), 2);
        QCOMPARE(store.documents().size(), before + 2);
        QCOMPARE(store.selectedDocument()->name, u"second"_s);
        QCOMPARE(store.selectedDocument()->content, u"S;"_s);
        QVERIFY(!transfer.isBusy());
        // Each file that was not taken is named, with why.
        const QStringList problems = transfer.problems();
        QCOMPARE(problems.size(), 4);
        QVERIFY(problems.at(0).contains(u"example.org"_s));
        QVERIFY(problems.at(1).contains(u"latin1.sql is not UTF-8 or UTF-16 text"_s));
        QVERIFY(problems.at(2).contains(u"missing.sql"_s));
        QVERIFY(problems.at(3).contains(u"pipe.sql"_s));

        // Out again, under a name that is safe for a file.
        QCOMPARE(transfer.suggestedFileName(), u"second.sql"_s);
        store.setDocumentName(store.selectedDocumentId(), u"a/b"_s);
        QCOMPARE(transfer.suggestedFileName(), u"a_b.sql"_s);
        QSignalSpy exported(&transfer, &DocumentTransfer::exported);
        transfer.exportSelectedDocument(QUrl::fromLocalFile(dir.filePath(u"out.sql"_s)));
        QVERIFY(exported.wait(10000));
        QFile out(dir.filePath(u"out.sql"_s));
        QVERIFY(out.open(QIODevice::ReadOnly));
        QCOMPARE(out.readAll(), "S;");
        QVERIFY(transfer.problems().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDocumentTransfer)
#include "tst_documenttransfer.moc"
