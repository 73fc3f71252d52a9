// Starts the application's window on a prepared store and saves screenshots of its main
// states. Run through tools/screenshots.sh, which sets up a display and a scratch home.
//
// Usage: varnholt-screenshots <output-folder> <en|zh-Hans|ja>
#include "appengine.h"
#include "clock.h"
#include "datastore.h"
#include "languagemanager.h"

#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

namespace {

void wait(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

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
         u"CREATE TABLE orders (\n    id BIGINT PRIMARY KEY,\n    user_id INT NOT NULL,\n"
         "    total DECIMAL(10, 2),\n    status VARCHAR(20) DEFAULT 'new'\n);"_s},
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

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(u"Varnholt"_s);
    QQuickStyle::setStyle(u"Fusion"_s);
    if (argc != 3) {
        std::fprintf(stderr, "usage: varnholt-screenshots <output-folder> <en|zh-Hans|ja>\n");
        return 2;
    }
    const QString output = QString::fromLocal8Bit(argv[1]);
    const QString language = QString::fromLocal8Bit(argv[2]);
    QDir().mkpath(output);
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
    const auto find = [window](const char *name) {
        return window->findChild<QObject *>(QLatin1StringView(name));
    };
    const auto shoot = [&](const QString &state, int settle = 150) {
        wait(settle);
        const QString path = u"%1/%2-%3.png"_s.arg(output, state, language);
        window->grabWindow().save(path);
        std::printf("%s\n", qPrintable(path));
    };
    wait(1000); // the fade-in
    shoot(u"documents"_s);

    QMetaObject::invokeMethod(find("contentView"), "setShowVersionHistory", Q_ARG(bool, true));
    wait(500);
    shoot(u"panel-open"_s);
    QMetaObject::invokeMethod(find("contentView"), "setShowVersionHistory", Q_ARG(bool, false));
    wait(500);

    QMetaObject::invokeMethod(find("sidebar")->property("newDocumentSheet").value<QObject *>(), "open");
    wait(300);
    shoot(u"new-document-sheet"_s);
    QMetaObject::invokeMethod(find("sidebar")->property("newDocumentSheet").value<QObject *>(), "cancel");
    wait(300);

    QObject *saveSheet = find("saveVersionSheet");
    if (saveSheet) {
        QMetaObject::invokeMethod(saveSheet, "open");
        wait(300);
        shoot(u"save-version-sheet"_s);
        QMetaObject::invokeMethod(saveSheet, "cancel");
        wait(300);
    }
    shoot(u"editing"_s);

    const QString doomed =
        store->sidebarDocuments(QString()).at(1).id.toString(QUuid::WithoutBraces).toUpper();
    QMetaObject::invokeMethod(find("sidebar"), "startDeletion", Q_ARG(QString, doomed));
    shoot(u"deleting"_s, 200); // between the crumple and the throw
    wait(800);

    const QList<SQLDocument> all = store->documents();
    for (const SQLDocument &document : all)
        store->deleteDocument(document.id);
    wait(300);
    shoot(u"empty-store"_s);
    return 0;
}
