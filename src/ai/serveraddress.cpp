#include "serveraddress.h"

#include "localizedtext.h"

#include <QHostAddress>

using namespace Qt::StringLiterals;

namespace ServerAddress {

Parsed parse(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return {{}, Problem::Empty};
    QUrl url(trimmed, QUrl::StrictMode);
    if (!url.isValid())
        return {{}, Problem::NotAnAddress};
    const QString scheme = url.scheme().toLower();
    if (scheme != "http"_L1 && scheme != "https"_L1)
        return {{}, Problem::NeedsHttp};
    if (url.host().isEmpty() || url.hasQuery() || url.hasFragment())
        return {{}, Problem::NotAnAddress};
    if (!url.userInfo().isEmpty())
        return {{}, Problem::HasCredentials};
    QString path = url.path();
    while (path.endsWith(u'/'))
        path.chop(1);
    url.setPath(path);
    url.setScheme(scheme);
    return {url, Problem::None};
}

QString problemText(Problem problem, const QString &text, AppLanguage language)
{
    switch (problem) {
    case Problem::None:
        return {};
    case Problem::Empty:
        return pickText(language, u"Enter the server's address, for example http://localhost:11434/v1",
                        u"请输入服务器地址，例如 http://localhost:11434/v1",
                        u"サーバーのアドレスを入力してください（例：http://localhost:11434/v1）");
    case Problem::NeedsHttp:
        return pickText(language, u"The address must begin with http:// or https://",
                        u"地址必须以 http:// 或 https:// 开头",
                        u"アドレスは http:// または https:// で始めてください");
    case Problem::HasCredentials:
        return pickText(
            language,
            u"Leave the user name and password out of the address; an API key goes in its own field",
            u"地址中不要包含用户名和密码；API 密钥请填在单独的栏中",
            u"アドレスにユーザー名とパスワードを含めないでください。API キーは専用の欄に入力します");
    case Problem::NotAnAddress:
        break;
    }
    QString shown = text.trimmed();
    if (shown.size() > 60)
        shown = shown.first(59) + u'…';
    return pickText(language, u"“%1” is not a web address", u"“%1”不是网址",
                    u"「%1」は Web アドレスではありません")
        .arg(shown);
}

QUrl endpoint(const QUrl &base, QStringView path)
{
    QUrl url = base;
    url.setPath(base.path() + u'/' + path);
    return url;
}

QString origin(const QUrl &base)
{
    return base.adjusted(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment | QUrl::RemoveUserInfo)
        .toString(QUrl::FullyEncoded);
}

bool isUnencryptedRemote(const QUrl &base)
{
    if (base.scheme() != "http"_L1)
        return false;
    const QString host = base.host().toLower();
    if (host == "localhost"_L1 || host.endsWith(".localhost"_L1))
        return false;
    return !QHostAddress(host).isLoopback();
}

} // namespace ServerAddress
