#include "config/Settings.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(Settings, WindowModeShiftsEveryRegionByTheWindowFrame)
{
    const auto full = defaultCaptureRegions(ScreenMode::FullScreen);
    const auto window = defaultCaptureRegions(ScreenMode::Window);
    for (int r = 0; r < kRegionCount; ++r) {
        const auto i = static_cast<std::size_t>(r);
        EXPECT_EQ(window[i].StartX - full[i].StartX, 3);
        EXPECT_EQ(window[i].StartY - full[i].StartY, 22);
        EXPECT_EQ(window[i].SizeX, full[i].SizeX);
        EXPECT_EQ(window[i].SizeY, full[i].SizeY);
    }
}

TEST(Settings, RestoringDefaultsKeepsTheWindowNameOnly)
{
    Settings s = defaultSettings("/a");
    s.SearchWindowName = "Other";
    s.CaptureInterval = 1;
    s.PatternStrings[1][3] = "";
    s.CaptureRegion[0].StartX = 999;
    restoreDefaults(s, "/b", ScreenMode::Window);
    EXPECT_EQ(s.SearchWindowName, "Other");
    EXPECT_EQ(s.CaptureInterval, 6);
    EXPECT_EQ(s.SaveFolder, "/b");
    EXPECT_EQ(s.PatternStrings, defaultPatternStrings());
    EXPECT_EQ(s.CaptureRegion, defaultCaptureRegions(ScreenMode::Window));
}

} // namespace
} // namespace tvx
