#include "textdiff.h"

#include <git2.h>

#include <mutex>

using namespace Qt::StringLiterals;

namespace {

void initialiseLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] { git_libgit2_init(); });
}

// The text's lines as UTF-8, line ends of any kind made "\n", with a "\n" after the last line so
// that a missing final line end is no difference of its own.
QByteArray normalised(QStringView text)
{
    QString lines = text.toString();
    lines.replace(u"\r\n"_s, u"\n"_s);
    if (!lines.isEmpty() && !lines.endsWith(u'\n'))
        lines.append(u'\n');
    return lines.toUtf8();
}

struct Line
{
    char origin = ' ';
    int oldNumber = 0;
    int newNumber = 0;
    QString text;
};

struct Hunk
{
    int oldStart = 0;
    int oldLines = 0;
    int newStart = 0;
    int newLines = 0;
    QList<Line> lines;
};

struct Collected
{
    QList<Hunk> hunks;
};

int collectHunk(const git_diff_delta *, const git_diff_hunk *hunk, void *payload)
{
    auto *collected = static_cast<Collected *>(payload);
    collected->hunks.append(Hunk{hunk->old_start, hunk->old_lines, hunk->new_start, hunk->new_lines, {}});
    return 0;
}

int collectLine(const git_diff_delta *, const git_diff_hunk *, const git_diff_line *line, void *payload)
{
    auto *collected = static_cast<Collected *>(payload);
    if (collected->hunks.isEmpty())
        return 0;
    if (line->origin != GIT_DIFF_LINE_CONTEXT && line->origin != GIT_DIFF_LINE_ADDITION &&
        line->origin != GIT_DIFF_LINE_DELETION)
        return 0; // the "no line end at the end" markers
    QByteArray content(line->content, qsizetype(line->content_len));
    if (content.endsWith('\n'))
        content.chop(1);
    collected->hunks.last().lines.append(
        Line{line->origin, line->old_lineno, line->new_lineno, QString::fromUtf8(content)});
    return 0;
}

Collected diffLines(const QByteArray &oldBytes, const QByteArray &newBytes, int contextLines)
{
    initialiseLibrary();
    git_diff_options options = GIT_DIFF_OPTIONS_INIT;
    options.context_lines = quint32(std::max(0, contextLines));
    options.interhunk_lines = 0;
    options.flags = GIT_DIFF_PATIENCE | GIT_DIFF_FORCE_TEXT;
    Collected collected;
    git_diff_buffers(oldBytes.constData(), size_t(oldBytes.size()), nullptr, newBytes.constData(),
                     size_t(newBytes.size()), nullptr, &options, nullptr, nullptr, collectHunk, collectLine,
                     &collected);
    return collected;
}

// A line cut into words, runs of blanks and single other characters.
QList<TextDiffRow::Range> tokens(const QString &line)
{
    QList<TextDiffRow::Range> result;
    int i = 0;
    const int size = int(line.size());
    while (i < size) {
        const QChar c = line.at(i);
        int end = i + 1;
        if (c.isLetterOrNumber() || c == u'_') {
            while (end < size && (line.at(end).isLetterOrNumber() || line.at(end) == u'_'))
                ++end;
        } else if (c.isSpace()) {
            while (end < size && line.at(end).isSpace())
                ++end;
        }
        result.append({i, end - i});
        i = end;
    }
    return result;
}

