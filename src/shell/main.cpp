#include "appdelegate.h"
#include "appengine.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QtQml/qqmlextensionplugin.h>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    // No organisation name: it would become part of the data folder's path.
    QGuiApplication::setApplicationName(u"Varnholt"_s);
    QGuiApplication::setApplicationDisplayName(u"Varnholt"_s);
    // The launcher entry's name, so that the desktop matches the window to it and its icon.
    QGuiApplication::setDesktopFileName(u"org.varnholt.Varnholt"_s);
    QGuiApplication::setWindowIcon(
        QIcon::fromTheme(u"org.varnholt.Varnholt"_s, QIcon(u":/org.varnholt.Varnholt.svg"_s)));
    QQuickStyle::setStyle(u"Fusion"_s);

    AppDelegate delegate(&app);
    QQmlApplicationEngine engine;
    configureEngine(&engine);
    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreationFailed, &app, [] { QCoreApplication::exit(1); },
        Qt::QueuedConnection);
    engine.load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
    return QGuiApplication::exec();
}
