#include "markdownsplitter.h"

#include <QTest>

using namespace Qt::StringLiterals;

// Blocks written as "text:…" or "code[language]:…" so that a failure shows the whole split.
static QStringList describe(const QList<MarkdownBlock> &blocks)
{
    QStringList result;
    for (const MarkdownBlock &block : blocks) {
        result << (block.kind == MarkdownBlock::Kind::Text ? u"text:"_s
                                                           : u"code["_s + block.language + u"]:"_s) +
                      block.text;
    }
    return result;
}

class TestMarkdownSplitter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parseBlocks_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QStringList>("blocks");
        QTest::newRow("prose, code, prose")
            << u"a\n```\nb\n```\nc"_s << QStringList{u"text:a"_s, u"code[]:b"_s, u"text:c"_s};
        QTest::newRow("two code blocks")
            << u"Intro\n```sql\nA;\n```\nThen\n```json\n{}\n```\n"_s
            << QStringList{u"text:Intro"_s, u"code[sql]:A;"_s, u"text:Then"_s, u"code[json]:{}"_s};
        QTest::newRow("code trimmed, inner lines kept")
            << u"```\n\n  a\n\n  b  \n\n```"_s << QStringList{u"code[]:a\n\n  b"_s};
        QTest::newRow("close without line feed")
            << u"```\nab```tail"_s << QStringList{u"code[]:ab"_s, u"text:tail"_s};
        QTest::newRow("unicode language") << u"```日本語\nx\n```"_s << QStringList{u"code[日本語]:x"_s};
        QTest::newRow("combining mark in language")
            << u"```e\u0301\nx\n```"_s << QStringList{u"code[e\u0301]:x"_s};
        QTest::newRow("emoji language is no fence")
            << u"```a😀\nx\n```"_s << QStringList{u"text:```a😀\nx\n```"_s};
        QTest::newRow("lone surrogate ends language")
            << u"```a"_s + QChar(0xD800) + u"\nx\n```"_s
            << QStringList{u"text:```a"_s + QChar(0xD800) + u"\nx\n```"_s};
        QTest::newRow("pl/sql stays prose")
            << u"```pl/sql\nx\n```"_s << QStringList{u"text:```pl/sql\nx\n```"_s};
        QTest::newRow("pl/sql closer opens later")
            << u"```pl/sql\nx\n```\ny\n```"_s
            << QStringList{u"text:```pl/sql\nx"_s, u"code[]:y"_s, u"text:```"_s};
        QTest::newRow("crlf fence does not open")
            << u"```sql\r\nSELECT 1\r\n```"_s << QStringList{u"text:```sql\r\nSELECT 1\r\n```"_s};
        QTest::newRow("inline triple backticks")
            << u"see ```x``` here"_s << QStringList{u"text:see ```x``` here"_s};
        QTest::newRow("four backticks open at the second")
            << u"````sql\nA\n````"_s << QStringList{u"text:`"_s, u"code[sql]:A"_s, u"text:`"_s};
        QTest::newRow("fence inside code closes it")
            << u"```sql\nselect '```'\n```"_s << QStringList{u"code[sql]:select '"_s, u"text:'"_s};
        // What the streaming bubble sees chunk by chunk.
        QTest::newRow("open fence") << u"```sql\nSELECT 1"_s << QStringList{u"code[sql]:SELECT 1"_s};
        QTest::newRow("open fence after prose")
            << u"Try:\n```sql\nSELECT\n  a"_s << QStringList{u"text:Try:"_s, u"code[sql]:SELECT\n  a"_s};
        QTest::newRow("language still arriving") << u"text\n```sq"_s << QStringList{u"text:text"_s};
        QTest::newRow("closer half arrived")
            << u"```sql\nSELECT 1\n``"_s << QStringList{u"code[sql]:SELECT 1\n``"_s};
        QTest::newRow("second fence open")
            << u"```\na\n```\nb\n```sql\nc"_s << QStringList{u"code[]:a"_s, u"text:b"_s, u"code[sql]:c"_s};
        // No block at all: the worked text comes back untrimmed, closing fence included.
        QTest::newRow("empty") << QString() << QStringList{u"text:"_s};
        QTest::newRow("blank") << u" \n"_s << QStringList{u"text: \n"_s};
        QTest::newRow("empty code") << u"```sql\n```"_s << QStringList{u"text:```sql\n```"_s};
        QTest::newRow("open fence, nothing yet") << u"```sql\n"_s << QStringList{u"text:```sql\n\n```"_s};
        QTest::newRow("empty code between prose")
            << u"a\n```\n \n```\nb"_s << QStringList{u"text:a"_s, u"text:b"_s};
    }
    void parseBlocks()
    {
        QFETCH(QString, content);
        QFETCH(QStringList, blocks);
        QCOMPARE(describe(::parseBlocks(content)), blocks);
    }

    void isApplicable_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<bool>("applicable");
        QTest::newRow("sql") << u"```sql\nx\n```"_s << true;
        QTest::newRow("SQL") << u"```SQL\nx\n```"_s << true;
        QTest::newRow("untagged") << u"```\nx\n```"_s << true;
        QTest::newRow("json") << u"```json\nx\n```"_s << false;
        QTest::newRow("sqlite") << u"```sqlite\nx\n```"_s << false;
        QTest::newRow("long s") << u"```ſql\nx\n```"_s << false;
        QTest::newRow("prose") << u"x"_s << false;
    }
    void isApplicable()
    {
        QFETCH(QString, reply);
        QFETCH(bool, applicable);
        const QList<MarkdownBlock> blocks = ::parseBlocks(reply);
        QCOMPARE(blocks.size(), 1);
        QCOMPARE(blocks.first().isApplicable(), applicable);
    }
};

QTEST_GUILESS_MAIN(TestMarkdownSplitter)
#include "tst_markdownsplitter.moc"
