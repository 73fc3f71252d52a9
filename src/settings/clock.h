#pragma once

#include <QDateTime>

#include <functional>

// The one source of "now" for records and date texts, so that tests can set the clock.
class Clock
{
public:
    [[nodiscard]] static QDateTime now();

    // Replaces the clock until reset with an empty function. Tests only.
    static void setNowFunction(std::function<QDateTime()> now);
};
