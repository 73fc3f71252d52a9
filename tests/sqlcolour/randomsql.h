#pragma once

#include <QRandomGenerator>
#include <QStringList>

using namespace Qt::StringLiterals;

// Random SQL-like text made of pieces that exercise the colouring rules: words of both lists in
// any case, numbers, quotes, comment marks, line ends of every kind, CJK; and, in the tricky set,
// the characters where regular expression engines disagree (marks, format characters, letters
// folding to two, "²", "‿", lone surrogates).
namespace randomsql {

inline QString text(QRandomGenerator &random, int pieces, bool tricky)
{
    static const QStringList common =
        u"SELECT|select|Select|from|WHERE|in|InTo|int|INTEGER|varchar|current_timestamp|AUTO_INCREMENT|"
        "timestamp|is|if|selects|_select|select_|x1|t|abc|0|42|1.5|3.|.7|1.2.3|12ab|'|'|'|\"|--|-|/*|*/|*|/| "
        "| |"
        "  |\t|\n|\n|\r\n|\r|(|)|,|;|.|表|中文|テスト|１２|\u2028|\u2029|\u0085|\v|\f|\U0001F600|\U00020000|"
        "\U0001D7CE|\u017Felect|\u212Aey|é|\u00A0"_s.split(u'|');
    static const QStringList trickyOnes =
        u"\u0301|\u200D|\u00AD|\uFEFF|cro\u00DF|CRO\u1E9E|\uFB02oat|exi\uFB06s|"
        "\u00B2|\u203F|\u0903|\u0130n|\u01F0oin|\U000E0020|\u0661\u0662|\u3099"_s.split(u'|') +
        QStringList{QString(QChar(0xD800)), QString(QChar(0xDC00))};
    QString result;
    for (int i = 0; i < pieces; ++i) {
        const QStringList &from = tricky && random.bounded(4) == 0 ? trickyOnes : common;
        result += from[random.bounded(int(from.size()))];
    }
    return result;
}

} // namespace randomsql
