// Every window in each language, the same in the Qt and the Win32 front end: each text fits the control that
// shows it at the window's size (they were laid out for Japanese). With TALLIVEX_SHOT_DIR set, the read-me's pictures.
#include "support/WindowDriver.h"

#include "base/Language.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/TempFolder.h"
#include "view/OptionFields.h"

#include "TextCodecFactory.h"

#include <gtest/gtest.h>

namespace tvx::test {
namespace {

class LanguagesTest : public testing::TestWithParam<Language> {
protected:
    void SetUp() override
    {
        setLanguage(GetParam());
        settings.SaveFolder = pathUtf8(temp.path());
        settings.StartDelay = 0;
    }
    void TearDown() override { setLanguage(Language::Japanese); }

    // A step: nothing of the window is cut off; its picture kept as NAME-LANG.
    PlayerStep whole(WindowDriver& window, const std::string& name)
    {
        return act([this, &window, name] {
            EXPECT_EQ(window.clipped(), std::vector<std::string>{}) << name;
            window.shoot(name + "-" + languageCode(GetParam()));
        });
    }

    TempFolder temp;
    FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    std::unique_ptr<Desktop> desktop = makeDesktop();
};

TEST_P(LanguagesTest, EveryPageOfTheOptionsTheNumberDialogAndTheCalibrationWindowFit)
{
    ConfigFile config(settings, temp.path(), desktop->prompter(), *codec, &log, [] {});
    const CaptureBitmap screen = gameCapture({"58", "1234567", "90,210"});
    WindowDriver& options = desktop->options();
    std::deque<PlayerStep> steps{[&] { return options.isOpen(); }};
    for (int tab = 0; tab < kOptionTabCount; ++tab) {
        steps.push_back(act([&options, tab] { options.choose("tabOption", tab); }));
        steps.push_back(whole(options, "options-" + std::to_string(tab + 1)));
    }
    steps.push_back(act([&options] { options.click("cmdCaptureInterval"); }));
    steps.push_back([this] { return desktop->numberDialog().isOpen() && desktop->numberDialog().focused("txtInput"); });
    steps.push_back(whole(desktop->numberDialog(), "number"));
    steps.push_back(act([this] { desktop->numberDialog().click("cmdCancel"); }));
    steps.push_back([this] { return !desktop->numberDialog().isOpen(); });
    steps.push_back(act([&options] { options.close(); }));
    play(std::move(steps), [&] { desktop->showOptions(config, &screen, {}); });

    WindowDriver& window = desktop->calibration();
    play({[&] { return window.isOpen(); }, act([&] { window.choose("cboZoom", 1); }), whole(window, "calibration"),
          act([&] { window.click("cmdCancel"); })},
         [&] { desktop->showCalibration(settings, &screen, {}); });
}

TEST_P(LanguagesTest, TheMainWindowAndTheCompactWindowFitWithASessionRunning)
{
    settings.CompactShown = true;
    const std::unique_ptr<MainWindowHost> host = makeMainWindowHost(settings, log, machine);
    host->load();
    for (const auto& numbers : {std::array<std::string, kRegionCount>{"58", "1234567", "90,210"},
                                std::array<std::string, kRegionCount>{"59", "23456", "1,234,567"}}) {
        machine.clock.advanceMs(600000);
        machine.screens = {gameCapture(numbers)};
        host->meter().cycle().runCycle();
    }
    EXPECT_EQ(host->window().clipped(), std::vector<std::string>{});
    EXPECT_EQ(host->compact().clipped(), std::vector<std::string>{});
    EXPECT_TRUE(host->compactShown().whole);
    host->close();
}

INSTANTIATE_TEST_SUITE_P(Translated, LanguagesTest, testing::ValuesIn(kLanguages),
                         [](const testing::TestParamInfo<Language>& info) { return languageCode(info.param); });

} // namespace
} // namespace tvx::test
