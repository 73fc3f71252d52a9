#include "clock.h"

namespace {
std::function<QDateTime()> &nowFunction()
{
    static std::function<QDateTime()> function;
    return function;
}
} // namespace

QDateTime Clock::now()
{
    const auto &function = nowFunction();
    return function ? function() : QDateTime::currentDateTimeUtc();
}

void Clock::setNowFunction(std::function<QDateTime()> now)
{
    nowFunction() = std::move(now);
}
