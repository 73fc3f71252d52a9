#include "sqlformatter.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

// Each file in input/ against the file of the same name in reference/, which holds what
// varnholt-fmt writes for it (tools/update-formatter-references.sh makes them).
class TestSqlFormatterGolden : public QObject
{
    Q_OBJECT

private:
    static QString read(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return u"(cannot read %1)"_s.arg(path);
        return QString::fromUtf8(file.readAll());
    }

private Q_SLOTS:
    void references_data()
    {
        QTest::addColumn<QString>("name");
        const QDir inputs(QStringLiteral(VARNHOLT_TEST_DATA "/input"));
        const QStringList names = inputs.entryList({u"*.sql"_s}, QDir::Files, QDir::Name);
        QVERIFY(!names.isEmpty());
        for (const QString &name : names)
            QTest::newRow(qPrintable(name)) << name;
    }
    void references()
    {
        QFETCH(QString, name);
        const QString formatted =
            formatSQL(read(QStringLiteral(VARNHOLT_TEST_DATA "/input/") + name));
        const QString reference = read(QStringLiteral(VARNHOLT_TEST_DATA "/reference/") + name);
        QCOMPARE(formatted.isEmpty() ? formatted : formatted + u'\n', reference);
    }
};

QTEST_GUILESS_MAIN(TestSqlFormatterGolden)
#include "tst_sqlformattergolden.moc"
