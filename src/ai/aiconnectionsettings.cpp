#include "aiconnectionsettings.h"

#include "apikeystore.h"
#include "appsettings.h"

#include <QCoreApplication>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView proxyValue{"proxy"};
constexpr QLatin1StringView openAICompatibleValue{"openai_compatible"};

} // namespace

AIConnectionSettings::AIConnectionSettings(QSettings *settings, const QString &keyService, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_keys(new ApiKeyStore(keyService, this))
{
    if (m_settings->value(connectionKey).toString() == openAICompatibleValue)
        m_kind = Kind::OpenAICompatible;
    // A stored address that is none (edited by hand) counts as no address.
    if (const ServerAddress::Parsed parsed =
            ServerAddress::parse(m_settings->value(serverBaseURLKey).toString());
        parsed.problem == ServerAddress::Problem::None)
        m_baseURL = parsed.base;
    m_model = m_settings->value(serverModelKey).toString().trimmed();
}

AIConnectionSettings *AIConnectionSettings::shared()
{
    static AIConnectionSettings *instance = [] {
        auto *settings = new AIConnectionSettings(applicationSettings(), keyServiceName);
        // Its pending secret-service jobs must go before the application object does.
        if (QCoreApplication *application = QCoreApplication::instance())
            settings->setParent(application);
        return settings;
    }();
    return instance;
}

void AIConnectionSettings::setKind(Kind kind)
{
    if (kind == m_kind)
        return;
    m_kind = kind;
    m_settings->setValue(connectionKey, kind == Kind::Proxy ? proxyValue : openAICompatibleValue);
    Q_EMIT kindChanged();
    Q_EMIT connectionChanged();
}

ServerAddress::Problem AIConnectionSettings::setServerBaseURL(const QString &text)
{
    const ServerAddress::Parsed parsed = ServerAddress::parse(text);
    if (parsed.problem != ServerAddress::Problem::None)
        return parsed.problem;
    if (parsed.base == m_baseURL)
        return ServerAddress::Problem::None;
    const bool sameServer =
        m_baseURL.isValid() && ServerAddress::origin(parsed.base) == ServerAddress::origin(m_baseURL);
    m_baseURL = parsed.base;
    m_settings->setValue(serverBaseURLKey, m_baseURL.toString());
    Q_EMIT serverBaseURLChanged();
    if (!sameServer && m_keyState != KeyState::NotLoaded)
        loadKey();
    else if (!sameServer)
        setKeyState(KeyState::NotLoaded, {}, m_keyStoreProblem);
    Q_EMIT connectionChanged();
    return ServerAddress::Problem::None;
}

void AIConnectionSettings::setServerModel(const QString &model)
{
    const QString trimmed = model.trimmed();
    if (trimmed == m_model)
        return;
    m_model = trimmed;
    m_settings->setValue(serverModelKey, m_model);
    Q_EMIT serverModelChanged();
    Q_EMIT connectionChanged();
}

bool AIConnectionSettings::isServerComplete() const
{
    return m_baseURL.isValid() && !m_model.isEmpty();
}

bool AIConnectionSettings::isApiKeyReady() const
{
    return m_keyState != KeyState::NotLoaded && m_keyState != KeyState::Loading;
}

void AIConnectionSettings::ensureApiKeyLoaded()
{
    if (m_keyState == KeyState::NotLoaded)
        loadKey();
}

void AIConnectionSettings::loadKey()
{
    const quint64 generation = ++m_keyGeneration;
    if (!m_baseURL.isValid())
        return setKeyState(KeyState::None, {}, m_keyStoreProblem);
    const QString server = ServerAddress::origin(m_baseURL);
    if (const auto kept = m_sessionKeys.constFind(server); kept != m_sessionKeys.cend())
        return setKeyState(KeyState::SessionOnly, *kept, m_keyStoreProblem);
    setKeyState(KeyState::Loading, {}, m_keyStoreProblem);
    m_keys->read(server, [this, generation](const ApiKeyStore::Result &result) {
        if (generation != m_keyGeneration)
            return;
        switch (result.outcome) {
        case ApiKeyStore::Outcome::Done:
            return setKeyState(KeyState::Stored, result.key, {});
        case ApiKeyStore::Outcome::NotFound:
            return setKeyState(KeyState::None, {}, {});
        case ApiKeyStore::Outcome::Unavailable:
            return setKeyState(KeyState::None, {}, result.problem);
        }
    });
}

void AIConnectionSettings::setApiKey(const QString &key)
{
    if (!m_baseURL.isValid())
        return;
    const QString trimmed = key.trimmed();
    const QString server = ServerAddress::origin(m_baseURL);
    const quint64 generation = ++m_keyGeneration;
    m_sessionKeys.remove(server);
    if (trimmed.isEmpty()) {
        setKeyState(KeyState::None, {}, m_keyStoreProblem);
        m_keys->remove(server, [this](const ApiKeyStore::Result &result) {
            if (result.outcome == ApiKeyStore::Outcome::Unavailable && m_keyStoreProblem != result.problem)
                setKeyState(m_keyState, m_key, result.problem);
        });
        return;
    }
    // In force at once; the secret service only decides where it is kept.
    setKeyState(KeyState::Loading, trimmed, m_keyStoreProblem);
    m_keys->write(server, trimmed, [this, generation, server, trimmed](const ApiKeyStore::Result &result) {
        if (generation != m_keyGeneration)
            return;
        if (result.outcome == ApiKeyStore::Outcome::Done)
            return setKeyState(KeyState::Stored, trimmed, {});
        m_sessionKeys.insert(server, trimmed);
        setKeyState(KeyState::SessionOnly, trimmed, result.problem);
    });
}

void AIConnectionSettings::setKeyState(KeyState state, const QString &key, const QString &problem)
{
    const bool keyChanged = key != m_key;
    if (state == m_keyState && !keyChanged && problem == m_keyStoreProblem)
        return;
    m_keyState = state;
    m_key = key;
    m_keyStoreProblem = problem;
    Q_EMIT apiKeyStateChanged();
    if (keyChanged)
        Q_EMIT connectionChanged();
}
