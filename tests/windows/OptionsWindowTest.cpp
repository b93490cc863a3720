// The options window played the same way in both front ends; what the edits mean is the core's OptionsEditor.
#include "support/WindowDriver.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "shell/DebugLog.h"
#include "support/FakeClock.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/ScriptedScreen.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"
#include "view/OptionFields.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace tvx::test {
namespace {

using Button = Desktop::Button;

class OptionsWindowTest : public testing::Test {
protected:
    // The window over the last capture while the steps play; the last step closes it.
    void show(std::deque<PlayerStep> steps, const CaptureBitmap* capture = nullptr, WindowServices services = {})
    {
        steps.push_front([this] { return options().isOpen(); });
        services.settingsChanged = [this] { ++changes; };
        play(std::move(steps), [&] { desktop->showOptions(config, capture, services); });
    }

    WindowDriver& options() { return desktop->options(); }

    // Steps: the number button clicked and the dialog answered ("" cancels it).
    void answerNumber(std::deque<PlayerStep>& steps, const std::string& button, const std::string& typed)
    {
        steps.push_back(act([this, button] { options().click(button); }));
        steps.push_back([this, typed] {
            WindowDriver& number = desktop->numberDialog();
            if (!number.isOpen() || !number.focused("txtInput"))
                return false;
            dialogCentre = {number.frame().centreX(), number.frame().centreY()};
            if (!typed.empty())
                number.type("txtInput", typed);
            number.click(typed.empty() ? "cmdCancel" : "cmdEnter");
            return true;
        });
        steps.push_back([this] { return !desktop->numberDialog().isOpen(); });
    }

    std::string file() const { return codec->fromCp932(readAll(home / "TV2MConfig.ini")).value_or(""); }

