#pragma once

#include <QRandomGenerator>
#include <QString>

#include <span>

using namespace Qt::StringLiterals;

// Random SQL-like text made of pieces that exercise the colouring rules: words of both lists in
// any case, numbers, quotes, comment marks, line ends of every kind, CJK, and (in the tricky
// set) the characters where regular expression engines disagree.
namespace randomsql {

inline const QString commonPieces[] = {
    u"SELECT"_s,
    u"select"_s,
    u"Select"_s,
    u"from"_s,
    u"WHERE"_s,
    u"in"_s,
    u"InTo"_s,
    u"int"_s,
    u"INTEGER"_s,
    u"varchar"_s,
    u"current_timestamp"_s,
    u"AUTO_INCREMENT"_s,
    u"timestamp"_s,
    u"is"_s,
    u"if"_s,
    u"selects"_s,
    u"_select"_s,
    u"select_"_s,
    u"x1"_s,
    u"t"_s,
    u"abc"_s,
    u"0"_s,
    u"42"_s,
    u"1.5"_s,
    u"3."_s,
    u".7"_s,
    u"1.2.3"_s,
    u"12ab"_s,
    u"'"_s,
    u"'"_s,
    u"'"_s,
    u"\""_s,
    u"--"_s,
    u"-"_s,
    u"/*"_s,
    u"*/"_s,
    u"*"_s,
    u"/"_s,
    u" "_s,
    u" "_s,
    u"  "_s,
    u"\t"_s,
    u"\n"_s,
    u"\n"_s,
    u"\r\n"_s,
    u"\r"_s,
    u"("_s,
    u")"_s,
    u","_s,
    u";"_s,
    u"."_s,
    u"表"_s,
    u"中文"_s,
    u"テスト"_s,
    u"１２"_s,
    u"\u2028"_s,
    u"\u2029"_s,
    u"\u0085"_s,
    u"\v"_s,
    u"\f"_s,
    u"\U0001F600"_s,
    u"\U00020000"_s,
    u"\U0001D7CE"_s,
    u"\u017Felect"_s,
    u"\u212Aey"_s,
    u"é"_s,
    u"\u00A0"_s,
};

inline const QString trickyPieces[] = {
    u"\u0301"_s,
    u"\u200D"_s,
    u"\u00AD"_s,
    u"\uFEFF"_s,
    u"cro\u00DF"_s,
    u"CRO\u1E9E"_s,
    u"\uFB02oat"_s,
    u"exi\uFB06s"_s,
    u"\u00B2"_s,
    u"\u203F"_s,
    u"\u0903"_s,
    QString(QChar(0xD800)),
    QString(QChar(0xDC00)),
    u"\u0130n"_s,
    u"\u01F0oin"_s,
    u"\U000E0020"_s,
    u"\u0661\u0662"_s,
    u"\u3099"_s,
};

inline QString text(QRandomGenerator &random, int pieces, bool tricky)
{
    QString result;
    for (int i = 0; i < pieces; ++i) {
        if (tricky && random.bounded(4) == 0)
            result += trickyPieces[random.bounded(int(std::size(trickyPieces)))];
        else
            result += commonPieces[random.bounded(int(std::size(commonPieces)))];
    }
    return result;
}

} // namespace randomsql
