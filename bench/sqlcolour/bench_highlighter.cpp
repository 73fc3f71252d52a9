// Colouring engine figures: the whole-text passes in MB/s on real-world SQL, the rules run
// literally for comparison, and the incremental driver's cost per keystroke and per screen of lines.
#include "sqlhighlightdriver.h"
#include "sqlhighlighter.h"
#include "sqlhighlightreference.h"

#include <QAbstractTextDocumentLayout>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QTextBlock>
#include <QTextCursor>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

QByteArray readCorpus(const char *name)
{
    QFile file(QString::fromUtf8(VARNHOLT_BENCH_CORPUS "/") + QString::fromUtf8(name));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(file.fileName()));
        std::exit(2);
    }
    return file.readAll();
}

double seconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e9;
}

double bestOf(int runs, const std::function<void()> &work)
{
    double best = 1e9;
    for (int i = 0; i < runs; ++i)
        best = std::min(best, seconds(work));
    return best;
}

struct Stats
{
    double median = 0;
    double max = 0;
    qsizetype count = 0;
    double total = 0;
};

Stats stats(std::vector<double> values)
{
    Stats s;
    if (values.empty())
        return s;
    std::sort(values.begin(), values.end());
    s.median = values[values.size() / 2];
    s.max = values.back();
    s.count = qsizetype(values.size());
    for (double v : values)
        s.total += v;
    return s;
}

void passes(const char *name, const QByteArray &bytes, int runs, bool withReferences)
{
    const QString text = QString::fromUtf8(bytes);
    const double mb = double(bytes.size()) / 1e6;
    QList<SQLHighlightSpan> spans;
    const double editor = bestOf(runs, [&] { SQLHighlighter::editorSpans(text, spans); });
    const qsizetype editorSpans = spans.size();
    const double readOnly = bestOf(runs, [&] { SQLHighlighter::highlightedContent(text, spans); });
    std::printf("%-12s %6.2f MB  editor pass %7.1f MB/s (%5.1f ms, %lld spans)   read-only pass %7.1f MB/s "
                "(%5.1f ms)\n",
                name, mb, mb / editor, editor * 1e3, qlonglong(editorSpans), mb / readOnly, readOnly * 1e3);
    if (!withReferences)
        return;
    QList<SQLHighlightSpan> reference;
    using Engine = SQLHighlightReference::Engine;
    const double pcre = seconds([&] { reference = SQLHighlightReference::editorSpans(text, Engine::Pcre); });
    const bool pcreSame = reference == SQLHighlighter::editorSpans(text);
    const double icu = seconds([&] { reference = SQLHighlightReference::editorSpans(text, Engine::Icu); });
    const bool icuSame = reference == SQLHighlighter::editorSpans(text);
    const double pcreReadOnly =
        seconds([&] { reference = SQLHighlightReference::highlightedContent(text, Engine::Pcre); });
    const bool pcreReadOnlySame = reference == SQLHighlighter::highlightedContent(text);
    const double icuReadOnly =
        seconds([&] { reference = SQLHighlightReference::highlightedContent(text, Engine::Icu); });
    const bool icuReadOnlySame = reference == SQLHighlighter::highlightedContent(text);
    std::printf("%-12s reference, 91 QRegularExpressions (editor rules): %6.1f MB/s, same spans: %s\n", "",
                mb / pcre, pcreSame ? "yes" : "NO");
    std::printf("%-12s reference, ICU expressions (editor rules):        %6.1f MB/s, same spans: %s\n", "",
                mb / icu, icuSame ? "yes" : "NO");
    std::printf("%-12s reference, 4 QRegularExpressions (read-only):     %6.1f MB/s, same spans: %s\n", "",
                mb / pcreReadOnly, pcreReadOnlySame ? "yes" : "NO");
    std::printf("%-12s reference, ICU expressions (read-only):           %6.1f MB/s, same spans: %s\n", "",
                mb / icuReadOnly, icuReadOnlySame ? "yes" : "NO");
}

// A layout that lays nothing out: what is left is the colouring work alone.
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

void printStats(const char *what, const Stats &edit, const Stats &shown)
{
    std::printf("    %-30s edit with the driver's handler median %6.3f max %6.3f ms | colours of the 60 lines "
                "shown median %6.3f max %6.3f ms\n",
                what, edit.median * 1e3, edit.max * 1e3, shown.median * 1e3, shown.max * 1e3);
}

