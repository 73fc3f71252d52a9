#include "clock.h"
#include "datastore.h"
#include "documentlistmodel.h"

#include <QAbstractItemModelTester>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class TestDocumentListModel : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QDateTime m_now = QDateTime(QDate(2026, 11, 23), QTime(9, 0), Qt::UTC);

    static QStringList names(const DocumentListModel &model)
    {
        QStringList result;
        for (int row = 0; row < model.rowCount(); ++row)
            result.append(model.data(model.index(row), DocumentListModel::NameRole).toString());
        return result;
    }

private Q_SLOTS:
    void init()
    {
        Clock::setNowFunction([this] { return m_now; });
    }
    void cleanup() { Clock::setNowFunction({}); }

    void followsTheStoreRowByRow()
    {
        QSettings settings(m_dir.filePath(u"a.ini"_s), QSettings::IniFormat);
        DataStore store(m_dir.filePath(u"a"_s), &settings);
        DocumentListModel model(&store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy inserts(&model, &QAbstractItemModel::rowsInserted);
        QSignalSpy removes(&model, &QAbstractItemModel::rowsRemoved);
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);

        m_now = m_now.addSecs(60);
        const SQLDocument orders = store.createDocument(u"Orders"_s, QString());
        m_now = m_now.addSecs(60);
        const SQLDocument users = store.createDocument(u"users report"_s, QString());
        QCOMPARE(names(model), (QStringList{u"users report"_s, u"Orders"_s, u"示例：用户表"_s}));
        QCOMPARE(inserts.count(), 2);
        QCOMPARE(model.totalCount(), 3);

        // Typing in a document changes its row only, and never its place.
        changes.clear();
        m_now = m_now.addSecs(60);
        store.updateDocumentContent(orders.id, u"SELECT 1;"_s);
        QCOMPARE(names(model).at(1), u"Orders"_s);
        QVERIFY(changes.count() >= 1);
        QCOMPARE(changes.constFirst().at(0).toModelIndex().row(), 1);

        // Selection shows in its role.
        store.setSelectedDocumentId(orders.id);
        QVERIFY(model.data(model.index(1), DocumentListModel::IsSelectedRole).toBool());
        QVERIFY(!model.data(model.index(0), DocumentListModel::IsSelectedRole).toBool());

        // Search by name only, in any case; the total does not follow it.
        model.setSearchText(u"REPORT"_s);
        QCOMPARE(names(model), QStringList{u"users report"_s});
        QCOMPARE(model.totalCount(), 3);
        model.setSearchText(u"select"_s);
        QCOMPARE(model.rowCount(), 0);
        model.setSearchText(QString());

        resets.clear();
        removes.clear();
        store.deleteDocument(users.id);
        QCOMPARE(removes.count(), 1);
        QCOMPARE(resets.count(), 0);
        QCOMPARE(names(model), (QStringList{u"Orders"_s, u"示例：用户表"_s}));
        QCOMPARE(model.data(model.index(0), DocumentListModel::RelativeTimeRole).toString().isEmpty(), false);
    }

    void createsAndDeletesByIdText()
    {
        QSettings settings(m_dir.filePath(u"b.ini"_s), QSettings::IniFormat);
        DataStore store(m_dir.filePath(u"b"_s), &settings);
        DocumentListModel model(&store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_now = m_now.addSecs(60);
        model.createDocument(u"  blanks  "_s);
        QCOMPARE(store.selectedDocument()->name, u"  blanks  "_s);
        const QString id = model.data(model.index(0), DocumentListModel::IdRole).toString();
        QCOMPARE(QUuid::fromString(id), store.selectedDocumentId());
        model.select(model.data(model.index(1), DocumentListModel::IdRole).toString());
        QCOMPARE(store.selectedDocument()->name, u"示例：用户表"_s);
        model.deleteDocument(id);
        QCOMPARE(model.rowCount(), 1);
    }
};

QTEST_GUILESS_MAIN(TestDocumentListModel)
#include "tst_documentlistmodel.moc"
