// The meter against the practice target on a virtual X screen: found, read, recorded,
// drawn; gestures from xdotool; the level-up burst.
#include "support/Processes.h"

#include "recognition/CaptureFile.h"
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

    // A window by its title, once it is there; "" when it does not come.
    std::string window(const std::string& title, std::chrono::seconds limit)
    {
        std::string found;
        test::eventually([&] { return !(found = x("search --name '^" + title + "$'")).empty(); }, limit);
        return found.substr(0, found.find('\n'));
    }

    std::string debugLog() { return test::readAll(home.path() / "debug.txt"); }

    // Waits for a line in the meter's debug log; a failure shows the log.
    testing::AssertionResult logged(const std::string& line, std::chrono::seconds limit)
    {
        if (test::eventually([&] { return debugLog().find(line) != std::string::npos; }, limit))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "no \"" << line << "\" in the debug log:\n" << debugLog();
    }

    // How many screenshots are named so.
    long shots(const std::string& prefix, const std::string& suffix = "")
    {
        std::error_code error;
        return std::count_if(fs::directory_iterator(save / "ss", error), {}, [&](const fs::directory_entry& entry) {
            const std::string name = pathUtf8(entry.path().filename());
            return name.starts_with(prefix) && name.ends_with(suffix);
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
    const std::string game = window("MapleStory", 20s);
    ASSERT_NE(game, "") << "the practice target shows no window";
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
    for (const char* suffix : {"_a.png", "_b.png", "_c.png", "_d.png"})
        EXPECT_EQ(shots("LvUP_", suffix), 1) << suffix;

    // Debug mode from the options window (設定 → 動作), then the test recognition of the
    // debug area under the log box; the recogniser's trace reaches the debug log.
    x("mousemove 904 10 click 1"); // the meter's window is at 820,0
    const std::string options = window("設定", 10s);
    ASSERT_NE(options, "");
    std::this_thread::sleep_for(500ms);
    x("mousemove --window " + options + " 240 24 click 1");
    std::this_thread::sleep_for(300ms);
    x("mousemove --window " + options + " 30 536 click 1"); // デバッグモード, under the language
    ASSERT_TRUE(logged("Change DebugMode ･･･ End ", 5s));
    // 閉じる sits in the window's bottom right corner, whatever size the window took.
    const std::string geometry = x("getwindowgeometry --shell " + options) + "WIDTH=0\nHEIGHT=0\n";
    const auto field = [&](const std::string& name) {
        return std::stoi(geometry.substr(geometry.find(name + "=") + name.size() + 1));
    };
    x("mousemove --window " + options + " " + std::to_string(field("WIDTH") - 50) + " " +
      std::to_string(field("HEIGHT") - 22) + " click 1");
    std::this_thread::sleep_for(500ms);
    x("mousemove 1063 480 click 1"); // テスト認識, in the debug area above the live lines
    ASSERT_TRUE(logged("Single Recognize(", 5s));
    EXPECT_NE(debugLog().find(" 変換データ : "), std::string::npos);
    x("windowfocus " + game);

    // The graph shows the rates: coloured curves in the right half of the meter's window
    // (everything else there is grey, black or white).
    const fs::path picture = home.path() / "screen.bmp";
    test::output("import -window root 'BMP3:" + pathUtf8(picture) + "'");
    CaptureBitmap shot;
    ASSERT_EQ(LoadCaptureBitmap(picture, shot), CaptureLoadResult::Read);
    const Frame frame = toFrame(shot);
    int coloured = 0;
    for (int y = 30; y < 540; ++y)
        for (int x = 820 + 480; x < 820 + 880; ++x) {
            const std::uint8_t* p = frame.row(y) + 3 * x;
            coloured += std::max({p[0], p[1], p[2]}) - std::min({p[0], p[1], p[2]}) > 80;
        }
    EXPECT_GT(coloured, 20) << "no curve in the graph; see " << picture;
    meter.stop();
    EXPECT_TRUE(logged("End of the Program ", 10s)) << "closes in order on SIGTERM";
}

} // namespace
} // namespace tvx
