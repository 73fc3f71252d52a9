#include "aiservice.h"
#include "appdelegate.h"
#include "appengine.h"
#include "chattestserver.h"
#include "conversationstore.h"
#include "datastore.h"
#include "languagemanager.h"
#include "testenvironment.h"

#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

using namespace Qt::StringLiterals;
using Ending = ChatTestServer::Ending;

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

namespace {

QByteArray event(const QString &text)
{
    const QJsonObject choice{{u"delta"_s, QJsonObject{{u"content"_s, text}}}};
    return "data: " + QJsonDocument(QJsonObject{{u"choices"_s, QJsonArray{choice}}}).toJson(QJsonDocument::Compact) +
           "\n\n";
}

ChatTestServer::Reply streamed(const QStringList &pieces, int delayMs = 20)
{
    ChatTestServer::Reply reply{200, {}, Ending::Complete, {}};
    for (const QString &piece : pieces)
        reply.pieces.append({event(piece), delayMs});
    reply.pieces.append({"data: [DONE]\n\n", delayMs});
    return reply;
}

const QString originalSQL = u"SELECT id FROM orders;"_s;
const QString reply = u"Add a limit:\n\n```sql\nSELECT id FROM orders LIMIT 10;\n```\n\n[KNOWLEDGE:数据库版本:MySQL 5.7]"_s;

} // namespace

// The assistant panel in the real window, driven by clicks and keys, against a loopback proxy.
class TestAssistantWindow : public QObject
{
    Q_OBJECT

    std::unique_ptr<ChatTestServer> m_server;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow *m_window = nullptr;
    QUuid m_document;

