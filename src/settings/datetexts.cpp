#include "datetexts.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/reldatefmt.h>
#include <unicode/timezone.h>

#include <QHash>

#include <cstdlib>
#include <memory>

namespace {

icu::Locale icuLocale(AppLanguage language)
{
    UErrorCode status = U_ZERO_ERROR;
    const QByteArray tag = AppLanguages::localeIdentifier(language).toLatin1();
    icu::Locale locale = icu::Locale::forLanguageTag(tag.isEmpty() ? "en" : tag.constData(), status);
    return U_SUCCESS(status) ? locale : icu::Locale::getEnglish();
}

QString toQString(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

UDate toUDate(const QDateTime &date)
{
    return static_cast<UDate>(date.toMSecsSinceEpoch());
}

// ICU formatters are costly to make; the views ask for many date texts at once.
struct Formatters
{
    std::unique_ptr<icu::RelativeDateTimeFormatter> relative;
    std::unique_ptr<icu::Calendar> calendar;
    QHash<QByteArray, std::shared_ptr<icu::DateFormat>> absolute;
};

Formatters &formattersFor(AppLanguage language)
{
    thread_local Formatters cache[4];
    return cache[static_cast<int>(language)];
}

} // namespace

QString relativeTimeText(const QDateTime &date, const QDateTime &now, AppLanguage language)
{
    Formatters &formatters = formattersFor(language);
    UErrorCode status = U_ZERO_ERROR;
    if (!formatters.relative) {
        formatters.relative = std::make_unique<icu::RelativeDateTimeFormatter>(
            icuLocale(language), nullptr, UDAT_STYLE_SHORT, UDISPCTX_CAPITALIZATION_NONE, status);
        formatters.calendar.reset(icu::Calendar::createInstance(icuLocale(language), status));
        if (U_FAILURE(status)) {
            formatters.relative.reset();
            formatters.calendar.reset();
            return {};
        }
    }

    const bool past = date < now;
    const QDateTime &from = past ? date : now;
    const QDateTime &to = past ? now : date;

    // Count whole units from the earlier to the later date, largest unit first, as a
    // calendar does: each fieldDifference call moves the calendar on by what it counted.
    struct Step
    {
        UCalendarDateFields field;
        URelativeDateTimeUnit unit;
    };
    static constexpr Step steps[] = {
        {UCAL_YEAR, UDAT_REL_UNIT_YEAR},         {UCAL_MONTH, UDAT_REL_UNIT_MONTH},
        {UCAL_WEEK_OF_YEAR, UDAT_REL_UNIT_WEEK}, {UCAL_DATE, UDAT_REL_UNIT_DAY},
        {UCAL_HOUR_OF_DAY, UDAT_REL_UNIT_HOUR},  {UCAL_MINUTE, UDAT_REL_UNIT_MINUTE},
        {UCAL_SECOND, UDAT_REL_UNIT_SECOND},
    };
    icu::Calendar &calendar = *formatters.calendar;
    calendar.setTime(toUDate(from), status);
    int32_t amount = 0;
    URelativeDateTimeUnit unit = UDAT_REL_UNIT_SECOND;
    for (const Step &step : steps) {
        amount = calendar.fieldDifference(toUDate(to), step.field, status);
        if (U_FAILURE(status))
            return {};
        if (amount != 0) {
            unit = step.unit;
            break;
        }
    }

    icu::UnicodeString text;
    // Not -0: ICU reads it as past ("0 sec. ago"), where no time at all is "in 0 sec.".
    formatters.relative->formatNumeric(past && amount != 0 ? -double(amount) : double(amount), unit, text,
                                       status);
    return U_SUCCESS(status) ? toQString(text) : QString();
}

QString formattedDate(const QDateTime &date, AppLanguage language, const QTimeZone &zone)
{
    Formatters &formatters = formattersFor(language);
    const QByteArray zoneId = zone.id();
    std::shared_ptr<icu::DateFormat> &format = formatters.absolute[zoneId];
    if (!format) {
        format.reset(icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium,
                                                             icu::DateFormat::kShort, icuLocale(language)));
        if (!format) {
            formatters.absolute.remove(zoneId);
            return {};
        }
        format->adoptTimeZone(
            icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zoneId.constData())));
    }
    icu::UnicodeString text;
    format->format(toUDate(date), text);
    return toQString(text);
}
