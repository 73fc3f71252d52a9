#include "appcommands.h"
#include "appdelegate.h"
#include "appengine.h"
#include "appsettings.h"
#include "datastore.h"
#include "languagemanager.h"
#include "storecodec.h"
#include "testenvironment.h"
#include "windowstate.h"

#include <QAccessible>
#include <QDir>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

#include <csignal>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

namespace {

// The first node under `root`, depth first, that `matches`.
template<typename Predicate>
QAccessibleInterface *findInTree(QAccessibleInterface *root, const Predicate &matches)
{
    if (!root)
        return nullptr;
    if (matches(root))
        return root;
    for (int i = 0; i < root->childCount(); ++i) {
        if (QAccessibleInterface *found = findInTree(root->child(i), matches))
            return found;
    }
    return nullptr;
}

} // namespace

// The main window as a whole, driven by its keys: commands, fades, closing and saving.
class TestMainWindow : public QObject
{
    Q_OBJECT

private:
    ScratchHome m_home;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow *m_window = nullptr;

    QQuickWindow *openWindow()
    {
        m_engine = std::make_unique<QQmlApplicationEngine>();
        configureEngine(m_engine.get());
        m_engine->load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
        if (m_engine->rootObjects().isEmpty())
            return nullptr;
        m_window = qobject_cast<QQuickWindow *>(m_engine->rootObjects().constFirst());
        m_window->requestActivate();
        return m_window;
    }

private Q_SLOTS:
    void init() { QVERIFY(openWindow()); }
    void cleanup()
    {
        m_engine.reset();
        m_window = nullptr;
    }

    void fadesIn()
    {
        QObject *content = m_window->findChild<QObject *>(u"contentView"_s);
        QVERIFY(content);
        QVERIFY(content->property("opacity").toReal() < 0.5);
        QTRY_COMPARE_WITH_TIMEOUT(content->property("opacity").toReal(), 1.0, 2000);
        QCOMPARE(m_window->width(), 1200);
        QCOMPARE(m_window->height(), 750);
        QCOMPARE(m_window->minimumWidth(), 1000);
        QCOMPARE(m_window->minimumHeight(), 600);
    }

