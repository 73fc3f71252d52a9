#pragma once

#include <QObject>
#include <QQmlEngine>

// The two commands of the File menu. They work on the store alone; the editor follows the
// store's selection and contents.
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
};
