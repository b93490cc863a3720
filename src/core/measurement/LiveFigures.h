#pragma once

#include "base/DateTime.h"

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace tvx {

// The rolling windows the figures are taken over: the last 10, 30 and 60 minutes of active
// time, and the whole session of the character (0).
enum RateWindow : int { Window10 = 0, Window30 = 1, Window60 = 2, WindowSession = 3 };
inline constexpr int kRateWindowCount = 4;
inline constexpr std::array<std::int32_t, kRateWindowCount> kRateWindowMinutes{10, 30, 60, 0};
// The window a minutes setting names; the 30 minutes for anything else.
RateWindow rateWindowOfMinutes(std::int32_t minutes);

// Why tracking stalled: no valid reading, or no gain of experience, for the stall minutes.
enum class Stall { None, NoReading, NoGain };

// The rates of one window; absent where the window holds no earlier reading to compare.
struct WindowRates {
    std::optional<std::int64_t> exp;   // thousands per hour, rounded down
    std::optional<double> level;       // percent of a level per hour, to two decimals
    std::optional<std::int64_t> money; // thousands per hour, rounded down
};

// A valid reading: level and experience read, money when it was.
struct LiveReading {
    std::int32_t level = 0;
    std::int64_t exp = 0;
    std::optional<std::int64_t> money;
};

// The total experience of a reading, and its level plus the fraction of that level done.
std::int64_t totalExperience(std::int32_t level, std::int64_t exp);
double levelPosition(std::int32_t level, std::int64_t exp);
// Floor(gain x 3600 / ms): thousands per hour; absent for no time.
std::optional<std::int64_t> thousandsPerHour(std::int64_t gain, std::int64_t ms);
// Minutes until the next level at a rate in thousands per hour, to one decimal; absent at
// the top level or when the rate is not above 0.
std::optional<double> minutesToNextLevel(std::int32_t level, std::int64_t exp, std::optional<std::int64_t> rate);

// What the live windows and the command line show, as of the latest reading.
struct LiveFigures {
    std::uint64_t readings = 0;  // readings handed over this session, valid or not
    bool latestValid = false;    // the latest of them was valid
    bool hasCharacter = false;   // a valid reading of the current character exists
    std::int32_t level = -1;     // of the latest valid reading
    std::int64_t exp = 0;
    std::optional<std::int64_t> money; // of the latest valid reading, when it read money
    std::array<WindowRates, kRateWindowCount> rates{};
    std::optional<double> nextLevelMinutes;
    std::optional<LocalDateTime> nextLevelAt;
    Stall stall = Stall::None;
    std::int64_t activeMs = 0; // of the character, at its latest valid reading
};

// One row of the session history: one character of one session.
struct HistoryRow {
    LocalDateTime start;
    LocalDateTime end;
    std::int64_t activeSeconds = 0;
    std::int32_t startLevel = 0;
    std::int32_t endLevel = 0;
    std::int64_t expGained = 0;
    std::optional<std::int64_t> expPerHour;
    std::optional<std::int64_t> moneyGained;
    std::optional<std::int64_t> moneyPerHour;
    std::int32_t levelUps = 0;
    std::int32_t stalls = 0;

    friend bool operator==(const HistoryRow&, const HistoryRow&) = default;
};

// The live side of a session: active time (the millisecond tick less the stretches while
// suspended), the rolling rates of the current character, the stall watch and the history
// row. It keeps the readings of the last hour and the first one, not every reading.
class LiveTracker {
public:
    void start(std::uint32_t tickMs);
    void suspend(std::uint32_t tickMs);
    void resume(std::uint32_t tickMs);
    bool suspended() const { return m_suspendTick.has_value(); }

    void failedReading();
    // A valid reading; newCharacter when it is the first of another character.
    void validReading(std::uint32_t tickMs, const LocalDateTime& now, const LiveReading& reading, bool newCharacter,
                      RateWindow nextLevelWindow);
    // Brings the stall up to tickMs; returns the stall that has just begun when the alarm is
    // armed (once per stall, armed again by the next gain or character).
    Stall checkStall(std::uint32_t tickMs, std::int32_t stallMinutes);

    const LiveFigures& figures() const { return m_figures; }
    // The current character's row; nullopt before its first valid reading.
    const std::optional<HistoryRow>& row() const { return m_row; }
    // Readings kept for the windows (for the memory bound).
    std::size_t keptReadings() const { return m_recent.size() + m_moneyRecent.size(); }

private:
    struct Point {
        std::int64_t ms;
        std::int64_t total;
        double position;
    };
    struct MoneyPoint {
        std::int64_t ms;
        std::int64_t money;
    };
    std::int64_t activeMs(std::uint32_t tickMs) const;
    void startCharacter(const LocalDateTime& now, const LiveReading& reading, std::int64_t ms);
    void keep(const Point& point, const std::optional<MoneyPoint>& money);
    void computeRates(bool moneyRead);
    void updateRow(const LocalDateTime& now, const LiveReading& reading, std::int64_t ms);

    std::uint32_t m_startTick = 0;
    std::int64_t m_suspendedMs = 0;
    std::optional<std::uint32_t> m_suspendTick;

    std::deque<Point> m_recent;
    std::optional<Point> m_first;
    std::deque<MoneyPoint> m_moneyRecent;
    std::optional<MoneyPoint> m_moneyFirst;

    std::optional<std::int64_t> m_lastValidMs;
    std::int64_t m_lastGainMs = 0;
    std::int64_t m_previousTotal = 0;
    bool m_armed = true;

    LiveFigures m_figures;
    std::optional<HistoryRow> m_row;
};

} // namespace tvx
