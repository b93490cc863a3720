#include "base/DateTime.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace tvx {
namespace {

using namespace std::chrono;

constexpr sys_days kOleEpoch = sys_days{year{1899} / December / 30};

std::int64_t toEpochSeconds(const LocalDateTime& t)
{
    const sys_days date = sys_days{year{t.year} / month{static_cast<unsigned>(t.month)} / day{static_cast<unsigned>(t.day)}};
    return duration_cast<seconds>(date - kOleEpoch).count() + t.hour * 3600LL + t.minute * 60LL + t.second;
}

LocalDateTime fromEpochSeconds(std::int64_t secs)
{
    const std::int64_t dayCount = secs >= 0 ? secs / 86400 : -((-secs + 86399) / 86400);
    const std::int64_t rest = secs - dayCount * 86400;
    const year_month_day ymd{kOleEpoch + days{dayCount}};
    return LocalDateTime{static_cast<int>(ymd.year()), static_cast<int>(static_cast<unsigned>(ymd.month())),
                         static_cast<int>(static_cast<unsigned>(ymd.day())), static_cast<int>(rest / 3600),
                         static_cast<int>(rest / 60 % 60), static_cast<int>(rest % 60)};
}

} // namespace

double toOleDate(const LocalDateTime& t)
{
    return static_cast<double>(toEpochSeconds(t)) / 86400.0;
}

LocalDateTime fromOleDate(double oleDate)
{
    return fromEpochSeconds(static_cast<std::int64_t>(std::llround(oleDate * 86400.0)));
}

LocalDateTime addSeconds(const LocalDateTime& t, std::int64_t seconds)
{
    return fromEpochSeconds(toEpochSeconds(t) + seconds);
}

std::string formatTimestamp(const LocalDateTime& t)
{
    char text[32];
    std::snprintf(text, sizeof text, "%04d/%02d/%02d %02d:%02d:%02d", t.year, t.month, t.day, t.hour, t.minute,
                  t.second);
    return text;
}

std::string formatMonthDayTime(const LocalDateTime& t)
{
    char text[32];
    std::snprintf(text, sizeof text, "%02d/%02d %02d:%02d", t.month, t.day, t.hour, t.minute);
    return text;
}

std::string formatSessionStamp(const LocalDateTime& t)
{
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d", t.year, t.month, t.day, t.hour, t.minute);
    return text;
}

std::string formatFileStamp(const LocalDateTime& t)
{
    char text[32];
    std::snprintf(text, sizeof text, "_%04d%02d%02d%02d%02d%02d", t.year, t.month, t.day, t.hour, t.minute,
                  t.second);
    return text;
}

std::string formatPatternStamp(const LocalDateTime& t)
{
    char text[32];
    std::snprintf(text, sizeof text, "_%02d%02d%02d%02d%02d", t.month, t.day, t.hour, t.minute, t.second);
    return text;
}

std::int64_t minutesBetween(const LocalDateTime& a, const LocalDateTime& b)
{
    auto minuteCount = [](const LocalDateTime& t) {
        const std::int64_t secs = toEpochSeconds(t);
        return secs >= 0 ? secs / 60 : -((-secs + 59) / 60);
    };
    return minuteCount(b) - minuteCount(a);
}

} // namespace tvx
