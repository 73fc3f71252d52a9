#pragma once

#include <QByteArray>
#include <QVersionNumber>

class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

// How the chat client uses Qt's HTTP stack, whatever server it talks to.
namespace ChatTransport {

// What Qt may hold of a reply that the client has not read yet, so that a busy GUI thread does
// not let a fast server fill memory.
inline constexpr qint64 readBufferBytes = 1024 * 1024;

// Bounds what Qt takes in of `reply` ahead of its reader to readBufferBytes. Qt's HTTP thread
// only hears of the bound once the request has reached it: set right after post() or get(), it
// is lost, so it is set when the headers are in, before any of the body.
void boundReadBuffer(QNetworkReply *reply);

// Whether HTTP/2 of this Qt version carries the fix for the HPACK integer overflow
// (CVE-2023-51714: fixed in 6.5.4 and 6.6.2). A distribution's back-ported patch does not show in
// the version, so such a build is treated as unfixed: HTTP/1.1 then serves every request.
[[nodiscard]] bool http2IsSafe(const QVersionNumber &qtVersion);

// Sets what every chat request carries: HTTP/2 only where it is safe.
void applyPolicy(QNetworkRequest &request);

// Posts `body` so that it is sent at most once. Qt's HTTP channel otherwise re-sends a request,
// without a word, when the connection closes before the first byte of the answer (a kept-alive
// connection that the server has just dropped); every re-send first rewinds the upload, so a body
// that refuses to rewind turns that into an error (ContentReSendError) instead.
[[nodiscard]] QNetworkReply *postOnce(QNetworkAccessManager *manager, const QNetworkRequest &request,
                                      const QByteArray &body);

} // namespace ChatTransport
