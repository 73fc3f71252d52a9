#pragma once

#include <QObject>
#include <QQmlEngine>

// Commands of the application menu that work on the store alone (the editor follows the
// store's selection and contents), and quitting.
class AppCommands : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    // Creates a document with the default name of the language in force and selects it.
    Q_INVOKABLE void newDocument();
    // Takes a version of the selected document with the quick-save note; nothing if none is
    // selected.
    Q_INVOKABLE void quickSave();
    // Ends the application now, without the close fade; the delegate saves as it ends.
    Q_INVOKABLE static void quit();
    // Quit was asked for (by the menu, or by a signal from outside).
    Q_INVOKABLE [[nodiscard]] static bool isQuitting();
};
