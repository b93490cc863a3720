// The meter against the practice target on a virtual X screen: found, read and recorded;
// gestures from xdotool; the level-up burst.
#include "support/Processes.h"

#include "support/EndToEnd.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

TEST(MeterEndToEndTest, TheMeterReadsThePracticeTargetAndAnswersGestures)
{
    test::TempFolder home;
    const fs::path save = home.path() / "save";
    const fs::path state = home.path() / "practice-state.txt";
    const test::VirtualScreen screen = test::startVirtualScreen("1760x1000x24", pathUtf8(home.path()));
    ASSERT_FALSE(screen.display.empty()) << "Xvfb or xdotool is missing, or the server did not start";
    setenv("DISPLAY", screen.display.c_str(), 1);
    test::writeSessionSettings(home.path(), save);
    const auto x = [](const std::string& command) { return test::output("xdotool " + command + " 2>/dev/null"); };
    const auto debugLog = [&] { return test::readAll(home.path() / "debug.txt"); };
    const auto logged = [&](const std::string& line, std::chrono::seconds limit) {
        return test::eventually([&] { return debugLog().find(line) != std::string::npos; }, limit);
    };
    const auto shots = [&](const std::string& prefix) {
        std::error_code error;
        return std::count_if(fs::directory_iterator(save / "ss", error), {}, [&](const fs::directory_entry& entry) {
            return pathUtf8(entry.path().filename()).starts_with(prefix);
        });
    };

    test::Child practice({TALLIVEX_PRACTICE, "--state-file", pathUtf8(state), "--level", "50", "--exp-per-second",
                          "1234", "--money-per-second", "567"});
    const std::string found = test::output("timeout 20 xdotool search --sync --limit 1 --name '^MapleStory$'");
    ASSERT_NE(found, "") << "the practice target shows no window";
    const std::string game = found.substr(0, found.find('\n'));
    // Beside the game, as a player would place it.
    test::Child meter({TALLIVEX_METER, "--home", pathUtf8(home.path()), "--interval", "2", "-qwindowgeometry",
                       "900x560+820+0"});
    ASSERT_TRUE(logged("Mouse Events Acquire", 20s)) << debugLog();
    // The meter's window took the focus when it appeared; the player goes back to the game.
    x("windowfocus " + game + " mousemove --window " + game + " 400 300");

    ASSERT_TRUE(test::eventually([&] { return test::recordLines(save).size() >= 2; }, 30s)) << debugLog();
    for (const auto& fault : test::recordFaults(test::recordLines(save), test::drawnTotals(state)))
        ADD_FAILURE() << fault;

    // Suspend (L R L L) and resume (L R L R).
    for (const auto& [clicks, line] : {std::pair{"LRLL", "Suspend Mode On "}, {"LRLR", "Suspend Mode Off "}}) {
        for (const char* b = clicks; *b != 0; ++b) {
            x(std::string("click ") + (*b == 'L' ? "1" : "3"));
            std::this_thread::sleep_for(100ms);
        }
        ASSERT_TRUE(logged(line, 5s)) << line << "is not in:\n" << debugLog();
        std::this_thread::sleep_for(1600ms);
    }

    // A level-up in the game: the burst of four.
    x("key u");
    ASSERT_TRUE(test::eventually([&] { return shots("LvUP_") == 4; }, 15s)) << debugLog();
    // Debug mode from the options window (設定, the tab 動作, デバッグモード), left open as the meter closes.
    x("mousemove 904 10 click 1"); // the meter's window is at 820,0
    test::output("timeout 10 xdotool search --sync --limit 1 --name '^設定$' sleep 0.5 mousemove --window %1 240 24 "
                 "click 1 sleep 0.3 mousemove --window %1 30 536 click 1 2>/dev/null");
    ASSERT_TRUE(logged("Change DebugMode ･･･ End ", 5s)) << debugLog();
    meter.stop();
    EXPECT_TRUE(logged("End of the Program ", 10s)) << "closes in order on SIGTERM:\n" << debugLog();
}

} // namespace
} // namespace tvx
