#pragma once

#include "applanguage.h"

#include <QDateTime>
#include <QTimeZone>

// Date texts of the records, in the locale of a language in force (never `System`).

// Abbreviated relative text such as "5 min. ago" or "3天前": the largest calendar unit
// (year, month, week, day, hour, minute, second) in which `date` and `now` differ.
[[nodiscard]] QString relativeTimeText(const QDateTime &date, const QDateTime &now, AppLanguage language);

// Medium date with short time, such as "Nov 23, 2026, 7:15 AM", in `zone`.
[[nodiscard]] QString formattedDate(const QDateTime &date, AppLanguage language,
                                    const QTimeZone &zone = QTimeZone::systemTimeZone());
