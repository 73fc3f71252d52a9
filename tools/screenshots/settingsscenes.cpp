#include "aiconnectionsettings.h"
#include "aiservice.h"
#include "chattestserver.h"
#include "datastore.h"
#include "languagemanager.h"
#include "localizedtext.h"
#include "screenshotsession.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

QObject *findIn(QQuickWindow *window, const char *objectName)
{
    return window->findChild<QObject *>(QLatin1StringView(objectName));
}

// The first item under `item`, visual children included, with this objectName.
QQuickItem *findItem(QQuickItem *item, const QString &objectName)
{
    if (item->objectName() == objectName)
        return item;
    for (QQuickItem *child : item->childItems()) {
        if (QQuickItem *found = findItem(child, objectName))
            return found;
    }
    return nullptr;
}

// Scrolls the first tab to its end, where the AI assistant section is.
void scrollToEnd(QQuickWindow *window)
{
    auto *flickable = findIn(window, "mainSettingsView")->property("contentItem").value<QQuickItem *>();
    const qreal end = flickable->property("contentHeight").toReal() - flickable->height();
    flickable->setProperty("contentY", std::max<qreal>(0, end));
    ScreenshotSession::wait(200);
}

void showTab(QQuickWindow *window, int index)
{
    findIn(window, "settingsTabs")->setProperty("currentIndex", index);
    ScreenshotSession::wait(300);
}

void addKnowledge(DataStore *store, AppLanguage language)
{
    store->addKnowledgeItem(KnowledgeCategory::DatabaseVersion, u"MySQL 8.0.36"_s,
                            KnowledgeSource::AiDetected);
    store->addKnowledgeItem(KnowledgeCategory::SyntaxConstraint,
                            pickText(language, u"No LATERAL joins; use a derived table instead",
                                     u"不支持 LATERAL 连接，请改用派生表",
                                     u"LATERAL 結合は使えないので派生テーブルを使う"),
                            KnowledgeSource::UserAdded);
    store->addKnowledgeItem(KnowledgeCategory::TableType,
                            pickText(language, u"orders is partitioned by month on created_at",
                                     u"orders 按 created_at 每月分区",
                                     u"orders は created_at で月ごとにパーティション分割"),
                            KnowledgeSource::AiDetected);
    store->addKnowledgeItem(KnowledgeCategory::Preference,
                            pickText(language, u"Upper-case keywords, one clause per line",
                                     u"关键字大写，每个子句一行", u"キーワードは大文字、句ごとに改行"),
                            KnowledgeSource::UserAdded);
}

} // namespace

// The settings window: its three tabs, the connection choices with the own server's form and
// model list, the warning for plain http, and the knowledge edit sheet.
void shootSettingsScenes(ScreenshotSession &session)
{
    // A build with a proxy, and a model server on 127.0.0.1 for the own-server form.
    auto *server = new ChatTestServer(
        QByteArray(AIServiceConfig::defaultSigningKey.data(), AIServiceConfig::defaultSigningKey.size()));
    server->setParent(QCoreApplication::instance());
    server->speakOpenAI({},
                        {u"llama3.1:8b"_s, u"llama3.1:70b"_s, u"qwen2.5-coder:7b"_s, u"qwen2.5-coder:32b"_s,
                         u"deepseek-coder-v2:16b"_s, u"mistral-small:24b"_s, u"codestral:22b"_s});
    server->setReply(
        {200,
         {{QJsonDocument(
               QJsonObject{{u"choices"_s,
                            QJsonArray{QJsonObject{
                                {u"message"_s,
                                 QJsonObject{{u"role"_s, u"assistant"_s},
                                             {u"content"_s, u"Hello! How can I help with your SQL?"_s}}}}}}})
               .toJson(),
           0}},
         ChatTestServer::Ending::Complete,
         {}});
    AIServiceConfig config;
    config.proxyBaseURL = server->baseUrl();
    config.proxyChatURL = server->baseUrl() + u"/api/chat"_s;
    auto *service =
        new AIService(session.store(), LanguageManager::shared(), config, QCoreApplication::instance());
    AIConnectionSettings *connection = AIConnectionSettings::shared();
    service->setConnectionSettings(connection);
    AIService::setShared(service);
    connection->setKind(AIConnectionSettings::Kind::Proxy);

    QMetaObject::invokeMethod(session.window(), "showSettings");
    ScreenshotSession::wait(800);
    auto *window = session.window()->findChild<QQuickWindow *>(u"settingsWindow"_s);
    if (!window)
        return;
    session.shoot(u"settings-general"_s, 300, window);

    // The own server: its address committed, its models read, a test passed.
    connection->setKind(AIConnectionSettings::Kind::OpenAICompatible);
    ScreenshotSession::wait(300);
    QObject *address = findIn(window, "serverAddressField");
    address->setProperty("text", QString(server->baseUrl() + u"/v1"_s));
    QMetaObject::invokeMethod(address, "editingFinished");
    connection->setServerModel(u"qwen2.5-coder:7b"_s);
    ScreenshotSession::wait(600);
    QMetaObject::invokeMethod(findIn(window, "testConnectionButton"), "clicked");
    ScreenshotSession::wait(800);
    scrollToEnd(window);
    session.shoot(u"settings-own-server"_s, 300, window);

    QObject *picker = findIn(window, "modelPicker");
    QMetaObject::invokeMethod(picker, "openList");
    session.shoot(u"settings-model-list"_s, 400, window);
    QMetaObject::invokeMethod(findIn(window, "modelListPopup"), "close");
    address->setProperty("text", u"http://192.168.1.20:11434/v1"_s);
    ScreenshotSession::wait(300);
    session.shoot(u"settings-plain-http"_s, 300, window);
    address->setProperty("text", QString(server->baseUrl() + u"/v1"_s));
    connection->setKind(AIConnectionSettings::Kind::Proxy);

    showTab(window, 1);
    session.shoot(u"settings-knowledge-empty"_s, 300, window);
    addKnowledge(session.store(), LanguageManager::shared()->resolvedLanguage());
    session.shoot(u"settings-knowledge"_s, 400, window);
    if (QQuickItem *edit = findItem(window->contentItem(), u"editKnowledgeButton"_s)) {
        QMetaObject::invokeMethod(edit, "clicked");
        session.shoot(u"settings-knowledge-edit"_s, 400, window);
        QMetaObject::invokeMethod(findIn(window, "knowledgeEditSheet"), "cancel");
        ScreenshotSession::wait(300);
    }

    showTab(window, 2);
    session.shoot(u"settings-about"_s, 300, window);
    window->close();
    ScreenshotSession::wait(300);
}
