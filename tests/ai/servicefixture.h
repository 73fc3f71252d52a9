#pragma once

#include "aiservice.h"
#include "chattestserver.h"
#include "datastore.h"
#include "languagemanager.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QSslSocket>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>

// What the tests of the chat client share: a service on temporary files speaking to a server of
// the test's own on 127.0.0.1, and the means to wait for a call.

// PEM text of a certificate for 127.0.0.1 that only the services given it as an authority trust;
// the TLS objects are made only once the application object exists. Empty without openssl.
inline QByteArray certificatePem;
inline QByteArray privateKeyPem;

inline bool makeTestCertificate()
{
    using namespace Qt::StringLiterals;
    const QString openssl = QStandardPaths::findExecutable(u"openssl"_s);
    if (openssl.isEmpty() || !QSslSocket::supportsSsl())
        return true;
    QTemporaryDir dir;
    QProcess process;
    process.start(openssl,
                  {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-days"_s, u"1"_s,
                   u"-subj"_s, u"/CN=127.0.0.1"_s, u"-addext"_s, u"subjectAltName=IP:127.0.0.1"_s,
                   u"-keyout"_s, dir.filePath(u"key.pem"_s), u"-out"_s, dir.filePath(u"cert.pem"_s)});
    if (!process.waitForFinished(60000))
        return false;
    QFile cert(dir.filePath(u"cert.pem"_s));
    QFile key(dir.filePath(u"key.pem"_s));
    if (!cert.open(QIODevice::ReadOnly) || !key.open(QIODevice::ReadOnly))
        return false;
    certificatePem = cert.readAll();
    privateKeyPem = key.readAll();
    return true;
}

// One event line of a streamed reply.
inline QByteArray delta(const QByteArray &content)
{
    return R"(data: {"choices":[{"delta":{"content":")" + content + R"("}}]})";
}

inline QByteArray messageBody(const QString &content)
{
    using namespace Qt::StringLiterals;
    const QJsonObject message{{"role"_L1, u"assistant"_s}, {"content"_L1, content}};
    return QJsonDocument(QJsonObject{{"choices"_L1, QJsonArray{QJsonObject{{"message"_L1, message}}}}})
        .toJson();
}

struct FixtureOptions
{
    bool tls = false;
    // The service trusts the server's certificate.
    bool trusted = true;
    std::chrono::milliseconds transferTimeout{1000};
};

// A service on temporary files, speaking to its own server.
struct Fixture
{
    explicit Fixture(bool tls = false, bool trusted = true)
        : Fixture(FixtureOptions{tls, trusted})
    {}
    explicit Fixture(FixtureOptions options)
        : server(AIServiceConfig().signingKey,
                 options.tls ? QSslCertificate(certificatePem) : QSslCertificate(),
                 QSslKey(privateKeyPem, QSsl::Rsa))
        , service(&store, &language, config(options))
    {}
    AIServiceConfig config(const FixtureOptions &options) const
    {
        using namespace Qt::StringLiterals;
        AIServiceConfig config;
        config.proxyBaseURL = server.baseUrl();
        config.proxyChatURL = server.baseUrl() + "/api/chat"_L1;
        config.transferTimeout = options.transferTimeout;
        if (options.tls && options.trusted)
            config.extraCaCertificates = {QSslCertificate(certificatePem)};
        return config;
    }

    QTemporaryDir dir;
    QSettings settings{dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat};
    DataStore store{dir.filePath(QStringLiteral("data")), &settings};
    QStringList desktopLanguages{QStringLiteral("en-US")};
    LanguageManager language{&settings, [this] { return desktopLanguages; }};
    ChatTestServer server;
    AIService service;

    [[nodiscard]] QStringList items() const
    {
        QStringList list;
        for (const KnowledgeItem &item : store.knowledgeItems())
            list.append(KnowledgeEnums::rawValue(item.category) + u':' + item.content);
        return list;
    }
};

struct Outcome
{
    QStringList chunks;
    // "ok:" and the result, or the English description of the error.
    QString text;
    AIServiceError error;
};

inline Outcome await(AIChatCall *call, int timeoutMs = 10000)
{
    using namespace Qt::StringLiterals;
    Outcome outcome;
    QObject::connect(call, &AIChatCall::chunkReceived,
                     [&](const QString &text) { outcome.chunks.append(text); });
    QObject::connect(call, &AIChatCall::finished,
                     [&](const QString &result) { outcome.text = "ok:"_L1 + result; });
    QObject::connect(call, &AIChatCall::failed, [&](const AIServiceError &error) {
        outcome.text = error.description(AppLanguage::En);
        outcome.error = error;
    });
    QSignalSpy ended(call, &AIChatCall::isRunningChanged);
    [&] { QVERIFY(ended.wait(timeoutMs)); }();
    return outcome;
}
