#include "meter/GestureMatcher.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tvx {
namespace {

// "LdRu" -> those events; a letter without d or u is a click: "LR" is LdLuRdRu.
std::vector<MouseButtonEvent> events(std::string_view letters)
{
    std::vector<MouseButtonEvent> result;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const MouseButton button = letters[i] == 'L' ? MouseButton::Left : MouseButton::Right;
        const char next = i + 1 < letters.size() ? letters[i + 1] : ' ';
        if (next == 'd' || next == 'u')
            result.push_back({button, letters[++i] == 'd'});
        else
            result.insert(result.end(), {{button, true}, {button, false}});
    }
    return result;
}

// Batches of events fed at their tick: what the last batch made, and the text left.
TEST(GestureMatcher, PatternsChordsPausesAndTheTextKept)
{
    struct Feed { std::uint32_t atMs; const char* letters; };
    const struct { const char* name; std::vector<Feed> feeds; Gesture last; const char* text;
                   std::uint32_t gestureTime = 500; } cases[] = {
        {"the last ten events are kept", {{0, "LLLL"}, {100, "LLLLLL"}}, Gesture::None, "LdLuLdLuLdLuLdLuLdLu"},
        // A pause of GestureTime or more starts over: L R, pause, L L is nothing.
        {"a pause", {{0, "L"}, {100, "R"}, {700, "L"}, {800, "L"}}, Gesture::None, "LdLuLdLu"},
        {"under eight events, then none: text kept", {{0, "LdRdLuRuLdRd"}, {10, ""}}, Gesture::None, "LdRdLuRuLdRd"},
        {"the double chord, released in any order", {{0, "LdRdRuLuRuLuLdRd"}}, Gesture::PrintScreen, ""},
        {"only pressed and released is no chord", {{0, "LdRdLuRuLdLuLdLu"}}, Gesture::None, "LdRdLuRuLdLuLdLu"},
        {"the earlier row wins", {{0, "LRRRR"}}, Gesture::MoneyScanOff, ""}, // holds L R R R and R R R R
        {"wrapping", {{0xFFFFFF00u, "R"}, {0xFFFFFF64u, "R"}, {0xFFFFFFC8u, "R"}, {44, "R"}}, Gesture::CycleReset, ""},
        {"GestureTime 0 never continues", {{0, "LR"}, {0, "LL"}}, Gesture::None, "LdLuLdLu", 0},
    };
    for (const auto& c : cases) {
        GestureMatcher matcher;
        Gesture last = Gesture::None;
        for (const Feed& feed : c.feeds)
            last = matcher.feed(events(feed.letters), feed.atMs, c.gestureTime);
        EXPECT_EQ(last, c.last) << c.name;
        EXPECT_EQ(matcher.text(), c.text) << c.name;
    }
}

} // namespace
} // namespace tvx
