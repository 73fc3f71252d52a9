#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSslCertificate>
#include <QSslKey>
#include <QStringList>

#include <memory>
#include <optional>

class QTcpServer;
class QTcpSocket;

// A chat proxy on 127.0.0.1, over HTTPS when given a certificate. It checks each request's
// signature as the real proxy does and answers a bad one with 401 "bad signature"; otherwise it
// sends the scripted reply as a chunked body, piece by piece with pauses, so that the client gets
// the pieces in separate reads.
//
// Told to speak as an OpenAI-compatible server (speakOpenAI), it checks the Bearer key and the
// model instead, answers `GET …/models` with its models, and refuses what it does not know in the
// error shapes such servers use.
class ChatTestServer : public QObject
{
    Q_OBJECT

public:
    struct Piece
    {
        QByteArray bytes;
        int delayMs = 0;
    };
    // After the pieces: the end of the body, a cut connection, or silence.
    enum class Ending { Complete, Drop, Stall };
    struct Reply
    {
        int status = 200;
        QList<Piece> pieces;
        Ending ending = Ending::Complete;
        QByteArray location;
    };
    struct Request
    {
        // "POST /api/chat"
        QByteArray target;
        // Names in lower case.
        QMap<QByteArray, QByteArray> headers;
        QByteArray body;
        bool signatureValid = false;
        // The protocol agreed by ALPN over TLS; empty without TLS or without agreement.
        QByteArray protocol;
    };

    explicit ChatTestServer(QByteArray signingKey, const QSslCertificate &certificate = QSslCertificate(),
                            const QSslKey &key = QSslKey());
    ~ChatTestServer() override;

    [[nodiscard]] QString baseUrl() const;
    void setReply(const Reply &reply) { m_reply = reply; }
    // More header lines for every answer, each ending in CR LF.
    void setExtraHeaders(const QByteArray &headers) { m_extraHeaders = headers; }
    // Keeps connections open after a complete answer.
    void setKeepAlive(bool keepAlive) { m_keepAlive = keepAlive; }
    // Answers the next `count` requests with nothing: the connection closes at once.
    void dropUnanswered(int count) { m_dropCount = count; }
    // `key` empty: no key is wanted.
    void speakOpenAI(const QByteArray &key, const QStringList &models);
    // Sends the scripted reply to every request, checking nothing.
    void answerAnything() { m_answersAnything = true; }
    [[nodiscard]] const QList<Request> &requests() const { return m_requests; }

    [[nodiscard]] static QList<Piece> split(const QByteArray &body, qsizetype size);

private:
    void serve(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const Request &request);
    void writePiece(const QPointer<QTcpSocket> &socket, const Reply &reply, qsizetype index);
    [[nodiscard]] std::optional<Reply> openAIRefusal(const Request &request) const;

    QByteArray m_signingKey;
    bool m_tls = false;
    std::unique_ptr<QTcpServer> m_server;
    Reply m_reply;
    QList<Request> m_requests;
    QByteArray m_extraHeaders;
    bool m_keepAlive = false;
    int m_dropCount = 0;
    bool m_openAI = false;
    bool m_answersAnything = false;
    QByteArray m_bearerKey;
    QStringList m_models;
};
