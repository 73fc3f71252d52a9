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
    // Ends the application without the close fade, once what is unwritten has been dealt with;
    // the delegate saves as it ends.
    Q_INVOKABLE static void quit();
    // Quit was asked for from the menu.
    Q_INVOKABLE [[nodiscard]] static bool isQuitting();
    // Ends the application now and asks nothing: a signal from outside, the session ending.
    static void endNow();
    Q_INVOKABLE [[nodiscard]] static bool isEnding();
    // The user chose to end without what could not be written.
    Q_INVOKABLE static void discardUnwritten();
    [[nodiscard]] static bool isDiscardingUnwritten();

    // The keys of an action's shortcut (a StandardKey or a text such as "Ctrl+E") as menus show
    // them on this desktop; empty for none.
    Q_INVOKABLE [[nodiscard]] static QString keysText(const QVariant &shortcut);
    // A title as it reads, without the "&" that marks its access key ("&&" is one "&").
    Q_INVOKABLE [[nodiscard]] static QString withoutMnemonic(const QString &title);
};