// The driver's share of an edit and of the paint after it: the document is not laid out, so what
// is measured is the colouring alone.
void driver(const char *name, const QString &text)
{
    QTextDocument document;
    document.setDocumentLayout(new NoLayout(&document));
    document.setPlainText(text);
    int longest = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        longest = std::max(longest, block.length());
    std::printf("  %s: %d lines, longest %d characters\n", name, document.blockCount(), longest);

    SQLHighlightDriver driver;
    const double attach = seconds([&] { driver.setDocument(&document); });
    // What a view does before painting: ask for the colours of the lines it shows.
    const auto showLines = [&](int first) {
        return seconds([&] {
            QTextBlock block = document.findBlockByNumber(first);
            for (int i = 0; i < 60 && block.isValid(); ++i, block = block.next())
                driver.colourBlock(block);
        });
    };
    const double firstLines = showLines(0);
    const double all = seconds([&] { driver.colourAll(); });
    std::printf("    %-30s %6.2f ms, then the first lines shown in %5.2f ms (every line: %6.1f ms)\n",
                "attach", attach * 1e3, firstLines * 1e3, all * 1e3);

    QRandomGenerator random(7);
    const auto typeAt = [&](int line, int column, const QString &typed, std::vector<double> &edit,
                            std::vector<double> &shown) {
        QTextCursor cursor(document.findBlockByNumber(line));
        cursor.setPosition(cursor.position() + std::min(column, cursor.block().length() - 1));
        for (const QChar c : typed) {
            edit.push_back(seconds([&] { cursor.insertText(QString(c)); }));
            shown.push_back(showLines(std::max(0, line - 30)));
        }
    };
    const auto randomLine = [&] {
        // Lines are picked evenly; the longest line is measured on its own below.
        for (;;) {
            const int line = random.bounded(document.blockCount());
            if (document.findBlockByNumber(line).length() < 10'000)
                return line;
        }
    };

    std::vector<double> edit, shown;
    for (int i = 0; i < 300; ++i) {
        const QTextBlock block = document.findBlockByNumber(randomLine());
        typeAt(block.blockNumber(), random.bounded(block.length()), u"x"_s, edit, shown);
    }
    printStats("keystroke", stats(edit), stats(shown));

    edit.clear(), shown.clear();
    for (int i = 0; i < 100; ++i) {
        const QTextBlock block = document.findBlockByNumber(randomLine());
        typeAt(block.blockNumber(), random.bounded(block.length()), u"--"_s, edit, shown);
    }
    printStats("\"--\" (each of the two keys)", stats(edit), stats(shown));

    edit.clear(), shown.clear();
    std::vector<double> jumps;
    for (int i = 0; i < 10; ++i) {
        // Near the top: the colours of everything below change; then a jump to the end.
        typeAt(5 + i, 0, u"'"_s, edit, shown);
        jumps.push_back(showLines(document.blockCount() - 60));
    }
    printStats("quote near the top", stats(edit), stats(shown));
    const Stats jump = stats(jumps);
    std::printf("    %-30s colours of the 60 lines shown median %6.3f max %6.3f ms\n", "then a jump to the end",
                jump.median * 1e3, jump.max * 1e3);

    edit.clear(), shown.clear();
    int longestLine = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.length() == longest)
            longestLine = block.blockNumber();
    }
    for (int i = 0; i < 5; ++i)
        typeAt(longestLine, random.bounded(longest), u"x"_s, edit, shown);
    printStats("keystroke in the longest line", stats(edit), stats(shown));
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const bool quick = app.arguments().contains(u"--quick"_s);

    const QByteArray sql1m = readCorpus("sql-1m.sql");
    const QByteArray sql10m = readCorpus("sql-10m.sql");
    std::printf("Whole-text passes (best of several runs; MB = 10^6 bytes of UTF-8 input)\n");
    passes("sql-1m.sql", sql1m, 20, true);
    passes("sql-10m.sql", sql10m, 5, !quick);

    // 5 MB: the start of sql-10m.sql, cut at a line end.
    const QString text1m = QString::fromUtf8(sql1m);
    const QString text5m = QString::fromUtf8(sql10m.left(sql10m.lastIndexOf('\n', 5'000'000) + 1));
    std::printf("\nIncremental driver, colouring the lines a view shows\n");
    driver("1 MB (sql-1m.sql)", text1m);
    driver("5 MB (start of sql-10m.sql)", text5m);
    if (!quick)
        driver("10 MB (sql-10m.sql)", QString::fromUtf8(sql10m));
    return 0;
}
