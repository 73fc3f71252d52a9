#include "appengine.h"
#include "testenvironment.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

// The settings window as the menu opens it: one at a time, of a fixed size, gone when closed.
class TestSettingsWindow : public QObject
{
    Q_OBJECT

private:
    ScratchHome m_home;

    [[nodiscard]] static QList<QQuickWindow *> settingsWindows()
    {
        QList<QQuickWindow *> found;
        for (QWindow *window : QGuiApplication::topLevelWindows()) {
            if (window->objectName() == "settingsWindow"_L1 && window->isVisible())
                found.append(qobject_cast<QQuickWindow *>(window));
        }
        return found;
    }

private Q_SLOTS:
    void openedFromTheMenuOnceAtATime()
    {
        QQmlApplicationEngine engine;
        configureEngine(&engine);
        engine.load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
        QCOMPARE(engine.rootObjects().size(), 1);
        auto *main = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
        QVERIFY(QTest::qWaitForWindowExposed(main));
        QVERIFY(settingsWindows().isEmpty());

        QTest::keyClick(main, Qt::Key_Comma, Qt::ControlModifier);
        QTRY_COMPARE(settingsWindows().size(), 1);
        QQuickWindow *settings = settingsWindows().constFirst();
        QCOMPARE(settings->size(), QSize(520, 520));
        QCOMPARE(settings->minimumSize(), QSize(520, 520));
        QCOMPARE(settings->maximumSize(), QSize(520, 520));
        QCOMPARE(settings->title(), u"Settings"_s);

        // Asked again, the same window comes forward.
        QTest::keyClick(main, Qt::Key_Comma, Qt::ControlModifier);
        QTest::qWait(100);
        QCOMPARE(settingsWindows(), QList<QQuickWindow *>{settings});

        // Closed, it is gone, and the next one is new.
        QPointer<QQuickWindow> closed = settings;
        settings->close();
        QTRY_VERIFY(closed.isNull());
        QVERIFY(settingsWindows().isEmpty());
        QMetaObject::invokeMethod(main, "showSettings");
        QTRY_COMPARE(settingsWindows().size(), 1);
    }
};

QTEST_MAIN(TestSettingsWindow)
#include "tst_settingswindow.moc"
