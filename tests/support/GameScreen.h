#pragma once

#include "recognition/CaptureFile.h"
#include "recognition/GlyphPainter.h"

#include <random>

namespace tvx::test {

// A noisy screen with level, experience and money drawn at the mode's regions ("" leaves a region blank).
inline Frame gameScreen(const std::array<std::string, kRegionCount>& numbers, ScreenMode mode = ScreenMode::FullScreen,
                        std::uint32_t seed = 1, std::int32_t width = 1024, std::int32_t height = 768)
{
    Frame frame(width, height);
    std::mt19937 noise(seed);
    for (auto& byte : frame.bytes())
        byte = static_cast<std::uint8_t>(noise());
    paintStatusNumbers(frame, defaultSettings("", mode), numbers);
    return frame;
}

inline CaptureBitmap gameCapture(const std::array<std::string, kRegionCount>& numbers,
                                 ScreenMode mode = ScreenMode::FullScreen, std::uint32_t seed = 1)
{
    return toCaptureBitmap(gameScreen(numbers, mode, seed));
}

} // namespace tvx::test
