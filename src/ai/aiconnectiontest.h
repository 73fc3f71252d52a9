#pragma once

#include <QObject>
#include <QPointer>

class AIChatCall;

// The settings window's connection test, running. It never fails: `finished` always comes, from
// the event loop, with whether the proxy answered and the text to show. Owned by the service;
// deletes itself after `finished`.
class AIConnectionTest : public QObject
{
    Q_OBJECT

public:
    [[nodiscard]] bool isRunning() const { return !m_ended; }

public Q_SLOTS:
    // Ends the test with the cancelled call's network error.
    void cancel();

Q_SIGNALS:
    void finished(bool success, const QString &message);

private:
    friend class AIService;

    explicit AIConnectionTest(QObject *parent);
    void watch(AIChatCall *call);
    void finishSoon(bool success, const QString &message);
    void finish(bool success, const QString &message);

    QPointer<AIChatCall> m_call;
    bool m_ended = false;
};
