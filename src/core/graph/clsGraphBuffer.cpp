#include "graph/clsGraphBuffer.h"

#include "ports/Clock.h"
#include "base/DateTime.h"
#include "base/Errors.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tvx {
namespace {

Currency clampRate(Currency rate)
{
    static const Currency high = Currency::fromInt(clsGraphBuffer::kRateLimit);
    static const Currency low = Currency::fromInt(-clsGraphBuffer::kRateLimit);
    return std::clamp(rate, low, high);
}

// Mean of one series over a window; -1 entries are left out of both sum and count.
// A window with nothing left to count gives 0.
template <typename Field>
Currency windowAverage(const std::deque<clsGraphFormat>& entries, std::int32_t window, Field field)
{
    static const Currency noValue = Currency::fromInt(-1);
    Currency sum;
    std::int32_t count = window;
    for (std::int32_t i = 0; i < window; ++i) {
        const Currency rate = (entries[static_cast<std::size_t>(i)].*field)();
        if (rate == noValue)
            --count;
        else
            sum += rate;
    }
    if (count == 0)
        return Currency();
    return Currency::fromDouble(sum.toDouble() / count);
}

} // namespace

clsGraphBuffer::clsGraphBuffer(Clock& clock)
    : m_clock(clock)
    , m_entries(static_cast<std::size_t>(kDefaultSize))
{
}

clsGraphFormat clsGraphBuffer::Value(std::int32_t index) const
{
    if (index < 0 || index >= BufferSize())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return m_entries[static_cast<std::size_t>(index)];
}

void clsGraphBuffer::setBufferSize(std::int32_t size)
{
    // The buffer is never empty, so neither zero nor a negative size is accepted.
    if (size <= 0)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    // Shrinking drops the oldest entries; growing adds empty ones on the oldest side.
    m_entries.resize(static_cast<std::size_t>(std::min(size, kMaxSize)));
}

std::int32_t clsGraphBuffer::MaxValueTime() const
{
    const double day = std::nearbyint(m_maxValues.Time());
    if (!(day >= std::numeric_limits<std::int32_t>::min() && day <= std::numeric_limits<std::int32_t>::max()))
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<std::int32_t>(day);
}

void clsGraphBuffer::DataShift(std::int32_t count, std::int32_t direction)
{
    if (count < 0)
        return;
    const auto places = std::min(static_cast<std::size_t>(count), m_entries.size());
    if (direction == kTowardsPast) {
        for (std::size_t i = 0; i < places; ++i) {
            m_entries.pop_back();
            m_entries.emplace_front();
        }
    } else if (direction == kTowardsPresent) {
        for (std::size_t i = 0; i < places; ++i) {
            m_entries.pop_front();
            m_entries.emplace_back();
        }
    }
}

void clsGraphBuffer::AddGraphData(Currency RateE, Currency RateM, std::int32_t AveNum, std::int32_t MaxNum, double Time)
{
    DataShift(1, kTowardsPast);
    if (Time == 0.0)
        Time = toOleDate(m_clock.now());
    AveNum = std::min(AveNum, BufferSize());

    clsGraphFormat& newest = m_entries.front();
    newest.setTime(Time);
    newest.setRateE(clampRate(RateE));
    newest.setRateM(clampRate(RateM));
    newest.setRateAveE(windowAverage(m_entries, AveNum, &clsGraphFormat::RateE));
    newest.setRateAveM(windowAverage(m_entries, AveNum, &clsGraphFormat::RateM));
    m_aveNum = AveNum;

    UpdateMaxValues(MaxNum);
}

void clsGraphBuffer::UpdateMaxValues(std::int32_t MaxNum)
{
    // Recomputed from zero each time, so -1 markers and negative rates never show.
    m_maxValues.Clear();
    MaxNum = std::min(MaxNum, BufferSize());
    for (std::int32_t i = 0; i < MaxNum; ++i) {
        const clsGraphFormat& entry = m_entries[static_cast<std::size_t>(i)];
        m_maxValues.setTime(std::max(m_maxValues.Time(), entry.Time()));
        m_maxValues.setRateE(std::max(m_maxValues.RateE(), entry.RateE()));
        m_maxValues.setRateM(std::max(m_maxValues.RateM(), entry.RateM()));
        m_maxValues.setRateAveE(std::max(m_maxValues.RateAveE(), entry.RateAveE()));
        m_maxValues.setRateAveM(std::max(m_maxValues.RateAveM(), entry.RateAveM()));
    }
    m_maxNum = MaxNum;
}

} // namespace tvx
