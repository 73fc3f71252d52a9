#pragma once

#include <QString>
#include <QStringView>

// How formatting reaches the tokens of a statement's body. Automatic reads them from the body
// itself whenever flattening it could not change them, which is all but never; Literal always
// builds the flat text first. Both give the same layout: tests and the fuzzer compare them.
enum class SqlFlattening : quint8 { Automatic, Literal };

// Appends the layout of `statement` to `out`, trimmed; appends nothing when it lays out empty.
void appendFormattedStatement(QStringView statement, QString &out,
                              SqlFlattening flattening = SqlFlattening::Automatic);
