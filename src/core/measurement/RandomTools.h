#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace tvx {

class DebugLog;
class LogBox;
class Prompter;

// Uniform numbers in [0, 1); seeded once at start-up, or fixed in tests.
class Rnd {
public:
    explicit Rnd(std::uint32_t seed) : m_engine(seed) {}
    double next() { return std::uniform_real_distribution<double>(0.0, 1.0)(m_engine); }

private:
    std::mt19937 m_engine;
};

// Int(Rnd * range + base): for base 1 a number in 1..range.
std::int32_t RandomInt(Rnd& rnd, std::int32_t range, std::int32_t base);

// A random ordering of base..count under a header line, five columns per number and
// perLine numbers per line, every line indented by `indent` blanks; ends with a line break.
std::string RandomSequence(Rnd& rnd, std::int32_t count, std::int32_t base, int perLine, int indent);

// The two menu tools: ask through the prompter, write to the log box.
void menuRandomOne_Click(Prompter& prompter, LogBox& logBox, DebugLog& log, Rnd& rnd);
void menuRandomSome_Click(Prompter& prompter, LogBox& logBox, DebugLog& log, Rnd& rnd);

} // namespace tvx
