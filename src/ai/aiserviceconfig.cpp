#include "aiserviceconfig.h"

// Set by the build from the cache variables VARNHOLT_PROXY_BASE_URL and VARNHOLT_PROXY_SECRET.
#ifndef VARNHOLT_PROXY_BASE_URL
#define VARNHOLT_PROXY_BASE_URL ""
#endif
#ifndef VARNHOLT_PROXY_CHAT_URL
#define VARNHOLT_PROXY_CHAT_URL ""
#endif
#ifndef VARNHOLT_PROXY_SECRET
#define VARNHOLT_PROXY_SECRET ""
#endif

AIServiceConfig AIServiceConfig::fromBuild()
{
    AIServiceConfig config;
    config.proxyBaseURL = QString::fromUtf8(VARNHOLT_PROXY_BASE_URL);
    config.proxyChatURL = QString::fromUtf8(VARNHOLT_PROXY_CHAT_URL);
    // A deployment whose proxy expects another key names it at build time.
    if (const QByteArray secret(VARNHOLT_PROXY_SECRET); !secret.isEmpty())
        config.signingKey = secret;
    return config;
}
