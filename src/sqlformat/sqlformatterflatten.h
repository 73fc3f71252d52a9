#pragma once

#include "sqldialectscan.h"

#include <QString>
#include <QStringView>

// Flattens the body of a statement to one line, step by step over whole characters: line ends
// and tabs become blanks, runs of blanks shrink to one, the ends are trimmed, blanks around
// brackets and before commas and semicolons go, and each comma gets a blank behind it.
// Words that hold strings, quoted names or block comments and line comments (as the tokenizer
// reads them) are left exactly as written, and so is the line end that ends a line comment, so
// that the code behind it stays code.
//
// The formatter needs this only when turning a line end into a blank would merge it with a
// neighbouring character; otherwise the tokens of the flat text are those of the body itself.
[[nodiscard]] QString flattenSqlBody(QStringView body, SqlDialectScan::Options options = {});
