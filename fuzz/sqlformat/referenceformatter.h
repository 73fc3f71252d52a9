#pragma once

#include <QString>
#include <QStringList>

// A second formatter written for checking the first: the same rules (doubled quotes, comment
// line feeds and quoted text kept through flattening), done the slow and obvious way. The text
// is cut into grapheme clusters by QTextBoundaryFinder and every step of flattening is a
// separate replacement over the clusters of the previous step's result.
namespace reference {

[[nodiscard]] QString formatSQL(const QString &text);
[[nodiscard]] QStringList splitStatements(const QString &text);
[[nodiscard]] QString formatStatement(const QString &statement);
[[nodiscard]] QStringList tokenizeSQL(const QString &text);

} // namespace reference
