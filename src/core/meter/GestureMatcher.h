#pragma once

#include "ports/MouseButtons.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// What a mouse-button gesture asks for, in the order the patterns are tried.
enum class Gesture {
    None,
    Suspend,      // L R L L
    Resume,       // L R L R
    MoneyScanOn,  // L R R L
    MoneyScanOff, // L R R R
    WatchOn,      // R L L L
    WatchOff,     // R L L R
    CycleReset,   // R R R R
    PrintScreen,  // both buttons down, up, and down again
};

// Two letters per event: "Ld", "Lu", "Rd", "Ru".
std::string gestureLetters(const std::vector<MouseButtonEvent>& events);

// Keeps the letters of the recent button events and says when they form a gesture.
class GestureMatcher {
public:
    static constexpr std::size_t kTextLength = 20;
    static constexpr std::size_t kShortestGesture = 16;

    // One batch of events at tick nowMs. A pause of gestureTimeMs or more since the last
    // batch starts the text over. A recognised gesture clears the text.
    Gesture feed(const std::vector<MouseButtonEvent>& batch, std::uint32_t nowMs, std::int32_t gestureTimeMs);

    const std::string& text() const { return m_text; }

private:
    std::string m_text;
    std::uint32_t m_lastMs = 0;
    bool m_seen = false;
};

// The line the log box shows for a gesture.
std::string_view gestureMessage(Gesture gesture);

} // namespace tvx
