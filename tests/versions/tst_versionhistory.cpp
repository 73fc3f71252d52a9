#include "clock.h"
#include "contentcontroller.h"
#include "datastore.h"
#include "sqleditorcontroller.h"
#include "textdiffmodel.h"
#include "versionlistmodel.h"
#include "versiontextlines.h"

#include <QAbstractItemModelTester>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

// The history panel's list over a real store, and restoring through the window's controller.
class TestVersionHistory : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QDateTime m_now = QDateTime(QDate(2026, 11, 23), QTime(9, 0), Qt::UTC);

    static QList<qint64> numbers(const VersionListModel &model)
    {
        QList<qint64> result;
        for (int row = 0; row < model.rowCount(); ++row)
            result.append(model.data(model.index(row), VersionListModel::VersionNumberRole).toLongLong());
        return result;
    }

private Q_SLOTS:
    void init()
    {
        Clock::setNowFunction([this] { return m_now; });
    }
    void cleanup() { Clock::setNowFunction({}); }

    // Newest first, only the selected document's, the latest marked; following the store.
    void listsTheSelectedDocument()
    {
        QSettings settings(m_dir.filePath(u"list.ini"_s), QSettings::IniFormat);
        DataStore store(m_dir.filePath(u"list"_s), &settings);
        const SQLDocument orders = store.createDocument(u"Orders"_s, u"SELECT 1;"_s);
        const SQLDocument other = store.createDocument(u"Other"_s, u"SELECT 2;"_s);
        store.setSelectedDocumentId(orders.id);
        VersionListModel model(&store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.rowCount(), 0);

        for (int i = 0; i < 3; ++i) {
            m_now = m_now.addSecs(60);
            store.updateDocumentContent(orders.id, u"SELECT %1;"_s.arg(i));
            store.saveVersion(orders.id, u"note %1"_s.arg(i));
        }
        store.saveVersion(other.id, u"elsewhere"_s);
        QCOMPARE(numbers(model), (QList<qint64>{3, 2, 1}));
        QCOMPARE(model.data(model.index(0), VersionListModel::NoteRole).toString(), u"note 2"_s);
        QVERIFY(model.data(model.index(0), VersionListModel::IsLatestRole).toBool());
        QVERIFY(!model.data(model.index(1), VersionListModel::IsLatestRole).toBool());
        QCOMPARE(model.versionAt(2).value(u"content"_s).toString(), u"SELECT 0;"_s);
        QCOMPARE(model.versionAt(2).value(u"characterCount"_s).toInt(), 9);
        QVERIFY(model.versionAt(3).isEmpty());

        store.setSelectedDocumentId(other.id);
        QCOMPARE(numbers(model), QList<qint64>{1});
        store.setSelectedDocumentId({});
        QCOMPARE(model.rowCount(), 0);
        model.clearAll(); // nothing selected: nothing happens
        QCOMPARE(store.versionsForDocument(other.id).size(), 1);
    }

    // Restoring version 2 of 5 puts the typing not yet kept into version 6, the restored text
    // into version 7, and reloads the editor by leaving the document and coming back.
    void restoreKeepsTheTyping()
    {
        QSettings settings(m_dir.filePath(u"restore.ini"_s), QSettings::IniFormat);
        DataStore store(m_dir.filePath(u"restore"_s), &settings);
        const SQLDocument document = store.createDocument(u"Orders"_s, QString());
        store.setSelectedDocumentId(document.id);
        for (int i = 1; i <= 5; ++i) {
            store.updateDocumentContent(document.id, u"SELECT %1;"_s.arg(i));
            store.saveVersion(document.id, QString());
        }
        store.updateDocumentContent(document.id, u"SELECT 'typed, not kept';"_s);
        VersionListModel model(&store);
        ContentController controller(&store);
        QSignalSpy selection(&store, &DataStore::selectedDocumentIdChanged);

        const QString second = model.data(model.index(3), VersionListModel::IdRole).toString();
        controller.restoreVersion(second);
        // The reload: the selection leaves at once and comes back after 50 ms.
        QCOMPARE(store.selectedDocumentId(), QUuid());
        QTRY_COMPARE_WITH_TIMEOUT(store.selectedDocumentId(), document.id, 1000);
        QCOMPARE(selection.count(), 2);
        QCOMPARE(numbers(model), (QList<qint64>{7, 6, 5, 4, 3, 2, 1}));
        QCOMPARE(store.document(document.id)->content, u"SELECT 2;"_s);
        QCOMPARE(model.versionAt(1).value(u"content"_s).toString(), u"SELECT 'typed, not kept';"_s);
        QCOMPARE(model.versionAt(1).value(u"note"_s).toString(), u"Before restoring v2"_s);
        QCOMPARE(model.versionAt(0).value(u"note"_s).toString(), u"从 v2 恢复"_s);

        // Restoring the text the document already holds keeps nothing twice.
        controller.restoreVersion(model.data(model.index(0), VersionListModel::IdRole).toString());
        QTRY_COMPARE_WITH_TIMEOUT(store.selectedDocumentId(), document.id, 1000);
        QCOMPARE(numbers(model).constFirst(), 8);
        QCOMPARE(model.versionAt(1).value(u"note"_s).toString(), u"从 v2 恢复"_s);

        // An unknown id changes nothing.
        controller.restoreVersion(QUuid::createUuid().toString());
        QCOMPARE(numbers(model).constFirst(), 8);
    }

    // After clearing, numbering starts again at 1.
    void clearStartsAgain()
    {
        QSettings settings(m_dir.filePath(u"clear.ini"_s), QSettings::IniFormat);
        DataStore store(m_dir.filePath(u"clear"_s), &settings);
        const SQLDocument document = store.createDocument(u"Orders"_s, u"SELECT 1;"_s);
        store.setSelectedDocumentId(document.id);
        store.saveVersion(document.id, QString());
        store.saveVersion(document.id, QString());
        VersionListModel model(&store);
        QSignalSpy count(&model, &VersionListModel::countChanged);
        model.clearAll();
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(count.count(), 1);
        QCOMPARE(store.document(document.id)->content, u"SELECT 1;"_s);
        store.saveVersion(document.id, QString());
        QCOMPARE(numbers(model), QList<qint64>{1});
    }

    // A long text line by line: escaped, coloured as the read-only pass colours it, keywords in
    // bold, blanks kept, CR LF dropped, long lines cut into pieces.
    void longTextLines()
    {
        VersionTextLines lines;
        lines.setPlainColor(QColor(u"#111111"_s));
        lines.setCommentColor(QColor(u"#999999"_s));
        const QString longLine(VersionTextLines::pieceLength * 2 + 10, u'x');
        lines.setText(u"select a<b & 'x'\r\n  -- it's\n"_s + longLine + u"\n/* a\nb */"_s);
        QAbstractItemModelTester tester(&lines, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(lines.rowCount(), 1 + 1 + 3 + 2);
        const QString first = lines.styledRow(0);
        QVERIFY2(first.startsWith(u"<b><font color=\""_s), qPrintable(first));
        QVERIFY(first.contains(u"a&lt;b\u00A0&amp;\u00A0"_s));
        QVERIFY(first.contains(u"'x'</font>"_s));
        QVERIFY(!first.contains(u'\r'));
        QCOMPARE(lines.styledRow(1), u"\u00A0\u00A0<font color=\"#ff999999\">--\u00A0it's</font>"_s);
        QCOMPARE(lines.styledRow(2).size(), VersionTextLines::pieceLength);
        QCOMPARE(lines.styledRow(4).size(), 10);
        // A comment over two lines is a comment on both.
        QCOMPARE(lines.styledRow(6), u"<font color=\"#ff999999\">b\u00A0*/</font>"_s);
        QVERIFY(lines.styledRow(7).isEmpty());
    }

    // The comparison for the sheet runs off the GUI thread; texts changed while it runs give
    // the rows of the newest texts.
    void comparisonModel()
    {
        TextDiffModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setProperty("removedMark", QColor(u"#ff0000"_s));
        model.setOldText(u"SELECT a FROM t;\n-- keep\n"_s);
        model.setNewText(u"SELECT b FROM t;\n-- keep\n"_s);
        model.setNewText(u"SELECT c FROM t;\n-- keep\n"_s);
        QTRY_VERIFY(!model.isComputing());
        QCOMPARE(model.rowCount(), 3);
        QCOMPARE(model.changedLines(), 2);
        QCOMPARE(model.data(model.index(0), TextDiffModel::KindRole).toInt(), 1);
        QCOMPARE(model.data(model.index(1), TextDiffModel::KindRole).toInt(), 2);
        QVERIFY(model.styledRow(1).contains(u">c</span>"_s));
        QVERIFY(model.styledRow(0).contains(u"background-color:#ffff0000;\">a</span>"_s));
        QVERIFY(model.styledRow(0).contains(u"font-weight:600;"_s));
    }
};

QTEST_MAIN(TestVersionHistory)
#include "tst_versionhistory.moc"
