#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

// The SQL formatter: one statement after the other with a blank line between them, keywords in
// capitals, clauses on lines of their own, the items of a select list one per line. Not a
// parser: it cuts statements, reads each as a flat list of tokens and lays them out. Strings,
// quoted names and comments of every common dialect come out exactly as written, and so do
// the lines of their clients (see SqlDialectScan); nothing is ever refused.
//
// Punctuation and white space are read as user-perceived characters (grapheme clusters):
// a comma with a combining mark on it is part of a word. Pure functions, safe to call from any
// thread.

// The formatted text; empty for a blank text. No line end after the last statement; line ends
// are CR LF when the text's first one is.
[[nodiscard]] QString formatSQL(QStringView text);

// The pieces of the text in order: each statement with its ";" (or delimiter) and untrimmed,
// and each run of client lines ("GO", "DELIMITER //", "\connect db", COPY data, "/") as it
// stands. Blank stretches between them are dropped.
[[nodiscard]] QStringList splitStatements(QStringView text);

// The layout of one statement: its leading comment lines, then its tokens.
[[nodiscard]] QString formatStatement(QStringView statement);

// The tokens of a statement in order; white space is gone.
[[nodiscard]] QStringList tokenizeSQL(QStringView statement);
