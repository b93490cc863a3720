// What a capture leaves behind: a capture that fails is a failed reading with its own
// debug line, and the images kept for the player (capture file, pattern save, screenshots)
// are the whole screen, taken once a cycle.
#include "config/SettingRanges.h"
#include "support/MeterFixture.h"
#include "view/FormMainCommands.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>


namespace tvx {
namespace {

namespace fs = std::filesystem;

// The engine with its capture file in the home folder.
class CaptureTruthTest : public test::MeterFixture {
protected:
    void restart()
    {
        MeterFixture::restart();
        meter().capture().setCaptureFile(temp.path() / "Capture.bmp");
    }
    // One timer tick a capture interval after the last.
    void tick(const std::string& level, const std::string& exp)
    {
        show(level, exp, "");
        machine.clock.advanceMs(6 * 60 * 1000);
        meter().cycle().timCaptureInterval_Timer();
    }
};

TEST_F(CaptureTruthTest, AFailedCaptureIsAFailedReadingWithItsOwnDebugLine)
{
    struct Case {
        const char* name;
        const char* line;
        std::function<void()> arm;
    };
    const std::vector<Case> cases{
        {"no picture", "PrintScreen MissTake ",
         [this] { machine.onGrab = [this] { machine.screens = {std::nullopt}; }; }},
        {"the screen source fails", "Error Trap : GetPictForClip : CODE70  Permission denied",
         [this] { machine.onGrab = [] { throw RuntimeError(ErrorNumber::PermissionDenied); }; }},
        {"a region beyond the screen", "Error Trap : GetPictForClip2 : CODE9  Subscript out of range",
         [this] { settings.CaptureRegion[1].StartX = 1000; }},
        {"the key route's file cannot be written", "CaptureFile Load Misstake ",
         [this] {
             settings.ScreenCapture = CaptureMethod::PrintScreen;
             machine.printScreenKey = true;
             machine.clipboard = {test::gameCapture({"10", "250", ""})};
             meter().capture().setCaptureFile(temp.path() / "missing" / "Capture.bmp");
         }},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        std::filesystem::remove(log.path());
        restart();
        meter().menuRun_Click();
        tick("10", "100"); // the bases
        tick("10", "200");
        const ResultLabels before = meter().state().labels;
        ASSERT_EQ(before.Elapse.Exp, "100");

        const Settings good = settings;
        k.arm();
        tick("10", "250");
        EXPECT_NE(debugText().find(k.line), std::string::npos) << debugText();
        EXPECT_NE(meter().logBox().text().find("認識失敗  全部 NG"), std::string::npos) << meter().logBox().text();
        EXPECT_EQ(meter().state().labels.End.Exp, before.End.Exp);
        EXPECT_EQ(meter().state().labels.Elapse.Exp, before.Elapse.Exp);

        // The next capture that works makes an ordinary record from the last good reading.
        machine.onGrab = nullptr;
        settings = good;
        meter().capture().setCaptureFile(temp.path() / "Capture.bmp");
        tick("10", "300");
        EXPECT_EQ(meter().state().labels.Elapse.Exp, "200");
        const auto lines = test::splitLines(meter().logBox().text());
        EXPECT_NE(lines.back().find(" 12.0 "), std::string::npos) << lines.back();
    }
}

TEST_F(CaptureTruthTest, PixelsThatCannotBeSizedAreLoggedUnderTheirOwnName)
{
    restart();
    meter().menuRun_Click();
    settings.CaptureRegion[2].SizeY = kMaxScreenSide + 1;
    tick("10", "100");
    const std::string text = debugText();
    EXPECT_NE(text.find("Error Trap : GetPictForClip2 : CODE9  Subscript out of range"), std::string::npos) << text;
    EXPECT_NE(text.find("Error Trap : SecurePixels : CODE9  Subscript out of range"), std::string::npos) << text;
    EXPECT_TRUE(meter().state().labels.Start.Time.empty()) << "no reading from pixels that were not taken";
    EXPECT_FALSE(meter().state().busy);
}

TEST_F(CaptureTruthTest, TheImagesKeptForThePlayerAreTheWholeScreen)
{
    const auto frameOf = [](const std::filesystem::path& file) {
        CaptureBitmap read;
        EXPECT_EQ(LoadCaptureBitmap(file, read), CaptureLoadResult::Read) << pathUtf8(file);
        return read.pixels;
    };
    restart();
    const CaptureBitmap screen = test::gameCapture({"50", "1", ""});
    settings.SaveFormat = ".bmp";
    settings.MoneyScan = true;
    meter().menuRun_Click();
    machine.screens = {screen};
    meter().cycle().runCycle(); // the whole screen, then the money region twice
    EXPECT_EQ(frameOf(temp.path() / "Capture.bmp"), screen.pixels) << "the direct route keeps the capture file";

    // The level watch reads its region only; its shots are whole screens, and none of
    // them is the cycle's picture.
    meter().watch().timDoHLInterval_Timer();
    EXPECT_EQ(frameOf(temp.path() / "Capture.bmp"), screen.pixels);
    const CaptureBitmap later = test::gameCapture({"51", "1", "1"}, ScreenMode::FullScreen, 2);
    machine.screens = {later};
    meter().watch().timDoHLInterval_Timer(); // a rise: four shots
    EXPECT_EQ(frameOf(temp.path() / "ss" / "LvUP_20090401130502_d.bmp"), later.pixels);
    FormMainCommands commands(meter(), log, temp.path());
    commands.run(MenuCommand::PatternSave);
    EXPECT_EQ(frameOf(temp.path() / ("Capture" + formatPatternStamp(machine.clock.now()) + ".bmp")), screen.pixels);

    meter().menuPrtScr_Click();
    meter().runGesture(Gesture::PrintScreen);
    // The cycle and its money re-reads, the watch's two region reads, its four shots, the
    // two print screens.
    EXPECT_EQ(machine.grabbedRegions, (std::vector<std::size_t>{0, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0}));

    // A capture file that cannot be written costs its line, not the reading.
    meter().capture().setCaptureFile(temp.path() / "missing" / "Capture.bmp");
    machine.screens = {test::gameCapture({"51", "900", "1"})};
    meter().cycle().runCycle();
    EXPECT_NE(debugText().find("Error Trap : GetPictForClip : CODE75  Path/File access error"), std::string::npos);
    EXPECT_EQ(meter().state().labels.End.Exp, "900");
}

TEST_F(CaptureTruthTest, TheCyclesPictureIsReadBackFromTheCaptureFileUnlessTheFileCannotHoldIt)
{
    restart();
    meter().menuRun_Click();
    const auto kept = [this] {
        const std::optional<CaptureBitmap> picture = meter().cycle().lastCapture();
        return picture ? picture->pixels : std::vector<std::uint8_t>{};
    };
    const fs::path file = temp.path() / "Capture.bmp";
    const CaptureBitmap first = test::gameCapture({"50", "1", ""});
    machine.screens = {first};
    meter().cycle().runCycle();
    EXPECT_EQ(kept(), first.pixels);

    // A file that cannot be written: the picture is held in memory instead.
    meter().capture().setCaptureFile(temp.path() / "missing" / "Capture.bmp");
    const CaptureBitmap second = test::gameCapture({"50", "2", ""});
    machine.screens = {second};
    meter().cycle().runCycle();
    EXPECT_EQ(kept(), second.pixels);
    meter().capture().setCaptureFile(file);
    EXPECT_EQ(kept(), second.pixels);

    // A region read leaves file and picture alone; a whole screen that is no reading's is
    // written, and the picture moves to memory first.
    const CaptureBitmap third = test::gameCapture({"51", "3", ""});
    machine.screens = {third};
    meter().cycle().runCycle();
    meter().watch().timDoHLInterval_Timer();
    const CaptureBitmap shot = test::gameCapture({"52", "4", ""}, ScreenMode::FullScreen, 2);
    machine.screens = {shot};
    meter().menuPrtScr_Click();
    CaptureBitmap onDisk;
    ASSERT_EQ(LoadCaptureBitmap(file, onDisk), CaptureLoadResult::Read);
    EXPECT_EQ(onDisk.pixels, shot.pixels);
    EXPECT_EQ(kept(), third.pixels);

    // Another program replaces the file the picture lives in: no picture, and the debug
    // log says why, rather than the other program's picture passing for the reading's.
    machine.screens = {third};
    meter().cycle().runCycle();
    ASSERT_TRUE(writeBitmap24(file, toFrame(shot)));
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(2));
    EXPECT_TRUE(kept().empty());
    EXPECT_NE(debugText().find("CaptureFile Changed : Last Capture Lost "), std::string::npos);
    FormMainCommands(meter(), log, temp.path()).run(MenuCommand::PatternSave);
    EXPECT_NE(meter().logBox().text().find("まだキャプチャしていません"), std::string::npos);
}

} // namespace
} // namespace tvx
