// Colouring engine figures: the whole-text passes in MB/s on real-world SQL, the rules run
// literally for comparison, and the incremental driver's cost per keystroke and per idle slice.
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

void printStats(const char *what, const Stats &sync, const Stats &total, const Stats &slices)
{
    std::printf("    %-30s handler median %6.3f ms max %6.3f | edit+handler median %6.3f max %6.3f ms", what,
                sync.median * 1e3, sync.max * 1e3, total.median * 1e3, total.max * 1e3);
    if (slices.count > 0)
        std::printf(" | %lld slices median %5.2f max %5.2f ms, %6.1f ms in all", qlonglong(slices.count),
                    slices.median * 1e3, slices.max * 1e3, slices.total * 1e3);
    std::printf("\n");
}

void driver(const char *name, const QString &text, bool withLayout)
{
    QTextDocument document;
    if (!withLayout)
        document.setDocumentLayout(new NoLayout(&document));
    document.setPlainText(text);
    if (withLayout)
        (void)document.pageCount(); // the view has the whole text laid out
    int longest = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        longest = std::max(longest, block.length());
    std::printf("  %s, %s: %d lines, longest %d characters\n", name,
                withLayout ? "laid out by QTextDocumentLayout" : "colouring alone (no layout)",
                document.blockCount(), longest);

    QElapsedTimer handler;
    double handlerSeconds = 0;
    QObject::connect(&document, &QTextDocument::contentsChange, &document, [&] { handler.start(); });
    SQLHighlightDriver driver;
    const double attach = seconds([&] { driver.setDocument(&document); });
    QObject::connect(&document, &QTextDocument::contentsChange, &document,
                     [&] { handlerSeconds = double(handler.nsecsElapsed()) / 1e9; });

    const auto showLines = [&](int first) {
        driver.setVisibleRange(document.findBlockByNumber(first).position(),
                               document.findBlockByNumber(first + 60).position());
    };
    const auto runSlices = [&](std::vector<double> &slices) {
        while (driver.hasPendingWork())
            slices.push_back(seconds([&] { driver.runPendingSlice(); }));
    };
    std::vector<double> slices;
    showLines(0);
    runSlices(slices);
    const Stats attachSlices = stats(slices);
    std::printf("    %-30s %6.2f ms now, then %lld slices median %5.2f max %5.2f ms, %6.1f ms in all\n",
                "attach (colour everything)", attach * 1e3, qlonglong(attachSlices.count),
                attachSlices.median * 1e3, attachSlices.max * 1e3, attachSlices.total * 1e3);

    QRandomGenerator random(7);
    const auto typeAt = [&](int line, int column, const QString &typed, std::vector<double> &sync,
                            std::vector<double> &total) {
        showLines(std::max(0, line - 30));
        QTextCursor cursor(document.findBlockByNumber(line));
        cursor.setPosition(cursor.position() + std::min(column, cursor.block().length() - 1));
        for (const QChar c : typed) {
            handlerSeconds = 0;
            total.push_back(seconds([&] { cursor.insertText(QString(c)); }));
            sync.push_back(handlerSeconds);
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

    std::vector<double> sync, total;
    slices.clear();
    for (int i = 0; i < 300; ++i) {
        const QTextBlock block = document.findBlockByNumber(randomLine());
        typeAt(block.blockNumber(), random.bounded(block.length()), u"x"_s, sync, total);
        runSlices(slices);
    }
    printStats("keystroke", stats(sync), stats(total), stats(slices));

    sync.clear(), total.clear(), slices.clear();
    for (int i = 0; i < 100; ++i) {
        const QTextBlock block = document.findBlockByNumber(randomLine());
        typeAt(block.blockNumber(), random.bounded(block.length()), u"--"_s, sync, total);
        runSlices(slices);
    }
    printStats("\"--\" (each of the two keys)", stats(sync), stats(total), stats(slices));

    sync.clear(), total.clear(), slices.clear();
    std::vector<double> quoteSlices;
    for (int i = 0; i < (withLayout ? 3 : 10); ++i) {
        // Near the top: the colours of everything below change.
        typeAt(5 + i, 0, u"'"_s, sync, total);
        runSlices(quoteSlices);
    }
    printStats("quote near the top", stats(sync), stats(total), stats(quoteSlices));

    sync.clear(), total.clear(), slices.clear();
    int longestLine = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.length() == longest)
            longestLine = block.blockNumber();
    }
    for (int i = 0; i < 5; ++i)
        typeAt(longestLine, random.bounded(longest), u"x"_s, sync, total);
    runSlices(slices);
    printStats("keystroke in the longest line", stats(sync), stats(total), stats(slices));
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
    std::printf("\nIncremental driver (budget %.1f ms per keystroke and per idle slice)\n",
                double(SQLHighlightDriver::defaultBudgetNs) / 1e6);
    driver("1 MB (sql-1m.sql)", text1m, false);
    driver("5 MB (start of sql-10m.sql)", text5m, false);
    driver("1 MB (sql-1m.sql)", text1m, true);
    if (!quick)
        driver("5 MB (start of sql-10m.sql)", text5m, true);
    return 0;
}
