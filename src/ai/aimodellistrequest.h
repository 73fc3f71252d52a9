#pragma once

#include "applanguage.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>

class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

// The models an OpenAI-compatible server offers (`GET <base>/models`), for the settings window.
// Exactly one of `finished` and `failed` comes, from the event loop; `failed` carries a sentence
// for the user in the language in force when the request started. Owned by the service; deletes
// itself after its signal, and any receiver may delete it sooner.
class AIModelListRequest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    // Ends the request without a signal.
    void cancel();

Q_SIGNALS:
    // The model ids in the server's order; empty when the server offers none.
    void finished(const QStringList &models);
    void failed(const QString &message);

private:
    friend class AIService;

    AIModelListRequest(AppLanguage language, QObject *parent);
    void start(QNetworkAccessManager *manager, QNetworkRequest request);
    void failSoon(const QString &message);
    void onFinished();
    void end(const QStringList *models, const QString &message);

    AppLanguage m_language;
    QPointer<QNetworkReply> m_reply;
    QByteArray m_body;
    bool m_ended = false;
};
