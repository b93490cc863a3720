// The Linux and the Windows command line (under wine, both named by scripts/test.sh) replay
// one session between folders named in Japanese with blanks, and must write the same bytes.
#include "support/GameScreen.h"
#include "support/Processes.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>

namespace tvx {
namespace {

namespace fs = std::filesystem;

std::map<std::string, std::string> filesUnder(const fs::path& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files[pathUtf8(entry.path().lexically_relative(folder))] = test::readAll(entry.path());
    return files;
}

// Each option set into its own save folder, all at once: each start of wine costs more waiting than work.
TEST(ReplayComparisonTest, BothSystemsWriteTheSameBytes)
{
    const char* windowsCli = std::getenv("TALLIVEX_WINDOWS_CLI");
    const char* wine = std::getenv("TALLIVEX_WINE");
    ASSERT_TRUE(windowsCli != nullptr && wine != nullptr) << "set TALLIVEX_WINDOWS_CLI and TALLIVEX_WINE";
    // From 23:50 on a month's last day into the next: a level up, money unread, a screen unread, another character.
    const std::map<std::string, std::array<std::string, kRegionCount>> frames{
        {"10.bmp", {"137", "1000", "5000"}}, {"370.bmp", {"137", "4600", "5000"}}, {"730.bmp", {"138", "100", "5800"}},
        {"1090.bmp", {"138", "900", ""}}, {"1450.bmp", {"", "", ""}}, {"1810.bmp", {"138", "2500", "7300"}},
        {"2170.bmp", {"12", "40", "100"}}, {"2530.bmp", {"12", "95", "160"}}, {"02890.bmp", {"13", "3", "1234567890"}},
    };
    test::TempFolder temp;
    const fs::path framesFolder = temp.path() / utf8Path("画面 フレーム");
    fs::create_directories(framesFolder);
    std::uint32_t seed = 1;
    for (const auto& [name, numbers] : frames)
        ASSERT_TRUE(writeBitmap24(framesFolder / name,
                                  test::gameScreen(numbers, ScreenMode::FullScreen, seed++, 800, 600)));

    // Wine shows the Linux root as drive Z:.
    const auto path = [](bool windows, const fs::path& p) {
        std::string text = pathUtf8(p);
        std::replace(text.begin(), text.end(), '/', windows ? '\\' : '/');
        return windows ? "Z:" + text : text;
    };
    // Each option on and off at least once, and every naming of the record file.
    const std::vector<std::string> sets[] = {
        {}, {"--per-session"}, {"--csv", "--money-scan"}, {"--csv", "--per-session", "--money-scan"}};
    // Set i goes into linux/記録 i and windows/記録 i.
    std::vector<test::Child> runs;
    std::vector<fs::path> saves;
    for (std::size_t i = 0; i < std::size(sets); ++i)
        for (const bool windows : {false, true}) {
            const fs::path& save = saves.emplace_back(temp.path() / (windows ? "windows" : "linux") /
                                                      utf8Path("記録 " + std::to_string(i + 1)));
            fs::create_directories(save);
            std::vector<std::string> args{TALLIVEX_LINUX_CLI};
            if (windows)
                args = {wine, windowsCli};
            args.insert(args.end(), {"replay", path(windows, framesFolder), "--save-folder", path(windows, save),
                                     "--start", "2024-01-31 23:50"});
            args.insert(args.end(), sets[i].begin(), sets[i].end());
            runs.emplace_back(args, pathUtf8(save / "stdout"), pathUtf8(save / "stderr"));
        }

    for (std::size_t i = 0; i < runs.size(); i += 2) {
        SCOPED_TRACE(pathUtf8(saves[i]));
        EXPECT_EQ(runs[i].wait(), 0) << test::readAll(saves[i] / "stderr");
        EXPECT_EQ(runs[i + 1].wait(), 0) << test::readAll(saves[i + 1] / "stderr");
        // Standard output and error, the record file and the session history beside it, alike.
        const auto files = filesUnder(saves[i]);
        EXPECT_EQ(files.size(), 4u);
        EXPECT_EQ(filesUnder(saves[i + 1]), files);
    }
}

} // namespace
} // namespace tvx
