#include "sqlformatterkeywords.h"

#include <QString>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Rule = SqlFormatterKeywords::LineRule;
using Keyword = SqlFormatterKeywords::Keyword;

// Every keyword is written in capitals; those with a rule can also open a line.
constexpr Keyword keywords[] = {
    {u"SELECT", Rule::Select},
    {u"FROM", Rule::Clause},
    {u"WHERE", Rule::Clause},
    {u"INSERT", Rule::Statement},
    {u"INTO"},
    {u"VALUES", Rule::Clause},
    {u"UPDATE", Rule::Statement},
    {u"SET", Rule::Clause},
    {u"DELETE", Rule::Statement},
    {u"CREATE", Rule::Statement},
    {u"TABLE"},
    {u"INDEX"},
    {u"DROP", Rule::Statement},
    {u"ALTER", Rule::Statement},
    {u"ADD"},
    {u"PRIMARY"},
    {u"KEY"},
    {u"FOREIGN"},
    {u"REFERENCES"},
    {u"NOT"},
    {u"NULL"},
    {u"UNIQUE"},
    {u"DEFAULT"},
    {u"AUTO_INCREMENT"},
    {u"ON", Rule::JoinOrOn},
    {u"JOIN", Rule::JoinOrOn},
    {u"LEFT", Rule::Other},
    {u"RIGHT", Rule::Other},
    {u"INNER", Rule::Other},
    {u"OUTER", Rule::Other},
    {u"CROSS", Rule::Other},
    {u"NATURAL", Rule::Other},
    {u"GROUP", Rule::Tail},
    {u"BY"},
    {u"ORDER", Rule::Tail},
    {u"ASC"},
    {u"DESC"},
    {u"HAVING", Rule::Tail},
    {u"LIMIT", Rule::Tail},
    {u"OFFSET"},
    {u"AND", Rule::Logic},
    {u"OR", Rule::Logic},
    {u"IN"},
    {u"LIKE"},
    {u"BETWEEN"},
    {u"IS"},
    {u"EXISTS"},
    {u"CASE"},
    {u"WHEN"},
    {u"THEN"},
    {u"ELSE"},
    {u"END"},
    {u"AS"},
    {u"DISTINCT"},
    {u"ALL"},
    {u"UNION", Rule::Other},
    {u"INTERSECT", Rule::Other},
    {u"EXCEPT", Rule::Other},
    {u"COUNT", Rule::None, true},
    {u"SUM", Rule::None, true},
    {u"AVG", Rule::None, true},
    {u"MIN", Rule::None, true},
    {u"MAX", Rule::None, true},
    {u"CURRENT_TIMESTAMP"},
    {u"IF"},
    // TRUNCATE and USE begin statements too, but no rule opens a line for them.
    {u"USE"},
    {u"DATABASE"},
    {u"CONSTRAINT"},
    {u"CASCADE"},
    {u"RESTRICT"},
    {u"NO"},
    {u"ACTION"},
    {u"TRIGGER"},
    {u"PROCEDURE"},
    {u"FUNCTION"},
    {u"BEGIN"},
    {u"COMMIT"},
    {u"ROLLBACK"},
    {u"TRUNCATE"},
    {u"REPLACE"},
    {u"IGNORE"},
    {u"DUPLICATE"},
};
static_assert(std::size(keywords) == 82);

constexpr qsizetype longestKeyword = 17; // CURRENT_TIMESTAMP
constexpr size_t slotCount = 256;

constexpr quint32 hashStep(quint32 hash, char16_t upper)
{
    return (hash ^ upper) * 16777619u;
}

// Open addressing over the upper-case letters: every word of the text is looked up here, so
// the table is tiny and the probe touches no allocation.
constexpr std::array<qint8, slotCount> keywordSlots = [] {
    std::array<qint8, slotCount> table{};
    table.fill(-1);
    for (size_t k = 0; k < std::size(keywords); ++k) {
        quint32 hash = 2166136261u;
        const QStringView upper = keywords[k].upper;
        for (qsizetype i = 0; i < upper.size(); ++i)
            hash = hashStep(hash, upper[i].unicode());
        size_t slot = hash % slotCount;
        while (table[slot] >= 0)
            slot = (slot + 1) % slotCount;
        table[slot] = qint8(k);
    }
    return table;
}();

} // namespace

const SqlFormatterKeywords::Keyword *SqlFormatterKeywords::findAscii(QStringView word)
{
    if (word.size() < 2 || word.size() > longestKeyword)
        return nullptr;
    char16_t upper[longestKeyword];
    quint32 hash = 2166136261u;
    for (qsizetype i = 0; i < word.size(); ++i) {
        char16_t c = word[i].unicode();
        if (c >= u'a' && c <= u'z')
            c -= 0x20;
        else if ((c < u'A' || c > u'Z') && c != u'_')
            return nullptr;
        upper[i] = c;
        hash = hashStep(hash, c);
    }
    const QStringView candidate(upper, word.size());
    for (size_t slot = hash % slotCount; keywordSlots[slot] >= 0; slot = (slot + 1) % slotCount) {
        const Keyword &keyword = keywords[size_t(keywordSlots[slot])];
        if (keyword.upper == candidate)
            return &keyword;
    }
    return nullptr;
}

const SqlFormatterKeywords::Keyword *SqlFormatterKeywords::find(QStringView word)
{
    for (QChar c : word) {
        if (c.unicode() >= 0x80) {
            // Full case mapping can turn other letters into ASCII ones ("ſ" is "S" in capitals);
            // no word much longer than the longest keyword can do that.
            if (word.size() > 4 * longestKeyword)
                return nullptr;
            return findAscii(word.toString().toUpper());
        }
    }
    return findAscii(word);
}
