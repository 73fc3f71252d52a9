#include "datastore.h"
#include "preferences.h"
#include "sqleditorcontroller.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>

using namespace Qt::StringLiterals;

// The editor's way of text: up into the store as the user types, down when a document is
// loaded, and the marks and counts on the way.
class TestSQLEditorController : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<DataStore> m_store;
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<SQLEditorController> m_controller;
    QTextDocument m_document;

    void type(const QString &text, int at = -1)
    {
        QTextCursor cursor(&m_document);
        cursor.setPosition(at < 0 ? m_document.characterCount() - 1 : at);
        cursor.insertText(text);
    }
    QByteArray documentsFile() const
    {
        QFile file(m_dir.filePath(u"store/sql_documents.json"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private Q_SLOTS:
    void init()
    {
        static int run = 0;
        QDir(m_dir.path()).removeRecursively();
        m_settings = std::make_unique<QSettings>(m_dir.filePath(u"settings-%1.ini"_s.arg(++run)),
                                                 QSettings::IniFormat);
        m_store = std::make_unique<DataStore>(m_dir.filePath(u"store"_s), m_settings.get());
        m_preferences = std::make_unique<Preferences>(m_settings.get());
        m_controller = std::make_unique<SQLEditorController>(m_store.get(), m_preferences.get());
        m_controller->setTextDocument(&m_document);
    }
    void cleanup()
    {
        m_controller.reset();
        m_store.reset();
    }

    void loadingIsNotEditing()
    {
        const SQLDocument sample = *m_store->selectedDocument();
        QCOMPARE(m_document.toPlainText(), sample.content);
        QVERIFY(m_controller->hasDocument());
        QVERIFY(!m_controller->hasUnsavedChanges());
        QCOMPARE(m_controller->documentName(), sample.name);
        QCOMPARE(m_controller->characterCount(), int(sample.content.size())); // no clusters in it
        QTest::qWait(50);
        QCOMPARE(m_store->selectedDocument()->updatedAt, sample.updatedAt);
    }

    void typedTextReachesStoreThenFiles()
    {
        const QUuid id = m_store->selectedDocumentId();
        QSignalSpy content(m_controller.get(), &SQLEditorController::currentContentChanged);
        type(u"\n-- 注释 é"_s);
        QVERIFY(m_controller->hasUnsavedChanges()); // at once
        QVERIFY(content.wait(200));                 // the store within a frame
        QVERIFY(m_store->document(id)->content.endsWith(u"-- 注释 é"_s));
        QVERIFY(!documentsFile().contains("注释"));
        QTRY_VERIFY_WITH_TIMEOUT(!m_controller->hasUnsavedChanges(), 2000);
        m_store->flush();
        QVERIFY(documentsFile().contains("注释"));
    }

    // A long text is not copied into the store on every key: it goes when typing pauses, or
    // at once when asked (the editor losing focus asks).
    void longTextReachesStoreWhenTypingPauses()
    {
        const QUuid id = m_store->selectedDocumentId();
        const QString longText = u"select 1;\n"_s.repeated(SQLEditorController::largeTextCharacters / 10 + 1);
        QVERIFY(m_controller->replaceText(longText));
        QCOMPARE(m_store->document(id)->content, longText);
        type(u"-- a"_s);
        QTest::qWait(100);
        QCOMPARE(m_store->document(id)->content, longText);
        m_controller->syncNow();
        QCOMPARE(m_store->document(id)->content, longText + u"-- a"_s);
        QCOMPARE(m_controller->characterCount(), longText.size() + 4);
        type(u"b"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_store->document(id)->content, longText + u"-- ab"_s, 3000);
    }

    // The files are written 0.8 s after the last key: not at once, not seconds later.
    void autoSaveFollowsTheLastKeyByItsDelay()
    {
        type(u"\n-- a"_s);
        QTest::qWait(300);
        QElapsedTimer sinceLastKey;
        type(u"b"_s);
        sinceLastKey.start();
        QTRY_VERIFY_WITH_TIMEOUT(documentsFile().contains("-- ab"), 3000);
        const qint64 delay = sinceLastKey.elapsed();
        QVERIFY2(delay >= SQLEditorController::autoSaveDelayMs - 20, qPrintable(QString::number(delay)));
        QVERIFY2(delay < SQLEditorController::autoSaveDelayMs + 400, qPrintable(QString::number(delay)));
        QCOMPARE(SQLEditorController::autoSaveDelayMs, 800);
    }

    void switchingDocumentsKeepsTheTypedText()
    {
        const QUuid first = m_store->selectedDocumentId();
        const SQLDocument second = m_store->createDocument(u"second"_s, u"SELECT 2;"_s);
        QCOMPARE(m_document.toPlainText(), u"SELECT 2;"_s);
        type(u" -- typed"_s);
        m_store->setSelectedDocumentId(first); // before the frame's sync
        QCOMPARE(m_store->document(second.id)->content, u"SELECT 2; -- typed"_s);
        QVERIFY(m_document.toPlainText().startsWith(u"-- 创建用户表"_s));
        QVERIFY(!m_controller->hasUnsavedChanges());
        QCOMPARE(m_store->lastOpenedDocumentId(), first);

        // No selection: the pane keeps its text, and a waiting save runs at once.
        m_store->setSelectedDocumentId(QUuid());
        QVERIFY(!m_controller->hasDocument());
        QTRY_VERIFY(documentsFile().contains("typed"));
    }

    void formatIsOneUndoableEdit()
    {
        m_store->createDocument(u"q"_s, u"select a,b from t where x=1"_s);
        m_controller->formatDocument();
        const QString formatted = m_document.toPlainText();
        QVERIFY(formatted != u"select a,b from t where x=1"_s);
        QCOMPARE(m_store->selectedDocument()->content, formatted);
        QVERIFY(m_controller->hasUnsavedChanges());
        m_document.undo();
        QCOMPARE(m_document.toPlainText(), u"select a,b from t where x=1"_s);

        // A blank text is left alone.
        m_store->createDocument(u"blank"_s, u" \n\t "_s);
        QVERIFY(m_controller->isBlank());
        m_controller->formatDocument();
        QCOMPARE(m_document.toPlainText(), u" \n\t "_s);
        QCOMPARE(m_controller->characterCount(), 4);
    }

    void versionsAndRenaming()
    {
        const QUuid id = m_store->selectedDocumentId();
        QCOMPARE(m_controller->nextVersionNumber(), 1);
        type(u" -- before the version"_s);
        m_controller->saveVersion(QString());
        // Out once the documents file holds the text, though the auto-save still waits.
        QTRY_VERIFY(!m_controller->hasUnsavedChanges());
        const SQLVersion version = m_store->versionsForDocument(id).constFirst();
        QCOMPARE(version.note, u"Version update"_s);
        QVERIFY(version.content.endsWith(u"-- before the version"_s));
        m_controller->saveVersion(u"  "_s);
        QCOMPARE(m_store->versionsForDocument(id).constFirst().note, u"  "_s);
        QCOMPARE(m_controller->nextVersionNumber(), 3);

        QSignalSpy renamed(m_controller.get(), &SQLEditorController::documentNameChanged);
        m_controller->renameDocument(QString());
        QCOMPARE(renamed.count(), 0);
        m_controller->renameDocument(u"Users"_s);
        QCOMPARE(m_controller->documentName(), u"Users"_s);
        QCOMPARE(m_store->document(id)->name, u"Users"_s);
    }

    void fontSizeFollowsThePreference()
    {
        QCOMPARE(m_controller->fontSize(), 14.0);
        QSignalSpy spy(m_controller.get(), &SQLEditorController::fontSizeChanged);
        m_preferences->setEditorFontSize(18);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(m_controller->fontSize(), 18.0);
        QCOMPARE(m_settings->value(Preferences::editorFontSizeKey).toDouble(), 18.0);
    }
};

QTEST_MAIN(TestSQLEditorController)
#include "tst_sqleditorcontroller.moc"
