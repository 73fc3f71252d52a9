#pragma once

#include "aiserviceerror.h"
#include "chatstreamparser.h"
#include "knowledgechange.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

// One running chat call of AIService, from the moment it is made until its final signal.
//
// Exactly one of `finished` and `failed` is emitted, always from the event loop, never from
// inside the AIService method that made the call, so connecting right after that method returns
// is in time. A streaming call emits `chunkReceived` with the whole text so far (markers
// included) for each piece, before its final signal. A reply that is cut off, whatever its
// status, fails: nothing of it is recorded.
//
// The service owns the call, and the call deletes itself (deleteLater) after its final signal:
// hold it in a QPointer. A receiver may also delete it from any of its signals, also from an
// event loop that it runs there. From QML: `call.chunkReceived.connect(...)`,
// `call.finished.connect(...)`, `call.cancel()`.
class AIChatCall : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isStreaming READ isStreaming CONSTANT)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    Q_PROPERTY(QString text READ text NOTIFY chunkReceived)

public:
    // Deleting a running call cancels it; `failed` is then emitted from the destructor.
    ~AIChatCall() override;

    [[nodiscard]] bool isStreaming() const { return m_streaming; }
    // Until the final signal has been emitted.
    [[nodiscard]] bool isRunning() const { return !m_ended; }
    // The raw text received so far by a streaming call.
    [[nodiscard]] QString text() const { return m_parser.text(); }
    // The facts this reply's knowledge markers added to the store or wrote over, in marker order;
    // set before `finished`, empty for a call that failed or recorded nothing.
    [[nodiscard]] QList<KnowledgeChange> recordedKnowledge() const { return m_recordedKnowledge; }

public Q_SLOTS:
    // Stops the call at once: no chunk follows, and `failed` comes from the event loop with a
    // network error whose cause is `Cancelled` (isCancellation()). Without effect once the call
    // has stopped for another reason.
    void cancel();

Q_SIGNALS:
    void chunkReceived(const QString &text);
    // The reply text without its knowledge markers, trimmed.
    void finished(const QString &result);
    void failed(const AIServiceError &error);
    void isRunningChanged();

private:
    friend class AIService;

    // Turns the whole reply text into the result.
    using Finisher = std::function<QString(const QString &)>;

    AIChatCall(bool streaming, Finisher finisher, QObject *parent);
    // Error answers of the user's own server come in more shapes than the proxy's; see
    // ChatWire::errorMessage().
    void readErrorBodiesLeniently() { m_lenientErrorBodies = true; }
    void start(QNetworkAccessManager *manager, QNetworkRequest request, const QByteArray &body);
    void failSoon(const AIServiceError &error);

    void onMetaDataChanged();
    void onReadyRead();
    void onFinished();
    // Takes the status of the answer; false when that ended the call.
    bool judgeStatus(int status);
    bool appendBody();
    // Hands out the pieces read so far, then ends the call if the stream has ended.
    void readStream();
    void judgeReply(int status);
    void succeed(const QString &replyText);
    void fail(const AIServiceError &error);
    void stop();
    void end(const AIServiceError *error, const QString &result);

    bool m_streaming = false;
    bool m_lenientErrorBodies = false;
    Finisher m_finisher;
    QPointer<QNetworkReply> m_reply;
    QByteArray m_body;
    ChatStreamParser m_parser;
    QList<KnowledgeChange> m_recordedKnowledge;
    // The status of the answer once its headers are in; 0 before.
    int m_status = 0;
    // How long a one-shot call waits for the body of an error answer, for its message.
    QTimer m_errorBodyWait;
    // Nothing more is read or reported, save the final signal.
    bool m_stopped = false;
    // The final signal has been emitted.
    bool m_ended = false;
};
