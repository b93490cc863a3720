// The main window's menus, account and log, the same in the Qt and the Win32 front end.
#include "support/WindowDriver.h"

#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"
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

// Every menu item keeps the core's caption, Run the session's, through a relabelling after a
// change of language too; Run waits for the load.
TEST_F(MainWindowTest, MenusKeepTheirCaptionsAndFollowTheSessionFromTheLoadToTheClose)
{
    const auto expectMenus = [&](const char* when, std::string_view run, bool runEnabled, bool stopEnabled) {
        for (int command = 0; command <= static_cast<int>(MenuCommand::Version); ++command) {
            const MenuItem& item = menuItem(static_cast<MenuCommand>(command));
            EXPECT_EQ(host->menuText(std::string(item.name)), item.command == MenuCommand::Run ? run : item.text())
                << when << " " << item.name;
        }
        EXPECT_EQ(std::pair(host->menuEnabled("menuRun"), host->menuEnabled("menuStop")),
                  std::pair(runEnabled, stopEnabled)) << when;
        EXPECT_EQ(host->window().text("cmdTempStop"), "一時停止") << when;
    };
    EXPECT_EQ(host->window().title(), "Tallivex  for MapleStory    Ver.2.20");
    expectMenus("before the load", menuItem(MenuCommand::Run).text(), false, false);
    machine.screens = {gameCapture({"50", "1000", "0"})};
    host->load();
    EXPECT_TRUE(host->logBox().starts_with(" 月日 時刻")) << host->logBox();
    host->retranslate();
    expectMenus("relabelled", "ロギング", false, true);

    host->meter().cycle().runCycle();
    EXPECT_EQ(host->window().text("lblStartLv"), "50");
    EXPECT_EQ(host->window().text("lblStartExpPS"), "0.14％");
    host->choose("menuStop");
    expectMenus("stopped", "開始", true, false);
    EXPECT_HOLDS(host->logBox(), "    開始  Lv:  50");
    host->choose("menuOperatingInfo");
    EXPECT_HOLDS(debugLog(), "Click : Operating Information ");

    host->close();
    EXPECT_TRUE(host->logBox().ends_with("        終了しています・・・\n")) << host->logBox();
}

TEST_F(MainWindowTest, GraphLabelClicksReachTheViewAndTheLog)
{
    settings.AutoStart = false;
    host->load();
    host->clickGraphLabel(GraphLabel::Tl1);
    host->clickGraphLabel(GraphLabel::El0);
    EXPECT_EQ(host->meter().state().graphView.timeShift, settings.GraphTimeScale / 4);
    EXPECT_FLOAT_EQ(host->meter().state().graphView.zoom, 1.1f);
    EXPECT_HOLDS(debugLog(), "Click : Graph Old View ");
    EXPECT_LACKS(debugLog(), "Click : Window Refresh ") << "a label click is the graph's";
}

// The version window's おまけ opens the popup; each kind of attempt in turn (the close box,
// Escape, its button) shows the next line, whole, and only the attempt on the last line
// lets it go.
TEST_F(MainWindowTest, TheJokePopupFromTheVersionWindowLetsGoOnlyAfterItsScript)
{
    const auto script = JokePopup::script();
    WindowDriver& version = host->version();
    WindowDriver& joke = host->joke();
    std::string caption;
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
                                 [&] { return joke.isOpen(); }};
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
    play(std::move(steps), [&] { host->choose("menuVersion"); });
    EXPECT_EQ(caption, JokePopup::kOpenCaption);
    EXPECT_TRUE(faults.empty()) << faults.front() << " (" << faults.size() << " in all)";
    EXPECT_TRUE(versionLeftOpen) << "the last attempt closes only the popup";
}

} // namespace
} // namespace tvx::test