    void openWindow()
    {
        m_engine = std::make_unique<QQmlApplicationEngine>();
        configureEngine(m_engine.get());
        m_engine->load(QUrl(u"qrc:/Varnholt/Main.qml"_s));
        QVERIFY(!m_engine->rootObjects().isEmpty());
        m_window = qobject_cast<QQuickWindow *>(m_engine->rootObjects().constFirst());
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
    }
    // Every object of the window with that name: views made by repeaters and lists are found by
    // the item tree, the others by their owners.
    QList<QObject *> all(const char *name) const
    {
        QList<QObject *> found;
        QList<QObject *> pending{m_window->contentItem()};
        QSet<QObject *> seen;
        while (!pending.isEmpty()) {
            QObject *object = pending.takeLast();
            if (seen.contains(object))
                continue;
            seen.insert(object);
            if (object->objectName() == QLatin1StringView(name))
                found.append(object);
            pending.append(object->children());
            if (auto *item = qobject_cast<QQuickItem *>(object)) {
                for (QQuickItem *child : item->childItems())
                    pending.append(child);
            }
        }
        return found;
    }
    template<typename T = QQuickItem>
    T *find(const char *name) const
    {
        for (QObject *object : all(name)) {
            if (auto *found = qobject_cast<T *>(object))
                return found;
        }
        return nullptr;
    }
    // The visible, enabled item of that name (a list may hold hidden ones).
    QQuickItem *shown(const char *name) const
    {
        for (QObject *object : all(name)) {
            auto *item = qobject_cast<QQuickItem *>(object);
            if (item && item->isVisible() && item->isEnabled())
                return item;
        }
        return nullptr;
    }
    void click(QQuickItem *item) const
    {
        QVERIFY(item);
        const QPoint centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centre);
    }
    QObject *conversation() const { return find<QObject>("conversationController"); }
    int messageCount() const
    {
        QObject *controller = conversation();
        return controller ? controller->property("messages").value<QObject *>()->property("count").toInt() : -1;
    }
    void openPanel()
    {
        // The panel open when the last window closed opens with the next one.
        if (!find("assistantPanel"))
            click(find("assistantToggle"));
        QTRY_VERIFY(find("assistantPanel"));
        QTRY_VERIFY(conversation());
        // Clicks land where the panel is once it has slid in.
        QObject *content = find<QObject>("contentView");
        QTRY_COMPARE(content->property("panelShownWidth").toReal(), content->property("rightPanelWidth").toReal());
    }
    void ask(const QString &text)
    {
        QQuickItem *input = find("assistantInput");
        QVERIFY(input);
        input->forceActiveFocus();
        for (const QChar character : text)
            QTest::keyClick(m_window, character.toLatin1());
        QTest::keyClick(m_window, Qt::Key_Return);
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_server = std::make_unique<ChatTestServer>(AIServiceConfig().signingKey);
        AIServiceConfig config;
        config.proxyBaseURL = m_server->baseUrl();
        config.proxyChatURL = m_server->baseUrl() + u"/api/chat"_s;
        AIService::setShared(new AIService(DataStore::shared(), LanguageManager::shared(), config, qApp));
    }
    void init()
    {
        DataStore *store = DataStore::shared();
        m_document = store->createDocument(u"Orders"_s, originalSQL).id;
        openWindow();
    }
    void cleanup()
    {
        m_engine.reset();
        m_window = nullptr;
        DataStore::shared()->flush();
    }

    void aQuickActionsReplyIsAppliedAsOneUndoableEdit()
    {
        DataStore *store = DataStore::shared();
        openPanel();
        QVERIFY(find("assistantWelcome")->isVisible());
        m_server->setReply(streamed({reply.left(20), reply.mid(20)}));
        click(find("explainButton"));
        QTRY_COMPARE(messageCount(), 2);
        QTRY_VERIFY(!find("quickBar")->isVisible());

        // What it taught, named under the reply.
        QTRY_VERIFY(shown("undoLearnedButton"));
        QCOMPARE(store->knowledgeItems().size(), 1);

        QTRY_VERIFY(shown("applyButton"));
        click(shown("applyButton"));
        const QString applied = u"SELECT id FROM orders LIMIT 10;"_s;
        QTRY_COMPARE(store->document(m_document)->content, applied);
        // The text it replaced is a version, with the note that says why.
        const QList<SQLVersion> versions = store->versionsForDocument(m_document);
        QCOMPARE(versions.size(), 1);
        QCOMPARE(versions.constFirst().content, originalSQL);
        QCOMPARE(versions.constFirst().note, u"Before applying AI SQL"_s);
        store->flush();
        QFile documents(store->dataDirectory() + u"/sql_documents.json"_s);
        QVERIFY(documents.open(QIODevice::ReadOnly));
        QVERIFY(documents.readAll().contains(applied.toUtf8()));

        // One Undo in the editor brings the old text back.
        QQuickItem *editor = find("sqlTextArea");
        QVERIFY(editor);
        editor->forceActiveFocus();
        QTRY_VERIFY(editor->hasActiveFocus());
        QTest::keyClick(m_window, Qt::Key_Z, Qt::ControlModifier);
        QTRY_COMPARE(store->document(m_document)->content, originalSQL);

        // Applying again over text that the latest version holds takes no second version.
        click(shown("applyButton"));
        QTRY_COMPARE(store->document(m_document)->content, applied);
        QCOMPARE(store->versionsForDocument(m_document).size(), 1);

        // Undo of what the reply taught.
        click(shown("undoLearnedButton"));
        QTRY_VERIFY(store->knowledgeItems().isEmpty());
        QTRY_VERIFY(!shown("undoLearnedButton"));
    }

    void aFailureIsAnAlertAndTheQuestionStays()
    {
        openPanel();
        m_server->setReply({500, {{"busy", 0}}, Ending::Complete, {}});
        ask(u"why?"_s);
        QObject *alert = find<QObject>("assistantAlert");
        QVERIFY(alert);
        QTRY_VERIFY(alert->property("opened").toBool());
        QCOMPARE(find<QObject>("alertMessage")->property("text").toString(), u"API error: HTTP 500"_s);
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_VERIFY(!alert->property("visible").toBool());
        QVERIFY(conversation()->property("errorMessage").toString().isEmpty());
        QCOMPARE(messageCount(), 1);
    }

    void closingThePanelMidStreamKeepsTheReply()
    {
        openPanel();
        m_server->setReply(streamed({u"The first half"_s, u", the second half"_s}, 400));
        ask(u"q"_s);
        QTRY_VERIFY(shown("streamingBubble"));
        QVERIFY(shown("stopButton"));
        click(find("closePanelButton"));
        QTRY_VERIFY(!find("assistantPanel"));
        DataStore::shared()->flush();
        const QList<ConversationMessage> kept = ConversationStore::shared()->load(m_document);
        QCOMPARE(kept.size(), 2);
        QCOMPARE(kept.last().message.content, u"The first half\n\n*[Output interrupted]*"_s);

        // A new start shows it again.
        m_engine.reset();
        openWindow();
        openPanel();
        QCOMPARE(messageCount(), 2);
        QVERIFY(!find("assistantWelcome")->isVisible());
    }

    void stopByItsButton()
    {
        openPanel();
        m_server->setReply(streamed({u"Some"_s, u" more"_s}, 400));
        ask(u"q"_s);
        QTRY_VERIFY(shown("streamingBubble"));
        click(shown("stopButton"));
        QTRY_COMPARE(messageCount(), 2);
        QVERIFY(shown("sendButton") || find("sendButton"));
        QVERIFY(find("assistantInput")->isEnabled());
    }
};

int main(int argc, char **argv)
{
    // The shared store and settings must live in a scratch home from the very start.
    static ScratchHome home;
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(u"Varnholt"_s);
    AppDelegate delegate(&app);
    TestAssistantWindow test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_assistantwindow.moc"
