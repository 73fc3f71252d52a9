#include "jsonreader.h"
#include "jsonwriter.h"
#include "storecodec.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray readVector(const QString &relative)
{
    QFile file(QStringLiteral(VARNHOLT_TEST_VECTORS "/") + relative);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing test vector %s", qPrintable(file.fileName()));
    return file.readAll();
}

QDateTime utc(int y, int mo, int d, int h, int mi, int s, int ms = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s, ms), Qt::UTC);
}

const QByteArray oneDocument = R"([
  {
    "id" : "3F2A9C14-7B1E-4D60-9A55-0C1E6B7D2F31",
    "name" : "Orders report",
    "content" : "SELECT * FROM orders;\n-- see docs\/orders",
    "createdAt" : "2026-03-01T08:15:30Z",
    "updatedAt" : "2026-03-02T17:40:05Z",
    "tags" : [

    ],
    "isFavorite" : false
  }
])";

} // namespace

class TestStoreCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheExactFileForm()
    {
        SQLDocument document;
        document.id = QUuid::fromString(u"3f2a9c14-7b1e-4d60-9a55-0c1e6b7d2f31"_s);
        document.name = u"Orders report"_s;
        document.content = u"SELECT * FROM orders;\n-- see docs/orders"_s;
        document.createdAt = utc(2026, 3, 1, 8, 15, 30, 700); // the fraction is not written
        document.updatedAt = utc(2026, 3, 2, 17, 40, 5);
        QCOMPARE(StoreCodec::encodeDocuments({document}), oneDocument);
        QCOMPARE(StoreCodec::encodeDocuments({}), QByteArray("[\n\n]"));
        QCOMPARE(readVector(u"json-format/corelibs_prettyPrinted_empty_array.json"_s), QByteArray("[\n\n]"));

        document.tags = {u"a/b"_s, u"报表"_s};
        const QByteArray withTags = StoreCodec::encodeDocuments({document});
        QVERIFY(withTags.contains("\"tags\" : [\n      \"a\\/b\",\n      \"报表\"\n    ],"));
    }

    // The writer's nesting and empty containers, against the original encoder's own output.
    void nestedContainersMatchTheOriginalEncoder()
    {
        JsonWriter writer;
        writer.beginArray();
        for (int copy = 0; copy < 2; ++copy) {
            writer.beginObject();
            const auto numbers = [&writer](std::initializer_list<int> values) {
                writer.beginArray();
                for (int v : values)
                    writer.integer(v);
                writer.endArray();
            };
            writer.key("array"_L1);
            numbers({1, 2, 3});
            writer.key("dictionary"_L1);
            writer.beginObject();
            writer.endObject();
            writer.key("emptyAray"_L1);
            numbers({});
            writer.key("secondArray"_L1);
            numbers({4, 5, 6});
            writer.key("secondDictionary"_L1);
            writer.beginObject();
            writer.key("one"_L1);
            writer.integer(1);
            writer.key("three"_L1);
            writer.integer(3);
            writer.key("two"_L1);
            writer.integer(2);
            writer.endObject();
            writer.key("singleElement"_L1);
            numbers({1});
            writer.key("subArray"_L1);
            writer.beginObject();
            writer.key("array"_L1);
            numbers({});
            writer.endObject();
            writer.key("subDictionary"_L1);
            writer.beginObject();
            writer.key("dictionary"_L1);
            writer.beginObject();
            writer.endObject();
            writer.endObject();
            writer.endObject();
        }
        writer.endArray();
        QCOMPARE(
            writer.take(),
            readVector(u"json-format/corelibs_prettyPrinted_sortedKeys_nested_with_empty_containers.json"_s));
    }

    void escapesLikeTheOriginalEncoder()
    {
        const QJsonArray cases =
            QJsonDocument::fromJson(readVector(u"json-format/derived_string_escaping_table.json"_s))
                .object()
                .value(u"cases"_s)
                .toArray();
        QVERIFY(cases.size() > 5);
        for (const QJsonValue &value : cases) {
            const QJsonObject row = value.toObject();
            const QString input =
                QString::fromUtf8(QByteArray::fromHex(row.value(u"input_utf8_hex"_s).toString().toLatin1()));
            JsonWriter writer;
            writer.string(input);
            QCOMPARE(writer.take().toHex(), row.value(u"expected_utf8_hex"_s).toString().toLatin1());
        }
        JsonWriter writer;
        writer.date(QDateTime::fromSecsSinceEpoch(1000, Qt::UTC));
        QCOMPARE(u"[%1]"_s.arg(QString::fromUtf8(writer.take())).toUtf8(),
                 readVector(u"json-format/corelibs_iso8601_date_1000s.json"_s));
    }

    void roundTripsEveryRecord()
    {
        SQLDocument document;
        document.id = QUuid::createUuid();
        document.name = u"报表 / レポート \"q\"\t\\"_s;
        document.content = u"SELECT '/*' -- 注释\r\n\u2028\u0001 😀"_s;
        document.createdAt = utc(2026, 1, 2, 3, 4, 5, 999);
        document.updatedAt = utc(2026, 1, 2, 3, 4, 6);
        document.tags = {u"x"_s};
        document.isFavorite = true;
        const auto documents = StoreCodec::decodeDocuments(StoreCodec::encodeDocuments({document}));
        QVERIFY(documents);
        SQLDocument expected = document;
        expected.createdAt = utc(2026, 1, 2, 3, 4, 5); // whole seconds in the file
        QCOMPARE(documents->size(), 1);
        QVERIFY(documents->constFirst() == expected);

        const QUuid a = QUuid::createUuid(), b = QUuid::createUuid(), c = QUuid::createUuid();
        QList<SQLVersion> flat;
        for (const QUuid &owner : {a, b, a, c, b, a}) {
            SQLVersion version{
                QUuid::createUuid(),      owner,          u"SELECT %1;"_s.arg(flat.size()), u"note"_s,
                utc(2026, 3, 1, 9, 0, 0), flat.size() + 1};
            flat.append(version);
        }
        const auto grouped = StoreCodec::groupVersions(flat);
        QCOMPARE(grouped.size(), 3);
        QCOMPARE(grouped.value(a).size(), 3);
        QCOMPARE(grouped.value(a).at(1).versionNumber, 3); // file order kept within a group
        const auto decoded = StoreCodec::decodeVersions(StoreCodec::encodeVersions(grouped));
        QVERIFY(decoded);
        QCOMPARE(StoreCodec::groupVersions(*decoded), grouped);

        KnowledgeItem item{QUuid::createUuid(),        KnowledgeCategory::TableType,
                           u"Hive表 分区"_s,           KnowledgeSource::AiDetected,
                           utc(2026, 3, 2, 10, 5, 44), utc(2026, 3, 2, 10, 5, 45)};
        const QByteArray knowledge = StoreCodec::encodeKnowledge({item});
        QVERIFY(knowledge.contains("\"category\" : \"tableType\""));
        QVERIFY(knowledge.contains("\"source\" : \"aiDetected\""));
        const auto items = StoreCodec::decodeKnowledge(knowledge);
        QVERIFY(items && items->size() == 1 && items->constFirst() == item);
    }

    // Large files are decoded in pieces on several threads; the result must not differ, and
    // a fault must still fail the whole file.
    void largeFilesDecodeInPieces()
    {
        QMap<QUuid, QList<SQLVersion>> versions;
        const QString content = u"SELECT * FROM t WHERE a = '\n  },\n  {\n' -- 注释\n"_s.repeated(40);
        for (int d = 0; d < 400; ++d) {
            const QUuid owner = QUuid::createUuid();
            for (int v = 1; v <= 25; ++v)
                versions[owner].append(SQLVersion{QUuid::createUuid(), owner, content + QString::number(v),
                                                  u"n"_s, utc(2026, 3, 1, 9, 0, v), v});
        }
        const QByteArray json = StoreCodec::encodeVersions(versions);
        QVERIFY(json.size() > 16 << 20); // large enough to be cut
        const auto decoded = StoreCodec::decodeVersions(json);
        QVERIFY(decoded);
        QCOMPARE(StoreCodec::groupVersions(*decoded), versions);

        // A raw line feed inside a string, shaped like a record separator, near each cut.
        for (const double at : {0.25, 0.5, 0.75}) {
            QByteArray broken = json;
            const qsizetype string = broken.indexOf("\"content\" : \"", qsizetype(broken.size() * at));
            broken.insert(string + 14, "\n  },\n  {\n");
            QVERIFY(!StoreCodec::decodeVersions(broken));
        }
        QByteArray truncated = json;
        truncated.chop(1);
        QVERIFY(!StoreCodec::decodeVersions(truncated));
    }

    void readsWhatOthersMayWrite()
    {
        // Lower-case ids, unknown keys, keys in another order, compact form.
        const QByteArray json =
            R"([{"pinned":true,"isFavorite":false,"tags":["t"],"updatedAt":"2026-03-02T17:40:05Z",
            "createdAt":"2026-03-01T08:15:30Z","content":"a\u00e9\ud83d\ude00","name":"n",
            "id":"3f2a9c14-7b1e-4d60-9a55-0c1e6b7d2f31","extra":{"deep":[1,2.5e3,null]}}])";
        const auto documents = StoreCodec::decodeDocuments(json);
        QVERIFY(documents);
        QCOMPARE(documents->constFirst().content, u"aé😀"_s);
        QVERIFY(StoreCodec::encodeDocuments(*documents).contains("3F2A9C14-7B1E-4D60-9A55-0C1E6B7D2F31"));
        QVERIFY(!StoreCodec::encodeDocuments(*documents).contains("pinned"));
    }

    void rejectsWholeFile_data()
    {
        QTest::addColumn<QByteArray>("json");
        const auto replace = [](const char *from, const char *to) {
            QByteArray json = oneDocument;
            json.replace(from, to);
            return json;
        };
        QTest::newRow("missing isFavorite") << replace(",\n    \"isFavorite\" : false", "");
        QTest::newRow("missing tags") << replace("\"tags\" : [\n\n    ],", "");
        QTest::newRow("fractional second") << replace("08:15:30Z", "08:15:30.5Z");
        QTest::newRow("offset instead of Z") << replace("08:15:30Z", "08:15:30+01:00");
        QTest::newRow("impossible date") << replace("2026-03-01", "2026-02-30");
        QTest::newRow("braced uuid") << replace("\"3F2A9C14-7B1E-4D60-9A55-0C1E6B7D2F31\"",
                                                "\"{3F2A9C14-7B1E-4D60-9A55-0C1E6B7D2F31}\"");
        QTest::newRow("uuid without dashes")
            << replace("3F2A9C14-7B1E-4D60-9A55-0C1E6B7D2F31", "3F2A9C147B1E4D609A550C1E6B7D2F31");
        QTest::newRow("null name") << replace("\"Orders report\"", "null");
        QTest::newRow("number for a string") << replace("\"Orders report\"", "12");
        QTest::newRow("string for a bool") << replace("false", "\"false\"");
        QTest::newRow("raw tab in string") << replace("Orders report", "Orders\treport");
        QTest::newRow("bad escape") << replace("docs\\/orders", "docs\\xorders");
        QTest::newRow("lone surrogate") << replace("Orders report", "\\ud800x");
        QTest::newRow("trailing comma") << replace("false\n  }", "false,\n  }");
        QTest::newRow("cut off") << oneDocument.left(oneDocument.size() / 2);
        QTest::newRow("object at top") << QByteArray("{}");
        QTest::newRow("invalid utf-8") << replace("Orders", "Ord\xff\xfers");
        QTest::newRow("text after array") << oneDocument + " []";
        QTest::newRow("empty file") << QByteArray();
    }
    void rejectsWholeFile()
    {
        QFETCH(QByteArray, json);
        QString error;
        QVERIFY(!StoreCodec::decodeDocuments(json, &error));
        QVERIFY(!error.isEmpty());
    }

    void rejectsBadVersionsAndKnowledge()
    {
        const QByteArray version = R"([{"id":"A1D0E6C2-58F3-4B7A-8E21-6F3C9D14B7E0",
            "documentId":"3F2A9C14-7B1E-4D60-9A55-0C1E6B7D2F31","content":"SELECT 1;","note":"n",
            "createdAt":"2026-03-01T09:00:00Z","versionNumber":1}])";
        QVERIFY(StoreCodec::decodeVersions(version));
        QVERIFY(!StoreCodec::decodeVersions(QByteArray(version).replace(":1}", ":1.5}")));
        QVERIFY(!StoreCodec::decodeVersions(QByteArray(version).replace(":1}", ":\"1\"}")));
        QVERIFY(!StoreCodec::decodeVersions(QByteArray(version).replace(":1}", ":99999999999999999999}")));

        const QByteArray item = R"([{"id":"5E8B13D7-2C49-4A06-91F2-B7D40C6E3A18","category":"databaseVersion",
            "content":"MySQL 5.7","source":"aiDetected","createdAt":"2026-03-02T10:05:44Z",
            "updatedAt":"2026-03-02T10:05:44Z"}])";
        QVERIFY(StoreCodec::decodeKnowledge(item));
        QVERIFY(!StoreCodec::decodeKnowledge(QByteArray(item).replace("databaseVersion", "foo")));
        QVERIFY(!StoreCodec::decodeKnowledge(QByteArray(item).replace("aiDetected", "robot")));
    }

    // The JSON checker suite: every "pass" file must be accepted, every "fail" file rejected,
    // where Qt's own parser is too lenient with several.
    void jsonCheckerSuite()
    {
        const QDir corpus(QStringLiteral(VARNHOLT_TEST_VECTORS "/json-format/swift-foundation-JSON-corpus"));
        int checked = 0;
        for (const QString &kind : {u"pass"_s, u"fail"_s}) {
            const QDir dir(corpus.filePath(kind));
            for (const QString &name : dir.entryList(QDir::Files)) {
                QFile file(dir.filePath(name));
                QVERIFY(file.open(QIODevice::ReadOnly));
                QString error;
                const bool accepted = JsonReader::validate(file.readAll(), &error);
                QVERIFY2(accepted == (kind == u"pass"), qPrintable(kind + u'/' + name + u": "_s + error));
                ++checked;
            }
        }
        QVERIFY(checked > 50);
    }
};

QTEST_GUILESS_MAIN(TestStoreCodec)
#include "tst_storecodec.moc"
