#include "aichatcall.h"

#include "chattransport.h"
#include "chatwirecodec.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype maxBodyBytes = ChatStreamParser::defaultMaxTextBytes;

// Failures below HTTP: the connection, TLS, proxies, redirects, a broken response. The other
// error codes of a reply only restate its HTTP status, which is judged by itself.
bool isTransportFailure(QNetworkReply::NetworkError error)
{
    return error != QNetworkReply::NoError &&
           (error < QNetworkReply::ContentAccessDenied || error == QNetworkReply::ProtocolFailure);
}

AIServiceError statusError(int status)
{
    return AIServiceError::apiError(u"HTTP "_s + QString::number(status));
}

} // namespace

AIChatCall::AIChatCall(bool streaming, Finisher finisher, QObject *parent)
    : QObject(parent)
    , m_streaming(streaming)
    , m_finisher(std::move(finisher))
{
    m_errorBodyWait.setSingleShot(true);
    m_errorBodyWait.setInterval(5s);
    connect(&m_errorBodyWait, &QTimer::timeout, this, [this] { judgeReply(m_status); });
}

AIChatCall::~AIChatCall()
{
    stop();
    if (!m_ended) {
        m_ended = true;
        Q_EMIT failed(AIServiceError::networkError(AIServiceError::Cause::Cancelled));
    }
}

void AIChatCall::start(QNetworkAccessManager *manager, QNetworkRequest request, const QByteArray &body)
{
    // Cancelled while the key was on its way.
    if (m_stopped)
        return;
    ChatTransport::applyPolicy(request);
    m_reply = ChatTransport::postOnce(manager, request, body);
    m_reply->setParent(this);
    ChatTransport::boundReadBuffer(m_reply);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &AIChatCall::onMetaDataChanged);
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

void AIChatCall::onMetaDataChanged()
{
    if (m_stopped || m_status != 0)
        return;
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    // A redirect is followed or refused by the network layer, and judged when the reply ends.
    if (!status.isValid() || (status.toInt() >= 300 && status.toInt() < 400))
        return;
    judgeStatus(status.toInt());
}

bool AIChatCall::judgeStatus(int status)
{
    m_status = status;
    if (status == 200)
        return true;
    // The status decides, at the headers, however long the server holds the body back. Only a
    // one-shot call reads an error body, and only for a while.
    if (m_streaming) {
        fail(statusError(status));
        return false;
    }
    m_errorBodyWait.start();
    return true;
}

bool AIChatCall::appendBody()
{
    if (m_body.size() + m_reply->bytesAvailable() > maxBodyBytes) {
        fail(AIServiceError::networkError(AIServiceError::Cause::ResponseTooLarge));
        return false;
    }
    m_body += m_reply->readAll();
    return true;
}

void AIChatCall::onReadyRead()
{
    if (m_stopped)
        return;
    if (m_status == 0)
        onMetaDataChanged();
    if (m_stopped || m_status == 0)
        return;
    if (!m_streaming) {
        appendBody();
        return;
    }
    m_parser.append(m_reply->readAll());
    readStream();
}

void AIChatCall::onFinished()
{
    if (m_stopped)
        return;
    const QNetworkReply::NetworkError error = m_reply->error();
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    // An error answer judged at its headers: whatever became of its body.
    if (m_status != 0 && m_status != 200) {
        if (appendBody())
            judgeReply(m_status);
        return;
    }
    // A cancelled call never gets here, so this is the transfer time-out.
    if (error == QNetworkReply::OperationCanceledError)
        return fail(AIServiceError::networkError(AIServiceError::Cause::TimedOut));
    // The request would have had to go out again: the connection closed before any answer. (An
    // answer of 307 or 308 asks for the same, and is judged by its status below.)
    if (error == QNetworkReply::ContentReSendError && !status.isValid())
        return fail(AIServiceError::networkError(AIServiceError::Cause::ClosedBeforeAnswer));
    // With 200 any error means the reply was cut off, whatever the kind (a dropped compressed
    // stream reports a content error, not a transport one).
    if (isTransportFailure(error) || (status.toInt() == 200 && error != QNetworkReply::NoError))
        return fail(AIServiceError::networkError(AIServiceError::Cause::Transport, m_reply->errorString()));
    if (!status.isValid())
        return fail(AIServiceError::invalidResponse());
    if (m_status == 0 && !judgeStatus(status.toInt()))
        return;
    if (!m_streaming) {
        if (appendBody())
            judgeReply(status.toInt());
        return;
    }
    m_parser.append(m_reply->readAll());
    m_parser.finish();
    readStream();
}

void AIChatCall::readStream()
{
    QPointer<AIChatCall> self(this);
    while (!m_stopped && m_parser.readPiece()) {
        // A copy: a receiver that runs an event loop may see the text grow meanwhile.
        const QString text = m_parser.text();
        Q_EMIT chunkReceived(text);
        if (!self)
            return;
    }
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
    if (m_stopped)
        return;
    m_errorBodyWait.stop();
    QString fault;
    const std::optional<OpenAIChatResponse> response = ChatWire::decodeChatResponse(m_body, &fault);
    if (status != 200) {
        if (response && response->error && response->error->message)
            return fail(AIServiceError::apiError(*response->error->message));
        if (m_lenientErrorBodies) {
            if (const std::optional<QString> message = ChatWire::errorMessage(m_body))
                return fail(AIServiceError::apiError(*message));
        }
        return fail(statusError(status));
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
    if (!m_finisher)
        return end(nullptr, replyText);
    // The finisher records knowledge, and the service tells of it: a receiver may delete us.
    QPointer<AIChatCall> self(this);
    const QString result = m_finisher(replyText);
    if (self)
        end(nullptr, result);
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
    m_errorBodyWait.stop();
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
    // Any receiver may delete the call.
    QPointer<AIChatCall> self(this);
    if (error)
        Q_EMIT failed(*error);
    else
        Q_EMIT finished(result);
    if (!self)
        return;
    Q_EMIT isRunningChanged();
    if (self)
        deleteLater();
}
