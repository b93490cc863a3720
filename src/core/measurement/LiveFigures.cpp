#include "measurement/LiveFigures.h"

#include "measurement/ExpTable.h"

#include <algorithm>
#include <cmath>

namespace tvx {

namespace {

constexpr std::int64_t kHourMs = 3'600'000;
constexpr std::int32_t kTopLevel = 200;

std::int64_t floorDivide(std::int64_t a, std::int64_t b)
{
    const std::int64_t q = a / b;
    return (a % b != 0 && ((a < 0) != (b < 0))) ? q - 1 : q;
}

std::int64_t levelSpan(std::int32_t level)
{
    if (level >= kTopLevel)
        return 0;
    return (ExpTable(level + 1) - ExpTable(level)).wholePart();
}

// The earliest kept point at or after limitMs; the kept points are in time order.
template <typename P>
const P* earliestSince(const std::deque<P>& points, std::int64_t limitMs)
{
    for (const P& point : points)
        if (point.ms >= limitMs)
            return &point;
    return nullptr;
}

} // namespace

RateWindow rateWindowOfMinutes(std::int32_t minutes)
{
    for (int w = 0; w < kRateWindowCount; ++w)
        if (kRateWindowMinutes[static_cast<std::size_t>(w)] == minutes)
            return static_cast<RateWindow>(w);
    return Window30;
}

std::int64_t totalExperience(std::int32_t level, std::int64_t exp)
{
    return ExpTable(level).wholePart() + exp;
}

double levelPosition(std::int32_t level, std::int64_t exp)
{
    const std::int64_t span = levelSpan(level);
    return level + (span > 0 ? static_cast<double>(exp) / static_cast<double>(span) : 0.0);
}

std::optional<std::int64_t> thousandsPerHour(std::int64_t gain, std::int64_t ms)
{
    if (ms <= 0)
        return std::nullopt;
    // gain x 3.6 / seconds, exact: no rate of a whole number comes out one below it.
    return floorDivide(gain * 3600, ms);
}

std::optional<double> minutesToNextLevel(std::int32_t level, std::int64_t exp, std::optional<std::int64_t> rate)
{
    if (level >= kTopLevel || level < 1 || !rate || *rate <= 0)
        return std::nullopt;
    const double left = static_cast<double>(ExpTable(level + 1).wholePart() - totalExperience(level, exp));
    return std::round(left * 60.0 / (static_cast<double>(*rate) * 1000.0) * 10.0) / 10.0;
}

void LiveTracker::start(std::uint32_t tickMs)
{
    *this = LiveTracker{};
    m_startTick = tickMs;
}

void LiveTracker::suspend(std::uint32_t tickMs)
{
    if (!m_suspendTick)
        m_suspendTick = tickMs;
    m_figures.stall = Stall::None;
}

void LiveTracker::resume(std::uint32_t tickMs)
{
    if (!m_suspendTick)
        return;
    m_suspendedMs += static_cast<std::uint32_t>(tickMs - *m_suspendTick);
    m_suspendTick.reset();
}

std::int64_t LiveTracker::activeMs(std::uint32_t tickMs) const
{
    // Unsigned differences survive the tick's wrap after 49 days.
    const std::uint32_t until = m_suspendTick.value_or(tickMs);
    return static_cast<std::int64_t>(static_cast<std::uint32_t>(until - m_startTick)) - m_suspendedMs;
}

void LiveTracker::failedReading()
{
    ++m_figures.readings;
    m_figures.latestValid = false;
}

void LiveTracker::validReading(std::uint32_t tickMs, const LocalDateTime& now, const LiveReading& reading,
                               bool newCharacter, RateWindow nextLevelWindow)
{
    const std::int64_t ms = activeMs(tickMs);
    ++m_figures.readings;
    m_figures.latestValid = true;
    if (newCharacter || !m_first)
        startCharacter(now, reading, ms);
    const std::int64_t total = totalExperience(reading.level, reading.exp);
    if (total > m_previousTotal) {
        m_lastGainMs = ms;
        m_armed = true;
    }
    m_previousTotal = total;
    m_lastValidMs = ms;
    const Point point{ms, total, levelPosition(reading.level, reading.exp)};
    keep(point, reading.money ? std::optional(MoneyPoint{ms, *reading.money}) : std::nullopt);

    m_figures.hasCharacter = true;
    m_figures.level = reading.level;
    m_figures.exp = reading.exp;
    m_figures.money = reading.money;
    m_figures.activeMs = ms - m_first->ms;
    computeRates(reading.money.has_value());
    m_figures.nextLevelMinutes =
        minutesToNextLevel(reading.level, reading.exp, m_figures.rates[static_cast<std::size_t>(nextLevelWindow)].exp);
    m_figures.nextLevelAt.reset();
    if (m_figures.nextLevelMinutes)
        m_figures.nextLevelAt = addSeconds(now, std::llround(*m_figures.nextLevelMinutes * 60.0));
    updateRow(now, reading, ms);
}

void LiveTracker::startCharacter(const LocalDateTime& now, const LiveReading& reading, std::int64_t ms)
{
    m_recent.clear();
    m_moneyRecent.clear();
    m_first = Point{ms, totalExperience(reading.level, reading.exp), levelPosition(reading.level, reading.exp)};
    m_moneyFirst.reset();
    m_previousTotal = m_first->total;
    m_lastGainMs = ms;
    m_armed = true;
    HistoryRow row;
    row.start = now;
    row.startLevel = reading.level;
    row.endLevel = reading.level;
    m_row = row;
}

void LiveTracker::keep(const Point& point, const std::optional<MoneyPoint>& money)
{
    // The longest window is the hour: an older reading can never be a window's start again.
    const std::int64_t oldest = point.ms - kHourMs;
    while (!m_recent.empty() && m_recent.front().ms < oldest)
        m_recent.pop_front();
    m_recent.push_back(point);
    while (!m_moneyRecent.empty() && m_moneyRecent.front().ms < oldest)
        m_moneyRecent.pop_front();
    if (!money)
        return;
    if (!m_moneyFirst)
        m_moneyFirst = money;
    m_moneyRecent.push_back(*money);
}

void LiveTracker::computeRates(bool moneyRead)
{
    const Point& now = m_recent.back();
    for (int w = 0; w < kRateWindowCount; ++w) {
        const std::int64_t span = std::int64_t{kRateWindowMinutes[static_cast<std::size_t>(w)]} * 60'000;
        WindowRates& rates = m_figures.rates[static_cast<std::size_t>(w)];
        rates = {};
        const Point* from = span == 0 ? &*m_first : earliestSince(m_recent, now.ms - span);
        if (from != nullptr && from->ms < now.ms) {
            const std::int64_t ms = now.ms - from->ms;
            rates.exp = thousandsPerHour(now.total - from->total, ms);
            const double perHour = (now.position - from->position) * 100.0 * kHourMs / static_cast<double>(ms);
            rates.level = std::round(perHour * 100.0) / 100.0;
        }
        if (!moneyRead)
            continue;
        const MoneyPoint& moneyNow = m_moneyRecent.back();
        const MoneyPoint* moneyFrom = span == 0 ? &*m_moneyFirst : earliestSince(m_moneyRecent, moneyNow.ms - span);
        if (moneyFrom != nullptr && moneyFrom->ms < moneyNow.ms)
            rates.money = thousandsPerHour(moneyNow.money - moneyFrom->money, moneyNow.ms - moneyFrom->ms);
    }
}

void LiveTracker::updateRow(const LocalDateTime& now, const LiveReading& reading, std::int64_t ms)
{
    HistoryRow& row = *m_row;
    row.levelUps += std::max(0, reading.level - row.endLevel);
    row.end = now;
    row.endLevel = reading.level;
    row.activeSeconds = (ms - m_first->ms) / 1000;
    row.expGained = totalExperience(reading.level, reading.exp) - m_first->total;
    row.expPerHour = thousandsPerHour(row.expGained, ms - m_first->ms);
    if (m_moneyFirst && !m_moneyRecent.empty()) {
        const MoneyPoint& last = m_moneyRecent.back();
        row.moneyGained = last.money - m_moneyFirst->money;
        row.moneyPerHour = thousandsPerHour(*row.moneyGained, last.ms - m_moneyFirst->ms);
    }
}

Stall LiveTracker::checkStall(std::uint32_t tickMs, std::int32_t stallMinutes)
{
    if (m_suspendTick) {
        m_figures.stall = Stall::None;
        return Stall::None;
    }
    const std::int64_t now = activeMs(tickMs);
    const std::int64_t limit = std::int64_t{stallMinutes} * 60'000;
    Stall stall = Stall::None;
    if (now - m_lastValidMs.value_or(0) >= limit)
        stall = Stall::NoReading;
    else if (now - m_lastGainMs >= limit)
        stall = Stall::NoGain;
    m_figures.stall = stall;
    if (stall == Stall::None || !m_armed)
        return Stall::None;
    m_armed = false;
    if (m_row)
        ++m_row->stalls;
    return stall;
}

} // namespace tvx
