// The prose renderer: whatever the reply, its output is the safe subset, well nested, with
// links only to http, https and mailto, and it takes time linear in the text.
#include "fuzzinput.h"
#include "inlinemarkdown.h"

#include <QList>

#include <array>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

void check(bool condition, const char *what, const QString &html)
{
    if (!condition) {
        fprintf(stderr, "invariant broken: %s\n%s\n", what, qPrintable(html));
        abort();
    }
}

// The checks are no target: their comparisons would only slow the fuzzer down.
#define NOT_FUZZED __attribute__((no_sanitize("coverage")))

NOT_FUZZED bool isEntity(QStringView html, qsizetype at)
{
    qsizetype i = at + 1;
    while (i < html.size() && i - at <= 50 && (html[i].isLetterOrNumber() || html[i] == u'#'))
        ++i;
    return i > at + 1 && i < html.size() && html[i] == u';' && html[i].unicode() < 0x80;
}

NOT_FUZZED void checkSafe(const QString &html)
{
    static const std::array<QStringView, 5> tags{u"b", u"i", u"code", u"s", u"a"};
    QList<QStringView> open;
    for (qsizetype i = 0; i < html.size(); ++i) {
        const QChar c = html[i];
        check(c != u'>' && c != u'"', "no stray > or \" in text", html);
        if (c == u'&') {
            check(isEntity(html, i), "& begins an entity", html);
            continue;
        }
        if (c != u'<')
            continue;
        const qsizetype end = html.indexOf(u'>', i);
        check(end > i, "tag closed", html);
        const QStringView tag = QStringView(html).sliced(i + 1, end - i - 1);
        i = end;
        if (tag == u"br")
            continue;
        if (tag.startsWith(u"a href=\"")) {
            const QStringView href = tag.sliced(8).chopped(1);
            check(tag.endsWith(u'"') && !href.contains(u'"') && !href.contains(u'<'), "href quoted", html);
            check(isAllowedLinkTarget(href), "href scheme", html);
            const QString lower = href.first(std::min<qsizetype>(href.size(), 7)).toString().toLower();
            check(lower.startsWith(u"http:"_s) || lower.startsWith(u"https:"_s) ||
                      lower.startsWith(u"mailto:"_s),
                  "href scheme spelled out", html);
            check(!open.contains(u"a"), "no link in link", html);
            open.append(u"a");
        } else if (tag.startsWith(u'/')) {
            check(!open.isEmpty() && open.takeLast() == tag.sliced(1), "tags nested", html);
        } else {
            check(std::find(tags.begin(), tags.end(), tag) != tags.end() && tag != u"a", "known tag", html);
            open.append(tag);
        }
    }
    check(open.isEmpty(), "all tags closed", html);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzText(data, size);
    checkSafe(markdownTextToRichText(text));
    checkSafe(inlineMarkdownToRichText(text));
    const QString longer = amplified(data, size, text);
    if (!longer.isEmpty())
        checkSafe(inlineMarkdownToRichText(longer));
    return 0;
}
