#pragma once

#include "sqlhighlightdriver.h"
#include "sqlhighlighter.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <limits>

// The blocks, of those numbered `first` to `last` (all by default), whose formats differ from
// the whole-text editor pass clipped to them.
inline QList<int> wrongColours(const QTextDocument &document, const SQLHighlightDriver &driver, int first = 0,
                               int last = std::numeric_limits<int>::max())
{
    const QList<SQLHighlightSpan> spans = SQLHighlighter::editorSpans(document.toPlainText());
    const SQLHighlightFormats formats(driver.plainColor(), driver.commentColor(), driver.fontSize());
    QList<int> wrong;
    for (QTextBlock block = document.findBlockByNumber(first); block.isValid() && block.blockNumber() <= last;
         block = block.next()) {
        const qsizetype from = block.position();
        const qsizetype to = from + block.length() - 1;
        QList<SQLHighlightSpan> clipped;
        for (const SQLHighlightSpan &span : spans) {
            const qsizetype start = std::max(span.start, from);
            if (span.end() > start && start < to)
                clipped.append({start - from, std::min(span.end(), to) - start, span.role, span.hasKeywordWeight});
        }
        if (block.layout()->formats() != formats.formatRanges(clipped, to - from))
            wrong.append(block.blockNumber());
    }
    return wrong;
}
