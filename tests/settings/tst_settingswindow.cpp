#include "appengine.h"
#include "datastore.h"
#include "preferences.h"
#include "testenvironment.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
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

    // The settings window, opened from the main window of `engine` while a screen reader
    // listens; null if it did not open.
    [[nodiscard]] static QQuickWindow *openSettings(QQmlApplicationEngine &engine)
    {
        QAccessible::setActive(true);
        configureEngine(&engine);
        engine.load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
        QMetaObject::invokeMethod(engine.rootObjects().constFirst(), "showSettings");
        if (!QTest::qWaitFor([] { return settingsWindows().size() == 1; }))
            return nullptr;
        return settingsWindows().constFirst();
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

    // The editor's font size follows the slider when a screen reader moves it, by its actions
    // or by setting its value.
    void fontSizeByScreenReader()
    {
        QQmlApplicationEngine engine;
        QQuickWindow *settings = openSettings(engine);
        QVERIFY(settings);
        auto *slider = settings->findChild<QQuickItem *>(u"fontSizeSlider"_s);
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(slider);
        Preferences *preferences = Preferences::shared();
        const double size = preferences->editorFontSize();
        accessible->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
        QCOMPARE(preferences->editorFontSize(), size + 1);
        accessible->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
        QCOMPARE(preferences->editorFontSize(), size);
        accessible->valueInterface()->setCurrentValue(size + 3);
        QCOMPARE(preferences->editorFontSize(), size + 3);
        accessible->valueInterface()->setCurrentValue(size);
    }

    // A screen reader finds the tabs by name and opens them with Press.
    void tabsOpenByPress()
    {
        QQmlApplicationEngine engine;
        QQuickWindow *settings = openSettings(engine);
        QVERIFY(settings);
        auto *tabs = settings->findChild<QQuickItem *>(u"settingsTabs"_s);
        QAccessibleInterface *tabList = QAccessible::queryAccessibleInterface(tabs);
        QCOMPARE(tabList->text(QAccessible::Name), u"Settings"_s);
        QCOMPARE(tabList->childCount(), 3);
        QAccessibleInterface *about = tabList->child(2);
        QCOMPARE(about->role(), QAccessible::PageTab);
        QCOMPARE(about->text(QAccessible::Name), u"About"_s);
        about->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(tabs->property("currentIndex").toInt(), 2);

        // The knowledge tab's switch answers Toggle as a click: the setting changes.
        tabList->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        auto *autoRecord = settings->findChild<QQuickItem *>(u"autoRecordSwitch"_s);
        QTRY_VERIFY(autoRecord && autoRecord->isVisible());
        DataStore *store = DataStore::shared();
        const bool recording = store->knowledgeAutoRecordingEnabled();
        QAccessibleInterface *toggle = QAccessible::queryAccessibleInterface(autoRecord);
        toggle->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QCOMPARE(store->knowledgeAutoRecordingEnabled(), !recording);
        toggle->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(store->knowledgeAutoRecordingEnabled(), recording);
        QCOMPARE(autoRecord->property("checked").toBool(), recording);
    }
};

QTEST_MAIN(TestSettingsWindow)
#include "tst_settingswindow.moc"
