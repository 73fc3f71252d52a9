#pragma once

#include "sqldialectscan.h"

#include <QList>
#include <QString>
#include <QStringView>

// How formatting reaches the tokens of a statement's body. Automatic reads them from the body
// itself whenever flattening it could not change them, which is all but never; Literal always
// builds the flat text first. Both give the same layout: tests and the fuzzer compare them.
enum class SqlFlattening : quint8 { Automatic, Literal };

// Appends the layout of `statement` to `out`, trimmed; appends nothing when it lays out empty.
// Line ends the layout makes are `lineEnd`.
void appendFormattedStatement(QStringView statement, QString &out,
                              SqlFlattening flattening = SqlFlattening::Automatic,
                              SqlDialectScan::Options options = {}, QStringView lineEnd = u"\n");

// One piece of a script as the formatter cuts it: a statement, or a client's lines written as
// they stand; with the reading of the script it was cut under.
struct SqlPiece
{
    QStringView text;
    bool isClientLines = false;
    SqlDialectScan::Options options;
};
[[nodiscard]] QList<SqlPiece> sqlPieces(QStringView text);
