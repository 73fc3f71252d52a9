// Time per character of both Markdown steps on each unit of a fuzz corpus, repeated to 64 Ki
// and to 1 Mi characters, without sanitizers. A step that is linear costs the same per
// character at both sizes; the units whose cost grows most are listed first.
//   markdown_scaling <corpus folder> [split|inline]
#include "fuzzinput.h"
#include "inlinemarkdown.h"
#include "markdownsplitter.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

struct Unit
{
    QString name;
    double small = 0;
    double large = 0;
};

double nanosecondsPerCharacter(const QString &text, bool split)
{
    double best = 1e300;
    for (int round = 0; round < 3; ++round) {
        QElapsedTimer timer;
        timer.start();
        if (split)
            (void)parseBlocks(text);
        else
            (void)inlineMarkdownToRichText(text);
        best = std::min(best, double(timer.nsecsElapsed()));
    }
    return best / double(text.size());
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        fprintf(stderr, "usage: markdown_scaling <corpus folder> [split|inline]\n");
        return 2;
    }
    const QDir corpus(QString::fromLocal8Bit(argv[1]));
    const bool split = argc > 2 && qstrcmp(argv[2], "split") == 0;
    std::vector<Unit> units;
    for (const QString &name : corpus.entryList(QDir::Files)) {
        QFile file(corpus.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        const QString text =
            fuzzText(reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size()));
        if (text.isEmpty())
            continue;
        const auto repeated = [&](qsizetype size) {
            return text.repeated(std::max<qsizetype>(1, size / text.size()));
        };
        units.push_back({name, nanosecondsPerCharacter(repeated(64 * 1024), split),
                         nanosecondsPerCharacter(repeated(1024 * 1024), split)});
    }
    std::sort(units.begin(), units.end(),
              [](const Unit &a, const Unit &b) { return a.large / a.small > b.large / b.small; });
    double worst = 0;
    for (const Unit &unit : units)
        worst = std::max(worst, unit.large);
    printf("%zu units of %s; slowest at 1 Mi characters: %.1f ns per character\n", units.size(),
           split ? "parseBlocks" : "inline Markdown", worst);
    for (size_t i = 0; i < std::min<size_t>(5, units.size()); ++i) {
        const Unit &unit = units[i];
        printf("  %s: %.1f ns at 64 Ki, %.1f ns at 1 Mi (x%.2f)\n", qPrintable(unit.name), unit.small,
               unit.large, unit.large / unit.small);
    }
    return 0;
}
