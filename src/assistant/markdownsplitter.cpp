#include "markdownsplitter.h"

#include <QChar>
#include <QString>

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView fence = u"```";

// The word characters of ICU regular expressions (`\w`): letters, letter numbers, decimal
// digits, marks, connector punctuation, the two joiners, and the few symbols Unicode counts
// as alphabetic. Qt's categories miss those symbols, hence the ranges.
bool isWordCharacter(char32_t c)
{
    switch (QChar::category(c)) {
    case QChar::Letter_Uppercase:
    case QChar::Letter_Lowercase:
    case QChar::Letter_Titlecase:
    case QChar::Letter_Modifier:
    case QChar::Letter_Other:
    case QChar::Number_Letter:
    case QChar::Number_DecimalDigit:
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Punctuation_Connector:
        return true;
    default:
        break;
    }
    return c == 0x200C || c == 0x200D || (c >= 0x24B6 && c <= 0x24E9) || (c >= 0x1F130 && c <= 0x1F149) ||
           (c >= 0x1F150 && c <= 0x1F169) || (c >= 0x1F170 && c <= 0x1F189);
}

// The end of the run of word characters starting at `from`. A lone surrogate ends the run.
qsizetype skipWordCharacters(QStringView text, qsizetype from)
{
    qsizetype i = from;
    while (i < text.size()) {
        const QChar c = text[i];
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            if (!isWordCharacter(QChar::surrogateToUcs4(c, text[i + 1])))
                break;
            i += 2;
        } else if (!c.isSurrogate() && isWordCharacter(c.unicode())) {
            ++i;
        } else {
            break;
        }
    }
    return i;
}

qsizetype countFences(QStringView text)
{
    qsizetype count = 0;
    for (qsizetype at = text.indexOf(fence); at >= 0; at = text.indexOf(fence, at + fence.size()))
        ++count;
    return count;
}

struct FencedBlock
{
    qsizetype start = 0;
    qsizetype end = 0;
    QStringView language;
    QStringView code;
};

// The first fenced block at or after `from`, found as the leftmost match of
// "```(\w*)\n([\s\S]*?)\n?```" would be. An opening that fails is retried one character
// further on, so "````sql" opens at its second backtick. Word characters are never backticks,
// so the retries look at every character at most twice.
bool findFencedBlock(QStringView text, qsizetype from, FencedBlock &block)
{
    for (qsizetype open = text.indexOf(fence, from); open >= 0; open = text.indexOf(fence, open + 1)) {
        const qsizetype languageEnd = skipWordCharacters(text, open + fence.size());
        if (languageEnd >= text.size() || text[languageEnd] != u'\n')
            continue;
        const qsizetype codeStart = languageEnd + 1;
        const qsizetype close = text.indexOf(fence, codeStart);
        // Every later opening lies past `codeStart`, where no fence is left to close it.
        if (close < 0)
            return false;
        const qsizetype codeEnd = close > codeStart && text[close - 1] == u'\n' ? close - 1 : close;
        block.start = open;
        block.end = close + fence.size();
        block.language = text.sliced(open + fence.size(), languageEnd - open - fence.size());
        block.code = text.sliced(codeStart, codeEnd - codeStart);
        return true;
    }
    return false;
}

} // namespace

QList<MarkdownBlock> parseBlocks(QStringView content)
{
    // The pieces between fences number one more than the fences: an odd count of fences means
    // the reply stopped (or is still streaming) inside a code block.
    QString closed;
    QStringView text = content;
    if (countFences(content) % 2 == 1) {
        closed = content % u"\n```"_s;
        text = closed;
    }

    QList<MarkdownBlock> blocks;
    qsizetype position = 0;
    FencedBlock block;
    while (findFencedBlock(text, position, block)) {
        const QStringView prose = text.sliced(position, block.start - position).trimmed();
        if (!prose.isEmpty())
            blocks.append({MarkdownBlock::Kind::Text, prose.toString(), {}});
        const QStringView code = block.code.trimmed();
        if (!code.isEmpty())
            blocks.append({MarkdownBlock::Kind::CodeBlock, code.toString(), block.language.toString()});
        position = block.end;
    }
    const QStringView rest = text.sliced(position).trimmed();
    if (!rest.isEmpty())
        blocks.append({MarkdownBlock::Kind::Text, rest.toString(), {}});
    if (blocks.isEmpty())
        blocks.append({MarkdownBlock::Kind::Text, text.toString(), {}});
    return blocks;
}
