#include "aimessage.h"
#include "aiprompts.h"
#include "aiserviceerror.h"
#include "chatstreamparser.h"
#include "chatwirecodec.h"
#include "requestsigning.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using State = ChatStreamParser::State;

namespace {

const QString sse = QStringLiteral(VARNHOLT_TEST_VECTORS "/sse/");

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QJsonArray cases(const QString &path)
{
    return QJsonDocument::fromJson(readFile(path)).object().value("cases"_L1).toArray();
}

QList<QByteArray> chunksOf(const QJsonObject &testCase)
{
    QList<QByteArray> chunks;
    for (const QJsonValue &chunk : testCase.value("chunks"_L1).toArray())
        chunks.append(QByteArray::fromHex(chunk.toObject().value("hex"_L1).toString().toLatin1()));
    return chunks;
}

QStringList splitLines(const QList<QByteArray> &chunks, bool flush)
{
    LineSplitter splitter;
    QStringList lines;
    const auto collect = [&] {
        while (const std::optional<QByteArray> line = splitter.nextLine())
            lines.append(QString::fromUtf8(*line));
    };
    for (const QByteArray &chunk : chunks) {
        splitter.append(chunk);
        collect();
    }
    if (flush) {
        splitter.finish();
        collect();
    }
    return lines;
}

// Feeds `stream` in pieces of `size` bytes; gives the end state and every text handed over.
std::pair<State, QStringList> parse(const QByteArray &stream, qsizetype size, qsizetype maxLine = 1 << 20,
                                    qsizetype maxText = 8 << 20)
{
    QStringList texts;
    ChatStreamParser parser(maxLine, maxText);
    const auto collect = [&] {
        while (parser.readPiece())
            texts.append(parser.text());
    };
    for (qsizetype at = 0; at < stream.size(); at += size) {
        parser.append(QByteArrayView(stream).sliced(at, std::min(size, stream.size() - at)));
        collect();
    }
    parser.finish();
    collect();
    return {parser.state(), texts};
}

} // namespace

