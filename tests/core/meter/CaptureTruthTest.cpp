// What a capture leaves behind: a capture that fails is a failed reading with its own
// debug line, and the images kept for the player (capture file, pattern save, screenshots)
// are the whole screen, taken once a cycle.
#include "config/SettingRanges.h"
#include "support/MeterFixture.h"
#include "view/FormMainCommands.h"

#include <gtest/gtest.h>

#include <functional>

namespace tvx {
namespace {

// A machine whose screen source can be made to fail.
class FailingMachine : public test::FakeMachine {
public:
    std::function<void()> onGrab;
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect> wanted) override
    {
        if (onGrab)
            onGrab();
        return FakeMachine::grab(wanted);
    }
};

// One engine over a failing machine, its capture file in the home folder.
struct Rig {
    explicit Rig(const test::TempFolder& home, DebugLog& log)
    {
        settings.SaveFolder = pathUtf8(home.path());
        settings.StartDelay = 0;
        machine.clock.setNow(test::kStart);
        MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, machine, &machine};
        meter = std::make_unique<Meter>(settings, ports, log);
        meter->capture().setCaptureFile(home.path() / "Capture.bmp");
    }
    // One timer tick a capture interval after the last.
    void tick(const std::string& level, const std::string& exp)
    {
        machine.screens = {test::gameCapture({level, exp, ""})};
        machine.clock.advanceMs(6 * 60 * 1000);
        meter->cycle().timCaptureInterval_Timer();
    }

    FailingMachine machine;
    Settings settings = defaultSettings("");
    std::unique_ptr<Meter> meter;
};

using CaptureTruthTest = test::MeterFixture;

TEST_F(CaptureTruthTest, AFailedCaptureIsAFailedReadingWithItsOwnDebugLine)
{
    struct Case {
        const char* name;
        const char* line;
        std::function<void(Rig&)> arm;
    };
    const std::vector<Case> cases{
        {"no picture", "PrintScreen MissTake ", [](Rig& r) { r.machine.onGrab = [&r] { r.machine.screens = {std::nullopt}; }; }},
        {"the screen source fails", "Error Trap : GetPictForClip : CODE70  Permission denied",
         [](Rig& r) { r.machine.onGrab = [] { throw RuntimeError(ErrorNumber::PermissionDenied); }; }},
        {"a region beyond the screen", "Error Trap : GetPictForClip2 : CODE9  Subscript out of range",
         [](Rig& r) { r.settings.CaptureRegion[1].StartX = 1000; }},
        {"the key route's file cannot be written", "CaptureFile Load Misstake ",
         [](Rig& r) {
             r.settings.ScreenCapture = CaptureMethod::PrintScreen;
             r.machine.printScreenKey = true;
             r.machine.clipboard = {test::gameCapture({"10", "250", ""})};
             r.meter->capture().setCaptureFile(utf8Path(r.settings.SaveFolder) / "missing" / "Capture.bmp");
         }},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        std::filesystem::remove(log.path());
        Rig r(temp, log);
        r.meter->menuRun_Click();
        r.tick("10", "100"); // the bases
        r.tick("10", "200");
        const ResultLabels before = r.meter->state().labels;
        ASSERT_EQ(before.Elapse.Exp, "100");

        const Settings good = r.settings;
        k.arm(r);
        r.tick("10", "250");
        EXPECT_NE(debugText().find(k.line), std::string::npos) << debugText();
        EXPECT_NE(r.meter->logBox().text().find("認識失敗  全部 NG"), std::string::npos) << r.meter->logBox().text();
        EXPECT_EQ(r.meter->state().labels.End.Exp, before.End.Exp);
        EXPECT_EQ(r.meter->state().labels.Elapse.Exp, before.Elapse.Exp);

        // The next capture that works makes an ordinary record from the last good reading.
        r.machine.onGrab = nullptr;
        r.settings = good;
        r.meter->capture().setCaptureFile(temp.path() / "Capture.bmp");
        r.tick("10", "300");
        EXPECT_EQ(r.meter->state().labels.Elapse.Exp, "200");
        const auto lines = test::splitLines(r.meter->logBox().text());
        EXPECT_NE(lines.back().find(" 12.0 "), std::string::npos) << lines.back();
    }
}

TEST_F(CaptureTruthTest, PixelsThatCannotBeSizedAreLoggedUnderTheirOwnName)
{
    Rig r(temp, log);
    r.meter->menuRun_Click();
    r.settings.CaptureRegion[2].SizeY = kMaxScreenSide + 1;
    r.tick("10", "100");
    const std::string text = debugText();
    EXPECT_NE(text.find("Error Trap : GetPictForClip2 : CODE9  Subscript out of range"), std::string::npos) << text;
    EXPECT_NE(text.find("Error Trap : SecurePixels : CODE9  Subscript out of range"), std::string::npos) << text;
    EXPECT_TRUE(r.meter->state().labels.Start.Time.empty()) << "no reading from pixels that were not taken";
    EXPECT_FALSE(r.meter->state().busy);
}

TEST_F(CaptureTruthTest, TheImagesKeptForThePlayerAreTheWholeScreen)
{
    const auto frameOf = [](const std::filesystem::path& file) {
        CaptureBitmap read;
        EXPECT_EQ(LoadCaptureBitmap(file, read), CaptureLoadResult::Read) << pathUtf8(file);
        return read.pixels;
    };
    Rig r(temp, log);
    const CaptureBitmap screen = test::gameCapture({"50", "1", "1"});
    r.settings.SaveFormat = ".bmp";
    r.meter->menuRun_Click();
    r.machine.screens = {screen};
    r.meter->cycle().runCycle();
    EXPECT_EQ(frameOf(temp.path() / "Capture.bmp"), screen.pixels) << "the direct route keeps the capture file";

    // The level watch reads its region only; its shots are whole screens, and none of
    // them is the cycle's picture.
    r.meter->watch().timDoHLInterval_Timer();
    EXPECT_EQ(frameOf(temp.path() / "Capture.bmp"), screen.pixels);
    const CaptureBitmap later = test::gameCapture({"51", "1", "1"}, ScreenMode::FullScreen, 2);
    r.machine.screens = {later};
    r.meter->watch().timDoHLInterval_Timer(); // a rise: four shots
    EXPECT_EQ(frameOf(temp.path() / "ss" / "LvUP_20090401130500_d.bmp"), later.pixels);
    FormMainCommands commands(*r.meter, log, temp.path());
    commands.run(MenuCommand::PatternSave);
    EXPECT_EQ(frameOf(temp.path() / "Capture_0401130500.bmp"), screen.pixels);

    r.meter->menuPrtScr_Click();
    r.meter->runGesture(Gesture::PrintScreen);
    // The cycle, the watch's two region reads, its four shots, the two print screens.
    EXPECT_EQ(r.machine.grabbedRegions, (std::vector<std::size_t>{0, 1, 1, 0, 0, 0, 0, 0, 0}));

    // A capture file that cannot be written costs its line, not the reading.
    r.meter->capture().setCaptureFile(temp.path() / "missing" / "Capture.bmp");
    r.machine.screens = {test::gameCapture({"51", "900", "1"})};
    r.meter->cycle().runCycle();
    EXPECT_NE(debugText().find("Error Trap : GetPictForClip : CODE75  Path/File access error"), std::string::npos);
    EXPECT_EQ(r.meter->state().labels.End.Exp, "900");
}

} // namespace
} // namespace tvx
