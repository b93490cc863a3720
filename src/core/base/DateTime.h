#pragma once

#include <cstdint>
#include <string>

namespace tvx {

// A local calendar date and time, as the clock port reports it.
struct LocalDateTime {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;

    friend auto operator<=>(const LocalDateTime&, const LocalDateTime&) = default;
};

// Days since 30 December 1899, the fraction being the time of day (the OLE date).
double toOleDate(const LocalDateTime& t);
LocalDateTime fromOleDate(double oleDate);
// The same moment plus a number of seconds (may be negative).
LocalDateTime addSeconds(const LocalDateTime& t, std::int64_t seconds);

// "yyyy/mm/dd hh:mm:ss", whatever the locale.
std::string formatTimestamp(const LocalDateTime& t);
// "mm/dd hh:mm": the time column of the log box and the record file.
std::string formatMonthDayTime(const LocalDateTime& t);
// "yyyymmddhhmm": a session's stamp.
std::string formatSessionStamp(const LocalDateTime& t);
// "_yyyymmddhhmmss": screenshot names.
std::string formatFileStamp(const LocalDateTime& t);
// "_mmddhhmmss": pattern image names.
std::string formatPatternStamp(const LocalDateTime& t);

// Calendar minutes from a to b: the difference of the two minute counts, seconds ignored.
std::int64_t minutesBetween(const LocalDateTime& a, const LocalDateTime& b);

} // namespace tvx
