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

namespace tvx {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

using test::textLines;

std::vector<std::string> filesIn(const fs::path& folder)
{
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error))
        names.push_back(pathUtf8(entry.path().filename()));
    std::sort(names.begin(), names.end());
    return names;
}

class MeterEndToEndTest : public testing::Test {
protected:
    void SetUp() override
    {
        screen = test::startVirtualScreen("1760x1000x24", pathUtf8(home.path()));
        ASSERT_FALSE(screen.display.empty()) << "Xvfb is missing or did not start";
        display = screen.display;
        setenv("DISPLAY", display.c_str(), 1);
        // The socket comes before the server takes clients: a program started then finds no display.
        ASSERT_TRUE(test::eventually([&] { return !x("getdisplaygeometry").empty(); }, 10s)) << "Xvfb takes no clients";
        test::writeSessionSettings(home.path(), save);
    }

    std::string x(const std::string& command) { return test::output("xdotool " + command + " 2>/dev/null"); }

    void clicks(const std::string& buttons)
    {
        for (char b : buttons) {
            x(std::string("click ") + (b == 'L' ? "1" : "3"));
            std::this_thread::sleep_for(100ms);
        }
    }

    std::string debugLog() { return test::readAll(home.path() / "debug.txt"); }

    std::vector<std::string> records() { return test::recordLines(save); }

    test::TempFolder home;
    fs::path save = home.path() / "save";
    fs::path state = home.path() / "practice-state.txt";
    std::string display;
    test::VirtualScreen screen;
};

TEST_F(MeterEndToEndTest, TheMeterReadsThePracticeTargetAndAnswersGestures)
{
    test::Child practice({TALLIVEX_PRACTICE, "--state-file", pathUtf8(state), "--level", "50", "--exp-per-second",
                          "1234", "--money-per-second", "567"});
    ASSERT_TRUE(practice.started());
    std::string game;
    ASSERT_TRUE(test::eventually([&] { return !(game = x("search --name '^MapleStory$'")).empty(); }, 20s));
    game = textLines(game).front();

    // Beside the game, as a player would place it.
    test::Child meter({TALLIVEX_METER, "--home", pathUtf8(home.path()), "--interval", "2", "-qwindowgeometry",
                       "900x560+820+0"});
    ASSERT_TRUE(meter.started());
    ASSERT_TRUE(test::eventually([&] { return debugLog().find("Mouse Events Acquire") != std::string::npos; }, 20s))
        << debugLog();
    // The meter's window took the focus when it appeared; the player goes back to the game.
    x("windowfocus " + game);
    x("mousemove --window " + game + " 400 300");

    ASSERT_TRUE(test::eventually([&] { return records().size() >= 2; }, 30s)) << debugLog();
    for (const auto& fault : test::recordFaults(records(), test::drawnTotals(state)))
        ADD_FAILURE() << fault;

    // Suspend (L R L L), resume (L R L R), the double chord for a print screen.
    clicks("LRLL");
    ASSERT_TRUE(test::eventually([&] { return debugLog().find("Suspend Mode On ") != std::string::npos; }, 5s));
    std::this_thread::sleep_for(1600ms);
    clicks("LRLR");
    ASSERT_TRUE(test::eventually([&] { return debugLog().find("Suspend Mode Off ") != std::string::npos; }, 5s));
    std::this_thread::sleep_for(1600ms);
    for (const char* step : {"mousedown 1", "mousedown 3", "mouseup 1", "mouseup 3", "mousedown 1", "mousedown 3",
                             "mouseup 1", "mouseup 3"})
        x(step);
    ASSERT_TRUE(test::eventually([&] {
        const auto shots = filesIn(save / "ss");
        return std::any_of(shots.begin(), shots.end(), [](const std::string& n) { return n.starts_with("PrtScr_"); });
    }, 10s)) << debugLog();

    // A level-up in the game: the burst of four.
    x("key u");
    ASSERT_TRUE(test::eventually([&] {
        const auto shots = filesIn(save / "ss");
        return std::count_if(shots.begin(), shots.end(), [](const std::string& n) { return n.starts_with("LvUP_"); }) == 4;
    }, 15s)) << debugLog();
    const auto shots = filesIn(save / "ss");
    for (const char* suffix : {"_a.png", "_b.png", "_c.png", "_d.png"})
        EXPECT_TRUE(std::any_of(shots.begin(), shots.end(), [&](const std::string& n) {
            return n.starts_with("LvUP_") && n.ends_with(suffix);
        })) << suffix;

    // Debug mode from the options window (設定 → 動作), then the test recognition of the
    // debug area under the log box; the recogniser's trace reaches the debug log.
    x("mousemove 904 10 click 1"); // the meter's window is at 820,0

    std::string options;
    ASSERT_TRUE(test::eventually([&] { return !(options = x("search --name '^設定$'")).empty(); }, 10s));
    options = test::textLines(options).front();
    std::this_thread::sleep_for(500ms);
    x("mousemove --window " + options + " 240 24 click 1");
    std::this_thread::sleep_for(300ms);
    x("mousemove --window " + options + " 30 536 click 1"); // デバッグモード, under the language
    ASSERT_TRUE(test::eventually([&] { return debugLog().find("Change DebugMode ･･･ End ") != std::string::npos; }, 5s))
        << debugLog();
    // 閉じる sits in the window's bottom right corner, whatever size the window took.
    const std::string geometry = x("getwindowgeometry --shell " + options);
    const auto field = [&](const std::string& name) {
        const std::size_t at = geometry.find(name + "=");
        return at == std::string::npos ? 0 : std::stoi(geometry.substr(at + name.size() + 1));
    };
    x("mousemove --window " + options + " " + std::to_string(field("WIDTH") - 50) + " " +
      std::to_string(field("HEIGHT") - 22) + " click 1");
    std::this_thread::sleep_for(500ms);
    x("mousemove 1063 480 click 1"); // テスト認識, in the debug area above the live lines
    ASSERT_TRUE(test::eventually([&] { return debugLog().find("Single Recognize(") != std::string::npos; }, 5s))
        << debugLog();
    EXPECT_NE(debugLog().find(" 変換データ : "), std::string::npos);
    x("windowfocus " + game);

    // The graph shows the rates: coloured curves in the right half of the meter's window
    // (everything else there is grey, black or white).
    const fs::path picture = home.path() / "screen.bmp";
    test::output("import -window root 'BMP3:" + pathUtf8(picture) + "'");
    CaptureBitmap screen;
    ASSERT_EQ(LoadCaptureBitmap(picture, screen), CaptureLoadResult::Read);
    const Frame frame = toFrame(screen);
    int coloured = 0;
    for (int y = 30; y < 540; ++y)
        for (int x = 820 + 480; x < 820 + 880; ++x) {
            const std::uint8_t* p = frame.row(y) + 3 * x;
            coloured += std::max({p[0], p[1], p[2]}) - std::min({p[0], p[1], p[2]}) > 80;
        }
    EXPECT_GT(coloured, 20) << "no curve in the graph; see " << picture;
    meter.stop();
    EXPECT_TRUE(test::eventually([&] { return debugLog().find("End of the Program ") != std::string::npos; }, 10s))
        << "closes in order on SIGTERM";
}

} // namespace
} // namespace tvx
