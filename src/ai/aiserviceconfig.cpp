#include "aiserviceconfig.h"

// Set by the build from the cache variables VARNHOLT_PROXY_BASE_URL and VARNHOLT_PROXY_SECRET,
// as hexadecimal text of their UTF-8 bytes.
#ifndef VARNHOLT_PROXY_BASE_URL_HEX
#define VARNHOLT_PROXY_BASE_URL_HEX ""
#endif
#ifndef VARNHOLT_PROXY_CHAT_URL_HEX
#define VARNHOLT_PROXY_CHAT_URL_HEX ""
#endif
#ifndef VARNHOLT_PROXY_SECRET_HEX
#define VARNHOLT_PROXY_SECRET_HEX ""
#endif

AIServiceConfig AIServiceConfig::fromBuild()
{
    AIServiceConfig config;
    config.proxyBaseURL = QString::fromUtf8(QByteArray::fromHex(VARNHOLT_PROXY_BASE_URL_HEX));
    config.proxyChatURL = QString::fromUtf8(QByteArray::fromHex(VARNHOLT_PROXY_CHAT_URL_HEX));
    // A deployment whose proxy expects another key names it at build time.
    if (const QByteArray secret = QByteArray::fromHex(VARNHOLT_PROXY_SECRET_HEX); !secret.isEmpty())
        config.signingKey = secret;
    return config;
}
