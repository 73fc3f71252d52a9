// parseBlocks against a literal reading of its rules with a regular expression, on short
// texts; on long ones, only that it finishes in linear time and keeps its own promises.
#include "fuzzinput.h"
#include "markdownsplitter.h"

#include <QRegularExpression>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

// ICU's `\w`, spelled out for PCRE2, whose own `\w` differs in marks and joiners.
const QRegularExpression &fenceExpression()
{
    static const QRegularExpression expression(
        u"```([\\p{L}\\p{Nl}\\p{Nd}\\p{M}\\p{Pc}\\x{200C}\\x{200D}\\x{24B6}-\\x{24E9}\\x{1F130}-\\x{1F149}"
        "\\x{1F150}-\\x{1F169}\\x{1F170}-\\x{1F189}]*)\\n([\\s\\S]*?)\\n?```"_s);
    return expression;
}

QList<MarkdownBlock> referenceBlocks(const QString &content)
{
    QString text = content;
    if (content.split(u"```"_s).size() % 2 == 0)
        text += u"\n```"_s;
    QList<MarkdownBlock> blocks;
    qsizetype position = 0;
    QRegularExpressionMatchIterator matches = fenceExpression().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString prose = text.sliced(position, match.capturedStart() - position).trimmed();
        if (!prose.isEmpty())
            blocks.append({MarkdownBlock::Kind::Text, prose, {}});
        const QString code = match.captured(2).trimmed();
        if (!code.isEmpty())
            blocks.append({MarkdownBlock::Kind::CodeBlock, code, match.captured(1)});
        position = match.capturedEnd();
    }
    const QString rest = text.sliced(position).trimmed();
    if (!rest.isEmpty())
        blocks.append({MarkdownBlock::Kind::Text, rest, {}});
    if (blocks.isEmpty())
        blocks.append({MarkdownBlock::Kind::Text, text, {}});
    return blocks;
}

void check(bool condition, const char *what)
{
    if (!condition) {
        fprintf(stderr, "invariant broken: %s\n", what);
        abort();
    }
}

void checkPromises(const QString &content, const QList<MarkdownBlock> &blocks)
{
    check(!blocks.isEmpty(), "at least one block");
    for (const MarkdownBlock &block : blocks) {
        if (blocks.size() > 1)
            check(!block.text.isEmpty() && block.text == block.text.trimmed(), "blocks trimmed, not empty");
        check(block.kind == MarkdownBlock::Kind::CodeBlock || block.language.isEmpty(),
              "prose has no language");
        check(!block.text.contains(u"```"_s) || block.kind == MarkdownBlock::Kind::Text,
              "code holds no fence");
    }
    check(blocks.size() <= content.size() / 4 + 2, "no more blocks than fences allow");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString content = fuzzText(data, size);
    const QList<MarkdownBlock> blocks = parseBlocks(content);
    checkPromises(content, blocks);
    // PCRE2 rejects lone surrogates, and its lazy scan is quadratic: short UTF-8 texts only.
    if (!(data[0] & 1) && content.size() <= 4096)
        check(blocks == referenceBlocks(content), "same blocks as the regular expression");
    const QString longer = amplified(data, size, content);
    if (!longer.isEmpty())
        checkPromises(longer, parseBlocks(longer));
    return 0;
}
