#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// A reader of SQL scripts as one database's client and lexer would read them, written for the
// tests apart from the formatter: what the formatter does must not change what any of them
// reads. It gives the script as tokens in which white space no longer shows:
// - strings, quoted names, comments and dollar-quoted bodies exactly as written;
// - other words in capitals (keyword case is free), every other character on its own;
// - the client's own lines ("GO", "DELIMITER x", psql's backslash commands and COPY data,
//   SQL*Plus's "/" and "rem") as markers that hold their text;
// - a marker where the client sends a statement (";", the delimiter, "GO", "/").
// It also notes where a line comment runs to the end of the text without a line end.
class SqlDialectReader
{
public:
    enum class Dialect { Postgres, MySql, SqlServer, Oracle, Sqlite };
    static constexpr Dialect all[] = {Dialect::Postgres, Dialect::MySql, Dialect::SqlServer, Dialect::Oracle,
                                      Dialect::Sqlite};
    [[nodiscard]] static QString name(Dialect dialect);

    // The tokens of `text`, grouped into the statements the client sends.
    [[nodiscard]] static QList<QStringList> statements(Dialect dialect, const QString &text);
};
