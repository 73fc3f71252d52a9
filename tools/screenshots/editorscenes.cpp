#include "screenshotsession.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QQuickItem>
#include <QVariant>

using namespace Qt::StringLiterals;

// The editor field with a selection and with an input method's composition under way, and the
// find bar: matches, replacing, an invalid expression.
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
}
