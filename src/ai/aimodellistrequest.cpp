#include "aimodellistrequest.h"

#include "aiserviceerror.h"
#include "chattransport.h"
#include "chatwirecodec.h"
#include "localizedtext.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maxBodyBytes = 8 * 1024 * 1024;

} // namespace

AIModelListRequest::AIModelListRequest(AppLanguage language, QObject *parent)
    : QObject(parent)
    , m_language(language)
{}

void AIModelListRequest::start(QNetworkAccessManager *manager, QNetworkRequest request)
{
    if (m_ended)
        return;
    ChatTransport::applyPolicy(request);
    m_reply = manager->get(request);
    m_reply->setParent(this);
    ChatTransport::boundReadBuffer(m_reply);
    connect(m_reply, &QNetworkReply::readyRead, this, [this] {
        if (m_body.size() + m_reply->bytesAvailable() > maxBodyBytes) {
            const AIServiceError error =
                AIServiceError::networkError(AIServiceError::Cause::ResponseTooLarge);
            return end(nullptr, error.description(m_language));
        }
        m_body += m_reply->readAll();
    });
    connect(m_reply, &QNetworkReply::finished, this, &AIModelListRequest::onFinished);
}

void AIModelListRequest::cancel()
{
    m_ended = true;
    if (m_reply)
        m_reply->deleteLater();
    deleteLater();
}

void AIModelListRequest::failSoon(const QString &message)
{
    QMetaObject::invokeMethod(
        this, [this, message] { end(nullptr, message); }, Qt::QueuedConnection);
}

void AIModelListRequest::onFinished()
{
    if (m_ended)
        return;
    m_body += m_reply->readAll();
    const QNetworkReply::NetworkError error = m_reply->error();
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (error == QNetworkReply::OperationCanceledError) {
        const AIServiceError timedOut = AIServiceError::networkError(AIServiceError::Cause::TimedOut);
        return end(nullptr, timedOut.description(m_language));
    }
    if (!status.isValid() || (status.toInt() == 200 && error != QNetworkReply::NoError)) {
        const AIServiceError transport =
            AIServiceError::networkError(AIServiceError::Cause::Transport, m_reply->errorString());
        return end(nullptr, transport.description(m_language));
    }
    const QString hint =
        pickText(m_language, u"Is this the address of an OpenAI-compatible API? It often ends in /v1.",
                 u"这是兼容 OpenAI 的 API 地址吗？它通常以 /v1 结尾。",
                 u"OpenAI 互換 API のアドレスですか？多くは /v1 で終わります。");
    if (status.toInt() != 200) {
        const AIServiceError refused = AIServiceError::apiError(
            ChatWire::errorMessage(m_body).value_or(u"HTTP "_s + QString::number(status.toInt())));
        return end(nullptr,
                   refused.description(m_language) + (status.toInt() == 404 ? u' ' + hint : QString()));
    }
    ChatWire::ModelListFault fault = ChatWire::ModelListFault::NotJson;
    if (const std::optional<QStringList> models = ChatWire::decodeModelList(m_body, &fault))
        return end(&*models, {});
    if (fault == ChatWire::ModelListFault::NotJson)
        return end(nullptr, pickText(m_language, u"The server did not answer with JSON.",
                                     u"服务器的回答不是 JSON。", u"サーバーの応答が JSON ではありません。") +
                                u' ' + hint);
    end(nullptr, pickText(m_language, u"The server answered, but not with a list of models.",
                          u"服务器有回答，但不是模型列表。",
                          u"サーバーは応答しましたが、モデルの一覧ではありません。") +
                     u' ' + hint);
}

void AIModelListRequest::end(const QStringList *models, const QString &message)
{
    if (m_ended)
        return;
    m_ended = true;
    if (m_reply) {
        disconnect(m_reply, nullptr, this, nullptr);
        m_reply->deleteLater();
    }
    QPointer<AIModelListRequest> self(this);
    if (models)
        Q_EMIT finished(*models);
    else
        Q_EMIT failed(message);
    if (self)
        deleteLater();
}
