// Starts the application's window on a prepared store and saves screenshots of its main
// states. Run through tools/screenshots.sh, which sets up a display and a scratch home.
//
// Usage: varnholt-screenshots <output-folder> <en|zh-Hans|ja> <light|dark> [scene...]
// Scenes: shell, editor, assistant, store, settings, versions, empty-store (all when none is named; empty-store always runs last).
#include "appengine.h"
#include "clock.h"
#include "datastore.h"
#include "languagemanager.h"
#include "screenshotsession.h"

#include <QDir>
#include <QGuiApplication>
#include <QPalette>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

namespace {

void prepareStore(DataStore *store)
{
    const QList<std::pair<QString, QString>> documents{
        {u"Monthly revenue"_s,
         u"-- Revenue by month, paid orders only\nSELECT DATE_FORMAT(o.created_at, '%Y-%m') AS month,\n"
         "       COUNT(*) AS orders,\n       SUM(o.total) AS revenue\nFROM orders o\n"
         "WHERE o.status = 'paid'\nGROUP BY month\nORDER BY month DESC\nLIMIT 12;"_s},
        {u"用户留存分析"_s, u"SELECT u.id, u.username FROM users u WHERE u.created_at > '2026-01-01';"_s},
        {u"在庫レポート"_s, u"SELECT sku, SUM(qty) FROM stock GROUP BY sku HAVING SUM(qty) < 10;"_s},
        {u"Schema: orders"_s,
         u"/* Orders as the shop writes them;\n   totals in the shop's currency */\n"
         "CREATE TABLE orders (\n    id BIGINT PRIMARY KEY,\n    user_id INT NOT NULL,\n"
         "    total DECIMAL(10, 2),\n    status VARCHAR(20) DEFAULT 'new' -- 'paid' once settled\n);"_s},
    };
    // Made over the last days, so that the sidebar shows real ages.
    QDateTime when = QDateTime::currentDateTimeUtc().addDays(-3);
    Clock::setNowFunction([&when] { return when; });
    for (const auto &[name, content] : documents) {
        store->createDocument(name, content);
        when = when.addSecs(19 * 3600 + 7 * 60);
    }
    Clock::setNowFunction({});
    store->flush();
}

// A dark palette of the kind a desktop in dark mode hands to Qt applications.
QPalette darkPalette()
{
    QPalette palette;
    const QColor window(0x2b, 0x2b, 0x2e);
    const QColor base(0x1e, 0x1e, 0x20);
    const QColor text(0xec, 0xec, 0xee);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, QColor(0x3a, 0x3a, 0x3e));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, QColor(0x8e, 0x8e, 0x93));
    palette.setColor(QPalette::Highlight, QColor(0x0a, 0x84, 0xff));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Light, QColor(0x48, 0x48, 0x4c));
    palette.setColor(QPalette::Midlight, QColor(0x3a, 0x3a, 0x3e));
    palette.setColor(QPalette::Mid, QColor(0x2f, 0x2f, 0x32));
    palette.setColor(QPalette::Dark, QColor(0x18, 0x18, 0x1a));
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::Link, QColor(0x64, 0xd2, 0xff));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x7a, 0x7a, 0x80));
    return palette;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(u"Varnholt"_s);
    QQuickStyle::setStyle(u"Fusion"_s);
    if (argc < 4) {
        std::fprintf(stderr, "usage: varnholt-screenshots <output-folder> <en|zh-Hans|ja> <light|dark> [scene...]\n");
        return 2;
    }
    const QString output = QString::fromLocal8Bit(argv[1]);
    const QString language = QString::fromLocal8Bit(argv[2]);
    const QString appearance = QString::fromLocal8Bit(argv[3]);
    QStringList wanted;
    for (int i = 4; i < argc; ++i)
        wanted.append(QString::fromLocal8Bit(argv[i]));
    QDir().mkpath(output);
    if (appearance == "dark"_L1)
        QGuiApplication::setPalette(darkPalette());
    LanguageManager::shared()->setCurrentLanguage(
        AppLanguages::fromRawValue(language).value_or(AppLanguage::En));
    DataStore *store = DataStore::shared();
    prepareStore(store);

    QQmlApplicationEngine engine;
    configureEngine(&engine);
    engine.load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
    if (engine.rootObjects().isEmpty())
        return 1;
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    ScreenshotSession session(window, store, output, language, appearance);
    ScreenshotSession::wait(1000); // the fade-in

    const QList<std::pair<QString, std::function<void(ScreenshotSession &)>>> scenes{
        {u"shell"_s, shootShellScenes},
        {u"editor"_s, shootEditorScenes},
        {u"assistant"_s, shootAssistantScenes},
        {u"store"_s, shootStoreScenes},
        {u"settings"_s, shootSettingsScenes},
        {u"versions"_s, shootVersionScenes},
        {u"empty-store"_s, shootEmptyStoreScene},
    };
    for (const auto &[name, shootScene] : scenes) {
        if (wanted.isEmpty() || wanted.contains(name))
            shootScene(session);
    }
    return 0;
}
