#include "singleinstance.h"
#include "testenvironment.h"

#include <QElapsedTimer>
#include <QLocalSocket>
#include <QProcess>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

// The real program, started twice on one data folder.
class TestSingleInstance : public QObject
{
    Q_OBJECT

    ScratchHome m_home;

    [[nodiscard]] bool isAnswering() const
    {
        QLocalSocket socket;
        socket.connectToServer(SingleInstance(m_home.dataFolder()).socketName());
        return socket.waitForConnected(200);
    }
    void start(QProcess &process) const
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(VARNHOLT_EXECUTABLE), {});
        QVERIFY(process.waitForStarted());
    }

private Q_SLOTS:
    void aSecondStartHandsOverAndEnds()
    {
        QProcess first;
        start(first);
        QTRY_VERIFY_WITH_TIMEOUT(isAnswering(), 20000);

        QProcess second;
        start(second);
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(first.state(), QProcess::Running);

        // A first instance killed outright leaves its socket behind; the next start takes over.
        ::kill(pid_t(first.processId()), SIGKILL);
        QVERIFY(first.waitForFinished(5000));
        QProcess third;
        start(third);
        QTRY_VERIFY_WITH_TIMEOUT(isAnswering(), 20000);
        QCOMPARE(third.state(), QProcess::Running);
        ::kill(pid_t(third.processId()), SIGTERM);
        QVERIFY(third.waitForFinished(10000));
        QCOMPARE(third.exitCode(), 0);
    }

    // Another data folder is another application.
    void anotherDataFolderIsNotHandedOver()
    {
        QVERIFY(SingleInstance(m_home.dataFolder()).socketName() != SingleInstance(m_home.path()).socketName());
    }
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"
