#include "ReplayCommand.h"
#include "base/Utf8Path.h"

#include "support/ReadFile.h"
#include "support/GameScreen.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace tvx {
namespace {

class ReplayCommandTest : public testing::Test {
protected:
    void frame(const std::string& name, const std::string& level, const std::string& exp, const std::string& money)
    {
        std::filesystem::create_directories(frames);
        ASSERT_TRUE(writeBitmap24(frames / name, test::gameScreen({level, exp, money})));
    }

    int run(std::vector<std::string> extra)
    {
        std::vector<std::string> args{pathUtf8(frames), "--save-folder", pathUtf8(saves), "--start", "2024-01-31 23:50"};
        args.insert(args.end(), extra.begin(), extra.end());
        out.str("");
        err.str("");
        return cli::runReplay(args, out, err);
    }

    test::TempFolder temp;
    std::filesystem::path frames = temp.path() / "frames";
    std::filesystem::path saves = temp.path() / "saves";
    std::ostringstream out;
    std::ostringstream err;
};

TEST_F(ReplayCommandTest, WritesTheRecordFileAndTheLogBox)
{
    frame("10.bmp", "137", "1000", "5000");
    frame("0370.bmp", "137", "4600", "5000"); // leading zeros allowed
    frame("730.bmp", "138", "100", "5800");
    frame("notes.txt.bmp", "1", "1", "1");    // not named by a second: ignored
    ASSERT_EQ(run({"--per-session", "--money-scan"}), 0) << err.str();

    EXPECT_EQ(test::readAll(saves / "log" / utf8Path("給与明細202401312350.txt")),
              "\xEF\xBB\xBF 月日 時刻      Lv          Exp              メル           獲得Exp           獲得メル     "
              "Exp経過(分)   Exp時給(k/h)   メル経過(分)   メル時給(k/h)\r\n"
              "01/31 23:56    137    1,336,967,353            5,000            3,600                  0           6.0"
              "             36            0.0               0 \r\n"
              "02/01 00:02    138    1,410,563,166            5,800       73,595,813                800           6.0"
              "        735,958            6.0               8 \r\n");
    EXPECT_EQ(out.str(),
              " 月日 時刻    Lv     獲得Exp       獲得メル  経過   Exp時給   時給 (k/h)\r\n"
              "\r\n  137  1,336,963,753         5,000 \r\n"
              "01/31 23:56  137        3,600             0   6.0        36             \r\n"
              "02/01 00:02  138   73,595,813           800   6.0   735,958           8 \r\n"
              " 経過: 2024/01/31 23:50:10  ～  2024/02/01 00:02:10  ＝  0日 0時 12分間\r\n"
              "    開始  Lv: 137    Exp:         1000      0.00％   ﾒﾙ:            5000 \r\n"
              "    終了  Lv: 138    Exp:          100      0.00％   ﾒﾙ:            5800 \r\n"
              "    増加  Lv:   1    Exp:     73599413      0.00％   ﾒﾙ:             800 \r\n"
              "\r\n");
}

TEST_F(ReplayCommandTest, RefusesBadArguments)
{
    frame("0.bmp", "1", "2", "3");
    EXPECT_EQ(cli::runReplay({pathUtf8(frames)}, out, err), 1);
    EXPECT_EQ(run({"--start"}), 1);
    EXPECT_EQ(cli::runReplay({pathUtf8(frames), "--save-folder", "x", "--start", "2024-02-30 10:00"}, out, err), 1);
    EXPECT_EQ(cli::runReplay({pathUtf8(temp.path() / "none"), "--save-folder", "x"}, out, err), 1);
    EXPECT_EQ(run({"--fast"}), 1);
    EXPECT_NE(err.str().find("unknown option --fast"), std::string::npos);
}

// Frames that are no image, a folder or an image cut short: each is named, is a failed
// reading, and the session goes on.
TEST_F(ReplayCommandTest, FramesThatCannotBeReadAreNamedAndFailedReadings)
{
    frame("10.bmp", "137", "1000", "5000");
    std::filesystem::create_directories(frames / "180.bmp");
    std::ofstream(frames / "360.bmp") << "not an image";
    const std::vector<std::uint8_t> whole = encodeBitmap24(test::gameScreen({"137", "2000", "5000"}));
    std::ofstream(frames / "540.bmp", std::ios::binary)
        .write(reinterpret_cast<const char*>(whole.data()), static_cast<std::streamsize>(whole.size() / 2));
    frame("720.bmp", "137", "4600", "5000");
    EXPECT_EQ(run({"--per-session", "--csv"}), 2);
    for (const char* name : {"180.bmp", "360.bmp", "540.bmp"})
        EXPECT_NE(err.str().find(pathUtf8(frames / name) + ": cannot read the image ("), std::string::npos)
            << err.str();
    EXPECT_NE(out.str().find("01/31 23:56  認識失敗  全部 NG\r\n"), std::string::npos) << out.str();
    // The frame at 720 s makes the only record.
    const auto lines = test::splitLines(test::readAll(saves / "log" / utf8Path("給与明細202401312350.csv")));
    ASSERT_EQ(lines.size(), 2u) << out.str() << err.str();
    EXPECT_TRUE(lines[1].starts_with("02/01 00:02 ,  137  ,")) << lines[1];
}

TEST_F(ReplayCommandTest, ARecordFileThatCannotBeWrittenIsReportedNotFatal)
{
    frame("10.bmp", "137", "1000", "5000");
    frame("360.bmp", "137", "4600", "5000");
    frame("720.bmp", "137", "8200", "5000");
    std::ofstream(saves) << "a file where the folder should be";
    EXPECT_EQ(run({}), 2) << err.str() << out.str();
    // Said once, as the desktop program's message box would; the session goes on.
    const std::string told = "tallivex-cli replay: エラー: 時給記録ファイルに書き込めません。";
    const std::size_t first = err.str().find(told);
    EXPECT_NE(first, std::string::npos) << err.str();
    EXPECT_EQ(err.str().find(told, first + 1), std::string::npos) << err.str();
    EXPECT_NE(out.str().find("02/01 00:02  137"), std::string::npos) << out.str();
}

TEST_F(ReplayCommandTest, AHomeNotYetMadeIsMadeWithItsConfigurationAndLog)
{
    frame("10.bmp", "137", "1000", "5000");
    frame("370.bmp", "137", "4600", "5000");
    const auto home = temp.path() / "new" / "home";
    EXPECT_EQ(run({"--home", pathUtf8(home)}), 0) << err.str();
    EXPECT_TRUE(std::filesystem::exists(home / "TV2MConfig.ini"));
    EXPECT_TRUE(std::filesystem::exists(home / "debug.txt"));
    EXPECT_NE(out.str().find("01/31 23:56  137"), std::string::npos) << out.str() << err.str();
}

} // namespace
} // namespace tvx
