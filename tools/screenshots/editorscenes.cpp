#include "screenshotsession.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QQuickWindow>
#include <QQuickItem>
#include <QVariant>

using namespace Qt::StringLiterals;

// The editor field with a selection and with an input method's composition under way; the
// find bar: matches, replacing, an invalid expression; the Edit menu and the context menu.
void shootEditorScenes(ScreenshotSession &session)
{
    auto *area = qobject_cast<QQuickItem *>(session.find("sqlTextArea"));
    QObject *findBar = session.find("findBar");
    if (!area || !findBar)
        return;
    area->forceActiveFocus();
    QMetaObject::invokeMethod(area, "select", Q_ARG(int, 7), Q_ARG(int, 60));
    session.shoot(u"editing-selection"_s);

    // A composition in the middle of the text, as Chinese and Japanese input methods show it.
    area->setProperty("cursorPosition", 30);
    const QString composing = session.language() == u"zh-Hans" ? u"xuan'ze"_s : u"せんたく"_s;
    QInputMethodEvent preedit(composing, {QInputMethodEvent::Attribute(QInputMethodEvent::Cursor,
                                                                       int(composing.size()), 1)});
    QCoreApplication::sendEvent(area, &preedit);
    session.shoot(u"editing-preedit"_s);
    QInputMethodEvent cancel;
    QCoreApplication::sendEvent(area, &cancel);

    area->setProperty("cursorPosition", 0);
    QMetaObject::invokeMethod(findBar, "open", Q_ARG(bool, false));
    auto *finder = area->property("finder").value<QObject *>();
    finder->setProperty("pattern", u"id"_s);
    session.shoot(u"find-bar"_s);
    QMetaObject::invokeMethod(findBar, "open", Q_ARG(bool, true));
    session.shoot(u"find-replace"_s);
    finder->setProperty("regularExpression", true);
    finder->setProperty("pattern", u"(select"_s);
    session.shoot(u"find-invalid-expression"_s);
    finder->setProperty("regularExpression", false);
    finder->setProperty("pattern", QString());
    QMetaObject::invokeMethod(findBar, "close");
    ScreenshotSession::wait(200);

    // The Edit menu and the editor's context menu, with their keys.
    area->forceActiveFocus();
    QMetaObject::invokeMethod(area, "select", Q_ARG(int, 7), Q_ARG(int, 20));
    QObject *editMenu = session.find("editMenu");
    QMetaObject::invokeMethod(editMenu, "open");
    session.shoot(u"edit-menu"_s, 300);
    QMetaObject::invokeMethod(editMenu, "close");
    ScreenshotSession::wait(200);
    QMetaObject::invokeMethod(session.find("editorContextMenu"), "openAt", Q_ARG(double, 200.0),
                              Q_ARG(double, 60.0));
    session.shoot(u"editor-context-menu"_s, 300);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(session.window(), &escape);
    ScreenshotSession::wait(200);
}
