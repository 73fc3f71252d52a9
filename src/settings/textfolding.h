#pragma once

#include <QString>
#include <QStringView>

// `text` as searches compare it: compatibility-normalised and fully case-folded (NFKC_Casefold),
// so that composed and decomposed forms, "ß" and "SS", and full-width and ASCII letters match.
[[nodiscard]] QString foldedForSearch(QStringView text);
