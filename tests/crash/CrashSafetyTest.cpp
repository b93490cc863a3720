// The CLI killed at random moments while it writes: no record file or configuration torn, no written line gone.
#include "support/GameScreen.h"
#include "support/Processes.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace tvx {
namespace {

using Clock = std::chrono::steady_clock;

// Runs the CLI, killed (SIGKILL) at a random moment within `killWithin` if given; returns how long it ran.
Clock::duration runCli(std::vector<std::string> args, Clock::duration killWithin = {})
{
    static std::mt19937 random{20240131};
    args.insert(args.begin(), TALLIVEX_CLI);
    const auto start = Clock::now();
    test::Child cli(args, "/dev/null", "/dev/null");
    EXPECT_TRUE(cli.started());
    if (killWithin > Clock::duration::zero()) {
        const auto us = std::chrono::duration_cast<std::chrono::microseconds>(killWithin).count();
        std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution(0L, us)(random)));
        cli.stop(SIGKILL);
    }
    cli.wait();
    return Clock::now() - start;
}

TEST(CrashSafetyTest, ReplayKilledWhileAppendingToAMonthlyFileLosesAndTearsNoLine)
{
    test::TempFolder temp;
    const auto frames = temp.path() / "frames";
    const auto saves = temp.path() / "saves";
    std::filesystem::create_directories(frames);
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(writeBitmap24(frames / (std::to_string(360 * i) + ".bmp"),
                                  test::gameScreen({"137", std::to_string(1000 + 3600 * i), "5000"},
                                                   ScreenMode::FullScreen, 1, 800, 600)));
    const std::vector<std::string> args{"replay", frames.string(), "--save-folder", saves.string(), "--start",
                                        "2024-01-01 10:00"};
    const auto file = saves / "log" / "給与明細202401月.txt";

    // One whole run tells the lines every run writes and how long a run takes.
    const Clock::duration whole = runCli(args);
    const std::vector<std::string> written = test::splitLines(test::readAll(file));
    ASSERT_GT(written.size(), 8u); // the header and a record for almost every image
    const std::set<std::string> valid(written.begin() + 1, written.end());

    std::string before = test::readAll(file);
    for (int trial = 0; trial < 10; ++trial) {
        SCOPED_TRACE("trial " + std::to_string(trial));
        runCli(args, whole);
        const std::string after = test::readAll(file);
        ASSERT_TRUE(after.starts_with(before)) << "a line written earlier is gone";
        ASSERT_TRUE(after.ends_with("\r\n")) << "a torn line: " << after.substr(after.rfind('\n') + 1);
        for (const std::string& line : test::splitLines(after.substr(before.size())))
            ASSERT_EQ(valid.count(line), 1u) << line;
        before = after;
    }
}

TEST(CrashSafetyTest, ConfigurationKilledWhileSavingIsAlwaysOneWholeFile)
{
    test::TempFolder temp;
    const std::string home = temp.path().string();
    const auto file = temp.path() / "TV2MConfig.ini";
    // Two different whole files: the defaults of either screen mode.
    runCli({"config", "defaults", "--home", home, "--window"});
    const std::string window = test::readAll(file);
    const Clock::duration whole = runCli({"config", "defaults", "--home", home, "--fullscreen"});
    const std::string fullScreen = test::readAll(file);
    ASSERT_NE(window, fullScreen);
    ASSERT_GT(window.size(), 1000u);

    for (int trial = 0; trial < 150; ++trial) {
        runCli({"config", "defaults", "--home", home, trial % 2 == 0 ? "--window" : "--fullscreen"}, whole);
        const std::string now = test::readAll(file);
        ASSERT_TRUE(now == window || now == fullScreen) << "trial " << trial << ": " << now.size() << " bytes";
    }
}

} // namespace
} // namespace tvx
