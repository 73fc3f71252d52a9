#pragma once

// What the benchmarks share: the memory the process holds and held at most, and the
// real-world SQL of the corpus.

#include <QFile>
#include <QString>

#include <sys/resource.h>

// The most memory the process has held so far.
inline double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

// The memory the process holds now.
inline double residentMegabytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.value(1).toDouble() * 4096 / (1 << 20);
}

// The corpus's first `size` characters, cut at the end of a line.
inline QString corpusText(qsizetype size)
{
    QFile file(QStringLiteral(VARNHOLT_BENCH_CORPUS "/sql-10m.sql"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    QString text = QString::fromUtf8(file.read(size * 2));
    text.truncate(size);
    return text.left(text.lastIndexOf(u'\n') + 1);
}
