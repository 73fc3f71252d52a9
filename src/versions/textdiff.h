#pragma once

#include <QList>
#include <QString>
#include <QStringView>

// One row of a line diff as a view shows it.
struct TextDiffRow
{
    enum class Kind : quint8 {
        Context, // the same in both texts
        Removed, // only in the old text
        Added,   // only in the new text
        Fold,    // `foldedLines` unchanged lines left out
    };
    struct Range
    {
        int start = 0;
        int length = 0;
        friend bool operator==(const Range &, const Range &) = default;
    };

    Kind kind = Kind::Context;
    // 1-based line numbers; 0 where the line has none on that side (or for a fold, the first
    // folded line on each side).
    int oldNumber = 0;
    int newNumber = 0;
    QString text;
    // In a removed or added line that pairs with a line on the other side: the words that
    // changed, as ranges of `text`.
    QList<Range> changedWords;
    int foldedLines = 0;
};

// Line diffs of two texts, as the version sheet compares them: libgit2's diff (patience), line
// ends of either kind taken as the same, unchanged runs folded to a few lines of context, and
// the changed words marked inside each pair of changed lines. Safe to call from any thread.
class TextDiff
{
public:
    static constexpr int defaultContextLines = 3;
    // Lines longer than this get no word marks: the line is marked whole.
    static constexpr qsizetype maxWordDiffLength = 10'000;

    [[nodiscard]] static QList<TextDiffRow> compare(QStringView oldText, QStringView newText,
                                                    int contextLines = defaultContextLines);
};
