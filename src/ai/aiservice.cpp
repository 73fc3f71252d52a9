#include "aiservice.h"

#include "aiprompts.h"
#include "chatwirecodec.h"
#include "clock.h"
#include "datastore.h"
#include "knowledgemarkers.h"
#include "languagemanager.h"
#include "localizedtext.h"
#include "requestsigning.h"
#include "serveraddress.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QSslConfiguration>
#include <QStringDecoder>
#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace {

// The connection test's question, the same in every language.
constexpr QStringView connectionTestMessage = u"请用一句话回复：你好";
constexpr int connectionTestPreviewLength = 50;

// The first `count` user-perceived characters of `text`.
QString leadingCharacters(const QString &text, int count)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    for (int i = 0; i < count && end >= 0 && end < text.size(); ++i)
        end = finder.toNextBoundary();
    return text.first(end < 0 ? text.size() : end);
}

} // namespace

AIService::AIService(DataStore *store, LanguageManager *language, AIServiceConfig config, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_language(language)
    , m_config(std::move(config))
    , m_networkAccessManager(m_config.networkAccessManager ? m_config.networkAccessManager
                                                           : new QNetworkAccessManager(this))
{
    m_isConfigured = isConfigured();
}

namespace {

AIService *sharedService = nullptr;

} // namespace

AIService *AIService::shared()
{
    if (!sharedService) {
        sharedService =
            new AIService(DataStore::shared(), LanguageManager::shared(), AIServiceConfig::fromBuild());
        sharedService->setConnectionSettings(AIConnectionSettings::shared());
        // Its network manager must go before the application object does.
        if (QCoreApplication *application = QCoreApplication::instance())
            sharedService->setParent(application);
    }
    return sharedService;
}

void AIService::setShared(AIService *service)
{
    sharedService = service;
}

bool AIService::hasProxy() const
{
    return !m_config.proxyBaseURL.isEmpty() && m_config.proxyBaseURL.startsWith("http"_L1);
}

bool AIService::usesOwnServer() const
{
    return m_connection &&
           (!hasProxy() || m_connection->kind() == AIConnectionSettings::Kind::OpenAICompatible);
}

bool AIService::isConfigured() const
{
    return usesOwnServer() ? m_connection->isServerComplete() : hasProxy();
}

void AIService::setConnectionSettings(AIConnectionSettings *settings)
{
    if (m_connection)
        disconnect(m_connection, nullptr, this, nullptr);
    m_connection = settings;
    if (settings)
        connect(settings, &AIConnectionSettings::connectionChanged, this, &AIService::updateIsConfigured);
    updateIsConfigured();
}

void AIService::updateIsConfigured()
{
    const bool configured = isConfigured();
    if (configured == m_isConfigured)
        return;
    m_isConfigured = configured;
    Q_EMIT isConfiguredChanged();
}

QString AIService::signBody(const QString &timestamp, const QString &bodyText) const
{
    return RequestSigning::sign(m_config.signingKey, timestamp, bodyText);
}

QNetworkRequest AIService::baseRequest(const QUrl &url) const
{
    QNetworkRequest request(url);
    request.setRawHeader("Content-Type", "application/json");
    request.setTransferTimeout(int(m_config.transferTimeout.count()));
    if (!m_config.extraCaCertificates.isEmpty()) {
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(QSslConfiguration::systemCaCertificates() + m_config.extraCaCertificates);
        request.setSslConfiguration(tls);
    }
    return request;
}

QNetworkRequest AIService::buildChatRequest(const QUrl &url, const QByteArray &body) const
{
    const QString timestamp = QString::number(Clock::now().toMSecsSinceEpoch());
    // Bytes that are not UTF-8 are signed as the empty text; the encoder never makes such bytes,
    // so the signature covers exactly what is sent.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    QString bodyText = decoder(body);
    if (decoder.hasError())
        bodyText.clear();

    QNetworkRequest request = baseRequest(url);
    request.setRawHeader("X-Timestamp", timestamp.toLatin1());
    request.setRawHeader("X-App-Signature", signBody(timestamp, bodyText).toLatin1());
    // The signed headers must not travel to a host the build did not name.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);
    return request;
}

QNetworkRequest AIService::serverRequest(const QUrl &url) const
{
    QNetworkRequest request = baseRequest(url);
    if (const QString key = m_connection->apiKey(); !key.isEmpty())
        request.setRawHeader("Authorization", "Bearer " + key.toUtf8());
    // The key and the conversation go only where the user said; a redirect ends as its status.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    return request;
}

void AIService::whenApiKeyReady(QObject *context, std::function<void()> run)
{
    if (m_connection->isApiKeyReady())
        return run();
    auto connection = std::make_shared<QMetaObject::Connection>();
    *connection = connect(m_connection, &AIConnectionSettings::apiKeyStateChanged, context,
                          [settings = m_connection, connection, run = std::move(run)] {
                              if (!settings->isApiKeyReady())
                                  return;
                              QObject::disconnect(*connection);
                              run();
                          });
    m_connection->ensureApiKeyLoaded();
}

AppLanguage AIService::language() const
{
    return m_language->resolvedLanguage();
}

QString AIService::buildSystemPrompt(AIAssistantMode mode) const
{
    return AIPrompts::systemPrompt(mode, language(), m_store->knowledgeItems());
}

QString AIService::buildKnowledgeBlock() const
{
    return AIPrompts::knowledgeBlock(m_store->knowledgeItems(), language());
}

QList<OpenAIChatMessage> AIService::assembleMessages(const QString &message,
                                                     const std::optional<QString> &currentSQL,
                                                     AIAssistantMode mode,
                                                     const QList<AIMessage> &history) const
{
    return AIPrompts::assembleMessages(message, currentSQL, mode, history, language(),
                                       m_store->knowledgeItems());
}

AIChatCall *AIService::sendMessage(const QString &message, const std::optional<QString> &currentSQL,
                                   AIAssistantMode mode, const QList<AIMessage> &history)
{
    return startCall(false, message, currentSQL, mode, history);
}

AIChatCall *AIService::sendMessageStreaming(const QString &message, const std::optional<QString> &currentSQL,
                                            AIAssistantMode mode, const QList<AIMessage> &history)
{
    return startCall(true, message, currentSQL, mode, history);
}

AIChatCall *AIService::startCall(bool streaming, const QString &message,
                                 const std::optional<QString> &currentSQL, AIAssistantMode mode,
                                 const QList<AIMessage> &history)
{
    auto *call = new AIChatCall(streaming, {}, this);
    // The finisher lives in the call, so the call outlives every run of it.
    call->m_finisher = [this, call](const QString &text) {
        KnowledgeMarkers::Result result = recordKnowledge(text);
        call->m_recordedKnowledge = std::move(result.changes);
        return std::move(result.text);
    };
    if (!isConfigured()) {
        call->failSoon(AIServiceError::invalidConfiguration());
        return call;
    }
    const bool ownServer = usesOwnServer();
    const QUrl url = ownServer ? ServerAddress::endpoint(m_connection->serverBase(), u"chat/completions")
                               : QUrl(m_config.proxyChatURL, QUrl::StrictMode);
    if (!url.isValid() || url.isRelative() || url.host().isEmpty()) {
        call->failSoon(AIServiceError::invalidURL());
        return call;
    }

    // Connected ahead of the caller, so that the state is settled when the caller hears of it.
    connect(call, &AIChatCall::finished, this, [this] { setIsLoading(false); });
    connect(call, &AIChatCall::failed, this, [this] { setIsLoading(false); });
    if (streaming)
        connect(call, &AIChatCall::chunkReceived, this, &AIService::setCurrentStreamText);
    setIsLoading(true);
    if (streaming)
        setCurrentStreamText({});

    // Only HTTP answers are judged; nothing is posted to another kind of address.
    if (url.scheme() != "https"_L1 && url.scheme() != "http"_L1) {
        call->failSoon(AIServiceError::invalidResponse());
        return call;
    }
    const QList<OpenAIChatMessage> messages = assembleMessages(message, currentSQL, mode, history);
    if (!ownServer) {
        // Serialised once: these bytes are signed and these bytes are sent.
        const QByteArray body = ChatWire::encode(ProxyChatRequest{messages, streaming});
        call->start(m_networkAccessManager, buildChatRequest(url, body), body);
        return call;
    }
    call->readErrorBodiesLeniently();
    const QByteArray body =
        ChatWire::encode(OpenAIChatRequest{m_connection->serverModel(), messages, streaming});
    whenApiKeyReady(
        call, [this, call, url, body] { call->start(m_networkAccessManager, serverRequest(url), body); });
    return call;
}

AIModelListRequest *AIService::listModels()
{
    auto *request = new AIModelListRequest(language(), this);
    if (!m_connection || !m_connection->serverBase().isValid()) {
        request->failSoon(ServerAddress::problemText(ServerAddress::Problem::Empty, {}, language()));
        return request;
    }
    const QUrl url = ServerAddress::endpoint(m_connection->serverBase(), u"models");
    whenApiKeyReady(request, [this, request, url] {
        QNetworkRequest get = serverRequest(url);
        get.setRawHeader("Content-Type", QByteArray());
        request->start(m_networkAccessManager, get);
    });
    return request;
}

AIConnectionTest *AIService::testConnection()
{
    auto *test = new AIConnectionTest(this);
    if (!isConfigured()) {
        test->finishSoon(false, pickText(language(), u"Please complete API configuration first",
                                         u"请先完善 API 配置", u"API 設定を完了してください"));
        return test;
    }
    AIChatCall *call =
        sendMessage(connectionTestMessage.toString(), std::nullopt, AIAssistantMode::FreeChat, {});
    connect(call, &AIChatCall::finished, test, [this, test](const QString &reply) {
        const AppLanguage lang = language();
        test->finish(true, pickText(lang, u"Connection successful!", u"连接成功！", u"接続成功！") + u' ' +
                               pickText(lang, u"AI response", u"AI 回复", u"AI の応答") + u": "_s +
                               leadingCharacters(reply, connectionTestPreviewLength) + u"..."_s);
    });
    connect(call, &AIChatCall::failed, test, [this, test](const AIServiceError &error) {
        test->finish(false, error.description(language()));
    });
    test->watch(call);
    return test;
}

QString AIService::extractKnowledgeMarkers(const QString &text)
{
    return recordKnowledge(text).text;
}

KnowledgeMarkers::Result AIService::recordKnowledge(const QString &text)
{
    KnowledgeMarkers::Result result = KnowledgeMarkers::extract(text, m_store);
    if (!result.changes.isEmpty())
        Q_EMIT knowledgeRecorded(result.changes);
    return result;
}

void AIService::setIsLoading(bool loading)
{
    if (loading == m_isLoading)
        return;
    m_isLoading = loading;
    Q_EMIT isLoadingChanged();
}

void AIService::setCurrentStreamText(const QString &text)
{
    if (text == m_currentStreamText)
        return;
    m_currentStreamText = text;
    Q_EMIT currentStreamTextChanged();
}
