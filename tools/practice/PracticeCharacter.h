#pragma once

#include "config/Settings.h"

#include <array>
#include <cstdint>
#include <string>

namespace tvx::practice {

// What the practice target shows: the level, the experience within that level (as the
// game draws it) and the money.
struct CharacterState {
    std::int32_t level = 1;
    std::int64_t exp = 0;
    std::int64_t money = 0;

    friend bool operator==(const CharacterState&, const CharacterState&) = default;
};

// A pretend character whose experience and money rise and whose level follows the
// experience table. No Qt here, so every rule is unit tested.
class PracticeCharacter {
public:
    // Fourteen digits: the money region holds more, but the meter's currency does not go
    // much further.
    static constexpr std::int64_t kMaxMoney = 99'999'999'999'999;

    // Out-of-range values are clamped: level 1..200, exp within the level's span, money
    // 0..kMaxMoney.
    explicit PracticeCharacter(const CharacterState& start);

    const CharacterState& state() const { return m_state; }

    // Experience needed from the start of `level` to the next; 0 at the top level, where
    // the experience stays at 0.
    static std::int64_t levelSpan(std::int32_t level);

    // Adds experience (carrying over as many level-ups as it covers) and money (up to the
    // cap). Negative gains count as none.
    void rise(std::int64_t expGain, std::int64_t moneyGain);
    // The level falls by one (never below 1) and the experience starts at 0 there.
    void die();
    // Another character: a level 37 higher, wrapped into 10..190, with its own experience
    // and money derived from that level.
    void change();
    // Straight to the start of the next level.
    void levelUp();

private:
    CharacterState m_state;
};

// The three texts the status bar draws: level, experience, money, plain digits.
std::array<std::string, kRegionCount> statusTexts(const CharacterState& state);

} // namespace tvx::practice
