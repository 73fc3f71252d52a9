#include "documentfile.h"

#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

// SQL files in and out: which texts are taken, and the names files get.
class TestDocumentFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodeText_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("taken");
        const QString sql = u"SELECT '日本語', 'ü' FROM t;\r\n"_s;
        QStringEncoder le(QStringEncoder::Utf16LE);
        QStringEncoder be(QStringEncoder::Utf16BE);
        QTest::newRow("UTF-8") << sql.toUtf8() << sql << true;
        QTest::newRow("UTF-8 with its mark") << "\xEF\xBB\xBF" + sql.toUtf8() << sql << true;
        QTest::newRow("UTF-16 LE with its mark") << "\xFF\xFE" + QByteArray(le(sql)) << sql << true;
        QTest::newRow("UTF-16 BE with its mark") << "\xFE\xFF" + QByteArray(be(sql)) << sql << true;
        QTest::newRow("empty") << QByteArray() << QString() << true;
        QTest::newRow("Latin-1") << QByteArray("SELECT 'caf\xE9';") << QString() << false;
        QTest::newRow("UTF-16 without its mark") << QByteArray(le(sql)) << QString() << false;
        QTest::newRow("a cut UTF-8 character") << QByteArray("SELECT '\xE6\x97';") << QString() << false;
        QTest::newRow("binary") << QByteArray("\x7F" "ELF\x02\x01\x01\x00\x00", 9) << QString() << false;
    }
    void decodeText()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QFETCH(bool, taken);
        const std::optional<QString> decoded = DocumentFile::decodeText(bytes);
        QCOMPARE(decoded.has_value(), taken);
        if (taken)
            QCOMPARE(*decoded, text);
    }

    void fileNameFor_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("file");
        QTest::newRow("plain") << u"Monthly revenue"_s << u"Monthly revenue.sql"_s;
        QTest::newRow("separators") << u"a/b\\c"_s << u"a_b_c.sql"_s;
        QTest::newRow("hidden") << u"..secret"_s << u"secret.sql"_s;
        QTest::newRow("control") << u"x\ty\n"_s << u"x_y_.sql"_s;
        QTest::newRow("blank") << u"   "_s << u"SQL.sql"_s;
        QTest::newRow("CJK") << u"用户留存分析"_s << u"用户留存分析.sql"_s;
    }
    void fileNameFor()
    {
        QFETCH(QString, name);
        QFETCH(QString, file);
        QCOMPARE(DocumentFile::fileNameFor(name), file);
    }

    void longNamesStayWithinTheFileSystemsLimit()
    {
        const QString file = DocumentFile::fileNameFor(u"😀"_s.repeated(200));
        QVERIFY(file.toUtf8().size() <= 255);
        QVERIFY(!file.isEmpty() && !file.chopped(4).back().isHighSurrogate());
    }

    void readAndWrite()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"Orders.SQL"_s);
        QVERIFY(DocumentFile::write(path, u"SELECT 1;\n"_s).isEmpty());
        struct stat status
        {};
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0644));
        // Written over, a file keeps its permissions.
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(DocumentFile::write(path, u"SELECT 2;\n"_s).isEmpty());
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0600));

        const DocumentFile::Imported file = DocumentFile::read(path);
        QVERIFY(file.error.isEmpty());
        QCOMPARE(file.name, u"Orders"_s);
        QCOMPARE(file.content, u"SELECT 2;\n"_s);
        QVERIFY(!DocumentFile::read(dir.path()).error.isEmpty());
        QVERIFY(DocumentFile::read(dir.filePath(u"missing.sql"_s)).error.contains(u"missing.sql"_s));
        QVERIFY(!DocumentFile::write(dir.filePath(u"no/such/folder.sql"_s), u"x"_s).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDocumentFile)
#include "tst_documentfile.moc"
