#pragma once

#include "appengine.h"
#include "testenvironment.h"

#include <QObject>
#include <QQmlEngine>

#include <memory>

// Set-up of the Qt Quick tests: the views run on the application's shared store, which
// lives in a scratch home, with the application's engine set-up.
class QuickTestSetup : public QObject
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
