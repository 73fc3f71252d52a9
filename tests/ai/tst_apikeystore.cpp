#include "aiconnectionsettings.h"
#include "apikeystore.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Outcome = ApiKeyStore::Outcome;
using KeyState = AIConnectionSettings::KeyState;

namespace {

ApiKeyStore::Result wait(const std::function<void(ApiKeyStore::Callback)> &operation)
{
    std::optional<ApiKeyStore::Result> result;
    operation([&](const ApiKeyStore::Result &r) { result = r; });
    [&] { QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), 10000); }();
    return result.value_or(ApiKeyStore::Result{Outcome::Unavailable, {}, u"no answer"_s});
}

} // namespace

// Keys in a real secret service: GNOME Keyring in a D-Bus session of the test's own
// (with-secret-service.sh).
class TestApiKeyStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (qEnvironmentVariableIsSet("VARNHOLT_NO_SECRET_SERVICE"))
            QSKIP("dbus-run-session or gnome-keyring-daemon is missing");
    }

    void storeReadReplaceDelete()
    {
        ApiKeyStore keys(m_service);
        const QString account = u"http://localhost:11434"_s;
        QCOMPARE(wait([&](auto done) { keys.read(account, done); }).outcome, Outcome::NotFound);
        const ApiKeyStore::Result written = wait([&](auto done) { keys.write(account, u"sk-one"_s, done); });
        QVERIFY2(written.outcome == Outcome::Done, qPrintable(written.problem));
        QCOMPARE(wait([&](auto done) { keys.read(account, done); }).key, u"sk-one"_s);
        QCOMPARE(wait([&](auto done) { keys.write(account, u"sk-two"_s, done); }).outcome, Outcome::Done);
        QCOMPARE(wait([&](auto done) { keys.read(account, done); }).key, u"sk-two"_s);
        // Another server's key is another entry.
        QCOMPARE(wait([&](auto done) { keys.read(u"https://api.example.com"_s, done); }).outcome,
                 Outcome::NotFound);
        QCOMPARE(wait([&](auto done) { keys.remove(account, done); }).outcome, Outcome::Done);
        QCOMPARE(wait([&](auto done) { keys.read(account, done); }).outcome, Outcome::NotFound);
        QCOMPARE(wait([&](auto done) { keys.remove(account, done); }).outcome, Outcome::Done);
    }

    // The settings keep the key across a restart, in the secret service and not in their file.
    void settingsKeepTheKeyAcrossARestart()
    {
        QTemporaryDir dir;
        QSettings settings(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        {
            AIConnectionSettings connection(&settings, m_service);
            connection.setServerBaseURL(u"https://api.example.com/v1"_s);
            connection.setApiKey(u"sk-kept"_s);
            QTRY_COMPARE(connection.apiKeyState(), KeyState::Stored);
        }
        settings.sync();
        QFile file(settings.fileName());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(!file.readAll().contains("sk-kept"));

        AIConnectionSettings restarted(&settings, m_service);
        QCOMPARE(restarted.apiKeyState(), KeyState::NotLoaded);
        restarted.ensureApiKeyLoaded();
        QTRY_COMPARE(restarted.apiKeyState(), KeyState::Stored);
        QCOMPARE(restarted.apiKey(), u"sk-kept"_s);
        restarted.setApiKey(QString());
        QCOMPARE(restarted.apiKeyState(), KeyState::None);

        AIConnectionSettings again(&settings, m_service);
        again.ensureApiKeyLoaded();
        QTRY_VERIFY(again.isApiKeyReady());
        QCOMPARE(again.apiKeyState(), KeyState::None);
    }

private:
    const QString m_service = u"varnholt-test-%1"_s.arg(QCoreApplication::applicationPid());
};

QTEST_GUILESS_MAIN(TestApiKeyStore)
#include "tst_apikeystore.moc"
