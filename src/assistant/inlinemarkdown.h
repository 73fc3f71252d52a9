#pragma once

#include <QString>
#include <QStringView>

// The prose of an assistant reply as rich text for a Qt text item.
//
// Only inline Markdown takes effect: bold, italic, code spans, strikethrough and links. No
// block-level construct is recognised: list markers, quote marks, table pipes, "####", "---"
// and fences that pair with nothing stay in the text as written, indentation included, and
// every line break of the input stays a line break. As in Markdown, no inline mark reaches
// across a blank line. Heading marks of the first three levels are cut from the start of
// their lines; the heading text is not styled.
//
// The output is a small subset of HTML a Qt text item shows without loading anything:
// <b> <i> <code> <s> <a href="..."> and <br>. All text is escaped, raw HTML in the input
// included. An image shows as its alt text. A link is kept only for the http, https and
// mailto schemes; any other link shows as its text.
[[nodiscard]] QString markdownTextToRichText(QStringView text);

// The text with "### ", "## " or "# " cut from the very start of each line ("\n" ends a
// line), the first that fits; an indented mark and "#### " stay.
[[nodiscard]] QString cutHeadingMarks(QStringView text);

// The inline Markdown of `markdown` as rich text, without cutting heading marks.
[[nodiscard]] QString inlineMarkdownToRichText(QStringView markdown);

// Whether a link to `url` may be shown as a link: http, https or mailto, in any case.
[[nodiscard]] bool isAllowedLinkTarget(QStringView url);
