#include "networkguard.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

using namespace Qt::StringLiterals;

namespace {

class GuardedNetworkAccessManager : public QNetworkAccessManager
{
public:
    using QNetworkAccessManager::QNetworkAccessManager;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *outgoingData) override
    {
        const QString scheme = request.url().scheme().toLower();
        if (scheme == u"qrc" || scheme == u"file" || scheme == u"data")
            return QNetworkAccessManager::createRequest(operation, request, outgoingData);
        // An empty URL goes nowhere; the reply fails at once with an error.
        QNetworkRequest refused(request);
        refused.setUrl(QUrl(u"refused:"_s));
        return QNetworkAccessManager::createRequest(operation, refused, outgoingData);
    }
};

} // namespace

QNetworkAccessManager *NetworkGuardFactory::create(QObject *parent)
{
    return new GuardedNetworkAccessManager(parent);
}