// Marks the words that differ between a removed and an added line: the same diff over their
// words, one word to a line.
void markChangedWords(TextDiffRow &removed, TextDiffRow &added)
{
    if (removed.text.size() > TextDiff::maxWordDiffLength ||
        added.text.size() > TextDiff::maxWordDiffLength) {
        removed.changedWords = {{0, int(removed.text.size())}};
        added.changedWords = {{0, int(added.text.size())}};
        return;
    }
    const QList<TextDiffRow::Range> oldTokens = tokens(removed.text);
    const QList<TextDiffRow::Range> newTokens = tokens(added.text);
    const auto joined = [](const QString &text, const QList<TextDiffRow::Range> &ranges) {
        QByteArray bytes;
        for (const TextDiffRow::Range &range : ranges)
            bytes += QStringView(text).sliced(range.start, range.length).toUtf8() + '\n';
        return bytes;
    };
    const Collected words = diffLines(joined(removed.text, oldTokens), joined(added.text, newTokens), 0);
    const auto mark = [](QList<TextDiffRow::Range> &marks, const TextDiffRow::Range &range) {
        if (!marks.isEmpty() && marks.last().start + marks.last().length == range.start)
            marks.last().length += range.length;
        else
            marks.append(range);
    };
    for (const Hunk &hunk : words.hunks) {
        for (const Line &line : hunk.lines) {
            if (line.origin == GIT_DIFF_LINE_DELETION && line.oldNumber > 0)
                mark(removed.changedWords, oldTokens.at(line.oldNumber - 1));
            else if (line.origin == GIT_DIFF_LINE_ADDITION && line.newNumber > 0)
                mark(added.changedWords, newTokens.at(line.newNumber - 1));
        }
    }
    // Lines that share little are two different lines side by side: marking most of both says
    // less than the lines' own colour.
    const auto mostlyMarked = [](const TextDiffRow &row) {
        qsizetype marked = 0;
        for (const TextDiffRow::Range &range : row.changedWords)
            marked += range.length;
        return marked * 2 > row.text.size();
    };
    if (mostlyMarked(removed) && mostlyMarked(added)) {
        removed.changedWords.clear();
        added.changedWords.clear();
    }
}

TextDiffRow fold(int oldFirst, int newFirst, int count)
{
    TextDiffRow row;
    row.kind = TextDiffRow::Kind::Fold;
    row.oldNumber = oldFirst;
    row.newNumber = newFirst;
    row.foldedLines = count;
    return row;
}

} // namespace

QList<TextDiffRow> TextDiff::compare(QStringView oldText, QStringView newText, int contextLines)
{
    const QByteArray oldBytes = normalised(oldText);
    const QByteArray newBytes = normalised(newText);
    const int oldLineCount = int(oldBytes.count('\n'));
    const Collected collected = diffLines(oldBytes, newBytes, contextLines);

    QList<TextDiffRow> rows;
    int oldNext = 1; // the first old line not yet shown or folded
    int newNext = 1;
    for (const Hunk &hunk : collected.hunks) {
        // A hunk of only additions starts after its old line, not at it.
        const int oldStart = hunk.oldLines == 0 ? hunk.oldStart + 1 : hunk.oldStart;
        if (oldStart > oldNext)
            rows.append(fold(oldNext, newNext, oldStart - oldNext));
        qsizetype runStart = rows.size();
        for (const Line &line : hunk.lines) {
            TextDiffRow row;
            row.text = line.text;
            switch (line.origin) {
            case GIT_DIFF_LINE_ADDITION:
                row.kind = TextDiffRow::Kind::Added;
                row.newNumber = line.newNumber;
                break;
            case GIT_DIFF_LINE_DELETION:
                row.kind = TextDiffRow::Kind::Removed;
                row.oldNumber = line.oldNumber;
                break;
            default:
                row.kind = TextDiffRow::Kind::Context;
                row.oldNumber = line.oldNumber;
                row.newNumber = line.newNumber;
                runStart = rows.size() + 1;
                break;
            }
            rows.append(row);
            // Pair each run of removed lines with the added lines after it, line by line.
            if (row.kind == TextDiffRow::Kind::Added) {
                qsizetype removedCount = 0;
                qsizetype addedCount = 0;
                for (qsizetype k = runStart; k < rows.size(); ++k)
                    (rows.at(k).kind == TextDiffRow::Kind::Removed ? removedCount : addedCount) += 1;
                const qsizetype pair = addedCount - 1;
                if (pair < removedCount)
                    markChangedWords(rows[runStart + pair], rows.last());
            }
        }
        oldNext = oldStart + hunk.oldLines;
        newNext = hunk.newStart + hunk.newLines + (hunk.newLines == 0 ? 1 : 0);
    }
    if (oldNext <= oldLineCount)
        rows.append(fold(oldNext, newNext, oldLineCount - oldNext + 1));
    return rows;
}