    void commandsWorkOnTheStore()
    {
        DataStore *store = DataStore::shared();
        LanguageManager::shared()->setCurrentLanguage(AppLanguage::Ja);
        const qsizetype before = store->documents().size();
        QTest::keyClick(m_window, Qt::Key_N, Qt::ControlModifier);
        QTRY_COMPARE(store->documents().size(), before + 1);
        QCOMPARE(store->selectedDocument()->name, u"無題の SQL"_s);
        QTest::keyClick(m_window, Qt::Key_N, Qt::ControlModifier);
        QTRY_COMPARE(store->documents().size(), before + 2);

        const QUuid id = store->selectedDocumentId();
        QTest::keyClick(m_window, Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_COMPARE(store->versionsForDocument(id).size(), 1);
        QCOMPARE(store->versionsForDocument(id).constFirst().note, u"クイック保存"_s);

        // Without a selection the quick save does nothing.
        store->setSelectedDocumentId(QUuid());
        const VersionMap versions = store->versions();
        QTest::keyClick(m_window, Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        QTest::qWait(50);
        QCOMPARE(store->versions(), versions);
        LanguageManager::shared()->setCurrentLanguage(AppLanguage::En);
    }

    // The keyboard goes where the next keystroke belongs: the text at start, after a new
    // document from the menu's key or from the sheet, and after a toolbar button's click;
    // Ctrl+Tab goes to the document list and back.
    void focusGoesWhereTheNextKeyBelongs()
    {
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
        auto *area = m_window->findChild<QQuickItem *>(u"sqlTextArea"_s);
        QTRY_VERIFY(area->hasActiveFocus());

        DataStore *store = DataStore::shared();
        QTest::keyClick(m_window, Qt::Key_N, Qt::ControlModifier);
        QTRY_VERIFY(area->hasActiveFocus());
        QTest::keyClick(m_window, Qt::Key_X);
        QTRY_COMPARE(store->selectedDocument()->content, u"x"_s);

        auto *list = m_window->findChild<QQuickItem *>(u"sidebar"_s)->property("list").value<QQuickItem *>();
        QTest::keyClick(m_window, Qt::Key_Tab, Qt::ControlModifier);
        QTRY_VERIFY(list->hasActiveFocus());
        QTest::keyClick(m_window, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_VERIFY(area->hasActiveFocus());
        QCOMPARE(store->selectedDocument()->content, u"x"_s); // no tab typed

        // The Edit menu, opened and closed, gives the keyboard back to the text.
        QObject *editMenu = m_window->findChild<QObject *>(u"editMenu"_s);
        QMetaObject::invokeMethod(editMenu, "open");
        QTRY_VERIFY(editMenu->property("opened").toBool());
        QTest::keyClick(m_window, Qt::Key_Escape);
        QTRY_VERIFY(!editMenu->property("visible").toBool());
        QTRY_VERIFY(area->hasActiveFocus());

        auto *format = m_window->findChild<QQuickItem *>(u"formatButton"_s);
        QTest::mouseClick(m_window, Qt::LeftButton, {}, format->mapToScene(QPointF(10, 10)).toPoint());
        QTRY_VERIFY(area->hasActiveFocus());

        // The sheet: its name, then Return; the text has the keyboard, not the New button.
        auto *sidebar = m_window->findChild<QObject *>(u"sidebar"_s);
        auto *newButton = sidebar->property("newButton").value<QQuickItem *>();
        QTest::mouseClick(m_window, Qt::LeftButton, {}, newButton->mapToScene(QPointF(10, 10)).toPoint());
        auto *sheet = sidebar->property("newDocumentSheet").value<QObject *>();
        QTRY_VERIFY(sheet->property("opened").toBool());
        QTest::keyClick(m_window, Qt::Key_Q);
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_COMPARE(store->selectedDocument()->name, u"q"_s);
        QTRY_VERIFY(!sheet->property("visible").toBool());
        QTRY_VERIFY(area->hasActiveFocus());
        QTest::keyClick(m_window, Qt::Key_Space);
        QTRY_COMPARE(store->selectedDocument()->content, u" "_s);
    }

    // What a screen reader finds and can do: buttons that act on Press, toggles that say they
    // toggle, named fields, list rows that say which is selected, a divider that moves by keys.
    void accessibilityTree()
    {
        // A window made while a screen reader listens.
        LanguageManager::shared()->setCurrentLanguage(AppLanguage::En);
        QAccessible::setActive(true);
        cleanup();
        QVERIFY(openWindow());
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
        DataStore *store = DataStore::shared();
        const auto interfaceOf = [this](const char *name) {
            auto *item = m_window->findChild<QQuickItem *>(QString::fromLatin1(name));
            return item ? QAccessible::queryAccessibleInterface(item) : nullptr;
        };

        QTest::keyClick(m_window, Qt::Key_N, Qt::ControlModifier);
        QTRY_VERIFY(m_window->findChild<QQuickItem *>(u"sqlTextArea"_s)->hasActiveFocus());
        for (const char c : QByteArray("select a,b from t"))
            QTest::keyClick(m_window, c);
        QTRY_COMPARE(store->selectedDocument()->content, u"select a,b from t"_s);
        // The editor is reached from the window, as a screen reader walks the tree, and gives
        // its text with line feeds.
        QAccessibleInterface *editor = findInTree(QAccessible::queryAccessibleInterface(m_window),
                                                  [](QAccessibleInterface *node) {
                                                      return node->role() == QAccessible::EditableText
                                                          && node->text(QAccessible::Name) == u"SQL"_s;
                                                  });
        QVERIFY(editor);
        QVERIFY(editor->state().focused);
        QCOMPARE(editor->textInterface()->text(0, 8), u"select a"_s);
        // The find bar's options answer Press and Toggle as a click.
        QTest::keyClick(m_window, Qt::Key_F, Qt::ControlModifier);
        auto *finder = m_window->findChild<QQuickItem *>(u"sqlTextArea"_s)->property("finder").value<QObject *>();
        QTRY_VERIFY(interfaceOf("matchCase"));
        interfaceOf("matchCase")->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(finder->property("caseSensitive").toBool());
        interfaceOf("matchCase")->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QVERIFY(!finder->property("caseSensitive").toBool());
        QTest::keyClick(m_window, Qt::Key_Escape);

        QAccessibleInterface *format = interfaceOf("formatButton");
        QVERIFY(format);
        QCOMPARE(format->role(), QAccessible::Button);
        QCOMPARE(format->text(QAccessible::Name), u"Format"_s);
        QVERIFY(format->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
        format->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTRY_VERIFY(store->selectedDocument()->content.startsWith(u"SELECT"_s));

        QAccessibleInterface *toggle = interfaceOf("versionsToggle");
        QCOMPARE(toggle->role(), QAccessible::CheckBox); // Qt's role of a checkable button
        QVERIFY(toggle->state().checkable);
        QVERIFY(!toggle->state().checked);
        toggle->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTRY_VERIFY(m_window->findChild<QObject *>(u"versionPanel"_s));
        QTRY_VERIFY(toggle->state().checked);
        // A screen reader's first action on a check box is Toggle; it closes the panel again.
        toggle->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QTRY_VERIFY(!toggle->state().checked);
        QTRY_VERIFY(!m_window->findChild<QObject *>(u"versionPanel"_s));
        toggle->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QTRY_VERIFY(m_window->findChild<QObject *>(u"versionPanel"_s));

        // The menu bar's entries are menu items named as they read; Press opens the menu.
        QAccessibleInterface *fileMenu = findInTree(QAccessible::queryAccessibleInterface(m_window),
                                                    [](QAccessibleInterface *node) {
                                                        return node->text(QAccessible::Name).endsWith(u"File"_s);
                                                    });
        QVERIFY(fileMenu);
        QCOMPARE(fileMenu->text(QAccessible::Name), u"File"_s);
        QCOMPARE(fileMenu->role(), QAccessible::MenuItem);
        // An open menu is named by its title; its entries carry their keys (the first is New).
        auto *menu = m_window->findChild<QObject *>(u"fileMenu"_s);
        fileMenu->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTRY_VERIFY(menu->property("opened").toBool());
        auto *menuList = menu->property("contentItem").value<QQuickItem *>();
        QAccessibleInterface *menuFrame = QAccessible::queryAccessibleInterface(menuList->parentItem());
        QCOMPARE(menuFrame->role(), QAccessible::PopupMenu);
        QCOMPARE(menuFrame->text(QAccessible::Name), u"File"_s);
        QAccessibleInterface *newEntry = findInTree(menuFrame,
                                                    [](QAccessibleInterface *node) {
                                                        return node->role() == QAccessible::MenuItem;
                                                    });
        QVERIFY(newEntry);
        QCOMPARE(newEntry->text(QAccessible::Description), QKeySequence(u"Ctrl+N"_s).toString(QKeySequence::NativeText));
        // Press runs the entry, as a click does, and closes the menu.
        const qsizetype documents = store->documents().size();
        newEntry->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTRY_VERIFY(!menu->property("visible").toBool());
        QCOMPARE(store->documents().size(), documents + 1);
        QTest::keyClick(m_window, Qt::Key_F10); // as on the rest of the desktop
        QTRY_VERIFY(menu->property("opened").toBool());
        QTest::keyClick(m_window, Qt::Key_Escape);
        QTRY_VERIFY(!menu->property("visible").toBool());

        auto *sidebar = m_window->findChild<QObject *>(u"sidebar"_s);
        auto *search = sidebar->property("searchField").value<QQuickItem *>();
        QCOMPARE(QAccessible::queryAccessibleInterface(search)->text(QAccessible::Name),
                 u"Search documents by name"_s);

        auto *list = sidebar->property("list").value<QQuickItem *>();
        QAccessibleInterface *listInterface = QAccessible::queryAccessibleInterface(list);
        QCOMPARE(listInterface->role(), QAccessible::List);
        const auto rows = [list] {
            QList<QAccessibleInterface *> found;
            QList<QQuickItem *> items{list};
            for (qsizetype i = 0; i < items.size(); ++i) // the rows are visual children, not owned ones
                items.append(items.at(i)->childItems());
            for (QQuickItem *item : std::as_const(items)) {
                QAccessibleInterface *row = QAccessible::queryAccessibleInterface(item);
                if (row && row->role() == QAccessible::ListItem && !row->state().invisible)
                    found.append(row);
            }
            return found;
        };
        // The names of the rows that are selected, or that have the focus.
        const auto rowsThatAre = [&rows](bool focusedOnly) {
            QStringList names;
            for (QAccessibleInterface *row : rows()) {
                if (focusedOnly ? row->state().focused : row->state().selected)
                    names.append(row->text(QAccessible::Name));
            }
            return names;
        };
        QVERIFY(rows().size() >= 2);
        for (QAccessibleInterface *row : rows())
            QVERIFY(row->state().selectable);
        QCOMPARE(rowsThatAre(false), QStringList{store->selectedDocument()->name});
        // With the list focused the selected row has the focus, and it moves with the selection.
        list->forceActiveFocus();
        QCOMPARE(rowsThatAre(true), QStringList{store->selectedDocument()->name});
        const QUuid before = store->selectedDocumentId();
        QTest::keyClick(m_window, Qt::Key_Down);
        QVERIFY(store->selectedDocumentId() != before);
        QTRY_COMPARE(rowsThatAre(true), QStringList{store->selectedDocument()->name});

        // A sheet is a dialog named by its title.
        auto *sheet = sidebar->property("newDocumentSheet").value<QObject *>();
        QMetaObject::invokeMethod(sheet, "open");
        QTRY_VERIFY(sheet->property("opened").toBool());
        QQuickItem *sheetItem = sheet->property("contentItem").value<QQuickItem *>()->parentItem();
        QAccessibleInterface *dialog = QAccessible::queryAccessibleInterface(sheetItem);
        QCOMPARE(dialog->role(), QAccessible::Dialog);
        QCOMPARE(dialog->text(QAccessible::Name), u"New SQL Document"_s);
        QMetaObject::invokeMethod(sheet, "cancel");
        QTRY_VERIFY(!sheet->property("visible").toBool());

        QObject *content = m_window->findChild<QObject *>(u"contentView"_s);
        auto *divider = content->property("divider").value<QQuickItem *>();
        QCOMPARE(QAccessible::queryAccessibleInterface(divider)->role(), QAccessible::Splitter);
        const double width = content->property("rightPanelWidth").toDouble();
        divider->forceActiveFocus();
        QTest::keyClick(m_window, Qt::Key_Left);
        QCOMPARE(content->property("rightPanelWidth").toDouble(), width + 16);
        QTest::keyClick(m_window, Qt::Key_Right);
        QCOMPARE(content->property("rightPanelWidth").toDouble(), width);
    }

    // Text sizes are the design's for the usual 10-point desktop font, scaled by the desktop's
    // own font however it is given.
    void textFollowsTheDesktopFont_data()
    {
        QTest::addColumn<QFont>("desktopFont");
        QTest::addColumn<int>("pixels"); // of a subheadline, 11 pixels by the design, and one more
        QFont points;
        points.setPointSize(10);
        QTest::newRow("10 points") << points << 12;
        points.setPointSize(15);
        QTest::newRow("15 points") << points << 18;
        QFont pixels;
        pixels.setPixelSize(26);
        QTest::newRow("26 pixels") << pixels << 23;
    }
    void textFollowsTheDesktopFont()
    {
        QFETCH(QFont, desktopFont);
        QFETCH(int, pixels);
        const QFont before = QGuiApplication::font();
        cleanup();
        QGuiApplication::setFont(desktopFont);
        const bool opened = openWindow() != nullptr;
        QGuiApplication::setFont(before);
        QVERIFY(opened);
        auto *text = m_window->findChild<QObject *>(u"emptyListText"_s);
        QCOMPARE(text->property("font").value<QFont>().pixelSize(), pixels);
    }

    void titlesReadWithoutAccessKeys_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("read");
        QTest::newRow("marked letter") << u"&File"_s << u"File"_s;
        QTest::newRow("key after a Chinese title") << u"文件(&F)"_s << u"文件"_s;
        QTest::newRow("key after a Japanese title") << u"編集(&E)"_s << u"編集"_s;
        QTest::newRow("doubled ampersand") << u"Save && &Quit"_s << u"Save & Quit"_s;
        QTest::newRow("ampersand at the end") << u"Fish &"_s << u"Fish "_s;
        QTest::newRow("none") << u"Edit"_s << u"Edit"_s;
    }
    void titlesReadWithoutAccessKeys()
    {
        QFETCH(QString, title);
        QFETCH(QString, read);
        QCOMPARE(AppCommands::withoutMnemonic(title), read);
    }

    // The next start finds the window where it was, at its size, with the same panel open.
    void windowComesBackAsItWasLeft()
    {
        QObject *content = m_window->findChild<QObject *>(u"contentView"_s);
        QMetaObject::invokeMethod(content, "setShowVersionHistory", Q_ARG(bool, true));
        m_window->resize(1111, 777);
        QTRY_COMPARE(m_window->width(), 1111);
        m_window->close();
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isVisible(), 2000);
        cleanup();
        QVERIFY(openWindow());
        QCOMPARE(m_window->size(), QSize(1111, 777));
        content = m_window->findChild<QObject *>(u"contentView"_s);
        QCOMPARE(content->property("rightPanel").toInt(), 1);
        // The other tests start from the default window.
        QMetaObject::invokeMethod(content, "setShowVersionHistory", Q_ARG(bool, false));
        for (const QLatin1StringView key : {WindowState::geometryKey, WindowState::maximizedKey})
            applicationSettings()->remove(key);
    }

    void closeFadesThenCloses()
    {
        QSignalSpy closing(m_window, &QWindow::visibleChanged);
        m_window->close();
        QVERIFY(m_window->isVisible()); // the fade runs first
        // The content fades; the window itself needs no compositor for it.
        QObject *content = m_window->findChild<QObject *>(u"contentView"_s);
        QTRY_VERIFY(content->property("opacity").toReal() < 1.0);
        QCOMPARE(m_window->opacity(), 1.0);
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isVisible(), 2000);
    }

    void secondCloseDuringFadeClosesAtOnce()
    {
        m_window->close();
        QVERIFY(m_window->isVisible());
        QTest::qWait(100);
        m_window->close();
        QVERIFY(!m_window->isVisible());
    }

    // No view may fetch what content names: the engine's network manager refuses all but
    // the application's own resources.
    void engineFetchesNothingFromOutside()
    {
        QNetworkAccessManager *manager = m_engine->networkAccessManager();
        QVERIFY(manager);
        for (const char *url : {"http://127.0.0.1:9/x.png", "https://example.org/a", "ftp://127.0.0.1/x"}) {
            std::unique_ptr<QNetworkReply> reply(
                manager->get(QNetworkRequest(QUrl(QString::fromLatin1(url)))));
            QTRY_VERIFY(reply->isFinished());
            QVERIFY2(reply->error() != QNetworkReply::NoError, url);
            QCOMPARE(reply->readAll(), QByteArray());
        }
        std::unique_ptr<QNetworkReply> own(manager->get(QNetworkRequest(QUrl(u"qrc:/icons/history.svg"_s))));
        QTRY_VERIFY(own->isFinished());
        QCOMPARE(own->error(), QNetworkReply::NoError);
        QVERIFY(own->readAll().contains("<svg"));
    }

    void quitSavesTheStore()
    {
        DataStore *store = DataStore::shared();
        store->updateDocumentContent(store->documents().constFirst().id, u"SELECT 'saved at quit';"_s);
        AppDelegate::saveStore(); // what aboutToQuit runs
        QFile file(m_home.dataFolder() + u"/sql_documents.json"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("saved at quit"));
    }

    // The real program under an open umask keeps its folders and files private; ended from
    // outside while its data folder refuses the documents file, it leaves a copy of everything in
    // the home folder and says where.
    void privateFilesAndACopyOfWhatCouldNotBeWritten()
    {
        ScratchHome home; // the child process inherits this home
        QProcess app;
        app.setChildProcessModifier([] { ::umask(0); });
        app.start(QStringLiteral(VARNHOLT_EXECUTABLE), {});
        QVERIFY(app.waitForStarted());
        const QString settings = home.path() + u"/config/Varnholt/Varnholt.conf"_s;
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(settings), 15000);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(home.dataFolder() + u"/sql_documents.json"_s), 15000);
        struct stat status
        {};
        QCOMPARE(::stat(QFile::encodeName(home.dataFolder()).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0700));
        QCOMPARE(::stat(QFile::encodeName(settings).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0600));
        QCOMPARE(::stat(QFile::encodeName(QFileInfo(settings).path()).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0700));

