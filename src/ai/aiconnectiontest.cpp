#include "aiconnectiontest.h"

#include "aichatcall.h"

AIConnectionTest::AIConnectionTest(QObject *parent)
    : QObject(parent)
{}

void AIConnectionTest::watch(AIChatCall *call)
{
    m_call = call;
}

void AIConnectionTest::cancel()
{
    if (m_call)
        m_call->cancel();
}

void AIConnectionTest::finishSoon(bool success, const QString &message)
{
    QMetaObject::invokeMethod(
        this, [this, success, message] { finish(success, message); }, Qt::QueuedConnection);
}

void AIConnectionTest::finish(bool success, const QString &message)
{
    if (m_ended)
        return;
    m_ended = true;
    Q_EMIT finished(success, message);
    deleteLater();
}
