#include "view/Calibration.h"

#include "support/BitmapFont.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

const Settings kDefaults = defaultSettings("");

// Learns screens in the test font, one numbers triple each.
void learnScreens(Calibration& calibration, const std::vector<std::array<std::string, kRegionCount>>& screens)
{
    std::uint32_t seed = 1;
    for (const auto& numbers : screens) {
        calibration.picker().setScreen(toCaptureBitmap(test::fontScreen(numbers, seed++)));
        for (int r = 0; r < kRegionCount; ++r)
            calibration.setTyped(r, numbers[static_cast<std::size_t>(r)].empty() ? "-" : numbers[static_cast<std::size_t>(r)]);
        ASSERT_TRUE(calibration.learn());
    }
}

TEST(CalibrationTest, LearnsFromScreensAndKeepsTheResultUntilConfirmed)
{
    Calibration calibration(kDefaults);
    EXPECT_FALSE(calibration.learn()); // no screen yet
    EXPECT_FALSE(calibration.hasChanges());
    learnScreens(calibration, {{"58", "1234567", ""}, {"147", "8890123", ""}, {"203", "4455667", ""}});

    const CalibrationRegionView exp = calibration.view(RegionExp);
    EXPECT_FALSE(exp.refused);
    EXPECT_EQ(exp.message, "学習しました（文字幅 6 列）");
    EXPECT_EQ(exp.width, 6);
    EXPECT_EQ(exp.missing, "");
    EXPECT_EQ(exp.readBack, (std::vector<std::string>{"1234567 → 1234567", "8890123 → 8890123", "4455667 → 4455667"}));
    EXPECT_EQ(exp.glyphs[5], test::fontGlyph('5'));
    EXPECT_EQ(calibration.preview(RegionExp).reading, "4455667"); // the last screen, with what was learnt
    EXPECT_FALSE(calibration.picker().preview(RegionExp).read); // the built-in templates cannot

    const CalibrationRegionView money = calibration.view(RegionMoney);
    EXPECT_EQ(money.message, "");
    EXPECT_EQ(money.missing, "0123456789");
    EXPECT_EQ(money.glyphs[0].size(), 7u);

    Settings settings = kDefaults;
    calibration.applyTo(settings);
    EXPECT_EQ(settings.ReferenceSize[RegionExp].Width, 6);
    EXPECT_EQ(settings.ReferenceSize[RegionMoney].Width, 7);
    EXPECT_EQ(settings.PatternStrings[RegionMoney], kDefaults.PatternStrings[RegionMoney]);
    EXPECT_EQ(settings.CaptureRegion, kDefaults.CaptureRegion);
}

TEST(CalibrationTest, RefusalsAreExplainedAndMovingARegionStartsItAnew)
{
    Calibration calibration(kDefaults);
    learnScreens(calibration, {{"1161", "", ""}, {"7207", "", ""}});
    calibration.picker().setScreen(toCaptureBitmap(test::fontScreen({"6172", "", ""})));
    const std::pair<const char*, const char*> cases[] = {
        {"6127", "がこれまでの画像と違います。入力した数字を確かめてください"},
        {"61x", "数字を入力してください"},
        {"61723456", "領域の文字が 8 桁の数字と終わりの記号に分けられません"},
    };
    for (const auto& [typed, message] : cases) {
        calibration.setTyped(RegionLevel, typed);
        calibration.learn();
        const CalibrationRegionView view = calibration.view(RegionLevel);
        EXPECT_TRUE(view.refused) << typed;
        EXPECT_NE(view.message.find(message), std::string::npos) << view.message;
        EXPECT_EQ(view.readBack.size(), 2u);
    }

    calibration.picker().selectRegion(RegionLevel);
    calibration.picker().nudge(1, 0);
    calibration.regionMoved(RegionLevel);
    const CalibrationRegionView moved = calibration.view(RegionLevel);
    EXPECT_EQ(moved.message, "");
    EXPECT_TRUE(moved.readBack.empty());
    EXPECT_EQ(moved.width, 7);
    Settings settings = kDefaults;
    calibration.applyTo(settings);
    EXPECT_EQ(settings.CaptureRegion[RegionLevel].StartX, kDefaults.CaptureRegion[RegionLevel].StartX + 1);
    EXPECT_EQ(settings.PatternStrings, kDefaults.PatternStrings);
}

} // namespace
} // namespace tvx