class TestAIWire : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Rules the exchanges with the test server do not reach.
    void chatResponseDecoding_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("decodes");
        QTest::newRow("empty object") << QByteArray("{}") << true;
        QTest::newRow("nulls are absent")
            << QByteArray(R"({"id":null,"choices":[{"message":null}],"error":null})") << true;
        QTest::newRow("text code") << QByteArray(R"({"error":{"code":"401"},"usage":{"total_tokens":2}})")
                                   << true;
        QTest::newRow("unknown keys")
            << QByteArray(R"({"x":[1,{"y":2}],"choices":[{"logprobs":null}]})") << true;
        QTest::newRow("null content")
            << QByteArray(R"({"choices":[{"message":{"role":"a","content":null}}]})") << false;
        QTest::newRow("fractional created") << QByteArray(R"({"created":1.5})") << false;
        QTest::newRow("choice not object") << QByteArray(R"({"choices":[1]})") << false;
        QTest::newRow("raw tab in string") << QByteArray("{\"id\":\"a\tb\"}") << false;
        QTest::newRow("trailing text") << QByteArray("{} x") << false;
    }
    void chatResponseDecoding()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, decodes);
        QString error;
        QCOMPARE(ChatWire::decodeChatResponse(json, &error).has_value(), decodes);
        QCOMPARE(error.isEmpty(), decodes);
    }

    void messageJsonForm()
    {
        const AIMessage message{QUuid(u"{0f8fad5b-d9cb-469f-a165-70867728950e}"_s), AIMessageRole::Assistant,
                                u"SQL"_s, QDateTime(QDate(2001, 1, 1), QTime(0, 0, 10, 500), Qt::UTC)};
        QCOMPARE(message.toJson(), (QJsonObject{{"id"_L1, u"0F8FAD5B-D9CB-469F-A165-70867728950E"_s},
                                                {"role"_L1, u"assistant"_s},
                                                {"content"_L1, u"SQL"_s},
                                                {"timestamp"_L1, 10.5}}));
        QCOMPARE(AIMessage::decodeList(AIMessage::encodeList({message, message})),
                 (QList<AIMessage>{message, message}));
        const QByteArray id = R"("id":"0f8fad5b-d9cb-469f-a165-70867728950e")";
        QVERIFY(AIMessage::decodeList("[{" + id + R"(,"role":"system","content":"","timestamp":0}])"));
        QVERIFY(!AIMessage::decodeList("[{" + id + R"(,"role":"bot","content":"","timestamp":0}])"));
        QVERIFY(!AIMessage::decodeList("[{" + id + R"(,"role":"user","content":""}])"));
        QVERIFY(!AIMessage::decodeList(R"([{"id":"x","role":"user","content":"","timestamp":0}])"));
    }

    // The English texts show in the exchanges with the test server.
    void errorDescriptionsByLanguage()
    {
        const AIServiceError api = AIServiceError::apiError({});
        QCOMPARE(api.description(AppLanguage::ZhHans) + api.description(AppLanguage::Ja),
                 u"API 错误: API エラー: "_s);
        const AIServiceError timeout = AIServiceError::networkError(AIServiceError::Cause::TimedOut);
        QCOMPARE(timeout.description(AppLanguage::ZhHans), u"网络错误: 请求超时。"_s);
        QCOMPARE(AIServiceError::invalidConfiguration().description(AppLanguage::Ja),
                 u"AI 設定が無効です。設定を確認してください"_s);
        QCOMPARE(AIServiceError::noContent().description(AppLanguage::ZhHans), u"AI 未返回内容"_s);
    }

    void hmacMatchesRfc4231()
    {
        const QJsonArray vectors =
            cases(QStringLiteral(VARNHOLT_TEST_VECTORS "/hmac/rfc4231_hmac_sha256.json"));
        QCOMPARE(vectors.size(), 7);
        for (const QJsonValue &value : vectors) {
            const QJsonObject c = value.toObject();
            const QString mac = RequestSigning::hmacSha256Hex(
                QByteArray::fromHex(c.value("key_hex"_L1).toString().toLatin1()),
                QByteArray::fromHex(c.value("data_hex"_L1).toString().toLatin1()));
            // Case 5 gives only the first 128 bits.
            QVERIFY2(mac.size() == 64 && mac.startsWith(c.value("hmac_sha256_hex"_L1).toString()),
                     qPrintable(mac));
        }
        // The signature is the HMAC of the 43 bytes of timestamp and body, joined.
        const QByteArray key = "Lanterns_1987_Hollow_Tag_%^&*";
        QCOMPARE(RequestSigning::sign(key, u"1700000000000"_s, u"{\"messages\":[],\"stream\":false}"_s),
                 RequestSigning::hmacSha256Hex(key, "1700000000000{\"messages\":[],\"stream\":false}"));
        QCOMPARE(RequestSigning::sign(key, u"1"_s, u"é"_s), RequestSigning::hmacSha256Hex(key, "1\xc3\xa9"));
    }

    void lineDecoderCases()
    {
        for (const QJsonValue &value : cases(sse + "decoder-cases/sse_line_decoder_cases.json"_L1)) {
            const QJsonObject c = value.toObject();
            QStringList expected;
            for (const QJsonValue &line : c.value("expected_lines"_L1).toArray())
                expected.append(line.toString());
            const QStringList lines = splitLines(chunksOf(c), c.value("flush_at_end"_L1).toBool());
            QVERIFY2(lines == expected, qPrintable(c.value("name"_L1).toString()));
        }
    }

    // The event cases cut data lines (U+2028 and split characters among them) into pieces: each
    // line of each event's data must come out as one "data:" line.
    void eventDecoderCases()
    {
        for (const QJsonValue &value : cases(sse + "decoder-cases/sse_event_decoder_cases.json"_L1)) {
            const QJsonObject c = value.toObject();
            QStringList expected;
            for (const QJsonValue &event : c.value("expected_events"_L1).toArray()) {
                if (const QString data = event.toObject().value("data"_L1).toString(); !data.isEmpty())
                    expected += data.split(u'\n');
            }
            QStringList data;
            for (const QString &line : splitLines(chunksOf(c), true)) {
                if (line.startsWith("data:"_L1))
                    data.append(line.mid(line.startsWith("data: "_L1) ? 6 : 5));
            }
            QVERIFY2(data == expected, qPrintable(c.value("name"_L1).toString()));
        }
    }

    void recordedStreams_data()
    {
        QTest::addColumn<QByteArray>("stream");
        QTest::addColumn<QString>("expected");
        const QJsonObject summary =
            QJsonDocument::fromJson(readFile(sse + "openai-python/expected_summary.json"_L1))
                .object()
                .value("files"_L1)
                .toObject();
        QCOMPARE(summary.size(), 12);
        for (auto it = summary.begin(); it != summary.end(); ++it) {
            const QJsonObject content = it.value().toObject().value("content_by_choice"_L1).toObject();
            // With three choices the first of each line is whichever choice it carries.
            const QString expected = content.size() > 1 ? u"(%1 characters)"_s.arg(content.size() * 53)
                                                        : content.value("0"_L1).toString();
            QTest::newRow(qPrintable(it.key())) << readFile(sse + "openai-python/"_L1 + it.key()) << expected;
        }
        for (const auto &[name, expected] :
             {std::pair{"azure-text", "Hello World"}, {"placeholder-first-chunk", "Hello"}}) {
            QByteArray stream;
            for (const QByteArray &line :
                 readFile(sse + "vercel-ai/"_L1 + QLatin1StringView(name) + ".chunks.txt"_L1).split('\n'))
                stream += "data: " + line + "\r\n\r\n";
            QTest::newRow(name) << stream << QString::fromUtf8(expected);
        }
        for (const QString &name : QDir(sse + "error-forms"_L1).entryList(QDir::Files))
            QTest::newRow(qPrintable(name)) << readFile(sse + "error-forms/"_L1 + name) << QString();
    }
    void recordedStreams()
    {
        QFETCH(QByteArray, stream);
        QFETCH(QString, expected);
        QVERIFY(!stream.isEmpty());
        for (const qsizetype size : {qsizetype(1), qsizetype(7), stream.size()}) {
            const auto [state, texts] = parse(stream, size);
            QCOMPARE(state, State::Done);
            const QString text = texts.value(texts.size() - 1);
            QCOMPARE(expected.startsWith(u'(') ? u"(%1 characters)"_s.arg(text.size()) : text, expected);
        }
    }

    void readingRules_data()
    {
        QTest::addColumn<QByteArray>("stream");
        QTest::addColumn<QStringList>("texts");
        const QByteArray a = R"(data: {"choices":[{"delta":{"content":"a"}}]})";
        QTest::newRow("[DONE] with a blank") << "data: [DONE] \n" + a << QStringList{u"a"_s};
        QTest::newRow("other lines") << "data:" + a.mid(6) +
                                            "\n: c\nevent: x\n data: [DONE]\nDATA: [DONE]\n" + a
                                     << QStringList{u"a"_s};
        QTest::newRow("bad line") << R"(data: {"choices":[{"message":{"role":"x"}}]})" + ("\n" + a)
                                  << QStringList{u"a"_s};
        QTest::newRow("not UTF-8") << QByteArray("data: {\"choices\":[{\"delta\":{\"content\":\"x\xff\"}}]}")
                                   << QStringList{u"x\uFFFD"_s};
    }
    void readingRules()
    {
        QFETCH(QByteArray, stream);
        QFETCH(QStringList, texts);
        QCOMPARE(parse(stream, 3).second, texts);
    }

    // Every prompt text, character for character, against the fixture (one file per text).
    void promptTexts()
    {
        const QString dir = QStringLiteral(VARNHOLT_TEST_DATA "/prompts/");
        int compared = 0;
        for (const AppLanguage language : {AppLanguage::En, AppLanguage::ZhHans, AppLanguage::Ja}) {
            const QString suffix = u'.' + AppLanguages::rawValue(language) + u".txt"_s;
            const auto expect = [&](const QString &text, const QString &name) {
                const QString fixture = QString::fromUtf8(readFile(dir + name + suffix));
                QVERIFY2(!fixture.isEmpty(), qPrintable(name + suffix));
                QCOMPARE(text, fixture);
                ++compared;
            };
            for (const AIAssistantMode mode : AIEnums::allModes)
                expect(AIPrompts::basePrompt(mode, language), AIEnums::rawValue(mode));
            expect(AIPrompts::markerInstruction(language), u"marker-instruction"_s);
            expect(AIPrompts::knowledgeHeader(language), u"knowledge-header"_s);
        }
        QCOMPARE(compared, 18);
    }

    void bounds()
    {
        const QByteArray line = R"(data: {"choices":[{"delta":{"content":"12345"}}]})"
                                "\n";
        for (const qsizetype size : {qsizetype(5), qsizetype(1000)}) {
            QCOMPARE(parse(line.repeated(2), size, 49, 10).first, State::Done);
            QCOMPARE(parse("x" + line, size, 49, 10).first, State::LineTooLong);
            QCOMPARE(parse(line.repeated(2).replace('\n', ' '), size, 49, 10).first, State::LineTooLong);
            QCOMPARE(parse(line.repeated(3), size, 49, 10).first, State::TextTooLarge);
        }
    }
};

QTEST_GUILESS_MAIN(TestAIWire)
#include "tst_aiwire.moc"
