#include "meter/GestureMatcher.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tvx {
namespace {

// "LRL" -> press and release of left, right, left.
std::vector<MouseButtonEvent> clicks(std::string_view buttons)
{
    std::vector<MouseButtonEvent> events;
    for (const char b : buttons) {
        const MouseButton button = b == 'L' ? MouseButton::Left : MouseButton::Right;
        events.push_back({button, true});
        events.push_back({button, false});
    }
    return events;
}

// "LdRdLuRu" -> those events.
std::vector<MouseButtonEvent> events(std::string_view letters)
{
    std::vector<MouseButtonEvent> result;
    for (std::size_t i = 0; i + 1 < letters.size(); i += 2)
        result.push_back({letters[i] == 'L' ? MouseButton::Left : MouseButton::Right, letters[i + 1] == 'd'});
    return result;
}

// Feeds one click per batch, `gapMs` apart; returns the last result.
Gesture clickOneByOne(GestureMatcher& matcher, std::string_view buttons, std::uint32_t& nowMs, std::uint32_t gapMs = 100)
{
    Gesture last = Gesture::None;
    for (const char b : buttons) {
        last = matcher.feed(clicks(std::string(1, b)), nowMs, 500);
        nowMs += gapMs;
    }
    return last;
}

TEST(GestureMatcher, WhatIsNotAGesture)
{
    GestureMatcher matcher;
    std::uint32_t now = 0;
    EXPECT_EQ(clickOneByOne(matcher, "LLLL", now), Gesture::None);
    EXPECT_EQ(matcher.text(), "LdLuLdLuLdLuLdLu");
    EXPECT_EQ(clickOneByOne(matcher, "LLLLLL", now), Gesture::None);
    EXPECT_EQ(matcher.text().size(), 20u) << "the last ten events are kept";

    // A pause of GestureTime or more starts over: L R, pause, L L is nothing.
    GestureMatcher paused;
    now = 0;
    clickOneByOne(paused, "LR", now);
    now += 500;
    EXPECT_EQ(clickOneByOne(paused, "LL", now), Gesture::None);
    EXPECT_EQ(paused.text(), "LdLuLdLu");

    // Fewer than eight events: not even the double chord.
    GestureMatcher short_;
    EXPECT_EQ(short_.feed(events("LdRdLuRuLdRd"), 0, 500), Gesture::None);

    // Events without buttons leave the text alone.
    EXPECT_EQ(short_.feed({}, 10, 500), Gesture::None);
    EXPECT_EQ(short_.text(), "LdRdLuRuLdRd");
}

TEST(GestureMatcher, TheDoubleChordTakesAPrintScreen)
{
    for (const char* text : {"LdRdLuRuLdRdLuRu", "RdLdRuLuRdLdRuLu", "LdRdRuLuRuLuLdRd"}) {
        GestureMatcher matcher;
        EXPECT_EQ(matcher.feed(events(text), 0, 500), Gesture::PrintScreen) << text;
        EXPECT_EQ(matcher.text(), "");
    }
    GestureMatcher onlyPressedAndReleased;
    EXPECT_EQ(onlyPressedAndReleased.feed(events("LdRdLuRuLdLuLdLu"), 0, 500), Gesture::None);
}

TEST(GestureMatcher, EachPatternClearsTheTextTheEarlierRowWinsAndTheTickMayWrap)
{
    const struct { const char* clicks; Gesture gesture; } table[] = {
        {"LRLL", Gesture::Suspend},     {"LRLR", Gesture::Resume},   {"LRRL", Gesture::MoneyScanOn},
        {"LRRR", Gesture::MoneyScanOff}, {"RLLL", Gesture::WatchOn}, {"RLLR", Gesture::WatchOff},
        {"RRRR", Gesture::CycleReset},
        {"LRRRR", Gesture::MoneyScanOff}, // holds both "L R R R" and "R R R R"
    };
    for (const auto& row : table) {
        GestureMatcher matcher;
        EXPECT_EQ(matcher.feed(clicks(row.clicks), 0, 500), row.gesture) << row.clicks;
        EXPECT_EQ(matcher.text(), "") << row.clicks;
    }

    GestureMatcher wrapping;
    std::uint32_t now = 0xFFFFFF00u;
    EXPECT_EQ(clickOneByOne(wrapping, "RRRR", now), Gesture::CycleReset) << "continues across the wrap";

    GestureMatcher never;
    now = 0;
    EXPECT_EQ(never.feed(clicks("LR"), 0, 0), Gesture::None);
    EXPECT_EQ(never.feed(clicks("LL"), 0, 0), Gesture::None) << "GestureTime 0 never continues";
}

} // namespace
} // namespace tvx
