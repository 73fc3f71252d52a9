#include "inlinemarkdown.h"

#include <QTest>
#include <QTextDocument>

using namespace Qt::StringLiterals;

// A document that notes every resource its rich text asks for instead of loading it.
class RecordingDocument : public QTextDocument
{
public:
    QList<QUrl> requested;

protected:
    QVariant loadResource(int, const QUrl &name) override
    {
        requested << name;
        return {};
    }
};

class TestInlineMarkdown : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void richText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("html");
        QTest::newRow("bold and code") << u"**bold** `code`"_s << u"<b>bold</b> <code>code</code>"_s;
        QTest::newRow("italic, strikethrough") << u"*a* _b_ ~~c~~"_s << u"<i>a</i> <i>b</i> <s>c</s>"_s;
        QTest::newRow("nested emphasis") << u"***a** b*"_s << u"<i><b>a</b> b</i>"_s;
        QTest::newRow("code span is literal") << u"`**x** <b>`"_s << u"<code>**x** &lt;b&gt;</code>"_s;
        QTest::newRow("cjk") << u"中文**强调**中文 `代码`"_s << u"中文<b>强调</b>中文 <code>代码</code>"_s;
        QTest::newRow("line feeds") << u"a\nb\n\nc\n"_s << u"a<br>b<br><br>c<br>"_s;
        QTest::newRow("cr lf and cr") << u"a\r\nb\rc"_s << u"a<br>b<br>c"_s;
        QTest::newRow("bold across lines") << u"**a\nb**"_s << u"<b>a<br>b</b>"_s;
        QTest::newRow("many lines") << u"a\n"_s.repeated(300) + u"*b*"_s
                                    << u"a<br>"_s.repeated(300) + u"<i>b</i>"_s;
        QTest::newRow("no bold across a blank line") << u"**a\n \nb**"_s << u"**a<br><br>b**"_s;
        QTest::newRow("headings cut") << u"## Title\nplain\n# A\n### B"_s << u"Title<br>plain<br>A<br>B"_s;
        QTest::newRow("headings kept") << u"#### x\n # y\n###z"_s << u"#### x<br>&nbsp;# y<br>###z"_s;
        QTest::newRow("lists as written")
            << u"- item\n* b\n1. one\n2) two"_s << u"- item<br>* b<br>1. one<br>2) two"_s;
        QTest::newRow("line start emphasis") << u"*a*\n* b\n*c\n* d"_s << u"<i>a</i><br>* b<br>*c<br>* d"_s;
        QTest::newRow("quote, table, rule")
            << u"> q\n| a |\n|---|\nT\n===\n---"_s << u"&gt; q<br>| a |<br>|---|<br>T<br>===<br>---"_s;
        QTest::newRow("link definition") << u"[r]: https://x\n[r]"_s << u"[r]: https://x<br>[r]"_s;
        QTest::newRow("indentation kept")
            << u"  - a\nb  c\td"_s << u"&nbsp;&nbsp;- a<br>b &nbsp;c&nbsp;&nbsp;&nbsp;&nbsp;d"_s;
        QTest::newRow("unpaired fence")
            << u"```pl/sql\nselect 1\n```"_s << u"<code>pl/sql select 1 </code>"_s;
        QTest::newRow("https link") << u"[d](https://x.org/?a=1&b=2 \"t\")"_s
                                    << u"<a href=\"https://x.org/?a=1&amp;b=2\">d</a>"_s;
        QTest::newRow("autolinks")
            << u"<m@x.org> <HTTP://X>"_s
            << u"<a href=\"mailto:m@x.org\">m@x.org</a> <a href=\"HTTP://X\">HTTP://X</a>"_s;
        QTest::newRow("href quotes escaped")
            << u"[q](<https://x/\"a'b>)"_s << u"<a href=\"https://x/&quot;a&#39;b\">q</a>"_s;
        // md4c never closes this emphasis: its closing mark lies in the link's destination.
        QTest::newRow("emphasis left open") << u"*a [l](x*y) b"_s << u"<i>a l b</i>"_s;
        QTest::newRow("link in link")
            << u"[a <https://b>](https://c)"_s << u"<a href=\"https://c\">a https://b</a>"_s;
        QTest::newRow("javascript link")
            << u"[x](javascript:alert(1)) <JavaScript:alert(1)>"_s << u"x JavaScript:alert(1)"_s;
        QTest::newRow("scheme behind entity") << u"[x](jav&#x61;script:a)"_s << u"x"_s;
        QTest::newRow("file, relative, data")
            << u"[f](file:///etc/passwd) [r](/etc) [d](data:text/html,hi)"_s << u"f r d"_s;
        QTest::newRow("images") << u"![x](file:///dev/zero) ![logo](https://x/y.png) ![**b** c](x)"_s
                                << u"x logo b c"_s;
        QTest::newRow("image in link")
            << u"[![alt](http://i)](https://x)"_s << u"<a href=\"https://x\">alt</a>"_s;
        QTest::newRow("raw html")
            << u"<script>alert(1)</script><img src=x onerror=alert(1)>"_s
            << u"&lt;script&gt;alert(1)&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;"_s;
        QTest::newRow("entities") << u"&amp; &copy; &#60;b&#62; &#0; &#xD800; &bogus;"_s
                                  << u"&amp; &copy; &lt;b&gt; \uFFFD \uFFFD &bogus;"_s;
        QTest::newRow("nul") << u"a"_s + QChar(0) + u"b"_s << u"a\uFFFDb"_s;
    }
    void richText()
    {
        QFETCH(QString, text);
        QFETCH(QString, html);
        QCOMPARE(markdownTextToRichText(text), html);
    }

    void allowedLinkTargets_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("http") << u"http://a"_s << true;
        QTest::newRow("HTTPS") << u"HTTPS://a"_s << true;
        QTest::newRow("mailto") << u"mailto:a@b"_s << true;
        QTest::newRow("file") << u"file:///a"_s << false;
        QTest::newRow("blank before") << u" https://a"_s << false;
        QTest::newRow("folded long s") << u"httpſ://a"_s << false;
    }
    void allowedLinkTargets()
    {
        QFETCH(QString, url);
        QFETCH(bool, allowed);
        QCOMPARE(isAllowedLinkTarget(url), allowed);
    }

    // What Qt's rich text makes of the output: the text as written, blanks kept, and no
    // resource asked for.
    void readsBackInQt_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("plain");
        QTest::newRow("indentation") << u"  - a\n    - b  c"_s << u"  - a\n    - b  c"_s;
        QTest::newRow("blank line") << u"a\n\nb"_s << u"a\n\nb"_s;
        QTest::newRow("blanks around tags") << u"a  **b**  c"_s << u"a  b  c"_s;
        QTest::newRow("images")
            << u"![x](file:///dev/zero)![y](https://a/b.png)<img src=\"file:///dev/zero\">"_s
            << u"xy<img src=\"file:///dev/zero\">"_s;
        QTest::newRow("entities") << u"&lt;b&gt; &copy; &bogus;"_s << u"<b> © &bogus;"_s;
        QTest::newRow("links") << u"[a](file:///dev/zero) <https://a/b.png>"_s << u"a https://a/b.png"_s;
    }
    void readsBackInQt()
    {
        QFETCH(QString, text);
        QFETCH(QString, plain);
        RecordingDocument document;
        document.setHtml(markdownTextToRichText(text));
        // Images are fetched when laid out, not when read.
        document.size();
        QCOMPARE(document.toPlainText().replace(QChar::Nbsp, u' '), plain);
        QCOMPARE(document.requested, QList<QUrl>());
    }
};

QTEST_MAIN(TestInlineMarkdown)
#include "tst_inlinemarkdown.moc"
