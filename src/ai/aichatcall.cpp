#include "aichatcall.h"

#include "chatwirecodec.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maxBodyBytes = ChatStreamParser::defaultMaxTextBytes;

// Failures below HTTP: the connection, TLS, proxies, redirects, a broken response. The other
// error codes of a reply only restate its HTTP status, which is judged by itself.
bool isTransportFailure(QNetworkReply::NetworkError error)
{
    return error != QNetworkReply::NoError &&
           (error < QNetworkReply::ContentAccessDenied || error == QNetworkReply::ProtocolFailure);
}

} // namespace

AIChatCall::AIChatCall(bool streaming, Finisher finisher, QObject *parent)
    : QObject(parent)
    , m_streaming(streaming)
    , m_finisher(std::move(finisher))
    , m_parser([this](const QString &text) {
        if (!m_stopped)
            Q_EMIT chunkReceived(text);
    })
{}

AIChatCall::~AIChatCall()
{
    stop();
    if (!m_ended) {
        m_ended = true;
        Q_EMIT failed(AIServiceError::networkError(AIServiceError::Cause::Cancelled));
    }
}

void AIChatCall::start(QNetworkAccessManager *manager, const QNetworkRequest &request, const QByteArray &body)
{
    m_reply = manager->post(request, body);
    m_reply->setParent(this);
    connect(m_reply, &QNetworkReply::readyRead, this, &AIChatCall::onReadyRead);
    connect(m_reply, &QNetworkReply::finished, this, &AIChatCall::onFinished);
}

void AIChatCall::cancel()
{
    if (m_stopped)
        return;
    failSoon(AIServiceError::networkError(AIServiceError::Cause::Cancelled));
}

void AIChatCall::failSoon(const AIServiceError &error)
{
    stop();
    QMetaObject::invokeMethod(
        this, [this, error] { end(&error, {}); }, Qt::QueuedConnection);
}

void AIChatCall::onReadyRead()
{
    if (m_stopped)
        return;
    if (!m_streaming) {
        if (m_body.size() + m_reply->bytesAvailable() > maxBodyBytes)
            return fail(AIServiceError::networkError(AIServiceError::Cause::ResponseTooLarge));
        m_body += m_reply->readAll();
        return;
    }
    if (!m_statusAccepted && !acceptStatus())
        return;
    m_parser.feed(m_reply->readAll());
    if (m_parser.state() != ChatStreamParser::State::Reading)
        afterParsing();
}

void AIChatCall::onFinished()
{
    if (m_stopped)
        return;
    const QNetworkReply::NetworkError error = m_reply->error();
    // A cancelled call never gets here, so this is the transfer time-out.
    if (error == QNetworkReply::OperationCanceledError)
        return fail(AIServiceError::networkError(AIServiceError::Cause::TimedOut));
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (isTransportFailure(error))
        return fail(AIServiceError::networkError(AIServiceError::Cause::Transport, m_reply->errorString()));
    if (!status.isValid())
        return fail(AIServiceError::invalidResponse());
    if (!m_streaming) {
        onReadyRead();
        if (!m_stopped)
            judgeReply(status.toInt());
        return;
    }
    if (!m_statusAccepted && !acceptStatus())
        return;
    m_parser.feed(m_reply->readAll());
    if (m_stopped)
        return;
    m_parser.finish();
    afterParsing();
}

bool AIChatCall::acceptStatus()
{
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid()) {
        fail(AIServiceError::invalidResponse());
        return false;
    }
    // Exactly 200; the body of any other answer is left unread.
    if (status.toInt() != 200) {
        fail(AIServiceError::apiError(u"HTTP "_s + QString::number(status.toInt())));
        return false;
    }
    m_statusAccepted = true;
    return true;
}

void AIChatCall::afterParsing()
{
    if (m_stopped)
        return;
    switch (m_parser.state()) {
    case ChatStreamParser::State::Reading:
        return;
    case ChatStreamParser::State::Done:
        if (m_parser.text().isEmpty())
            return fail(AIServiceError::noContent());
        return succeed(m_parser.text());
    case ChatStreamParser::State::LineTooLong:
        return fail(AIServiceError::networkError(AIServiceError::Cause::LineTooLong));
    case ChatStreamParser::State::TextTooLarge:
        return fail(AIServiceError::networkError(AIServiceError::Cause::ResponseTooLarge));
    }
}

void AIChatCall::judgeReply(int status)
{
    QString fault;
    const std::optional<OpenAIChatResponse> response = ChatWire::decodeChatResponse(m_body, &fault);
    if (status != 200) {
        if (response && response->error && response->error->message)
            return fail(AIServiceError::apiError(*response->error->message));
        return fail(AIServiceError::apiError(u"HTTP "_s + QString::number(status)));
    }
    if (!response)
        return fail(AIServiceError::networkError(AIServiceError::Cause::Decoding, fault));
    if (response->error)
        return fail(AIServiceError::apiError(response->error->message.value_or(u"未知错误"_s)));
    if (!response->choices || response->choices->isEmpty() || !response->choices->constFirst().message)
        return fail(AIServiceError::noContent());
    succeed(response->choices->constFirst().message->content);
}

void AIChatCall::succeed(const QString &replyText)
{
    if (m_stopped)
        return;
    stop();
    end(nullptr, m_finisher ? m_finisher(replyText) : replyText);
}

void AIChatCall::fail(const AIServiceError &error)
{
    if (m_stopped)
        return;
    stop();
    end(&error, {});
}

void AIChatCall::stop()
{
    m_stopped = true;
    if (QNetworkReply *reply = m_reply.data()) {
        m_reply = nullptr;
        disconnect(reply, nullptr, this, nullptr);
        // Deleting a reply ends its transfer. Not abort(): a reply that has an HTTP error status
        // in hand would then report a second error.
        reply->deleteLater();
    }
}

void AIChatCall::end(const AIServiceError *error, const QString &result)
{
    if (m_ended)
        return;
    m_ended = true;
    if (error)
        Q_EMIT failed(*error);
    else
        Q_EMIT finished(result);
    Q_EMIT isRunningChanged();
    deleteLater();
}
