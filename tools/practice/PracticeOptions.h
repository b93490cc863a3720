#pragma once

#include "PracticeCharacter.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tvx::practice {

struct PracticeOptions {
    std::string title = "MapleStory";
    bool windowMode = false;
    CharacterState start{50, 250'000, 12'345'678};
    std::int64_t expPerTick = 2'000;
    std::int64_t moneyPerTick = 100;
    std::int32_t tickMs = 1'000;
    std::string stateFile; // empty: no state lines
    bool help = false;
};

extern const char* const kPracticeUsage;

// Reads the arguments after the program name. False with `error` set on an unknown option,
// a missing value or a value that is no number in range.
bool parsePracticeOptions(const std::vector<std::string>& args, PracticeOptions& options, std::string& error);

} // namespace tvx::practice
