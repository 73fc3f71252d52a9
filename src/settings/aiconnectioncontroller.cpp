#include "aiconnectioncontroller.h"

#include "aiconnectionsettings.h"
#include "aiservice.h"
#include "languagemanager.h"
#include "serveraddress.h"

AIConnectionController::AIConnectionController(QObject *parent)
    : AIConnectionController(AIService::shared(), LanguageManager::shared(), parent)
{}

AIConnectionController::AIConnectionController(AIService *service, LanguageManager *language, QObject *parent)
    : QObject(parent)
    , m_service(service)
    , m_language(language)
{
    m_filteredModels.setSourceModel(&m_modelList);
    m_filteredModels.setFilterCaseSensitivity(Qt::CaseInsensitive);
    connect(service, &AIService::isConfiguredChanged, this, &AIConnectionController::isConfiguredChanged);
    if (AIConnectionSettings *connection = service->connectionSettings()) {
        connect(connection, &AIConnectionSettings::kindChanged, this,
                &AIConnectionController::usesOwnServerChanged);
        // The key field tells where the key is kept, so it is asked for as the section shows.
        if (service->usesOwnServer())
            connection->ensureApiKeyLoaded();
        connect(connection, &AIConnectionSettings::kindChanged, this, [connection, service] {
            if (service->usesOwnServer())
                connection->ensureApiKeyLoaded();
        });
    }
}

AIConnectionController::~AIConnectionController()
{
    // A test still running ends nowhere; a model list is no longer wanted.
    if (m_modelRequest)
        m_modelRequest->cancel();
}

AIConnectionSettings *AIConnectionController::settings() const
{
    return m_service ? m_service->connectionSettings() : nullptr;
}

bool AIConnectionController::hasProxy() const
{
    return m_service && m_service->hasProxy();
}

bool AIConnectionController::isConfigured() const
{
    return m_service && m_service->isConfigured();
}

bool AIConnectionController::usesOwnServer() const
{
    return m_service && m_service->usesOwnServer();
}

void AIConnectionController::setModelFilter(const QString &filter)
{
    if (filter == m_modelFilter)
        return;
    m_modelFilter = filter;
    m_filteredModels.setFilterFixedString(filter);
    Q_EMIT modelFilterChanged();
}

void AIConnectionController::testConnection()
{
    if (!m_service || m_isTestingConnection)
        return;
    setTesting(true);
    setTestResult(false, false, {});
    AIConnectionTest *test = m_service->testConnection();
    connect(test, &AIConnectionTest::finished, this, [this](bool success, const QString &message) {
        setTestResult(true, success, message);
        setTesting(false);
    });
}

bool AIConnectionController::commitServerBaseURL(const QString &text)
{
    AIConnectionSettings *connection = settings();
    if (!connection)
        return false;
    const QString before = connection->serverBaseURL();
    const ServerAddress::Problem problem = connection->setServerBaseURL(text);
    if (problem != ServerAddress::Problem::None) {
        setTestResult(true, false, ServerAddress::problemText(problem, text, m_language->resolvedLanguage()));
        return false;
    }
    if (connection->serverBaseURL() != before) {
        setTestResult(false, false, {});
        loadModels();
    }
    return true;
}

bool AIConnectionController::isUnencryptedRemote(const QString &text) const
{
    const ServerAddress::Parsed parsed = ServerAddress::parse(text);
    return parsed.problem == ServerAddress::Problem::None && ServerAddress::isUnencryptedRemote(parsed.base);
}

void AIConnectionController::setApiKey(const QString &key)
{
    AIConnectionSettings *connection = settings();
    if (!connection || !connection->serverBase().isValid())
        return;
    connection->setApiKey(key);
    loadModels();
}

void AIConnectionController::loadModels()
{
    if (!m_service)
        return;
    if (m_modelRequest)
        m_modelRequest->cancel();
    AIModelListRequest *request = m_service->listModels();
    m_modelRequest = request;
    connect(request, &AIModelListRequest::finished, this, [this](const QStringList &models) {
        m_modelList.setStringList(models);
        Q_EMIT modelsChanged();
        endModelRequest();
    });
    connect(request, &AIModelListRequest::failed, this, [this](const QString &message) {
        setTestResult(true, false, message);
        endModelRequest();
    });
    Q_EMIT isLoadingModelsChanged();
}

void AIConnectionController::endModelRequest()
{
    m_modelRequest = nullptr;
    Q_EMIT isLoadingModelsChanged();
}

void AIConnectionController::setTestResult(bool hasResult, bool succeeded, const QString &message)
{
    if (hasResult == m_hasTestResult && succeeded == m_testSucceeded && message == m_testMessage)
        return;
    m_hasTestResult = hasResult;
    m_testSucceeded = succeeded;
    m_testMessage = message;
    Q_EMIT testResultChanged();
}

void AIConnectionController::setTesting(bool testing)
{
    if (testing == m_isTestingConnection)
        return;
    m_isTestingConnection = testing;
    Q_EMIT isTestingConnectionChanged();
}