    TempFolder temp;
    const std::filesystem::path& home = temp.path();
    FakeClock clock{LocalDateTime{2024, 3, 9, 7, 5, 2}};
    DebugLog log{home, clock};
    std::unique_ptr<Desktop> desktop = makeDesktop();
    std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    Settings settings = defaultSettings(pathUtf8(home));
    int sized = 0;
    int changes = 0;
    WindowDriver::Point dialogCentre;
    ConfigFile config{settings, home, desktop->prompter(), *codec, &log, [this] { ++sized; }};
};

TEST_F(OptionsWindowTest, NumbersAreAskedOverTheWindowAndTheButtonsRunTheConfigurationFile)
{
    std::map<std::string, std::string> seen;
    const auto note = [&](const std::string& what, const std::string& control) {
        return act([&, what, control] { seen[what] = options().text(control); });
    };
    bool captureEnabled = true;
    WindowDriver::Box window;
    std::string saved;
    std::string question;
    std::deque<PlayerStep> steps{act([&] {
        captureEnabled = options().enabled("cmdCapture");
        window = options().frame();
    })};
    steps.push_back(note("first", "cmdCaptureInterval"));
    answerNumber(steps, "cmdCaptureInterval", "");
    steps.push_back(note("cancelled", "cmdCaptureInterval"));
    answerNumber(steps, "cmdCaptureInterval", "12");
    steps.push_back(note("typed", "cmdCaptureInterval"));
    answerNumber(steps, "cmdSizeY1", "12"); // a region size resizes the capture buffers at once
    int sizedByRegion = 0;
    steps.push_back(act([&] {
        sizedByRegion = sized;
        seen["method0"] = options().text("cboScreenCapture");
        options().choose("cboScreenCapture", 1);
        options().clickNow("chkGraph");
        options().click("cmdSave");
    }));
    steps.push_back(desktop->answer("設定", Button::Ok, &saved));
    steps.push_back(act([&] {
        seen["file"] = file();
        options().click("cmdInit");
    }));
    steps.push_back(desktop->answer("検査領域追従選択", Button::Yes));
    steps.push_back(desktop->answer("検査領域追従選択", Button::Ok));
    steps.push_back(note("defaults", "cmdCaptureInterval"));
    steps.push_back(note("method", "cboScreenCapture"));
    answerNumber(steps, "cmdCaptureInterval", "30");
    steps.push_back(act([&] { options().close(); }));
    steps.push_back(desktop->answer("設定", Button::Yes, &question)); // unsaved edits: saved on closing
    steps.push_back(desktop->answer("設定", Button::Ok));
    show(std::move(steps));

    EXPECT_FALSE(captureEnabled) << "no screen to capture";
    EXPECT_EQ((std::vector<std::string>{seen["first"], seen["cancelled"], seen["typed"], seen["defaults"]}),
              (std::vector<std::string>{"6", "6", "12", "6"}));
    EXPECT_TRUE(window.contains(dialogCentre)) << "the number dialog opens over the window";
    EXPECT_EQ(saved, "設定を保存しました。");
    EXPECT_HOLDS(seen["file"], "     12 ,          キャプチャインターバル(分)\r\n");
    EXPECT_HOLDS(seen["file"], "      1 ,          画面の取り込み方法");
    EXPECT_HOLDS(seen["file"], "  False ,     20 ,"); // the graph switched off
    EXPECT_EQ(sizedByRegion, 1);
    EXPECT_EQ(settings.CaptureRegion[RegionExp].SizeY, 9) << "the defaults' again";
    EXPECT_GE(changes, 4);
    EXPECT_EQ(seen["method"], seen["method0"]) << "the defaults take the direct copy again";
    EXPECT_EQ(settings.ScreenCapture, CaptureMethod::Direct);
    EXPECT_TRUE(question.starts_with("変更した設定はまだ保存されていません。")) << question;
    EXPECT_EQ(settings.CaptureInterval, 30);
    EXPECT_HOLDS(file(), "     30 ,          キャプチャインターバル(分)\r\n");
}

TEST_F(OptionsWindowTest, ThePatternCaptureWaitsWithTheReadingsHeldAndShowsTheRegions)
{
    FakeMachine machine; // the screen, then none; its waits noted
    machine.screens = {gameCapture({"137", "", ""}), std::nullopt};
    machine.bandRows = 0;
    bool cycleSkip = false;
    bool heldMeanwhile = false;
    machine.onWait = [&](std::int32_t) { heldMeanwhile = cycleSkip; };
    std::string before;
    std::string read;
    std::string failed;
    std::set<std::array<std::uint8_t, 3>> colours;
    show({act([&] {
              before = options().text("lblResult0");
              options().click("cmdCapture");
          }),
          act([&] {
              read = options().text("lblResult0");
              const Frame shown = options().picture("picCapture0");
              for (std::size_t i = 0; i + 3 <= shown.bytes().size(); i += 3)
                  colours.insert({shown.bytes()[i], shown.bytes()[i + 1], shown.bytes()[i + 2]});
              options().click("cmdCapture"); // no screen left to take
          }),
          act([&] {
              failed = options().text("lblCaptureStatus");
              options().close();
          })},
         nullptr, {&machine, &machine, &clock, &cycleSkip, nullptr, {}});
    EXPECT_EQ(before, "認識結果： キャプチャ画像がありません　［完全一致］");
    EXPECT_EQ(machine.events, (std::vector<std::string>{"wait 10000", "wait 10000"}));
    EXPECT_EQ(machine.grabbedRegions, (std::vector<std::size_t>{0, 0})) << "the whole screen";
    EXPECT_TRUE(heldMeanwhile) << "no reading meanwhile";
    EXPECT_FALSE(cycleSkip) << "and readings go on afterwards";
    EXPECT_TRUE(std::filesystem::exists(home / "Capture_0309070502.bmp"));
    EXPECT_EQ(sized, 1);
    EXPECT_EQ(read, "認識結果： 137　［完全一致］");
    EXPECT_GT(colours.size(), 2u) << "the region's picture";
    EXPECT_EQ(failed, "キャプチャできませんでした。");
}

TEST_F(OptionsWindowTest, ATemplateIsTakenFromTheCapturesColumnsOrDrawnPixelByPixel)
{
    const std::string five = settings.PatternStrings[RegionLevel][5];
    settings.PatternStrings[RegionLevel][5] = "";
    const CaptureBitmap capture = gameCapture({"57", "", ""});
    std::string before;
    std::string taken;
    std::string question;
    bool takeEnabled = false;
    show({act([&] {
              before = options().text("lblResult0");
              options().clickCell("picPattern5", 0, 0);
              options().clickCell("picColumns", 1, 0); // the "5" starts at column 1: one glyph width from there
              takeEnabled = options().enabled("cmdTakeColumns");
              options().clickNow("cmdTakeColumns");
              taken = options().text("lblResult0");
              options().clickCell("picEditor", 0, 0); // row 0 of the first column is blank in every template
              options().close();
          }),
          desktop->answer("設定", Button::No, &question)},
         &capture);
    EXPECT_EQ(before, "認識結果： 認識できません（未学習：5）　［完全一致］");
    EXPECT_TRUE(takeEnabled);
    EXPECT_EQ(taken, "認識結果： 57　［完全一致］");
    EXPECT_EQ(settings.PatternStrings[RegionLevel][5], "004F" + five.substr(4));
    EXPECT_FALSE(question.empty()) << "the edits were not saved, so closing asked";
    EXPECT_EQ(file(), "") << "and No saves nothing";
}

TEST_F(OptionsWindowTest, TheCalibrationWindowOpensFromItAndWhatIsAppliedIsShown)
{
    const CaptureBitmap screen = fontCapture({"", "4096", ""}, 1);
    WindowDriver& calibration = desktop->calibration();
    std::string before;
    std::string after;
    show({act([&] {
              before = options().text("lblResult1");
              options().click("cmdCalibrate");
          }),
          [&] {
              if (!calibration.isOpen())
                  return false;
              calibration.setText("txtNumber1", "4,096");
              calibration.clickNow("cmdLearn");
              calibration.click("cmdApply");
              return true;
          },
          [&] {
              // Closed, the calibration hands its result over before the window redraws.
              if (calibration.isOpen() || options().text("lblResult1") == before)
                  return false;
              after = options().text("lblResult1");
              options().close();
              return true;
          },
          desktop->answer("設定", Button::No)},
         &screen);
    EXPECT_EQ(before, "認識結果： 認識できません　［完全一致］");
    EXPECT_EQ(after, "認識結果： 4096　［完全一致］");
    EXPECT_EQ(sized, 1);
    EXPECT_EQ(settings.ReferenceSize[RegionExp].Width, 5);
}

TEST_F(OptionsWindowTest, ALanguageChosenBecomesCurrentOnClosingAndTheWindowSaysSoInIt)
{
    struct BackToJapanese {
        ~BackToJapanese() { setLanguage(Language::Japanese); }
    } restore;
    std::string listed;
    std::string told;
    int changesBeforeClosing = 0;
    show({act([&] {
              listed = options().text("cboLanguage");
              options().choose("cboLanguage", 1);
              changesBeforeClosing = changes;
              options().close();
          }),
          desktop->answer("設定", Button::Yes), // the unsaved edit is saved
          desktop->answer("設定", Button::Ok),
          [&] {
              // Its title looked up when it shows, in the language current by then.
              const std::optional<std::string> shown = desktop->answerBox(std::string(kOptionsTitle), Button::Ok);
              told = shown.value_or("");
              return shown.has_value();
          }});
    EXPECT_EQ(listed, "日本語");
    EXPECT_EQ(settings.UiLanguage, "en");
    EXPECT_HOLDS(file(), "表示するかどうか\r\nen     ,");
    EXPECT_EQ(currentLanguage(), Language::English);
    EXPECT_EQ(told, tr("表示の言語を変更しました。開いている画面は次に開いたときから、メイン画面はすぐに切り替わります。"));
    EXPECT_GT(changes, changesBeforeClosing) << "the main window hears of it";

    // Taken back before the window is left with Escape: no question, no message, no change.
    setLanguage(Language::Japanese);
    settings.UiLanguage = "ja";
    config.run(ConfigFile::Save);
    show({act([&] {
        options().choose("cboLanguage", 1);
        options().choose("cboLanguage", 0);
        options().press(WindowDriver::Key::Escape);
    })});
    EXPECT_EQ(settings.UiLanguage, "ja");
    EXPECT_EQ(currentLanguage(), Language::Japanese);
}

} // namespace
} // namespace tvx::test
