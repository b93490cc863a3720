#pragma once

#include "ports/ScreenSource.h"
#include "ports/Waiter.h"
#include "support/BitmapFont.h"

#include <gtest/gtest.h>

namespace tvx::test {

// Waits that pass at once: a window's 10-second countdown costs nothing in a test.
class InstantWaiter : public Waiter {
public:
    void WaitMs(std::int32_t) override {}
};

// Whole screens handed out one per grab, in order; none when they run out.
class ScriptedScreen : public ScreenSource {
public:
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect> wanted) override
    {
        EXPECT_TRUE(wanted.empty()) << "the whole screen is asked for";
        if (screens.empty())
            return std::nullopt;
        CaptureBitmap next = screens.front();
        screens.erase(screens.begin());
        return next;
    }
    std::vector<CaptureBitmap> screens;
};

// A screen in a font the built-in templates do not know.
inline CaptureBitmap fontCapture(const std::array<std::string, kRegionCount>& numbers, std::uint32_t seed)
{
    return toCaptureBitmap(fontScreen(numbers, seed));
}

} // namespace tvx::test
