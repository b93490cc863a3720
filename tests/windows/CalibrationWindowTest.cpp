// The calibration window played the same way in both front ends; what is learnt is the core's Calibration.
#include "support/WindowDriver.h"

#include "support/BitmapFont.h"
#include "support/ScaledFont.h"
#include "support/ScriptedScreen.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <map>

namespace tvx::test {
namespace {

using Key = WindowDriver::Key;
using Numbers = std::array<std::string, kRegionCount>;

const std::vector<Numbers> kScreens{
    {"58", "1234567", "90,210"}, {"247", "8890123", "5,006,400"}, {"203", "4455667", "-"}, {"96", "-", "-"}};

class CalibrationWindowTest : public testing::Test {
protected:
    // The window over the screenshot while the steps play; true when the player applied.
    bool show(std::deque<PlayerStep> steps, const CaptureBitmap* screenshot = nullptr, bool canCapture = true)
    {
        steps.push_front([this] { return window().isOpen(); });
        bool applied = false;
        const WindowServices services{&screen, &waiter, nullptr, nullptr, nullptr, {}};
        play(std::move(steps),
             [&] { applied = desktop->showCalibration(settings, screenshot, canCapture ? services : WindowServices{}); });
        return applied;
    }

    WindowDriver& window() { return desktop->calibration(); }

    // A step: each screen taken with the capture button, its numbers typed and learnt.
    PlayerStep captureAndLearn(const std::vector<Numbers>& screens)
    {
        for (std::uint32_t i = 0; i < screens.size(); ++i)
            screen.screens.push_back(fontCapture(screens[i], i + 1));
        return act([this, screens] {
            for (const Numbers& numbers : screens) {
                window().clickNow("cmdCapture");
                for (int r = 0; r < kRegionCount; ++r)
                    window().setText("txtNumber" + std::to_string(r), numbers[static_cast<std::size_t>(r)]);
                window().clickNow("cmdLearn");
            }
        });
    }

