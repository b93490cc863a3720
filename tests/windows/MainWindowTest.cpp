// The main window's menus, account and log, the same in the Qt and the Win32 front end.
#include "support/WindowDriver.h"

#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "view/GraphFrameView.h"
#include "view/JokePopup.h"
#include "view/MainMenu.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tvx::test {
namespace {

class MainWindowTest : public testing::Test {
protected:
    MainWindowTest()
    {
        settings.SaveFolder = temp.path().string();
        settings.StartDelay = 0;
    }

    std::string debugLog() const { return readAll(log.path()); }

    TempFolder temp;
    FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    std::unique_ptr<MainWindowHost> host = makeMainWindowHost(settings, log, machine);
};

TEST_F(MainWindowTest, MenusCarryTheirCaptionsAndRunWaitsForTheLoad)
{
    EXPECT_EQ(host->title(), "Tallivex  for MapleStory    Ver.2.20");
    // Every item of the core's menu, as the core captions it.
    for (int command = 0; command <= static_cast<int>(MenuCommand::Version); ++command) {
        const MenuItem& item = menuItem(static_cast<MenuCommand>(command));
        EXPECT_EQ(host->menuText(std::string(item.name)), item.text()) << item.name;
    }
    EXPECT_FALSE(host->menuEnabled("menuRun"));
    EXPECT_FALSE(host->menuEnabled("menuStop"));
    EXPECT_EQ(host->text("cmdTempStop"), "一時停止");
}

TEST_F(MainWindowTest, AutoStartRunsTheSessionUntilStopAndTheCloseEndsIt)
{
    machine.screens = {gameCapture({"50", "1000", "0"})};
    host->load();
    EXPECT_FALSE(host->menuEnabled("menuRun"));
    EXPECT_EQ(host->menuText("menuRun"), "ロギング");
    EXPECT_TRUE(host->menuEnabled("menuStop"));
    EXPECT_TRUE(host->logBox().starts_with(" 月日 時刻")) << host->logBox();

    host->meter().cycle().runCycle();
    EXPECT_EQ(host->text("lblStartLv"), "50");
    EXPECT_EQ(host->text("lblStartExpPS"), "0.14％");

    host->choose("menuStop");
    EXPECT_TRUE(host->menuEnabled("menuRun"));
    EXPECT_EQ(host->menuText("menuRun"), "開始");
    EXPECT_NE(host->logBox().find("    開始  Lv:  50"), std::string::npos) << host->logBox();
    host->choose("menuOperatingInfo");
    EXPECT_NE(debugLog().find("Click : Operating Information "), std::string::npos);

    host->close();
    EXPECT_TRUE(host->logBox().ends_with("        終了しています・・・\n")) << host->logBox();
    EXPECT_NE(debugLog().find("Closing Program ･･･ "), std::string::npos);
}

// Relabelling after a change of language sets the captions again and keeps what the engine
// set: the running session's run caption, the enabled states, working menus.
TEST_F(MainWindowTest, RelabellingKeepsTheEngineStateOfTheMenus)
{
    machine.screens = {gameCapture({"50", "1000", "0"})};
    host->load();
    host->retranslate();
    for (int command = 0; command <= static_cast<int>(MenuCommand::Version); ++command) {
        const MenuItem& item = menuItem(static_cast<MenuCommand>(command));
        if (item.command != MenuCommand::Run) {
            EXPECT_EQ(host->menuText(std::string(item.name)), item.text()) << item.name;
        }
    }
    EXPECT_EQ(host->menuText("menuRun"), "ロギング");
    EXPECT_FALSE(host->menuEnabled("menuRun"));
    EXPECT_TRUE(host->menuEnabled("menuStop"));
    EXPECT_EQ(host->text("cmdTempStop"), "一時停止");
    host->choose("menuOperatingInfo");
    EXPECT_NE(debugLog().find("Click : Operating Information "), std::string::npos);
    host->choose("menuStop");
    EXPECT_EQ(host->menuText("menuRun"), "開始");
    EXPECT_TRUE(host->menuEnabled("menuRun"));
}

TEST_F(MainWindowTest, GraphLabelClicksReachTheViewAndTheLog)
{
    settings.AutoStart = false;
    host->load();
    host->clickGraphLabel(GraphLabel::Tl1);
    host->clickGraphLabel(GraphLabel::El0);
    EXPECT_EQ(host->meter().state().graphView.timeShift, settings.GraphTimeScale / 4);
    EXPECT_FLOAT_EQ(host->meter().state().graphView.zoom, 1.1f);
    const std::string text = debugLog();
    EXPECT_NE(text.find("Click : Graph Old View "), std::string::npos) << text;
    EXPECT_EQ(text.find("Click : Window Refresh "), std::string::npos) << "a label click is the graph's";
}

// The version window's おまけ opens the popup; each kind of attempt in turn (the close box,
// Escape, its button) shows the next line, whole, in a window that neither moves nor
// resizes, and only the attempt on the last line lets it go.
TEST_F(MainWindowTest, TheJokePopupFromTheVersionWindowLetsGoOnlyAfterItsScript)
{
    const auto script = JokePopup::script();
    WindowDriver& version = host->version();
    WindowDriver& joke = host->joke();
    std::string caption;
    WindowDriver::Box opened;
    std::vector<std::string> faults;
    bool versionLeftOpen = false;
    std::deque<PlayerStep> steps{[&] {
                                     if (!version.isOpen())
                                         return false;
                                     caption = version.text("cmdJoke");
                                     version.shoot("version");
                                     version.click("cmdJoke");
                                     return true;
                                 },
                                 [&] {
                                     opened = joke.frame();
                                     return joke.isOpen();
                                 }};
    for (std::size_t line = 0; line < script.size(); ++line)
        steps.push_back([&, line] {
            const std::string at = "line " + std::to_string(line) + ": ";
            if (!joke.isOpen()) {
                faults.push_back(at + "the popup has gone");
                return true;
            }
            if (joke.title() != script[line].caption || joke.text("lblMessage") != script[line].message ||
                joke.text("cmdClose") != script[line].button)
                faults.push_back(at + "shows " + joke.text("lblMessage"));
            if (!joke.fits("lblMessage") || !joke.fits("cmdClose"))
                faults.push_back(at + "cut off");
            const WindowDriver::Box now = joke.frame();
            if (std::tie(now.left, now.top, now.width, now.height) !=
                std::tie(opened.left, opened.top, opened.width, opened.height))
                faults.push_back(at + "moved or resized");
            joke.shoot("popup-" + std::to_string(line + 1));
            if (line % 3 == 0)
                joke.close();
            else if (line % 3 == 1)
                joke.press(WindowDriver::Key::Escape);
            else
                joke.click("cmdClose");
            return true;
        });
    steps.push_back([&] {
        if (joke.isOpen())
            return false; // the deadline's own closing attempts end it, and the test fails
        versionLeftOpen = version.isOpen();
        version.click("cmdOK");
        return true;
    });
    host->play(std::move(steps), [&] { host->choose("menuVersion"); });
    EXPECT_EQ(caption, JokePopup::kOpenCaption);
    EXPECT_TRUE(faults.empty()) << faults.front() << " (" << faults.size() << " in all)";
    EXPECT_TRUE(versionLeftOpen) << "the last attempt closes only the popup";
}

} // namespace
} // namespace tvx::test
