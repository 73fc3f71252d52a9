#include "chattestserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageAuthenticationCode>
#include <QPointer>
#include <QSslConfiguration>
#include <QSslServer>
#include <QTcpSocket>
#include <QTimer>

using namespace Qt::StringLiterals;

ChatTestServer::ChatTestServer(QByteArray signingKey, const QSslCertificate &certificate, const QSslKey &key)
    : m_signingKey(std::move(signingKey))
    , m_tls(!certificate.isNull())
{
    if (m_tls) {
        auto server = std::make_unique<QSslServer>();
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(certificate);
        configuration.setPrivateKey(key);
        // Offers HTTP/2 first, so that a client that offers it too gets it.
        configuration.setAllowedNextProtocols(
            {QSslConfiguration::ALPNProtocolHTTP2, QSslConfiguration::NextProtocolHttp1_1});
        server->setSslConfiguration(configuration);
        m_server = std::move(server);
    } else {
        m_server = std::make_unique<QTcpServer>();
    }
    connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this, [this] {
        while (QTcpSocket *socket = m_server->nextPendingConnection())
            serve(socket);
    });
    m_server->listen(QHostAddress::LocalHost);
}

ChatTestServer::~ChatTestServer() = default;

QString ChatTestServer::baseUrl() const
{
    return QStringLiteral("%1://127.0.0.1:%2")
        .arg(m_tls ? u"https"_s : u"http"_s)
        .arg(m_server->serverPort());
}

QList<ChatTestServer::Piece> ChatTestServer::split(const QByteArray &body, qsizetype size)
{
    QList<Piece> pieces;
    for (qsizetype at = 0; at < body.size(); at += size)
        pieces.append({body.mid(at, size), 0});
    return pieces;
}

void ChatTestServer::serve(QTcpSocket *socket)
{
    socket->setParent(this);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    auto buffer = std::make_shared<QByteArray>();
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, buffer] {
        *buffer += socket->readAll();
        const qsizetype headerEnd = buffer->indexOf("\r\n\r\n");
        if (headerEnd < 0)
            return;
        Request request;
        const QList<QByteArray> lines = buffer->left(headerEnd).split('\n');
        request.target = lines.value(0).left(lines.value(0).lastIndexOf(' '));
        for (qsizetype i = 1; i < lines.size(); ++i) {
            const qsizetype colon = lines[i].indexOf(':');
            request.headers.insert(lines[i].left(colon).trimmed().toLower(),
                                   lines[i].mid(colon + 1).trimmed());
        }
        const qsizetype length = request.headers.value("content-length").toLongLong();
        if (buffer->size() < headerEnd + 4 + length)
            return;
        request.body = buffer->mid(headerEnd + 4, length);
        buffer->clear();
        QMessageAuthenticationCode mac(QCryptographicHash::Sha256, m_signingKey);
        mac.addData(request.headers.value("x-timestamp") + request.body);
        request.signatureValid = mac.result().toHex() == request.headers.value("x-app-signature");
        if (auto *tls = qobject_cast<QSslSocket *>(socket))
            request.protocol = tls->sslConfiguration().nextNegotiatedProtocol();
        m_requests.append(request);
        if (m_dropCount > 0) {
            --m_dropCount;
            socket->abort();
            return;
        }
        answer(socket, request);
    });
}

void ChatTestServer::speakOpenAI(const QByteArray &key, const QStringList &models)
{
    m_openAI = true;
    m_bearerKey = key;
    m_models = models;
}

std::optional<ChatTestServer::Reply> ChatTestServer::openAIRefusal(const Request &request) const
{
    const auto json = [](int status, const QByteArray &body) {
        return Reply{status, {{body, 0}}, Ending::Complete, {}};
    };
    const QByteArray wanted = m_bearerKey.isEmpty() ? QByteArray() : "Bearer " + m_bearerKey;
    if (request.headers.value("authorization") != wanted)
        return json(
            401,
            R"({"error":{"message":"Incorrect API key provided","type":"invalid_request_error","code":401}})");
    if (request.target.endsWith("/models") && request.target.startsWith("GET ")) {
        QJsonArray data;
        for (const QString &model : m_models)
            data.append(QJsonObject{{u"id"_s, model}, {u"object"_s, u"model"_s}});
        return json(200, QJsonDocument(QJsonObject{{u"object"_s, u"list"_s}, {u"data"_s, data}}).toJson());
    }
    if (!request.target.endsWith("/chat/completions") || !request.target.startsWith("POST "))
        return json(404, R"({"detail":"Not Found"})");
    const QString model = QJsonDocument::fromJson(request.body).object().value("model"_L1).toString();
    if (!m_models.contains(model))
        return json(404, R"({"error":"model ')" + model.toUtf8() + R"(' not found"})");
    return std::nullopt;
}

void ChatTestServer::answer(QTcpSocket *socket, const Request &request)
{
    Reply reply = m_reply;
    if (m_answersAnything) {
        // As scripted.
    } else if (m_openAI) {
        if (std::optional<Reply> refusal = openAIRefusal(request))
            reply = *refusal;
    } else if (!request.signatureValid) {
        reply = {401, {{R"({"error":{"message":"bad signature"}})", 0}}, Ending::Complete, {}};
    }
    QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) + " Status\r\n";
    if (!m_keepAlive)
        head += "Connection: close\r\n";
    if (!reply.location.isEmpty())
        head += "Location: " + reply.location + "\r\n";
    socket->write(head + m_extraHeaders + "Transfer-Encoding: chunked\r\n\r\n");

    // Each piece is one chunk of the chunked body, written after its pause.
    writePiece(socket, reply, 0);
}

// Writes piece `index` after its pause, then schedules the next: pieces leave in order whatever
// slack the system gives timers.
void ChatTestServer::writePiece(const QPointer<QTcpSocket> &socket, const Reply &reply, qsizetype index)
{
    const int pause = index < reply.pieces.size() ? reply.pieces.at(index).delayMs : 0;
    QTimer::singleShot(pause, Qt::PreciseTimer, this, [this, socket, reply, index] {
        if (!socket)
            return;
        if (index < reply.pieces.size()) {
            const Piece &piece = reply.pieces.at(index);
            socket->write(QByteArray::number(piece.bytes.size(), 16) + "\r\n" + piece.bytes + "\r\n");
            socket->flush();
            writePiece(socket, reply, index + 1);
            return;
        }
        if (reply.ending == Ending::Stall)
            return;
        if (reply.ending == Ending::Drop) {
            socket->abort();
            return;
        }
        socket->write("0\r\n\r\n");
        if (!m_keepAlive)
            socket->disconnectFromHost();
    });
}
