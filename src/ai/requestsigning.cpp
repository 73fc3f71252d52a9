#include "requestsigning.h"

#include <QMessageAuthenticationCode>

namespace RequestSigning {

QString hmacSha256Hex(QByteArrayView key, QByteArrayView message)
{
    QMessageAuthenticationCode code(QCryptographicHash::Sha256, key.toByteArray());
    code.addData(message.data(), message.size());
    return QString::fromLatin1(code.result().toHex());
}

QString sign(QByteArrayView key, const QString &timestamp, const QString &bodyText)
{
    return hmacSha256Hex(key, QString(timestamp + bodyText).toUtf8());
}

} // namespace RequestSigning
