#pragma once

#include "aichatcall.h"
#include "aiconnectionsettings.h"
#include "aiconnectiontest.h"
#include "aienums.h"
#include "aimessage.h"
#include "aimodellistrequest.h"
#include "aiserviceconfig.h"
#include "chatwirerecords.h"
#include "knowledgechange.h"
#include "knowledgemarkers.h"

#include <QNetworkRequest>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <functional>
#include <optional>

class DataStore;
class LanguageManager;
class QNetworkAccessManager;

// The chat client behind the assistant panel: it assembles the prompt with the user's knowledge,
// signs and posts it to the chat proxy, reads the reply whole or as a stream, and hands the facts
// the reply marks to the knowledge store.
//
// Where the user chose an OpenAI-compatible server of their own (AIConnectionSettings), or the
// build has no proxy, the same records go to `<base>/chat/completions` with the model and, when
// a key is set, `Authorization: Bearer <key>`, unsigned. The choice is read at every request.
//
// Calls are asynchronous. `sendMessage`, `sendMessageStreaming` and `testConnection` return at
// once with a handle (AIChatCall, AIConnectionTest) whose signals report the outcome; see there.
// Nothing is retried. Every call runs on the thread of the service, the main thread.
//
// `isLoading` is true from the start of a call until its final signal; two calls at once share
// it, and the first to end clears it. `currentStreamText` holds the raw text of the latest stream,
// markers included; it is emptied when the next stream starts. Both notify only on real changes.
//
// TLS is always verified; redirects are followed only within the proxy's origin, and never for
// the user's own server; a request is posted at most once; a reply body or streamed text above
// 8 MB, or a streamed line above 1 MB, ends the call with an error.
class AIService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QString currentStreamText READ currentStreamText NOTIFY currentStreamTextChanged)
    Q_PROPERTY(bool isConfigured READ isConfigured NOTIFY isConfiguredChanged)

public:
    // `store` and `language` must outlive the service.
    AIService(DataStore *store, LanguageManager *language, AIServiceConfig config, QObject *parent = nullptr);

    // The application's service, made on first use on the shared store and language manager,
    // with the endpoint of the build. It lives as long as the application object.
    [[nodiscard]] static AIService *shared();
    // Puts `service` in the place of the application's service, for a host that brings its own
    // endpoint (the screenshot tool, tests); call it before anything asks for the shared one.
    static void setShared(AIService *service);

    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    [[nodiscard]] QString currentStreamText() const { return m_currentStreamText; }

    [[nodiscard]] QString proxyBaseURL() const { return m_config.proxyBaseURL; }
    [[nodiscard]] QString proxyChatURL() const { return m_config.proxyChatURL; }
    // A proxy is named: the base address is not empty and begins with "http".
    [[nodiscard]] bool hasProxy() const;
    // The connection in use is complete: the proxy is named, or the own server has an address
    // and a model.
    [[nodiscard]] bool isConfigured() const;

    // The user's choice of connection; without one the proxy serves. Must outlive the service.
    void setConnectionSettings(AIConnectionSettings *settings);
    [[nodiscard]] AIConnectionSettings *connectionSettings() const { return m_connection; }
    // Requests go to the user's own server: chosen, or the build has no proxy.
    [[nodiscard]] bool usesOwnServer() const;

    // The request signature: lower-case hex HMAC-SHA256 of `timestamp` followed by `bodyText`.
    [[nodiscard]] QString signBody(const QString &timestamp, const QString &bodyText) const;
    // A signed POST of `body` to `url`, stamped now (milliseconds since 1970), with the transfer
    // time-out. The body itself goes with the post.
    [[nodiscard]] QNetworkRequest buildChatRequest(const QUrl &url, const QByteArray &body) const;

    // The prompts in the language in force, with the store's knowledge.
    [[nodiscard]] QString buildSystemPrompt(AIAssistantMode mode) const;
    [[nodiscard]] QString buildKnowledgeBlock() const;
    [[nodiscard]] QList<OpenAIChatMessage> assembleMessages(const QString &message,
                                                            const std::optional<QString> &currentSQL,
                                                            AIAssistantMode mode,
                                                            const QList<AIMessage> &history) const;

    // The reply as one document. Leaves `currentStreamText` alone.
    AIChatCall *sendMessage(const QString &message, const std::optional<QString> &currentSQL,
                            AIAssistantMode mode, const QList<AIMessage> &history);
    // The reply as it is written: `chunkReceived` carries the whole text so far.
    AIChatCall *sendMessageStreaming(const QString &message, const std::optional<QString> &currentSQL,
                                     AIAssistantMode mode, const QList<AIMessage> &history);
    // A one-line exchange over the connection in use, for the settings window.
    Q_INVOKABLE AIConnectionTest *testConnection();
    // The models the user's own server offers, for the settings window.
    AIModelListRequest *listModels();

    // Records the facts `text` marks in the store (when auto-recording is on), reports them by
    // `knowledgeRecorded`, and gives the text without the marks, trimmed.
    QString extractKnowledgeMarkers(const QString &text);

Q_SIGNALS:
    void isLoadingChanged();
    void currentStreamTextChanged();
    // The connection the service would use became complete or incomplete.
    void isConfiguredChanged();
    // Facts a reply added to the store or wrote over, in marker order; not sent when none.
    void knowledgeRecorded(const QList<KnowledgeChange> &changes);

private:
    // What every request carries: the transfer time-out, the trusted authorities.
    [[nodiscard]] QNetworkRequest baseRequest(const QUrl &url) const;
    // A request to the own server: the key as a Bearer token, no redirect followed.
    [[nodiscard]] QNetworkRequest serverRequest(const QUrl &url) const;
    // Runs `run` once the own server's key is known, at once if it is; never after `context` is gone.
    void whenApiKeyReady(QObject *context, std::function<void()> run);
    void updateIsConfigured();
    AIChatCall *startCall(bool streaming, const QString &message, const std::optional<QString> &currentSQL,
                          AIAssistantMode mode, const QList<AIMessage> &history);
    [[nodiscard]] AppLanguage language() const;
    KnowledgeMarkers::Result recordKnowledge(const QString &text);
    void setIsLoading(bool loading);
    void setCurrentStreamText(const QString &text);

    DataStore *m_store = nullptr;
    LanguageManager *m_language = nullptr;
    AIServiceConfig m_config;
    QNetworkAccessManager *m_networkAccessManager = nullptr;
    QPointer<AIConnectionSettings> m_connection;
    bool m_isConfigured = false;
    bool m_isLoading = false;
    QString m_currentStreamText;
};
