// The meter against the practice target on a virtual X screen: found, read and recorded;
// gestures from xdotool; the level-up burst.
#include "support/Processes.h"

#include "support/EndToEnd.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace tvx {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class MeterEndToEndTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(screen.display.empty()) << "Xvfb or xdotool is missing, or the server did not start";
        setenv("DISPLAY", screen.display.c_str(), 1);
        test::writeSessionSettings(home.path(), save);
    }

    std::string x(const std::string& command) { return test::output("xdotool " + command + " 2>/dev/null"); }

    std::string debugLog() { return test::readAll(home.path() / "debug.txt"); }

    // Waits for a line in the meter's debug log; a failure shows the log.
    testing::AssertionResult logged(const std::string& line, std::chrono::seconds limit)
    {
        if (test::eventually([&] { return debugLog().find(line) != std::string::npos; }, limit))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "no \"" << line << "\" in the debug log:\n" << debugLog();
    }

    // How many screenshots are named so.
    long shots(const std::string& prefix)
    {
        std::error_code error;
        return std::count_if(fs::directory_iterator(save / "ss", error), {}, [&](const fs::directory_entry& entry) {
            const std::string name = pathUtf8(entry.path().filename());
            return name.starts_with(prefix);
        });
    }

    test::TempFolder home;
    fs::path save = home.path() / "save";
    fs::path state = home.path() / "practice-state.txt";
    test::VirtualScreen screen = test::startVirtualScreen("1760x1000x24", pathUtf8(home.path()));
};

TEST_F(MeterEndToEndTest, TheMeterReadsThePracticeTargetAndAnswersGestures)
{
    test::Child practice({TALLIVEX_PRACTICE, "--state-file", pathUtf8(state), "--level", "50", "--exp-per-second",
                          "1234", "--money-per-second", "567"});
    std::string game;
    ASSERT_TRUE(test::eventually([&] { return !(game = x("search --name '^MapleStory$'")).empty(); }, 20s))
        << "the practice target shows no window";
    game.resize(game.find('\n')); // the first window found
    // Beside the game, as a player would place it.
    test::Child meter({TALLIVEX_METER, "--home", pathUtf8(home.path()), "--interval", "2", "-qwindowgeometry",
                       "900x560+820+0"});
    ASSERT_TRUE(logged("Mouse Events Acquire", 20s));
    // The meter's window took the focus when it appeared; the player goes back to the game.
    x("windowfocus " + game);
    x("mousemove --window " + game + " 400 300");

    ASSERT_TRUE(test::eventually([&] { return test::recordLines(save).size() >= 2; }, 30s)) << debugLog();
    for (const auto& fault : test::recordFaults(test::recordLines(save), test::drawnTotals(state)))
        ADD_FAILURE() << fault;

    // Suspend (L R L L), resume (L R L R), the double chord for a print screen.
    for (const auto& [clicks, line] : {std::pair{"LRLL", "Suspend Mode On "}, {"LRLR", "Suspend Mode Off "}}) {
        for (const char* b = clicks; *b != 0; ++b) {
            x(std::string("click ") + (*b == 'L' ? "1" : "3"));
            std::this_thread::sleep_for(100ms);
        }
        ASSERT_TRUE(logged(line, 5s));
        std::this_thread::sleep_for(1600ms);
    }
    for (const char* step : {"mousedown 1", "mousedown 3", "mouseup 1", "mouseup 3", "mousedown 1", "mousedown 3",
                             "mouseup 1", "mouseup 3"})
        x(step);
    ASSERT_TRUE(test::eventually([&] { return shots("PrtScr_") > 0; }, 10s)) << debugLog();

    // A level-up in the game: the burst of four.
    x("key u");
    ASSERT_TRUE(test::eventually([&] { return shots("LvUP_") == 4; }, 15s)) << debugLog();
    meter.stop();
    EXPECT_TRUE(logged("End of the Program ", 10s)) << "closes in order on SIGTERM";
}

} // namespace
} // namespace tvx