    std::unique_ptr<Desktop> desktop = makeDesktop();
    Settings settings = defaultSettings("");
    InstantWaiter waiter;
    ScriptedScreen screen;
};

// Also: a refused number is explained and a failed capture says so.
TEST_F(CalibrationWindowTest, LearnsFromCapturesAndChangesTheSettingsOnlyWhenApplied)
{
    const Settings before = settings;
    std::map<std::string, std::string> seen;
    std::vector<std::uint16_t> five;
    std::vector<std::uint16_t> one;
    EXPECT_FALSE(show({act([&] {
                           seen["first"] = window().text("lblReading0");
                           window().clickNow("cmdLearn");
                           seen["no screen"] = window().text("lblStatus");
                       }),
                       captureAndLearn(kScreens), act([&] {
                           seen["level"] = window().text("lblMessage0");
                           seen["read"] = window().text("lblReading0");
                           five = window().glyph("picGlyph5");
                           one = window().glyph("picGlyph1");
                           window().press(Key::Escape);
                       })}));
    EXPECT_EQ(seen["first"], "読み取り： キャプチャ画像がありません");
    EXPECT_EQ(seen["no screen"], "先に画面を取り込んでください。");
    EXPECT_HOLDS(seen["level"], "学習しました（文字幅 6 列）");
    EXPECT_HOLDS(seen["level"], "読み返し： 58 → 58、247 → 247、203 → 203、96 → 96");
    EXPECT_HOLDS(seen["level"], "未学習： 1");
    EXPECT_EQ(five, fontGlyph('5'));
    EXPECT_TRUE(one.empty()) << "the built-in templates are seven columns wide: the level's 1, never shown, is empty";
    EXPECT_EQ(seen["read"], "読み取り： 96"); // the last screen, read with what was learnt
    EXPECT_EQ(settings, before);

    EXPECT_TRUE(show({captureAndLearn(kScreens), act([&] {
                          // Letters never reach the field; the number has digits too many.
                          window().setText("txtNumber0", "");
                          window().type("txtNumber0", "5x8 123456");
                          seen["typed"] = window().text("txtNumber0");
                          window().clickNow("cmdLearn");
                          seen["refused"] = window().text("lblMessage0");
                          window().clickNow("cmdCapture"); // no screen left to take
                          seen["failed"] = window().text("lblStatus");
                          window().click("cmdApply");
                      })}));
    EXPECT_EQ(seen["typed"], "58 123456");
    EXPECT_HOLDS(seen["refused"], "8 桁の数字と終わりの記号に分けられません");
    EXPECT_EQ(seen["failed"], "画面を取り込めませんでした。");
    EXPECT_EQ(settings.ReferenceSize[RegionLevel].Width, 6);
    EXPECT_EQ(settings.PatternStrings[RegionLevel][1], "");
    EXPECT_NE(settings.PatternStrings[RegionLevel][9], before.PatternStrings[RegionLevel][9]);
}

TEST_F(CalibrationWindowTest, DraggingOnTheZoomedScreenSetsTheRegionAndAMovedRegionStartsOver)
{
    // The experience number alone, somewhere else on the screen.
    Frame frame = fontScreen({"", "", ""});
    paintFontText(frame, {300, 100, 60, 9}, RegionExp, 2, "4096]");
    const CaptureBitmap shot = toCaptureBitmap(frame);
    bool captureEnabled = true;
    std::map<std::string, std::string> seen;
    EXPECT_TRUE(show({act([&] {
                          captureEnabled = window().enabled("cmdCapture");
                          window().clickNow("optRegion1");
                          window().choose("cboZoom", 1); // 2 times
                          window().drag("picScreen", {2 * 300, 2 * 100}, {2 * 359 + 1, 2 * 108 + 1});
                          seen["reading"] = window().text("lblReading1");
                          window().setText("txtNumber1", "4096");
                          window().clickNow("cmdLearn");
                          seen["learnt"] = window().text("lblMessage1");
                          window().shoot("calibration");
                          window().key("picScreen", Key::Right);
                          seen["moved"] = window().text("lblMessage1");
                          window().click("cmdApply");
                      })},
                     &shot, false));
    EXPECT_FALSE(captureEnabled);
    EXPECT_EQ(seen["reading"], "読み取り： 認識できません"); // the built-in templates are wider
    EXPECT_HOLDS(seen["learnt"], "4096 → 4096");
    EXPECT_EQ(seen["moved"], "");
    EXPECT_EQ(settings.CaptureRegion[RegionExp], (CaptureRegionRect{301, 100, 60, 9}));
    EXPECT_EQ(settings.ReferenceSize[RegionExp].Width, 5);
}

// A UI scaled by one and a half draws the digits a column wider in some places than in
// others: taught, the region is read by shape, which the window says.
TEST_F(CalibrationWindowTest, AScaledUiIsTaughtAsShapesAndTheWindowSaysSo)
{
    const CaptureRegionRect rect{300, 100, 110, 16};
    settings.CaptureRegion[RegionExp] = rect;
    settings.BinaryThreshold[RegionExp] = 135;
    const std::pair<const char*, double> taught[] = {
        {"3,141,592", 1.2}, {"6,535,897", 1.7}, {"9,323,846", 2.1}, {"2,643,383", 1.4}, {"2,795,028", 2.6}};
    for (const auto& [text, origin] : taught)
        screen.screens.push_back(scaledScreen(rect, std::string(text) + "]", {1.5, origin, 0.3, false, false, "", false}));
    screen.screens.push_back(scaledScreen(rect, "1,024,768]", {1.5, 2.3, 0.3, false, false, "", false}));
    std::string message;
    std::string reading;
    EXPECT_TRUE(show({act([&] {
        for (const auto& [text, origin] : taught) {
            window().clickNow("cmdCapture");
            window().setText("txtNumber1", text);
            window().clickNow("cmdLearn");
        }
        message = window().text("lblMessage1");
        window().clickNow("cmdCapture");
        reading = window().text("lblReading1");
        window().shoot("calibration-shapes");
        window().click("cmdApply");
    })}));
    EXPECT_TRUE(message.starts_with("学習しました（字形、高さ ")) << message;
    EXPECT_HOLDS(message, "読み方： 字形、しきい値 135");
    EXPECT_HOLDS(message, "2795028 → 2795028　全数字を学習済み");
    EXPECT_EQ(reading, "読み取り： 1024768");
    EXPECT_EQ(settings.Reading[RegionExp].Mode, ReadingMode::Shapes);
}

} // namespace
} // namespace tvx::test
