#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QString>

#include <chrono>

class QNetworkAccessManager;

// Where an AIService sends its calls and how. The application's service takes `fromBuild()`;
// tests make their own.
struct AIServiceConfig
{
    // The key by which the proxy recognises the application, when the build names no other.
    static constexpr QLatin1StringView defaultSigningKey{"Lanterns_1987_Hollow_Tag_%^&*"};

    // An http(s) address with no path; empty when the build has no proxy.
    QString proxyBaseURL;
    // The chat address of the same proxy, kept apart: the service never joins the two itself.
    QString proxyChatURL;
    QByteArray signingKey = QByteArray(defaultSigningKey.data(), defaultSigningKey.size());
    // Trusted for TLS in addition to the system's authorities (a test's own server).
    QList<QSslCertificate> extraCaCertificates;
    // Time without any data after which a call fails.
    std::chrono::milliseconds transferTimeout{std::chrono::seconds(120)};
    // Not owned; when null the service makes its own.
    QNetworkAccessManager *networkAccessManager = nullptr;

    // The endpoint and key fixed when the application was built.
    [[nodiscard]] static AIServiceConfig fromBuild();
};
