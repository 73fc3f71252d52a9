#include "appdelegate.h"
#include "appengine.h"
#include "datastore.h"
#include "singleinstance.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QWindow>
#include <QtQml/qqmlextensionplugin.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

int main(int argc, char *argv[])
{
    // Everything the application makes is its user's alone: data, settings, exports' folders.
    ::umask(::umask(0) | 077);
    QGuiApplication app(argc, argv);
    // No organisation name: it would become part of the data folder's path.
    QGuiApplication::setApplicationName(u"Varnholt"_s);
    QGuiApplication::setApplicationDisplayName(u"Varnholt"_s);
    // The launcher entry's name, so that the desktop matches the window to it and its icon.
    QGuiApplication::setDesktopFileName(u"org.varnholt.Varnholt"_s);
    QGuiApplication::setWindowIcon(
        QIcon::fromTheme(u"org.varnholt.Varnholt"_s, QIcon(u":/org.varnholt.Varnholt.svg"_s)));
    QQuickStyle::setStyle(u"Fusion"_s);

    // A second start raises the running window instead of opening the same data again.
    SingleInstance instance(DataStore::defaultDataDirectory());
    if (instance.handOverToRunningInstance())
        return 0;
    instance.listen();

    AppDelegate delegate(&app);
    QQmlApplicationEngine engine;
    configureEngine(&engine);
    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreationFailed, &app, [] { QCoreApplication::exit(1); },
        Qt::QueuedConnection);
    engine.load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
    QObject::connect(&instance, &SingleInstance::activationRequested, &engine, [&engine] {
        for (QObject *root : engine.rootObjects()) {
            if (auto *window = qobject_cast<QWindow *>(root)) {
                window->show();
                window->raise();
                window->requestActivate();
            }
        }
    });
    return QGuiApplication::exec();
}
