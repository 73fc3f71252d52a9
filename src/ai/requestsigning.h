#pragma once

#include <QByteArrayView>
#include <QString>

// The signature by which the chat proxy recognises the application.
namespace RequestSigning {

// HMAC-SHA256 of `message` under `key`, as 64 lower-case hexadecimal digits.
[[nodiscard]] QString hmacSha256Hex(QByteArrayView key, QByteArrayView message);

// The signature of a request: the HMAC of the timestamp text immediately followed by the body
// text, both as UTF-8, with nothing between them.
[[nodiscard]] QString sign(QByteArrayView key, const QString &timestamp, const QString &bodyText);

} // namespace RequestSigning
