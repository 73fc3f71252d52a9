#include "chattransport.h"

#include <QIODevice>
#include <QLibraryInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <cstring>

namespace {

// A request body that can be read once from the start and never rewound after that.
class SingleUseBody : public QIODevice
{
public:
    explicit SingleUseBody(QByteArray bytes, QObject *parent)
        : QIODevice(parent)
        , m_bytes(std::move(bytes))
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    [[nodiscard]] bool isSequential() const override { return false; }
    [[nodiscard]] qint64 size() const override { return m_bytes.size(); }
    bool seek(qint64 position) override { return !m_spent && QIODevice::seek(position); }
    bool reset() override { return seek(0); }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const qint64 count = std::min(maxSize, m_bytes.size() - pos());
        if (count <= 0)
            return 0;
        std::memcpy(data, m_bytes.constData() + pos(), size_t(count));
        m_spent = true;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    bool m_spent = false;
};

} // namespace

namespace ChatTransport {

bool http2IsSafe(const QVersionNumber &qtVersion)
{
    if (qtVersion >= QVersionNumber(6, 6, 2))
        return true;
    return qtVersion >= QVersionNumber(6, 5, 4) && qtVersion < QVersionNumber(6, 6);
}

void applyPolicy(QNetworkRequest &request)
{
    static const bool http2 = http2IsSafe(QLibraryInfo::version());
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, http2);
}

void boundReadBuffer(QNetworkReply *reply)
{
    QObject::connect(
        reply, &QNetworkReply::metaDataChanged, reply, [reply] { reply->setReadBufferSize(readBufferBytes); },
        Qt::SingleShotConnection);
}

QNetworkReply *postOnce(QNetworkAccessManager *manager, const QNetworkRequest &request,
                        const QByteArray &body)
{
    auto *device = new SingleUseBody(body, nullptr);
    QNetworkReply *reply = manager->post(request, device);
    device->setParent(reply);
    return reply;
}

} // namespace ChatTransport
