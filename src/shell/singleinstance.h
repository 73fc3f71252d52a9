#pragma once

#include <QObject>
#include <QString>

class QLocalServer;

// One running application per data folder: a second start hands over to the first (which
// raises its window) and ends. The two meet at a local socket whose name comes from the user
// and the data folder, so that two different data folders may each have their own.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(const QString &dataDirectory, QObject *parent = nullptr);

    // True when another instance took the hand-over: this one should end.
    [[nodiscard]] bool handOverToRunningInstance();
    // Starts answering later starts; call it when this instance goes on.
    void listen();

    [[nodiscard]] QString socketName() const { return m_name; }

Q_SIGNALS:
    // A later start asked for the window.
    void activationRequested();

private:
    QString m_name;
    QLocalServer *m_server = nullptr;
};
