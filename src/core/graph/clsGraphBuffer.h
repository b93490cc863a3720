#pragma once

#include "graph/clsGraphFormat.h"
#include "base/Currency.h"

#include <cstdint>
#include <deque>

namespace tvx {

class Clock;

// The recent history of hourly rates behind the graph, newest first (position 0), with
// the moving averages of each entry and the maxima over the visible part, which the
// drawing code uses to scale its vertical axis. Out-of-range requests throw
// RuntimeError(SubscriptOutOfRange) and leave the buffer as it was.
class clsGraphBuffer {
public:
    static constexpr std::int32_t kDefaultSize = 512;
    static constexpr std::int32_t kMaxSize = 65535;
    // Rates beyond this (either sign) are pinned to it so the graph scale stays sane.
    static constexpr std::int64_t kRateLimit = 2147483;

    // DataShift directions.
    static constexpr std::int32_t kTowardsPast = 0;
    static constexpr std::int32_t kTowardsPresent = 1;

    explicit clsGraphBuffer(Clock& clock);

    clsGraphFormat Value(std::int32_t index) const;

    std::int32_t BufferSize() const { return static_cast<std::int32_t>(m_entries.size()); }
    void setBufferSize(std::int32_t size);

    std::int32_t MaxNum() const { return m_maxNum; }
    std::int32_t AveNum() const { return m_aveNum; }

    // The latest time as a whole day number (round half to even); nothing reads it.
    std::int32_t MaxValueTime() const;
    Currency MaxValueRateE() const { return m_maxValues.RateE(); }
    Currency MaxValueRateM() const { return m_maxValues.RateM(); }
    Currency MaxValueRateAveE() const { return m_maxValues.RateAveE(); }
    Currency MaxValueRateAveM() const { return m_maxValues.RateAveM(); }

    // Moves the history by count places, filling the vacated end with empty entries.
    // A negative count or an unknown direction does nothing.
    void DataShift(std::int32_t count, std::int32_t direction);

    // Adds a newest entry (Time 0 means now), computes its averages over the newest
    // AveNum entries and the maxima over the newest MaxNum entries.
    void AddGraphData(Currency RateE, Currency RateM, std::int32_t AveNum, std::int32_t MaxNum, double Time = 0.0);

private:
    void UpdateMaxValues(std::int32_t MaxNum);

    Clock& m_clock;
    std::deque<clsGraphFormat> m_entries;
    clsGraphFormat m_maxValues;
    std::int32_t m_maxNum = 0;
    std::int32_t m_aveNum = 0;
};

} // namespace tvx
