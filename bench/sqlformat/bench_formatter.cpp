// Formatter benchmark: formatSQL throughput on the real-world SQL corpus and on adversarial
// inputs that would expose work growing faster than the text (one huge statement, megabytes of
// blanks, commas, quotes or dashes). Each case runs in a child process of its own, so that its
// peak memory is its own; peak memory is given over the process's size before the input was
// built (after a warm-up), as a multiple of the input's UTF-8 size; it includes the input
// itself, held as UTF-16 text.
//
// Usage: bench_formatter [case-name-filter]
#include "sqlformatter.h"

#include <QElapsedTimer>
#include <QFile>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype tenMegabytes = 10'000'000;

// A field of /proc/self/status, in kB.
long statusKilobytes(const char *field)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(field) + ':';
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

// Sets the high-water mark of resident memory back to what is resident now.
void resetPeakMemory()
{
    QFile clearRefs(u"/proc/self/clear_refs"_s);
    if (clearRefs.open(QIODevice::WriteOnly))
        clearRefs.write("5");
}

QString corpus(const char *name)
{
    QFile file(QStringLiteral(VARNHOLT_BENCH_CORPUS "/") + QLatin1StringView(name));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(file.fileName()));
        std::exit(2);
    }
    return QString::fromUtf8(file.readAll());
}

QString repeated(QStringView piece, qsizetype size)
{
    QString text;
    text.reserve(size + piece.size());
    while (text.size() < size)
        text.append(piece);
    return text;
}

// A single statement of 1 MB made of real SQL: the 1 MB corpus file without its semicolons.
QString corpusAsOneStatement()
{
    QString text = corpus("sql-1m.sql");
    text.remove(u';');
    return text;
}

// A single 1 MB SELECT with a long select list, joins and conditions, and no semicolon.
QString longSelect()
{
    QString text = u"select "_s;
    for (int i = 0; text.size() < 500'000; ++i)
        text += u"t.column_%1, count(x_%1), 'label, %1; -- not a comment',\n    "_s.arg(i);
    text += u"1 from t"_s;
    for (int i = 0; text.size() < 1'000'000; ++i)
        text += u"\nleft join u%1 on u%1.id = t.id and (u%1.kind = 'a''b' or u%1.kind is null)"_s.arg(i);
    return text;
}

struct Case
{
    const char *name;
    std::function<QString()> input;
};

void runCase(const Case &benchCase)
{
    // Code and Unicode tables the formatter touches once count towards the process, not the
    // input: warm up on real text first.
    (void)formatSQL(QString(corpus("sql-100k.sql") + u"select 'é', a\u0301 from t -- x\n;"_s));
    const long baseline = statusKilobytes("VmRSS");
    const QString input = benchCase.input();
    const double megabytes = double(input.toUtf8().size()) / 1e6;
    resetPeakMemory();

    QString output;
    double best = 1e30;
    QElapsedTimer total;
    total.start();
    for (int run = 0; run < 20 && (run < 3 || total.elapsed() < 1000); ++run) {
        output.clear();
        output.squeeze();
        QElapsedTimer timer;
        timer.start();
        output = formatSQL(input);
        best = std::min(best, timer.nsecsElapsed() / 1e9);
    }
    const long peak = statusKilobytes("VmHWM");
    std::printf("%-34s %8.2f MB %8.1f ms %8.1f MB/s   peak %6.1f MB = %4.1fx input   output %.2f MB\n",
                benchCase.name, megabytes, best * 1e3, megabytes / best, (peak - baseline) / 1024.0,
                (peak - baseline) / 1024.0 / (megabytes / 1.048576), double(output.toUtf8().size()) / 1e6);
}

} // namespace

int main(int argc, char **argv)
{
    const char *filter = argc > 1 ? argv[1] : "";
    const Case cases[] = {
        {"corpus sql-100k.sql", []() -> QString { return corpus("sql-100k.sql"); }},
        {"corpus sql-1m.sql", []() -> QString { return corpus("sql-1m.sql"); }},
        {"corpus sql-10m.sql", []() -> QString { return corpus("sql-10m.sql"); }},
        {"1 MB statement (corpus without ;)", corpusAsOneStatement},
        {"1 MB statement (long select)", longSelect},
        {"10 MB blanks", []() -> QString { return QString(tenMegabytes, u' '); }},
        {"10 MB line feeds", []() -> QString { return QString(tenMegabytes, u'\n'); }},
        {"10 MB commas", []() -> QString { return QString(tenMegabytes, u','); }},
        {"10 MB single quotes", []() -> QString { return QString(tenMegabytes, u'\''); }},
        {"10 MB double quotes", []() -> QString { return QString(tenMegabytes, u'"'); }},
        {"10 MB open quote, then text",
         []() -> QString { return u"'"_s + repeated(u"x; -- y\n", tenMegabytes); }},
        {"10 MB dashes", []() -> QString { return QString(tenMegabytes, u'-'); }},
        {"10 MB of \"--\\n\"", []() -> QString { return repeated(u"--\n", tenMegabytes); }},
        {"10 MB of \"a -- b\\n\", one statement",
         []() -> QString { return repeated(u"a -- b\n", tenMegabytes); }},
        {"10 MB brackets",
         []() -> QString { return repeated(u"((", tenMegabytes / 2) + repeated(u"))", tenMegabytes / 2); }},
        {"10 MB semicolons", []() -> QString { return QString(tenMegabytes, u';'); }},
        {"10 MB commas with combining marks",
         []() -> QString { return repeated(u", \u0301", tenMegabytes / 2); }},
        {"10 MB line feeds + combining marks",
         []() -> QString { return repeated(u"a\n\u0301", tenMegabytes / 2); }},
    };
    std::printf("%-34s %11s %11s %13s\n", "case", "input", "best time", "throughput");
    for (const Case &benchCase : cases) {
        if (!QByteArrayView(benchCase.name).contains(filter))
            continue;
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            runCase(benchCase);
            std::fflush(stdout);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
            std::printf("%-34s failed\n", benchCase.name);
    }
    return 0;
}
