#include "ConfigCommand.h"
#include "ReplayCommand.h"
#include "TextCodecFactory.h"
#include "base/Utf8Path.h"

#include "support/CsvFields.h"
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

TEST_F(ReplayCommandTest, MoneyNeverReadGivesNoMoneyFigure)
{
    frame("15.bmp", "137", "1000", "");
    frame("375.bmp", "137", "4600", "");
    frame("735.bmp", "137", "8200", "");
    for (const bool scan : {false, true}) {
        SCOPED_TRACE(scan ? "money scanned" : "money not scanned");
        std::filesystem::remove_all(saves);
        ASSERT_EQ(run(scan ? std::vector<std::string>{"--per-session", "--csv", "--money-scan"}
                           : std::vector<std::string>{"--per-session", "--csv"}),
                  0)
            << err.str();
        std::istringstream file(test::readAll(saves / "log" / utf8Path("給与明細202401312350.csv")));
        std::string line;
        std::getline(file, line); // the header
        std::vector<std::vector<std::string>> records;
        while (std::getline(file, line))
            records.push_back(test::csvFields(line.substr(0, line.size() - 1)));
        ASSERT_EQ(records.size(), 2u);
        for (const auto& fields : records) {
            EXPECT_EQ(fields[6], "6.0");
            EXPECT_EQ(fields[3] + fields[5] + fields[8] + fields[9], "") << "no money, no money figure";
        }
        for (const std::string& shown : {std::string("23:56"), std::string("00:02")}) {
            const std::size_t at = out.str().find(shown + "  137");
            ASSERT_NE(at, std::string::npos) << out.str();
            const std::string row = out.str().substr(at, out.str().find("\r\n", at) - at);
            EXPECT_EQ(row.find('-'), std::string::npos) << row;
            EXPECT_EQ(row.ends_with("     未認識 "), scan) << row;
        }
    }
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

TEST_F(ReplayCommandTest, AnUnreadableImageIsAFailedReading)
{
    frame("0.bmp", "1", "2", "3");
    std::ofstream(frames / "360.bmp") << "not an image";
    EXPECT_EQ(run({}), 2);
    EXPECT_NE(err.str().find("360.bmp: cannot read the image"), std::string::npos);
    EXPECT_NE(out.str().find("01/31 23:56  認識失敗  全部 NG\r\n"), std::string::npos) << out.str();
}

TEST_F(ReplayCommandTest, AFolderOrACutImageAmongTheFramesIsNamedAndTheSessionGoesOn)
{
    frame("10.bmp", "137", "1000", "5000");
    std::filesystem::create_directories(frames / "180.bmp");
    const std::vector<std::uint8_t> whole = encodeBitmap24(test::gameScreen({"137", "2000", "5000"}));
    std::ofstream(frames / "360.bmp", std::ios::binary)
        .write(reinterpret_cast<const char*>(whole.data()), static_cast<std::streamsize>(whole.size() / 2));
    frame("720.bmp", "137", "4600", "5000");
    EXPECT_EQ(run({"--per-session"}), 2);
    EXPECT_NE(err.str().find(pathUtf8(frames / "180.bmp") + ": cannot read the image ("), std::string::npos)
        << err.str();
    EXPECT_NE(err.str().find(pathUtf8(frames / "360.bmp") + ": cannot read the image ("), std::string::npos)
        << err.str();
    // Two failed readings, then the one at 720 s makes the only record.
    EXPECT_NE(test::readAll(saves / "log" / utf8Path("給与明細202401312350.txt")).find("02/01 00:02    137"),
              std::string::npos)
        << out.str() << err.str();
}

TEST_F(ReplayCommandTest, ARecordFileNameTooLongForTheFileSystemIsReportedNotFatal)
{
    frame("10.bmp", "137", "1000", "5000");
    frame("360.bmp", "137", "4600", "5000");
    const auto home = temp.path() / "home";
    std::filesystem::create_directories(home);
    ASSERT_EQ(cli::runConfig({"show", "--home", pathUtf8(home)}, out, err), 0);
    std::string text = test::readAll(home / "TV2MConfig.ini");
    // The file holds the folder in the Japanese code page.
    const std::string folderLine = platform::makeTextCodec()->toCp932(pathUtf8(home)) + " , ";
    const std::size_t at = text.find(folderLine);
    ASSERT_NE(at, std::string::npos);
    text.replace(at + folderLine.size(), text.find(" , ", at + folderLine.size()) - at - folderLine.size(),
                 std::string(300, 'a'));
    std::ofstream(home / "TV2MConfig.ini", std::ios::binary) << text;
    const int status = run({"--home", pathUtf8(home)});
    EXPECT_EQ(status, 2) << err.str() << out.str();
    // Said once, as the desktop program's message box would; the session goes on.
    const std::string told = "tallivex-cli replay: エラー: 時給記録ファイルに書き込めません。";
    const std::size_t first = err.str().find(told);
    EXPECT_NE(first, std::string::npos) << err.str();
    EXPECT_EQ(err.str().find(told, first + 1), std::string::npos) << err.str();
    EXPECT_NE(out.str().find("01/31 23:56  137"), std::string::npos) << out.str();
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