        // A folder where the documents file should be: the last save at the end cannot write it.
        QVERIFY(QFile::remove(home.dataFolder() + u"/sql_documents.json"_s));
        QVERIFY(QDir().mkpath(home.dataFolder() + u"/sql_documents.json"_s));
        ::kill(pid_t(app.processId()), SIGTERM);
        QVERIFY(app.waitForFinished(10000));
        QCOMPARE(app.exitCode(), 0);
        const QStringList copies = QDir(home.path()).entryList({u"Varnholt unsaved *"_s}, QDir::Dirs);
        QCOMPARE(copies.size(), 1);
        QVERIFY(QFile::exists(home.path() + u'/' + copies.first() + u"/sql_documents.json"_s));
        QVERIFY(app.readAllStandardError().contains("a copy of all data is in"));
    }

    // The real program, ended from outside: the collections it has never written (the store
    // below has no versions or knowledge file) are written as it ends.
    void terminationSignalSaves()
    {
        ScratchHome home; // the child process inherits this home
        QDir().mkpath(home.dataFolder());
        SQLDocument document{QUuid::createUuid(),
                             u"kept"_s,
                             u"SELECT 1;"_s,
                             QDateTime::currentDateTimeUtc(),
                             QDateTime::currentDateTimeUtc(),
                             {},
                             false};
        QFile documents(home.dataFolder() + u"/sql_documents.json"_s);
        QVERIFY(documents.open(QIODevice::WriteOnly));
        documents.write(StoreCodec::encodeDocuments({document}));
        documents.close();

        QProcess app;
        app.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        app.start(QStringLiteral(VARNHOLT_EXECUTABLE), {});
        QVERIFY(app.waitForStarted());
        // The store remembers the selected document in the settings as it starts.
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(home.path() + u"/config/Varnholt/Varnholt.conf"_s), 15000);
        QVERIFY(!QFile::exists(home.dataFolder() + u"/sql_versions.json"_s));
        ::kill(pid_t(app.processId()), SIGTERM);
        QVERIFY(app.waitForFinished(10000));
        QCOMPARE(app.exitStatus(), QProcess::NormalExit);
        QCOMPARE(app.exitCode(), 0);
        QVERIFY(QFile::exists(home.dataFolder() + u"/sql_versions.json"_s));
        QVERIFY(QFile::exists(home.dataFolder() + u"/knowledge_items.json"_s));
        QVERIFY(documents.open(QIODevice::ReadOnly));
        QVERIFY(documents.readAll().contains("kept"));
    }
};

int main(int argc, char **argv)
{
    // The shared store and settings must live in a scratch home from the very start.
    static ScratchHome home;
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(u"Varnholt"_s);
    AppDelegate delegate(&app);
    TestMainWindow test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mainwindow.moc"
