// The meter against the practice target on a virtual X screen: found, read, recorded,
// drawn; gestures from xdotool; the level-up burst.
#include "Processes.h"

#include "TextCodecFactory.h"
#include "config/ConfigFile.h"
#include "config/Settings.h"
#include "measurement/ExpTable.h"
#include "recognition/CaptureFile.h"
#include "base/Utf8Path.h"
#include "support/CsvFields.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace tvx {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> result;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty())
            result.push_back(line);
    }
    return result;
}

using test::csvFields;

std::int64_t number(std::string text)
{
    std::erase(text, ',');
    return std::stoll(text);
}

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
        int n = 100 + static_cast<int>(getpid() % 400);
        while (fs::exists("/tmp/.X11-unix/X" + std::to_string(n)))
            ++n;
        display = ":" + std::to_string(n);
        xvfb = test::Child({"Xvfb", display, "-screen", "0", "1760x1000x24", "-nolisten", "tcp"});
        ASSERT_TRUE(xvfb.started()) << "Xvfb is missing";
        ASSERT_TRUE(test::eventually([&] { return fs::exists("/tmp/.X11-unix/X" + std::to_string(n)); }, 10s));
        setenv("DISPLAY", display.c_str(), 1);
        writeSettings();
    }

    // Records in CSV, gestures and the level watch on, a short start-up delay.
    void writeSettings()
    {
        Settings s = defaultSettings(pathUtf8(home.path()));
        s.SaveFolder = pathUtf8(save);
        s.SaveCsv = true;
        s.SaveMonthly = false;
        s.StartDelay = 1;
        s.Gesture = true;
        s.GestureTime = 1500;
        s.DoHLCheckExec = true;
        s.DoHLInterval = 300;
        s.SaveFormat = ".png";
        fs::create_directories(save);
        const auto codec = platform::makeTextCodec();
        std::ofstream(home.path() / "TV2MConfig.ini", std::ios::binary) << codec->toCp932(configFileText(s));
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

    std::vector<std::string> records()
    {
        const auto names = filesIn(save / "log");
        if (names.empty())
            return {};
        auto all = lines(test::readAll(save / "log" / names.front()));
        if (!all.empty())
            all.erase(all.begin()); // the header
        return all;
    }

    // The totals the practice target drew, from its state file: level -> totals.
    std::set<std::pair<std::int64_t, std::int64_t>> drawnTotals()
    {
        std::set<std::pair<std::int64_t, std::int64_t>> totals;
        for (const auto& line : lines(test::readAll(state))) {
            std::istringstream in(line);
            std::int64_t seconds = 0, level = 0, exp = 0, money = 0;
            if (in >> seconds >> level >> exp >> money)
                totals.insert({level, ExpTable(static_cast<std::int32_t>(level)).wholePart() + exp});
        }
        return totals;
    }

    test::TempFolder home;
    fs::path save = home.path() / "save";
    fs::path state = home.path() / "practice-state.txt";
    std::string display;
    test::Child xvfb;
};

TEST_F(MeterEndToEndTest, TheMeterReadsThePracticeTargetAndAnswersGestures)
{
    test::Child practice({TALLIVEX_PRACTICE, "--state-file", pathUtf8(state), "--level", "50", "--exp-per-second",
                          "1234", "--money-per-second", "567"});
    ASSERT_TRUE(practice.started());
    std::string game;
    ASSERT_TRUE(test::eventually([&] { return !(game = x("search --name '^MapleStory$'")).empty(); }, 20s));
    game = lines(game).front();

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
    const auto drawn = drawnTotals();
    const auto lines = records();
    std::int64_t previous = -1;
    for (const auto& line : lines) {
        const auto f = csvFields(line);
        ASSERT_GE(f.size(), 8u) << line;
        const std::int64_t level = number(f[1]);
        const std::int64_t total = number(f[2]);
        const std::int64_t gain = number(f[4]);
        EXPECT_TRUE(drawn.contains({level, total})) << "not drawn: " << line;
        // Each record counts from the reading before it, which the target drew too.
        EXPECT_TRUE(std::any_of(drawn.begin(), drawn.end(), [&](const auto& d) { return d.second == total - gain; }))
            << line;
        if (previous >= 0) {
            EXPECT_EQ(total - gain, previous) << line;
        }
        EXPECT_GT(gain, 0) << line;
        previous = total;
    }

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
    options = tvx::lines(options).front();
    std::this_thread::sleep_for(500ms);
    x("mousemove --window " + options + " 240 24 click 1");
    std::this_thread::sleep_for(300ms);
    x("mousemove --window " + options + " 30 404 click 1");
    ASSERT_TRUE(test::eventually([&] { return debugLog().find("Change DebugMode ･･･ End ") != std::string::npos; }, 5s));
    x("mousemove --window " + options + " 681 731 click 1");
    std::this_thread::sleep_for(500ms);
    x("mousemove 1063 528 click 1");
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
