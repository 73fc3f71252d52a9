#pragma once

#include <QLatin1StringView>
#include <QtGlobal>

#include <array>

using namespace Qt::StringLiterals;

// The colouring rules as data. The editor pass and the read-only pass share the word lists,
// the colours and the weights; they differ only in what they read as strings and comments
// (see SQLHighlighter).

// What a stretch of text is coloured as.
enum class SQLHighlightRole : quint8 {
    Plain,
    Keyword,
    Type,
    String,
    Number,
    Comment,
};

// Words coloured as keywords; matched as whole words, ignoring case.
inline constexpr std::array<QLatin1StringView, 65> highlightKeywords = {
    "SELECT"_L1,    "FROM"_L1,     "WHERE"_L1,      "INSERT"_L1,
    "INTO"_L1,      "VALUES"_L1,   "UPDATE"_L1,     "SET"_L1,
    "DELETE"_L1,    "CREATE"_L1,   "TABLE"_L1,      "INDEX"_L1,
    "DROP"_L1,      "ALTER"_L1,    "ADD"_L1,        "PRIMARY"_L1,
    "KEY"_L1,       "FOREIGN"_L1,  "REFERENCES"_L1, "NOT"_L1,
    "NULL"_L1,      "UNIQUE"_L1,   "DEFAULT"_L1,    "AUTO_INCREMENT"_L1,
    "ON"_L1,        "JOIN"_L1,     "LEFT"_L1,       "RIGHT"_L1,
    "INNER"_L1,     "OUTER"_L1,    "CROSS"_L1,      "NATURAL"_L1,
    "GROUP"_L1,     "BY"_L1,       "ORDER"_L1,      "ASC"_L1,
    "DESC"_L1,      "HAVING"_L1,   "LIMIT"_L1,      "OFFSET"_L1,
    "AND"_L1,       "OR"_L1,       "IN"_L1,         "LIKE"_L1,
    "BETWEEN"_L1,   "IS"_L1,       "EXISTS"_L1,     "CASE"_L1,
    "WHEN"_L1,      "THEN"_L1,     "ELSE"_L1,       "END"_L1,
    "AS"_L1,        "DISTINCT"_L1, "ALL"_L1,        "UNION"_L1,
    "INTERSECT"_L1, "EXCEPT"_L1,   "COUNT"_L1,      "SUM"_L1,
    "AVG"_L1,       "MIN"_L1,      "MAX"_L1,        "CURRENT_TIMESTAMP"_L1,
    "IF"_L1,
};

// Words coloured as column types; matched like the keywords.
inline constexpr std::array<QLatin1StringView, 25> highlightTypes = {
    "INT"_L1,  "INTEGER"_L1,  "BIGINT"_L1,     "SMALLINT"_L1,  "TINYINT"_L1,  "VARCHAR"_L1,   "CHAR"_L1,
    "TEXT"_L1, "LONGTEXT"_L1, "MEDIUMTEXT"_L1, "DATE"_L1,      "DATETIME"_L1, "TIMESTAMP"_L1, "TIME"_L1,
    "YEAR"_L1, "DECIMAL"_L1,  "NUMERIC"_L1,    "FLOAT"_L1,     "DOUBLE"_L1,   "REAL"_L1,      "BOOLEAN"_L1,
    "BOOL"_L1, "BLOB"_L1,     "BINARY"_L1,     "VARBINARY"_L1,
};

// A colour as red, green, blue, alpha in 0..1 (sRGB).
struct SQLHighlightRgba
{
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;
};

// The fixed colours; they have no separate light or dark value. Plain text and comments take
// the theme's primary and secondary text colours instead.
inline constexpr SQLHighlightRgba highlightKeywordColour{0.2f, 0.7f, 0.9f, 1.0f};
inline constexpr SQLHighlightRgba highlightTypeColour{0.8f, 0.5f, 0.2f, 1.0f};
inline constexpr SQLHighlightRgba highlightStringColour{0.3f, 0.7f, 0.3f, 1.0f};
inline constexpr SQLHighlightRgba highlightNumberColour{0.9f, 0.6f, 0.2f, 1.0f};

// Font weights (CSS scale, as QFont::Weight): keywords are semibold; strings and comments are
// plain throughout, whatever words they hold.
inline constexpr int highlightPlainWeight = 400;
inline constexpr int highlightKeywordWeight = 600;

// The read-only sheet's fixed font size, in points.
inline constexpr double highlightReadOnlyFontSize = 13.0;
