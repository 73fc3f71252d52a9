#pragma once

#include "markdownblock.h"

#include <QList>
#include <QStringView>

// Splits a reply into prose and fenced code blocks, in order.
//
// A fence opens with "```", a language made of word characters only and a line feed; it closes
// at the next "```", a line feed just before it not being part of the code. While a reply is
// still streaming, an odd number of "```" means the last fence is open: it is closed at the end
// of the text so that the code shows as it arrives. Prose and code are trimmed of white space;
// empty prose and empty code are dropped. Text without any block comes back whole, untrimmed,
// as one text block, so an empty reply gives one empty text block.
//
// Runs on every streamed chunk over the whole reply so far: one pass, linear in the text.
[[nodiscard]] QList<MarkdownBlock> parseBlocks(QStringView content);
