#include "aiservice.h"
#include "chattestserver.h"
#include "datastore.h"
#include "languagemanager.h"
#include "localizedtext.h"
#include "screenshotsession.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonArray>
#include <QJsonObject>
#include <QQuickItem>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

// One event of a streamed reply carrying `text`.
QByteArray streamEvent(const QString &text)
{
    const QJsonObject delta{{u"content"_s, text}};
    const QJsonObject choice{{u"delta"_s, delta}};
    return "data: " + QJsonDocument(QJsonObject{{u"choices"_s, QJsonArray{choice}}}).toJson(QJsonDocument::Compact) +
           "\n\n";
}

QString replyText(AppLanguage language)
{
    const QString prose = pickText(
        language,
        u"This query reports **revenue by month** for paid orders:\n\n- `DATE_FORMAT` turns each order's date into "
        "a month like `2026-11`\n- `COUNT(*)` and `SUM(o.total)` add up orders and revenue per month\n\n"
        "On MySQL 5.7, an index on `(status, created_at)` lets the filter and the grouping use it:",
        u"这段查询按**月份**统计已支付订单的收入：\n\n- `DATE_FORMAT` 把每个订单的日期变成 `2026-11` 这样的月份\n"
        "- `COUNT(*)` 和 `SUM(o.total)` 汇总每月的订单数和收入\n\n在 MySQL 5.7 上，给 `(status, created_at)` "
        "建索引可以让过滤和分组都用上它：",
        u"このクエリは支払い済み注文の**月別売上**を集計します：\n\n- `DATE_FORMAT` は注文日を `2026-11` "
        "のような月に変換します\n- `COUNT(*)` と `SUM(o.total)` で月ごとの注文数と売上を合計します\n\n"
        "MySQL 5.7 では `(status, created_at)` のインデックスでフィルターとグループ化が速くなります：");
    return prose + u"\n\n```sql\nCREATE INDEX idx_orders_status_created\n    ON orders (status, created_at);\n```\n\n"
                   "[KNOWLEDGE:数据库版本:MySQL 5.7]"_s;
}

QList<ChatTestServer::Piece> streamedReply(const QString &text, int pieceLength, int delayMs)
{
    QList<ChatTestServer::Piece> pieces;
    for (qsizetype at = 0; at < text.size(); at += pieceLength)
        pieces.append({streamEvent(text.mid(at, pieceLength)), delayMs});
    pieces.append({"data: [DONE]\n\n", delayMs});
    return pieces;
}

} // namespace

// The assistant panel: welcome, a reply being written, a finished reply with a code block and
// the fact it taught, the error panel, and an alert.
void shootAssistantScenes(ScreenshotSession &session)
{
    // A proxy on 127.0.0.1 that answers as the tool scripts it.
    auto *server = new ChatTestServer(QByteArray(AIServiceConfig::defaultSigningKey.data(),
                                                 AIServiceConfig::defaultSigningKey.size()));
    server->setParent(QCoreApplication::instance());
    AIServiceConfig config;
    config.proxyBaseURL = server->baseUrl();
    config.proxyChatURL = server->baseUrl() + u"/api/chat"_s;
    AIService::setShared(new AIService(session.store(), LanguageManager::shared(), config,
                                       QCoreApplication::instance()));

    DataStore *store = session.store();
    for (const SQLDocument &document : store->documents()) {
        if (document.name == "Monthly revenue"_L1)
            store->setSelectedDocumentId(document.id);
    }
    QObject *content = session.find("contentView");
    QMetaObject::invokeMethod(content, "setShowAIAssistant", Q_ARG(bool, true));
    ScreenshotSession::wait(600);
    session.shoot(u"assistant-empty"_s);

    QObject *controller = session.find("conversationController");
    const AppLanguage language = LanguageManager::shared()->resolvedLanguage();
    server->setReply({200, streamedReply(replyText(language), 4, 40), ChatTestServer::Ending::Complete, {}});
    QMetaObject::invokeMethod(controller, "handleQuickAction", Q_ARG(AIEnums::AIAssistantMode, AIAssistantMode::Explain));
    ScreenshotSession::wait(2500);
    session.shoot(u"assistant-streaming"_s, 0);

    for (int i = 0; i < 100 && controller->property("isStreaming").toBool(); ++i)
        ScreenshotSession::wait(100);
    session.shoot(u"assistant-reply"_s, 600);

    // The disclosure of what the next request carries.
    QObject *context = session.find("contextDisclosure");
    context->setProperty("expanded", true);
    controller->setProperty("inputText", u"Which index is best?"_s);
    session.shoot(u"assistant-context"_s, 400);
    context->setProperty("expanded", false);
    controller->setProperty("inputText", QString());

    QMetaObject::invokeMethod(controller, "handleQuickAction", Q_ARG(AIEnums::AIAssistantMode, AIAssistantMode::FixError));
    controller->setProperty("errorInputText",
                            u"ERROR 1054 (42S22): Unknown column 'o.total' in 'field list'"_s);
    session.shoot(u"assistant-error-panel"_s, 400);
    QMetaObject::invokeMethod(controller, "closeErrorInput");

    server->setReply({500, {{"busy", 0}}, ChatTestServer::Ending::Complete, {}});
    controller->setProperty("inputText", u"Why is it slow?"_s);
    QMetaObject::invokeMethod(controller, "sendInput");
    ScreenshotSession::wait(800);
    session.shoot(u"assistant-alert"_s, 300);
    if (QObject *alert = session.find("assistantAlert"))
        QMetaObject::invokeMethod(alert, "close");

    QMetaObject::invokeMethod(content, "setShowAIAssistant", Q_ARG(bool, false));
    ScreenshotSession::wait(500);
}
