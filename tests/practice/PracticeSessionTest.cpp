#include "PracticeSession.h"

#include <gtest/gtest.h>

namespace tvx::practice {
namespace {

using Redraw = PracticeSession::Redraw;

TEST(PracticeSession, KeyCodesOfBothToolkitsMapToTheSameKeys)
{
    const struct { int code; std::optional<PracticeKey> key; } cases[] = {
        {'D', PracticeKey::Die}, {'C', PracticeKey::Change}, {'U', PracticeKey::LevelUp}, {' ', PracticeKey::Pause},
        // Lower case 0x64 is the numeric pad's 4 on Windows; neither toolkit reports letters so.
        {'d', std::nullopt}, {'X', std::nullopt}, {0x01000000 /* Qt's Escape */, std::nullopt}, {0, std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(practiceKey(c.code), c.key) << c.code;
}

TEST(PracticeSession, EachTickAndKeySaysWhatToRedraw)
{
    // Name, start, key (none: a tick), paused before, what is redrawn.
    const std::tuple<const char*, CharacterState, std::optional<PracticeKey>, bool, Redraw> steps[] = {
        {"a tick raises the numbers", {50, 0, 0}, std::nullopt, false, Redraw::Scene},
        {"a paused tick changes nothing", {50, 0, 0}, std::nullopt, true, Redraw::Nothing},
        {"the pause only rewrites the hint", {50, 0, 0}, PracticeKey::Pause, false, Redraw::Labels},
        {"keys work while paused", {50, 0, 0}, PracticeKey::Die, true, Redraw::Scene},
        {"no level above the top", {200, 0, 0}, PracticeKey::LevelUp, false, Redraw::Nothing},
        {"dying at level 1 from nothing loses nothing", {1, 0, 0}, PracticeKey::Die, false, Redraw::Nothing},
    };
    for (const auto& [name, start, key, pausedBefore, expected] : steps) {
        SCOPED_TRACE(name);
        PracticeOptions options;
        options.start = start;
        PracticeSession session(options);
        if (pausedBefore)
            session.press(PracticeKey::Pause);
        const CharacterState before = session.state();
        const Redraw redraw = key ? session.press(*key) : session.tick();
        EXPECT_EQ(redraw, expected);
        EXPECT_EQ(session.state() != before, redraw == Redraw::Scene);
    }
}

TEST(PracticeSession, HintLineIsJapaneseAndNamesEveryKey)
{
    const std::string hint = hintText(false);
    for (const char* part : {"D:", "C:", "U:", "Space:", "死亡"})
        EXPECT_NE(hint.find(part), std::string::npos) << part;
    EXPECT_TRUE(hintText(true).starts_with("【一時停止中】"));
    EXPECT_EQ(sceneLabels(true).front().text, hintText(true));
}

} // namespace
} // namespace tvx::practice
