#include "view/Calibration.h"

#include "ports/ScreenSource.h"
#include "shell/DebugLog.h"
#include "support/BitmapFont.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

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
    EXPECT_EQ(exp.text, "学習しました（文字幅 6 列）\n読み方： 完全一致、しきい値 133\n"
                        "読み返し： 1234567 → 1234567、8890123 → 8890123、4455667 → 4455667　全数字を学習済み");
    EXPECT_EQ(exp.glyphs[5], test::fontGlyph('5'));
    EXPECT_EQ(calibration.preview(RegionExp).reading, "4455667"); // the last screen, with what was learnt
    EXPECT_FALSE(calibration.picker().preview(RegionExp).read); // the built-in templates cannot

    const CalibrationRegionView money = calibration.view(RegionMoney);
    EXPECT_EQ(money.message, "");
    EXPECT_EQ(money.text, "");
    EXPECT_EQ(money.missing, ""); // the built-in templates read every digit
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

class OneScreen : public ScreenSource {
public:
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect>) override { return std::exchange(screen, {}); }
    std::optional<CaptureBitmap> screen;
};

TEST(CalibrationTest, TheCommandsAreLoggedAndSayWhatHappened)
{
    test::TempFolder home;
    test::FakeClock clock{LocalDateTime{2024, 3, 9, 7, 5, 2}};
    DebugLog log{home.path(), clock};
    Calibration calibration(kDefaults, &log);
    OneScreen source;
    EXPECT_EQ(calibration.learnCommand(), "先に画面を取り込んでください。");
    EXPECT_EQ(calibration.beginCapture(), "10秒後に取り込みます。ゲームを前面に出してください…");
    EXPECT_EQ(calibration.captureScreen(source), "画面を取り込めませんでした。");
    EXPECT_FALSE(calibration.picker().screen());

    source.screen = toCaptureBitmap(test::fontScreen({"", "1234567", ""}));
    EXPECT_EQ(calibration.captureScreen(source), "取り込みました。数字を入力して「学習する」を押してください。");
    EXPECT_EQ(calibration.learnCommand(), "数字を入力してください。"); // nothing typed
    calibration.setTyped(RegionExp, "  1,234,567 "); // blanks around do not count
    EXPECT_EQ(calibration.view(RegionExp).typed, "1,234,567");
    EXPECT_EQ(calibration.learnCommand(), "");
    const std::string text = calibration.view(RegionExp).text;
    EXPECT_NE(text.find("\n読み返し： 1234567 → 1234567　未学習： 089"), std::string::npos) << text;
    EXPECT_EQ(Calibration::readingText(calibration.preview(RegionExp)), "読み取り： 1234567");

    Settings settings = kDefaults;
    calibration.applyCommand(settings);
    EXPECT_EQ(settings.ReferenceSize[RegionExp].Width, calibration.view(RegionExp).width);
    EXPECT_NE(settings.PatternStrings[RegionExp][1], kDefaults.PatternStrings[RegionExp][1]);
    const std::string written = test::readAll(log.path());
    for (const char* line : {"Click : Calibration Learn ", "Click : Calibration Capture ",
                             "Error Trap : cmdCalibrationCapture_Click", "Click : Calibration Apply "})
        EXPECT_NE(written.find(line), std::string::npos) << line << "\n" << written;
}

TEST(CalibrationTest, TheNumberFieldsTakeDigitsSeparatorsAndTheSkippingDash)
{
    for (const char32_t c : {U'0', U'5', U'9', U',', U' ', U'-'})
        EXPECT_TRUE(Calibration::acceptsNumberCharacter(c)) << static_cast<std::uint32_t>(c);
    for (const char32_t c : {U'a', U'.', U'+', U'\u3000', U'\uFF11', U'\t'})
        EXPECT_FALSE(Calibration::acceptsNumberCharacter(c)) << static_cast<std::uint32_t>(c);
}

} // namespace
} // namespace tvx
