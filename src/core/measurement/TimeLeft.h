#pragma once

#include "base/Currency.h"

#include <cstdint>
#include <string>

namespace tvx {

class DebugLog;
class LogBox;
class Prompter;

// The line telling how long it takes from the experience reached to a target level at
// a rate in thousands per hour (a rate of 0 or less counts as 0.1).
std::string timeLeftLine(std::int32_t currentLevel, Currency totalExp, std::int32_t target, double rateK);

// The time-left command: asks for the target level and the hourly rate.
void menuTimeLeft_Click(std::int32_t currentLevel, Currency totalExp, Currency latestRate, Prompter& prompter,
                        LogBox& logBox, DebugLog& log);

} // namespace tvx
