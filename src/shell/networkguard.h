#pragma once

#include <QQmlNetworkAccessManagerFactory>

// Gives the QML engine a network manager that refuses every request but those for the
// application's own resources, so that no text shown in a view (a reply with an image or a
// link, say) can make the engine fetch anything from the network.
class NetworkGuardFactory : public QQmlNetworkAccessManagerFactory
{
public:
    QNetworkAccessManager *create(QObject *parent) override;
};
