#include "PracticeCharacter.h"
#include "PracticeOptions.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tvx::practice {
namespace {

// Spans worked out by hand from the cumulative experience table: 50 here, 51 and 199 in the rows.
constexpr std::int64_t kSpan50 = 7'561'307 - 6'851'591;

// Each row starts a character, clamped into range, then presses a key or rises by the gains.
TEST(PracticeCharacter, StartsClampedAndRisesDiesAndLevelsUpWithinTheLevels)
{
    using Key = void (PracticeCharacter::*)();
    struct Case {
        const char* name;
        CharacterState start;
        std::int64_t expGain;
        std::int64_t moneyGain;
        CharacterState expected;
        Key key = nullptr;
    };
    constexpr std::int64_t kCap = PracticeCharacter::kMaxMoney;
    const Case cases[] = {
        {"start below everything", {0, -5, -1}, 0, 0, {1, 0, 0}},
        {"start above the top level", {250, 5, 1}, 0, 0, {200, 0, 1}},
        {"start exp past the span, money past the cap", {50, 10'000'000, kCap + 1}, 0, 0, {50, kSpan50 - 1, kCap}},
        {"one short of the boundary", {50, kSpan50 - 1001, 0}, 1000, 0, {50, kSpan50 - 1, 0}},
        {"exactly to the boundary", {50, kSpan50 - 1000, 0}, 1000, 0, {51, 0, 0}},
        {"two boundaries, carried", {50, 709'000, 0}, (kSpan50 - 709'000) + (8'309'915 - 7'561'307) + 5, 0, {52, 5, 0}},
        {"into the top level", {199, 38'703'313'816 - 36'692'244'111 - 3, 0}, 10, 0, {200, 0, 0}},
        {"at the top level exp stays", {200, 0, 5}, 123'456, 5, {200, 0, 10}},
        {"a huge gain stops at the top", {1, 0, 0}, INT64_MAX, 0, {200, 0, 0}},
        {"a huge money gain stops at the cap", {50, 0, 5}, 0, INT64_MAX, {50, 0, kCap}},
        {"negative gains count as none", {50, 100, 100}, -50, -50, {50, 100, 100}},
        {"die drops a level", {50, 1234, 99}, 0, 0, {49, 0, 99}, &PracticeCharacter::die},
        {"die at level 1 stays at 1", {1, 10, 99}, 0, 0, {1, 0, 99}, &PracticeCharacter::die},
        {"level up", {50, 500, 99}, 0, 0, {51, 0, 99}, &PracticeCharacter::levelUp},
        {"level up at the top level does nothing", {200, 0, 99}, 0, 0, {200, 0, 99}, &PracticeCharacter::levelUp},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PracticeCharacter character(c.start);
        if (c.key != nullptr)
            (character.*c.key)();
        else if (c.expGain != 0 || c.moneyGain != 0)
            character.rise(c.expGain, c.moneyGain);
        EXPECT_EQ(character.state(), c.expected);
    }
}

TEST(PracticeCharacter, ChangeAlwaysLandsOnAnotherLevelInRange)
{
    for (std::int32_t level = 1; level <= 200; ++level) {
        PracticeCharacter character({level, 0, 0});
        character.change();
        const CharacterState& s = character.state();
        const bool inRange = s.level >= 10 && s.level <= 190 && s.exp < PracticeCharacter::levelSpan(s.level);
        EXPECT_TRUE(inRange && s.level != level)
            << "from " << level << " to " << s.level << " with " << s.exp;
    }
}

TEST(PracticeOptions, ReadsEveryOption)
{
    PracticeOptions options;
    std::string error;
    ASSERT_TRUE(parsePracticeOptions({"--title", "メイプル", "--window-mode", "--level", "200", "--exp", "0",
                                      "--money", "99999999999999", "--exp-per-second", "0", "--money-per-second",
                                      "12", "--tick-ms", "50", "--state-file", "/tmp/s.txt"},
                                     options, error))
        << error;
    EXPECT_EQ(options.start, (CharacterState{200, 0, 99'999'999'999'999}));
    EXPECT_EQ(std::tie(options.title, options.windowMode, options.expPerTick, options.moneyPerTick, options.tickMs,
                       options.stateFile, options.help),
              std::make_tuple(std::string("メイプル"), true, 0, 12, 50, std::string("/tmp/s.txt"), false));

    PracticeOptions defaults;
    ASSERT_TRUE(parsePracticeOptions({"--help"}, defaults, error));
    EXPECT_EQ(std::tie(defaults.help, defaults.title, defaults.windowMode), std::make_tuple(true, "MapleStory", false));
    EXPECT_GT(defaults.expPerTick, 0);
}

TEST(PracticeOptions, RejectsBadArguments)
{
    const std::vector<std::vector<std::string>> bad = {
        {"--colour", "red"}, {"--level"}, {"--level", "0"}, {"--level", "201"}, {"--exp", "-1"}, {"--exp", "12x"},
        {"--money", "100000000000000"}, {"--tick-ms", "0"}, {"--exp-per-second", "-5"}, {"stray"},
    };
    for (const auto& args : bad) {
        PracticeOptions options;
        std::string error;
        EXPECT_FALSE(parsePracticeOptions(args, options, error)) << args.front();
        EXPECT_FALSE(error.empty()) << args.front();
    }
}

} // namespace
} // namespace tvx::practice
