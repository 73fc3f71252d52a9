#include "aiserviceerror.h"

#include "languagemanager.h"
#include "localizedtext.h"

using namespace Qt::StringLiterals;

AIServiceError::AIServiceError(Kind kind, Cause cause, const QString &detail)
    : m_kind(kind)
    , m_cause(cause)
    , m_detail(detail)
{}

AIServiceError AIServiceError::networkError(Cause cause, const QString &detail)
{
    return {Kind::NetworkError, cause, detail};
}

AIServiceError AIServiceError::apiError(const QString &message)
{
    return {Kind::ApiError, Cause::None, message};
}

AIServiceError AIServiceError::decodingError(const QString &detail)
{
    return {Kind::DecodingError, Cause::Decoding, detail};
}

AIServiceError AIServiceError::invalidConfiguration()
{
    return {Kind::InvalidConfiguration, Cause::None, {}};
}

AIServiceError AIServiceError::invalidURL()
{
    return {Kind::InvalidURL, Cause::None, {}};
}

AIServiceError AIServiceError::invalidResponse()
{
    return {Kind::InvalidResponse, Cause::None, {}};
}

AIServiceError AIServiceError::noContent()
{
    return {Kind::NoContent, Cause::None, {}};
}

QString AIServiceError::title(AppLanguage language) const
{
    switch (m_kind) {
    case Kind::NetworkError:
        return pickText(language, u"Network error", u"网络错误", u"ネットワークエラー");
    case Kind::ApiError:
        return pickText(language, u"API error", u"API 错误", u"API エラー");
    case Kind::DecodingError:
        return pickText(language, u"Data parsing error", u"数据解析错误", u"データ解析エラー");
    case Kind::InvalidConfiguration:
        return pickText(language, u"Invalid AI configuration, please check settings",
                        u"AI 配置无效，请检查设置", u"AI 設定が無効です。設定を確認してください");
    case Kind::InvalidURL:
        return pickText(language, u"Invalid API address", u"API 地址无效", u"API アドレスが無効です");
    case Kind::InvalidResponse:
        return pickText(language, u"Invalid server response", u"服务器响应无效", u"サーバー応答が無効です");
    case Kind::NoContent:
        break;
    }
    return pickText(language, u"AI returned no content", u"AI 未返回内容",
                    u"AI がコンテンツを返しませんでした");
}

QString AIServiceError::description(AppLanguage language) const
{
    switch (m_kind) {
    case Kind::NetworkError:
    case Kind::DecodingError:
        return title(language) + u": "_s + underlyingDescription(language);
    case Kind::ApiError:
        return title(language) + u": "_s + m_detail;
    case Kind::InvalidConfiguration:
    case Kind::InvalidURL:
    case Kind::InvalidResponse:
    case Kind::NoContent:
        break;
    }
    return title(language);
}

QString AIServiceError::description() const
{
    return description(LanguageManager::shared()->resolvedLanguage());
}

QString AIServiceError::underlyingDescription(AppLanguage language) const
{
    switch (m_cause) {
    case Cause::Cancelled:
        return pickText(language, u"cancelled", u"已取消", u"キャンセルしました");
    case Cause::TimedOut:
        return pickText(language, u"The request timed out.", u"请求超时。",
                        u"要求がタイムアウトになりました。");
    case Cause::Decoding:
        return pickText(language, u"The data couldn't be read because it isn't in the correct format.",
                        u"未能读取数据，因为它的格式不正确。",
                        u"データの形式が正しくないため、読み込めませんでした。");
    case Cause::ResponseTooLarge:
        return pickText(language, u"The response is larger than 8 MB.", u"响应超过 8 MB。",
                        u"応答が 8 MB を超えています。");
    case Cause::LineTooLong:
        return pickText(language, u"A line of the response is longer than 1 MB.", u"响应中有一行超过 1 MB。",
                        u"応答の 1 行が 1 MB を超えています。");
    case Cause::ClosedBeforeAnswer:
        return pickText(language,
                        u"The connection closed before the server answered; the request was not sent again.",
                        u"服务器应答前连接已关闭；请求没有重新发送。",
                        u"サーバーが応答する前に接続が閉じられました。要求は再送信されていません。");
    case Cause::Transport:
    case Cause::None:
        break;
    }
    return m_detail;
}
