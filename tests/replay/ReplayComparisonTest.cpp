// The Linux and the Windows command line (under wine) replay one session, from and into
// folders named in Japanese with blanks, and must give the same record files and the same
// standard output, byte for byte. Run by scripts/test.sh once both builds exist:
// TALLIVEX_WINDOWS_CLI names tallivex-cli.exe, TALLIVEX_WINE the wine to run it with.
#include "recognition/CaptureFile.h"
#include "base/Utf8Path.h"
#include "measurement/SessionHistory.h"
#include "support/GameScreen.h"
#include "support/Processes.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tvx {
namespace {

struct Outcome { int status = -1; std::string out; std::string err; };

// A run with its standard output and error in files of its save folder.
struct ReplayRun {
    std::filesystem::path folder;
    test::Child child;

    Outcome finish()
    {
        const int status = child.wait();
        return {status, test::readAll(folder / "stdout"), test::readAll(folder / "stderr")};
    }
};

// Wine shows the root of the Linux file system as drive Z:.
std::string windowsPath(const std::filesystem::path& path)
{
    std::string text = "Z:" + pathUtf8(path);
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

// Every file under a folder by its relative name, with its bytes.
std::map<std::string, std::string> filesUnder(const std::filesystem::path& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files[pathUtf8(entry.path().lexically_relative(folder))] = test::readAll(entry.path());
    return files;
}

class ReplayComparisonTest : public testing::Test {
protected:
    void SetUp() override
    {
        const char* windowsCli = std::getenv("TALLIVEX_WINDOWS_CLI");
        const char* wine = std::getenv("TALLIVEX_WINE");
        ASSERT_TRUE(windowsCli != nullptr && wine != nullptr) << "set TALLIVEX_WINDOWS_CLI and TALLIVEX_WINE";
        m_windowsCli = windowsCli;
        m_wine = wine;
        writeFrames();
    }

    // One session from 23:50 on the last day of a month into the next one: a level up, a
    // money region that is not read, a screen read not at all, and another character.
    void writeFrames()
    {
        const std::map<std::string, std::array<std::string, kRegionCount>> frames{
            {"10.bmp", {"137", "1000", "5000"}},     {"370.bmp", {"137", "4600", "5000"}},
            {"730.bmp", {"138", "100", "5800"}},     {"1090.bmp", {"138", "900", ""}},
            {"1450.bmp", {"", "", ""}},              {"1810.bmp", {"138", "2500", "7300"}},
            {"2170.bmp", {"12", "40", "100"}},       {"2530.bmp", {"12", "95", "160"}},
            {"02890.bmp", {"13", "3", "1234567890"}},
        };
        std::filesystem::create_directories(m_frames);
        std::uint32_t seed = 1;
        for (const auto& [name, numbers] : frames) {
            const Frame screen = test::gameScreen(numbers, ScreenMode::FullScreen, seed++, 800, 600);
            ASSERT_TRUE(writeBitmap24(m_frames / name, screen));
        }
    }

    ReplayRun replay(bool windows, const std::filesystem::path& saveFolder, const std::vector<std::string>& options)
    {
        std::filesystem::create_directories(saveFolder);
        std::vector<std::string> args;
        if (windows)
            args = {m_wine, m_windowsCli, "replay", windowsPath(m_frames), "--save-folder", windowsPath(saveFolder)};
        else
            args = {TALLIVEX_LINUX_CLI, "replay", pathUtf8(m_frames), "--save-folder", pathUtf8(saveFolder)};
        args.insert(args.end(), {"--start", "2024-01-31 23:50"});
        args.insert(args.end(), options.begin(), options.end());
        return {saveFolder, test::Child(args, pathUtf8(saveFolder / "stdout"), pathUtf8(saveFolder / "stderr"))};
    }

    test::TempFolder m_temp;
    std::filesystem::path m_frames = m_temp.path() / utf8Path("画面 フレーム");
    std::string m_windowsCli;
    std::string m_wine;
};

// Every option set, each run into its own save folder; all start at once, as each start
// of wine costs more waiting than work.
TEST_F(ReplayComparisonTest, BothSystemsWriteTheSameBytes)
{
    struct Set {
        std::vector<std::string> options;
        std::string recordFile;
        std::filesystem::path linuxFolder;
        std::filesystem::path windowsFolder;
    };
    std::vector<Set> sets;
    for (const bool csv : {false, true})
        for (const bool perSession : {false, true})
            for (const bool moneyScan : {false, true}) {
                Set set;
                if (csv)
                    set.options.emplace_back("--csv");
                if (perSession)
                    set.options.emplace_back("--per-session");
                if (moneyScan)
                    set.options.emplace_back("--money-scan");
                set.recordFile =
                    std::string("給与明細") + (perSession ? "202401312350" : "202401月") + (csv ? ".csv" : ".txt");
                const std::string folder = "記録 " + std::to_string(sets.size() + 1);
                set.linuxFolder = m_temp.path() / "linux" / utf8Path(folder);
                set.windowsFolder = m_temp.path() / "windows" / utf8Path(folder);
                sets.push_back(set);
            }
    std::vector<ReplayRun> runs;
    for (const Set& set : sets) {
        runs.push_back(replay(false, set.linuxFolder, set.options));
        runs.push_back(replay(true, set.windowsFolder, set.options));
    }

    for (std::size_t i = 0; i < sets.size(); ++i) {
        const Set& set = sets[i];
        std::string name;
        for (const std::string& option : set.options)
            name += option + " ";
        SCOPED_TRACE(name);
        const Outcome onLinux = runs[2 * i].finish();
        const Outcome onWindows = runs[2 * i + 1].finish();
        EXPECT_EQ(onLinux.status, 0) << onLinux.err;
        EXPECT_EQ(onWindows.status, onLinux.status) << onWindows.err;
        EXPECT_EQ(onWindows.out, onLinux.out);
        EXPECT_EQ(onWindows.err, onLinux.err);
        // The record file and the session history beside it, byte for byte alike.
        const auto records = filesUnder(set.linuxFolder / "log");
        EXPECT_EQ(records.size(), 2u);
        EXPECT_TRUE(records.contains(set.recordFile)) << "the session's record file is " << set.recordFile;
        EXPECT_TRUE(records.contains(std::string(kHistoryFileName)));
        EXPECT_EQ(filesUnder(set.windowsFolder / "log"), records);
    }
}

} // namespace
} // namespace tvx
