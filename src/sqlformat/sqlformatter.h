#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

// The SQL formatter: one statement after the other with a blank line between them, keywords in
// capitals, clauses on lines of their own, the items of a select list one per line. Not a
// parser: it cuts statements, reads each as a flat list of tokens and lays them out. Quoted
// strings and comments come out exactly as written; nothing is ever refused.
//
// All four walk user-perceived characters (grapheme clusters); CR LF is one such character and
// is not a line feed. Pure functions, safe to call from any thread.

// The formatted text; empty for a blank text. No line feed after the last statement.
[[nodiscard]] QString formatSQL(QStringView text);

// The statements in order, each with its ";" and untrimmed; a trailing blank remainder is
// dropped. A ";" inside quotes or a "--" comment ends nothing.
[[nodiscard]] QStringList splitStatements(QStringView text);

// The layout of one statement: its leading comment lines, then its tokens.
[[nodiscard]] QString formatStatement(QStringView statement);

// The tokens of a statement in order; white space is gone.
[[nodiscard]] QStringList tokenizeSQL(QStringView statement);
