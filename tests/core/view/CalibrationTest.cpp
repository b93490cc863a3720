// The calibration's core: regions picked on the zoomed screen, screens learnt with the numbers
// the player types, and the settings changed only when confirmed.
#include "shell/DebugLog.h"
#include "view/Calibration.h"
#include "view/RegionPicker.h"
#include "view/RegionPreview.h"
#include "support/BitmapFont.h"
#include "support/FakeClock.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/ScriptedScreen.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

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

    // The text is made of the message, the readings back and the digits missing.
    const CalibrationRegionView exp = calibration.view(RegionExp);
    EXPECT_FALSE(calibration.picker().preview(RegionExp).read); // the built-in templates cannot
    EXPECT_EQ(exp.text, "学習しました（文字幅 6 列）\n読み方： 完全一致、しきい値 133\n"
                        "読み返し： 1234567 → 1234567、8890123 → 8890123、4455667 → 4455667　全数字を学習済み");
    const CalibrationRegionView money = calibration.view(RegionMoney);
    EXPECT_EQ(money.text, "");
    EXPECT_EQ(money.missing, ""); // the built-in templates read every digit

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
    };
    for (const auto& [typed, message] : cases) {
        calibration.setTyped(RegionLevel, typed);
        calibration.learn();
        const CalibrationRegionView view = calibration.view(RegionLevel);
        EXPECT_TRUE(view.refused) << typed;
        EXPECT_HOLDS(view.message, message);
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

TEST(CalibrationTest, TheCommandsAreLoggedAndSayWhatHappened)
{
    test::TempFolder home;
    test::FakeClock clock{LocalDateTime{2024, 3, 9, 7, 5, 2}};
    DebugLog log{home.path(), clock};
    Calibration calibration(kDefaults, &log);
    test::ScriptedScreen source;
    EXPECT_EQ(calibration.beginCapture(), "10秒後に取り込みます。ゲームを前面に出してください…");
    source.screens = {test::fontCapture({"", "1234567", ""}, 1)};
    EXPECT_EQ(calibration.captureScreen(source), "取り込みました。数字を入力して「学習する」を押してください。");
    EXPECT_EQ(calibration.learnCommand(), "数字を入力してください。"); // nothing typed
    calibration.setTyped(RegionExp, "  1,234,567 "); // blanks around do not count
    EXPECT_EQ(calibration.view(RegionExp).typed, "1,234,567");
    EXPECT_EQ(calibration.learnCommand(), "");
    EXPECT_HOLDS(calibration.view(RegionExp).text, "\n読み返し： 1234567 → 1234567　未学習： 089");

    Settings settings = kDefaults;
    calibration.applyCommand(settings);
    EXPECT_EQ(settings.ReferenceSize[RegionExp].Width, calibration.view(RegionExp).width);
    EXPECT_NE(settings.PatternStrings[RegionExp][1], kDefaults.PatternStrings[RegionExp][1]);
    EXPECT_HOLDS(test::readAll(log.path()), "Click : Calibration Capture ");

    // The number fields take digits, separators and the skipping dash; not the IME's full-width forms.
    for (const char32_t c : {U'0', U'9', U',', U' ', U'-'})
        EXPECT_TRUE(Calibration::acceptsNumberCharacter(c)) << static_cast<std::uint32_t>(c);
    for (const char32_t c : {U'.', U'+', U'\u3000', U'\uFF11', U'\t'})
        EXPECT_FALSE(Calibration::acceptsNumberCharacter(c)) << static_cast<std::uint32_t>(c);
}

TEST(RegionPickerTest, PicturePointsMapToScreenPixelsAtEveryZoomAndADragSpansItsCornerPixels)
{
    RegionPicker picker(defaultSettings(""));
    picker.setScreen(test::gameCapture({"137", "4567890", "1234567890"}));
    struct Case { std::int32_t zoomAsked, zoom, x, y, pixelX, pixelY; };
    const Case cases[] = {
        {1, 1, 10, 20, 10, 20},    {2, 2, 21, 41, 10, 20}, {3, 2, 21, 41, 10, 20},
        {100, 16, 160, 16, 10, 1}, {0, 1, -5, -1, 0, 0},   {4, 4, 99999, 99999, 1023, 767},
    };
    for (const Case& c : cases) {
        picker.setZoom(c.zoomAsked);
        EXPECT_EQ(picker.zoom(), c.zoom) << c.zoomAsked;
        const ScreenPoint p = picker.screenPixel(c.x, c.y);
        EXPECT_EQ(std::pair(p.x, p.y), std::pair(c.pixelX, c.pixelY)) << c.zoomAsked << " " << c.x << "," << c.y;
    }

    // A drag spans the rectangle of its corner pixels.
    picker.setZoom(4);
    picker.selectRegion(RegionExp);
    struct Drag { std::int32_t fromX, fromY, toX, toY; CaptureRegionRect rect; };
    const Drag drags[] = {
        {763, 2035, 400, 2000, {100, 500, 91, 9}}, // left and up; both corners included
        {400, 2000, 403, 2003, {100, 500, 1, 1}},  // a click is one pixel
        {400, 2000, 800, 2200, {100, 500, 101, 51}}, // taller than a column group: read by shape
        {400, 2200, 800, 2000, {100, 500, 101, 51}}, // the same region again, dragged up
    };
    for (const Drag& c : drags) {
        picker.press(c.fromX, c.fromY);
        picker.drag((c.fromX + c.toX) / 2, (c.fromY + c.toY) / 2);
        EXPECT_TRUE(picker.dragging());
        picker.release(c.toX, c.toY);
        EXPECT_FALSE(picker.dragging());
        EXPECT_EQ(picker.settings().CaptureRegion[RegionExp], c.rect) << c.toX << "," << c.toY;
    }
    EXPECT_EQ(picker.settings().CaptureRegion[RegionLevel], defaultSettings("").CaptureRegion[RegionLevel]);
    EXPECT_EQ(picker.pictureRect(RegionExp), (CaptureRegionRect{400, 2000, 404, 204}));
    EXPECT_EQ(std::pair(picker.selectedCentre().x, picker.selectedCentre().y), std::pair(400 + 202, 2000 + 102))
        << "where a new zoom scrolls to";
    EXPECT_FALSE(picker.drag(0, 0)); // no drag without a press

    // Nudged, a region stays on the screen.
    picker.selectRegion(RegionMoney); // 0, 269, 146 x 9
    EXPECT_FALSE(picker.nudge(-1, 0));
    EXPECT_TRUE(picker.nudge(3, -2));
    EXPECT_EQ(picker.settings().CaptureRegion[RegionMoney], (CaptureRegionRect{3, 267, 146, 9}));
    EXPECT_TRUE(picker.nudge(5000, 5000));
    EXPECT_EQ(picker.settings().CaptureRegion[RegionMoney], (CaptureRegionRect{1024 - 146, 768 - 9, 146, 9}));
}

TEST(RegionPixelsTest, PixelsOffThePictureReadBlackAndTheRestAs0xRRGGBB)
{
    Frame frame(4, 2);
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 2; ++y)
            frame.setPixel(x, y, 1, 2, static_cast<std::uint8_t>(10 * x + y)); // blue, green, red
    const std::vector<std::uint32_t> pixels = regionPixels(toCaptureBitmap(frame), {2, 1, 3, 2});
    EXPECT_EQ(pixels, (std::vector<std::uint32_t>{0x150201, 0x1F0201, 0, 0, 0, 0}));
}

} // namespace
} // namespace tvx
