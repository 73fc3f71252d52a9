// The colouring engine under libFuzzer.
//
// Odd first byte, the passes: the rest as UTF-8 (and, when it has an even length, as raw UTF-16
// with lone surrogates) must colour exactly as the rules' expressions on ICU's engine; line by
// line with the carried state as the whole text; and the text repeated to 32K characters must
// colour at the usual rate (no super-linear input).
//
// Even first byte, the incremental driver: the rest up to a 0xFF byte is the starting text,
// each 4 bytes behind it one edit (or a slice, a view change, a check); after the checks and at
// the end every block must carry the whole-text colours.
#include "sqlhighlightdriver.h"
#include "sqlhighlighter.h"
#include "sqlhighlightreference.h"

#include <QAbstractTextDocumentLayout>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTextBlock>
#include <QTextCursor>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void fail(const char *what, const QString &text)
{
    std::fprintf(stderr, "%s\ntext: %s\n", what,
                 text.toUtf8().toPercentEncoding(" '\"-").left(2000).constData());
    std::abort();
}

void checkPasses(const QString &text)
{
    using Engine = SQLHighlightReference::Engine;
    const QList<SQLHighlightSpan> editor = SQLHighlighter::editorSpans(text);
    if (editor != SQLHighlightReference::editorSpans(text, Engine::Icu))
        fail("editor pass differs from the rules on ICU", text);
    if (SQLHighlighter::highlightedContent(text) !=
        SQLHighlightReference::highlightedContent(text, Engine::Icu))
        fail("read-only pass differs from the rules on ICU", text);

    // Line by line, with what the lines before and after decide.
    const qsizetype totalQuotes = SQLHighlighter::quoteCount(text);
    qsizetype quotesBefore = 0;
    QList<SQLHighlightSpan> line;
    auto span = editor.cbegin();
    for (qsizetype start = 0; start <= text.size();) {
        qsizetype end = start;
        while (end < text.size() && text[end] != u'\n' && text[end] != u'\r' && text[end] != u'\u2029')
            ++end;
        const QStringView view = QStringView(text).mid(start, end - start);
        const qsizetype quotes = SQLHighlighter::quoteCount(view);
        SQLHighlighter::editorLineSpans(view, quotesBefore % 2, quotesBefore + quotes < totalQuotes, line);
        QList<SQLHighlightSpan> expected;
        while (span != editor.cend() && span->end() <= start)
            ++span;
        for (auto it = span; it != editor.cend() && it->start < end; ++it) {
            const qsizetype from = std::max(it->start, start);
            if (from < end)
                expected.append(
                    {from - start, std::min(it->end(), end) - from, it->role, it->hasKeywordWeight});
        }
        if (line != expected)
            fail("a line coloured with its carried state differs from the whole text", text);
        quotesBefore += quotes;
        start = end + 1;
    }
}

void checkLinearTime(const QString &text)
{
    if (text.isEmpty())
        return;
    QString repeated;
    while (repeated.size() < 32'768)
        repeated += text;
    QList<SQLHighlightSpan> spans;
    QElapsedTimer timer;
    timer.start();
    SQLHighlighter::editorSpans(repeated, spans);
    SQLHighlighter::highlightedContent(repeated, spans);
    // Instrumented, the passes take well under 1 us per character; anything super-linear on
    // 32K characters takes a thousand times that.
    const double nsPerChar = double(timer.nsecsElapsed()) / double(repeated.size());
    if (nsPerChar > 5'000)
        fail("colouring is not linear in the text", text);
}

class NoLayout : public QAbstractTextDocumentLayout
{
public:
    using QAbstractTextDocumentLayout::QAbstractTextDocumentLayout;
    void draw(QPainter *, const PaintContext &) override {}
    int hitTest(const QPointF &, Qt::HitTestAccuracy) const override { return -1; }
    int pageCount() const override { return 1; }
    QSizeF documentSize() const override { return {}; }
    QRectF frameBoundingRect(QTextFrame *) const override { return {}; }
    QRectF blockBoundingRect(const QTextBlock &) const override { return {}; }
    void documentChanged(int, int, int) override {}
};

void checkDriverColours(const QTextDocument &document, SQLHighlightDriver &driver)
{
    driver.finishPendingWork();
    const QString text = document.toPlainText();
    const QList<SQLHighlightSpan> spans = SQLHighlighter::editorSpans(text);
    const SQLHighlightFormats formats(driver.plainColor(), driver.commentColor(), driver.fontSize());
    QList<SQLHighlightSpan> clipped;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const qsizetype from = block.position();
        const qsizetype to = from + block.length() - 1;
        clipped.clear();
        for (const SQLHighlightSpan &span : spans) {
            if (span.end() > from && span.start < to)
                clipped.append({std::max(span.start, from) - from,
                                std::min(span.end(), to) - std::max(span.start, from), span.role,
                                span.hasKeywordWeight});
        }
        if (block.layout()->formats() != formats.formatRanges(clipped, to - from))
            fail("the driver's colours differ from the whole-text pass", text);
    }
}

void runDriver(const uint8_t *data, size_t size)
{
    size_t split = 0;
    while (split < size && data[split] != 0xFF)
        ++split;
    const QString start = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(split));
    QTextDocument document;
    document.setDocumentLayout(new NoLayout(&document));
    document.setPlainText(start);
    SQLHighlightDriver driver;
    driver.setDocument(&document);
    const auto position = [&](uint8_t high, uint8_t low) {
        return ((high << 8) | low) % document.characterCount();
    };
    static const QString pieces[] = {u"'"_s, u"--"_s, u"-"_s,      u"\n"_s,     u"\r\n"_s, u"select"_s,
                                     u"1"_s, u"表"_s, u"\u2028"_s, u"\u0301"_s, u"''"_s,   u" "_s};
    for (size_t i = split + 1; i + 4 <= size; i += 4) {
        const uint8_t op = data[i];
        QTextCursor cursor(&document);
        cursor.setPosition(position(data[i + 1], data[i + 2]));
        switch (op % 8) {
        case 0:
        case 1:
            cursor.insertText(pieces[data[i + 3] % std::size(pieces)]);
            break;
        case 2:
            cursor.setPosition(std::min(document.characterCount() - 1, cursor.position() + data[i + 3] % 64),
                               QTextCursor::KeepAnchor);
            cursor.removeSelectedText();
            break;
        case 3:
            cursor.insertText(start.mid(data[i + 3] % (start.size() + 1), data[i + 3]));
            break;
        case 4:
            (op & 8) ? document.undo() : document.redo();
            break;
        case 5: // a slice of one block, and the next edit before the work is done
            driver.setBudgetNs(0);
            driver.runPendingSlice();
            driver.setBudgetNs(SQLHighlightDriver::defaultBudgetNs);
            break;
        case 6:
            driver.setVisibleRange(cursor.position(), cursor.position() + data[i + 3] * 4);
            break;
        default:
            checkDriverColours(document, driver);
            break;
        }
    }
    checkDriverColours(document, driver);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    if ((data[0] & 1) == 0) {
        runDriver(data + 1, size - 1);
        return 0;
    }
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    checkPasses(text);
    checkLinearTime(text);
    if ((size - 1) % 2 == 0) {
        // Raw UTF-16: lone surrogates and every code unit the UTF-8 reading cannot give.
        checkPasses(QString(reinterpret_cast<const QChar *>(data + 1), qsizetype(size - 1) / 2));
    }
    return 0;
}
