// Time per character of both Markdown steps on each unit of a fuzz corpus, repeated to 64 Ki
// and to 1 Mi characters, without sanitizers. A step that is linear costs about the same per
// character at both sizes, but leaving the caches can cost ten times more per character, so
// the ten units whose cost grows most are timed again at 4 Mi characters: from 1 Mi to 4 Mi
// a linear step stays flat where a quadratic one costs four times as much per character.
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
    QString text;
    double small = 0;
    double large = 0;
    double huge = 0;
};

QString repeated(const QString &text, qsizetype size)
{
    return text.repeated(std::max<qsizetype>(1, size / text.size()));
}

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
        Unit unit;
        unit.name = name;
        unit.text = text;
        unit.small = nanosecondsPerCharacter(repeated(text, 64 * 1024), split);
        unit.large = nanosecondsPerCharacter(repeated(text, 1024 * 1024), split);
        units.push_back(unit);
    }
    std::sort(units.begin(), units.end(),
              [](const Unit &a, const Unit &b) { return a.large / a.small > b.large / b.small; });
    double worst = 0;
    for (const Unit &unit : units)
        worst = std::max(worst, unit.large);
    printf("%zu units of %s; slowest at 1 Mi characters: %.1f ns per character\n", units.size(),
           split ? "parseBlocks" : "inline Markdown", worst);
    double worstGrowth = 0;
    for (size_t i = 0; i < std::min<size_t>(10, units.size()); ++i) {
        Unit &unit = units[i];
        unit.huge = nanosecondsPerCharacter(repeated(unit.text, 4 * 1024 * 1024), split);
        worstGrowth = std::max(worstGrowth, unit.huge / unit.large);
        printf("  %s: %.1f ns at 64 Ki, %.1f at 1 Mi, %.1f at 4 Mi\n", qPrintable(unit.name), unit.small,
               unit.large, unit.huge);
    }
    printf("largest growth per character from 1 Mi to 4 Mi: x%.2f\n", worstGrowth);
    return 0;
}
