#include "LiveJson.h"

#include "Json.h"
#include "measurement/SessionHistory.h"

#include <cstdio>

namespace tvx::cli {
namespace {

std::string number(const std::optional<std::int64_t>& value)
{
    return value ? std::to_string(*value) : "null";
}

std::string decimals(const std::optional<double>& value, int places)
{
    if (!value)
        return "null";
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", places, *value);
    // No "-0.00" for a loss too small to show.
    const std::string shown(text);
    return shown.find_first_not_of("-0.") == std::string::npos ? shown.substr(shown[0] == '-' ? 1 : 0) : shown;
}

const char* stallName(Stall stall)
{
    switch (stall) {
    case Stall::NoReading:
        return "\"noReading\"";
    case Stall::NoGain:
        return "\"noGain\"";
    case Stall::None:
        break;
    }
    return "null";
}

} // namespace

std::string liveJsonLine(const LiveLineReading& reading, const LiveFigures& figures)
{
    static constexpr const char* kNames[kRateWindowCount] = {"10", "30", "60", "Session"};
    const bool valid = reading.valid;
    std::string line = "{\"t\": " + std::to_string(reading.second) + ", \"level\": " + std::to_string(reading.level) +
                       ", \"exp\": " + std::to_string(reading.exp) +
                       ", \"money\": " + number(valid ? figures.money : std::nullopt);
    for (const char* kind : {"exp", "level", "money"}) {
        for (int w = 0; w < kRateWindowCount; ++w) {
            const WindowRates& rates = figures.rates[static_cast<std::size_t>(w)];
            std::string value = "null";
            if (valid && kind[0] == 'e')
                value = number(rates.exp);
            else if (valid && kind[0] == 'l')
                value = decimals(rates.level, 2);
            else if (valid)
                value = number(rates.money);
            line += ", \"" + std::string(kind) + kNames[w] + "\": " + value;
        }
    }
    line += ", \"nextLevelMinutes\": " + (valid ? decimals(figures.nextLevelMinutes, 1) : "null");
    line += ", \"nextLevelAt\": " +
            (valid && figures.nextLevelAt ? jsonString(formatTimestamp(*figures.nextLevelAt)) : std::string("null"));
    line += ", \"stall\": " + std::string(stallName(figures.stall)) + "}";
    return line;
}

std::string historyJsonLine(const HistoryRow& row)
{
    return "{\"start\": " + jsonString(formatTimestamp(row.start)) + ", \"end\": " +
           jsonString(formatTimestamp(row.end)) + ", \"activeMinutes\": " + decimals(historyMinutes(row.activeSeconds), 1) +
           ", \"startLevel\": " + std::to_string(row.startLevel) + ", \"endLevel\": " + std::to_string(row.endLevel) +
           ", \"expGained\": " + std::to_string(row.expGained) + ", \"expPerHour\": " + number(row.expPerHour) +
           ", \"moneyGained\": " + number(row.moneyGained) + ", \"moneyPerHour\": " + number(row.moneyPerHour) +
           ", \"levelUps\": " + std::to_string(row.levelUps) + ", \"stalls\": " + std::to_string(row.stalls) + "}";
}

} // namespace tvx::cli
