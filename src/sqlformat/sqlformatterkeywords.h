#pragma once

#include <QStringView>

// The formatter's keywords. A word is looked up by its upper-case form; the entry says how the
// layout treats it.
class SqlFormatterKeywords
{
public:
    // What a keyword does at bracket depth 0; None for keywords that never open a line.
    enum class LineRule : quint8 { None, Select, Statement, Clause, JoinOrOn, Logic, Tail, Other };

    struct Keyword
    {
        QStringView upper;
        LineRule rule = LineRule::None;
        // An aggregate's name: a keyword only where it is called ("count(*)"); elsewhere it
        // names a column and keeps the case it was written in.
        bool onlyAsCall = false;
    };

    // The keyword whose upper-case form equals the upper-case form of `word`, or nullptr.
    [[nodiscard]] static const Keyword *find(QStringView word);

private:
    [[nodiscard]] static const Keyword *findAscii(QStringView word);
};
