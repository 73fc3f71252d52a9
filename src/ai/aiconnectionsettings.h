#pragma once

#include "serveraddress.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QUrl>

class ApiKeyStore;
class QSettings;

// The user's choice of where chat requests go, and the user's own OpenAI-compatible server:
// its base address and model (preferences) and its API key (in the desktop's secret service, or
// for this session only where none runs). A change is in force for the next request.
//
// A key belongs to the server it was entered for (scheme, host and port): another address
// never receives it, and coming back to the address finds it again.
class AIConnectionSettings : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Kind kind READ kind WRITE setKind NOTIFY kindChanged)
    Q_PROPERTY(QString serverBaseURL READ serverBaseURL NOTIFY serverBaseURLChanged)
    Q_PROPERTY(QString serverModel READ serverModel WRITE setServerModel NOTIFY serverModelChanged)
    Q_PROPERTY(KeyState apiKeyState READ apiKeyState NOTIFY apiKeyStateChanged)
    // Why the secret service could not be used, in its own words; empty while it works.
    Q_PROPERTY(QString keyStoreProblem READ keyStoreProblem NOTIFY apiKeyStateChanged)

public:
    enum class Kind {
        // The build's signed chat proxy.
        Proxy,
        OpenAICompatible,
    };
    Q_ENUM(Kind)

    enum class KeyState {
        // Not asked for yet: the secret service is first asked when the key is needed, so that a
        // user of the proxy never meets a keyring prompt.
        NotLoaded,
        // Being read from or written to the secret service; requests wait for it.
        Loading,
        None,
        Stored,
        // No secret service took it: it lives in memory until the application quits.
        SessionOnly,
    };
    Q_ENUM(KeyState)

    static constexpr QLatin1StringView connectionKey{"ai_connection"};
    static constexpr QLatin1StringView serverBaseURLKey{"ai_server_base_url"};
    static constexpr QLatin1StringView serverModelKey{"ai_server_model"};
    // The name of the application's entries in the secret service.
    static constexpr QLatin1StringView keyServiceName{"Varnholt"};

    // `settings` must outlive the object. Keys go to the secret service under `keyService`.
    AIConnectionSettings(QSettings *settings, const QString &keyService, QObject *parent = nullptr);

    // The application's settings, made on first use.
    [[nodiscard]] static AIConnectionSettings *shared();

    [[nodiscard]] Kind kind() const { return m_kind; }
    void setKind(Kind kind);

    [[nodiscard]] QString serverBaseURL() const { return m_baseURL.toString(); }
    [[nodiscard]] QUrl serverBase() const { return m_baseURL; }
    // Stores the address when it is one; otherwise keeps the stored one and says what is wrong.
    ServerAddress::Problem setServerBaseURL(const QString &text);

    [[nodiscard]] QString serverModel() const { return m_model; }
    // Stored trimmed.
    void setServerModel(const QString &model);

    // Both the address and the model are set.
    [[nodiscard]] bool isServerComplete() const;

    [[nodiscard]] KeyState apiKeyState() const { return m_keyState; }
    // Neither unasked nor on its way: apiKey() is what the next request sends.
    [[nodiscard]] bool isApiKeyReady() const;
    // Asks the secret service for the key of the stored address, once.
    Q_INVOKABLE void ensureApiKeyLoaded();
    [[nodiscard]] QString keyStoreProblem() const { return m_keyStoreProblem; }
    // The key for the stored address; empty when there is none or while it is loading.
    [[nodiscard]] QString apiKey() const { return m_key; }
    // Keeps `key` (trimmed) for the stored address, in the secret service if one runs; an empty
    // key removes it.
    void setApiKey(const QString &key);

Q_SIGNALS:
    void kindChanged();
    void serverBaseURLChanged();
    void serverModelChanged();
    void apiKeyStateChanged();
    // Any change that alters the next request.
    void connectionChanged();

private:
    void loadKey();
    void setKeyState(KeyState state, const QString &key, const QString &problem);

    QSettings *m_settings = nullptr;
    ApiKeyStore *m_keys = nullptr;
    Kind m_kind = Kind::Proxy;
    QUrl m_baseURL;
    QString m_model;
    KeyState m_keyState = KeyState::NotLoaded;
    QString m_key;
    QString m_keyStoreProblem;
    // Keys that no secret service took, by server.
    QHash<QString, QString> m_sessionKeys;
    // Counts key operations, so that an answer that a later one overtook is dropped.
    quint64 m_keyGeneration = 0;
};
