#include "PracticeCharacter.h"

#include "measurement/ExpTable.h"

#include <algorithm>

namespace tvx::practice {
namespace {

constexpr std::int32_t kChangeStep = 37;
constexpr std::int32_t kChangeLowest = 10;
constexpr std::int32_t kChangeHighest = 190;

std::int64_t positive(std::int64_t value)
{
    return std::max<std::int64_t>(value, 0);
}

} // namespace

PracticeCharacter::PracticeCharacter(const CharacterState& start)
{
    m_state.level = std::clamp(start.level, 1, kMaxLevel);
    m_state.exp = std::clamp<std::int64_t>(start.exp, 0, std::max<std::int64_t>(levelSpan(m_state.level) - 1, 0));
    m_state.money = std::clamp<std::int64_t>(start.money, 0, kMaxMoney);
}

std::int64_t PracticeCharacter::levelSpan(std::int32_t level)
{
    // ExpTable is 0 past the top level, which would make the span negative there.
    if (level < 1 || level >= kMaxLevel)
        return 0;
    return (ExpTable(level + 1) - ExpTable(level)).wholePart();
}

void PracticeCharacter::rise(std::int64_t expGain, std::int64_t moneyGain)
{
    m_state.money += std::min(positive(moneyGain), kMaxMoney - m_state.money);

    // Whatever is still to earn in this level bounds each step, so the sum never overflows.
    std::int64_t gain = positive(expGain);
    while (m_state.level < kMaxLevel) {
        const std::int64_t left = levelSpan(m_state.level) - m_state.exp;
        if (gain < left) {
            m_state.exp += gain;
            return;
        }
        gain -= left;
        ++m_state.level;
        m_state.exp = 0;
    }
}

void PracticeCharacter::die()
{
    m_state.level = std::max(m_state.level - 1, 1);
    m_state.exp = 0;
}

void PracticeCharacter::change()
{
    const std::int32_t range = kChangeHighest - kChangeLowest + 1;
    const std::int32_t level = kChangeLowest + (m_state.level + kChangeStep - kChangeLowest) % range;
    m_state.level = level;
    m_state.exp = levelSpan(level) / 3;
    m_state.money = std::int64_t{level} * 123'457 + 1'000'000;
}

void PracticeCharacter::levelUp()
{
    if (m_state.level >= kMaxLevel)
        return;
    ++m_state.level;
    m_state.exp = 0;
}

std::array<std::string, kRegionCount> statusTexts(const CharacterState& state)
{
    return {std::to_string(state.level), std::to_string(state.exp), std::to_string(state.money)};
}

} // namespace tvx::practice
