#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

// The built varnholt-fmt, run on files in a temporary folder.
class TestVarnholtFmt : public QObject
{
    Q_OBJECT

    struct Result
    {
        int status = -1;
        QByteArray out;
        QByteArray err;
    };

    QTemporaryDir m_dir;

    Result run(const QStringList &arguments, const QByteArray &input = {})
    {
        QProcess process;
        process.setWorkingDirectory(m_dir.path());
        process.start(QStringLiteral(VARNHOLT_FMT), arguments);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
    QString write(const QString &name, const QByteArray &bytes, QFile::Permissions permissions = {})
    {
        const QString path = m_dir.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
            return {};
        file.close();
        if (permissions)
            file.setPermissions(permissions);
        return path;
    }
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }
    static struct stat status(const QString &path)
    {
        struct stat result
        {};
        ::stat(QFile::encodeName(path).constData(), &result);
        return result;
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void printsFormattedText()
    {
        const Result piped = run({}, "select a, b from t -- x\n;");
        QCOMPARE(piped.status, 0);
        QCOMPARE(piped.out, "SELECT a,\n    b\nFROM t\n    -- x\n;\n");
        QVERIFY(piped.err.isEmpty());

        const QString one = write(u"one.sql"_s, "select 1;select 2");
        const QString blank = write(u"blank.sql"_s, " \n\n");
        const QString marked = write(u"marked.sql"_s, "\xEF\xBB\xBFselect 'é'");
        const Result files = run({one, blank, marked});
        QCOMPARE(files.status, 0);
        QCOMPARE(files.out, "SELECT 1;\n\nSELECT 2\n\xEF\xBB\xBFSELECT 'é'\n");
    }

    void rewritesInPlace()
    {
        const QString messy = write(u"messy.sql"_s, "update t set a = 'x  y' where id=1",
                                    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
        const QString tidy = write(u"tidy.sql"_s, "SELECT 1\n");
        const ino_t tidyInode = status(tidy).st_ino;
        QCOMPARE(run({u"--check"_s, messy, tidy}).out, messy.toUtf8() + '\n');
        QCOMPARE(run({u"--check"_s, tidy}).status, 0);
        QCOMPARE(run({u"--check"_s, messy}).status, 1);
        QCOMPARE(read(messy), "update t set a = 'x  y' where id=1");

        const Result result = run({u"-i"_s, messy, tidy});
        QCOMPARE(result.status, 0);
        QVERIFY(result.out.isEmpty());
        QCOMPARE(read(messy), "UPDATE t\nSET a = 'x  y'\nWHERE id=1\n");
        QCOMPARE(status(messy).st_mode & 0777, 0640u);
        QCOMPARE(status(tidy).st_ino, tidyInode); // an already formatted file is not touched
        QCOMPARE(run({u"--check"_s, messy}).status, 0);
        QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden).filter(u".varnholt-tmp-"_s),
                 QStringList());
    }

    // A write that fails half way (here: the file size limit) leaves the original as it was.
    void keepsOriginalWhenRewriteFails()
    {
        const QByteArray original = "select a, b, c, d, e, f from t where x = 1 and y = 2";
        const QString path = write(u"limited.sql"_s, original);
        QProcess process;
        process.setChildProcessModifier([] {
            const rlimit limit{16, 16};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        });
        process.start(QStringLiteral(VARNHOLT_FMT), {u"--in-place"_s, path});
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 2);
        QVERIFY(process.readAllStandardError().contains(path.toUtf8()));
        QCOMPARE(read(path), original);
        QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden).filter(u".varnholt-tmp-"_s),
                 QStringList());
    }

    void refusesBadInput_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("named"); // in the one line on standard error
        QTest::addColumn<QByteArray>("bytes"); // of bad.sql
        const QStringList bad{u"bad.sql"_s};
        QTest::newRow("missing file")
            << QStringList{u"nothing.sql"_s} << QByteArray("nothing.sql") << QByteArray();
        QTest::newRow("folder") << QStringList{u"."_s} << QByteArray(".: ") << QByteArray();
        QTest::newRow("latin-1") << bad << QByteArray("bad.sql") << QByteArray("select 'caf\xe9'");
        QTest::newRow("encoded surrogate") << bad << QByteArray("bad.sql") << QByteArray("'\xed\xa0\x80'");
        QTest::newRow("overlong") << bad << QByteArray("bad.sql") << QByteArray("\xc0\xbb");
        QTest::newRow("truncated") << bad << QByteArray("bad.sql") << QByteArray("select '\xe4\xb8'");
        QTest::newRow("check, not UTF-8")
            << QStringList{u"--check"_s, u"bad.sql"_s} << QByteArray("bad.sql") << QByteArray("\xff\xfe");
        QTest::newRow("in place, not UTF-8")
            << QStringList{u"-i"_s, u"bad.sql"_s} << QByteArray("bad.sql") << QByteArray("\xff\xfe");
        QTest::newRow("unknown option") << QStringList{u"--fast"_s} << QByteArray("fast") << QByteArray();
        QTest::newRow("in place, stdin")
            << QStringList{u"-i"_s} << QByteArray("standard input") << QByteArray();
    }
    void refusesBadInput()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, named);
        QFETCH(QByteArray, bytes);
        const QString path = write(u"bad.sql"_s, bytes);
        const Result result = run(arguments);
        QCOMPARE(result.status, 2);
        QVERIFY(result.out.isEmpty());
        QCOMPARE(result.err.count('\n'), 1);
        QVERIFY2(result.err.contains(named), result.err.constData());
        QCOMPARE(read(path), bytes);
    }

    // Noise made of SQL's special characters, marks and CJK text formats, and in place too.
    void formatsNoise()
    {
        const QByteArrayList pieces{"se",
                                    "'",
                                    "\"",
                                    "-",
                                    ";",
                                    "(",
                                    ")",
                                    ",",
                                    "\n",
                                    "\r",
                                    "\t",
                                    " ",
                                    "\xc3\xa9",
                                    "e\xcc\x81",
                                    "\xe4\xb8\xad",
                                    "\xe3\x80\x80",
                                    "--",
                                    "\r\n",
                                    "AND"};
        QByteArray bytes;
        for (int i = 0; i < 20000; ++i)
            bytes.append(pieces[(i * 7919 + i / 13) % pieces.size()]);
        const QString path = write(u"noise.sql"_s, bytes);
        const Result result = run({path});
        QCOMPARE(result.status, 0);
        QCOMPARE(run({u"-i"_s, path}).status, 0);
        QCOMPARE(read(path), result.out);
    }
};

QTEST_GUILESS_MAIN(TestVarnholtFmt)
#include "tst_varnholtfmt.moc"
