#include "singleinstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int handOverTimeoutMs = 1000;
constexpr QByteArrayView activateMessage{"activate\n"};

} // namespace

SingleInstance::SingleInstance(const QString &dataDirectory, QObject *parent)
    : QObject(parent)
{
    const QByteArray folder = QDir::cleanPath(QDir(dataDirectory).absolutePath()).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(folder, QCryptographicHash::Sha256).toHex().left(16);
    m_name = u"varnholt-%1-%2"_s.arg(::getuid()).arg(QString::fromLatin1(hash));
}

bool SingleInstance::handOverToRunningInstance()
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(handOverTimeoutMs))
        return false;
    socket.write(activateMessage.data(), activateMessage.size());
    socket.waitForBytesWritten(handOverTimeoutMs);
    // The running instance answers once it has taken the request.
    return socket.waitForReadyRead(handOverTimeoutMs) && socket.readAll().startsWith("ok");
}

void SingleInstance::listen()
{
    if (m_server)
        return;
    m_server = new QLocalServer(this);
    // Only this user may ask.
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(m_name)) {
        // Nobody answered a moment ago, so the socket is a crashed instance's left-over.
        QLocalServer::removeServer(m_name);
        m_server->listen(m_name);
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                if (!socket->readAll().startsWith(activateMessage.toByteArray()))
                    return;
                socket->write("ok\n");
                socket->flush();
                Q_EMIT activationRequested();
            });
        }
    });
}
