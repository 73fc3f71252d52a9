#pragma once

#include <QStringView>

// Number of user-perceived characters (extended grapheme clusters, Unicode 15 rules) in `text`.
// Runs of ASCII are counted directly; only stretches around other characters go through ICU.
[[nodiscard]] qsizetype graphemeCount(QStringView text);
