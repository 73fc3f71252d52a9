#include "appengine.h"
#include "testenvironment.h"

#include <QQmlEngine>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest>

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

// The views run on the application's shared store, which lives in a scratch home.
class Setup : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void applicationAvailable() { m_home = std::make_unique<ScratchHome>(); }
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        engine->addImportPath(QStringLiteral("qrc:/"));
        configureEngine(engine);
    }

private:
    std::unique_ptr<ScratchHome> m_home;
};

QUICK_TEST_MAIN_WITH_SETUP(editorviews, Setup)

#include "tst_editorviews.moc"
