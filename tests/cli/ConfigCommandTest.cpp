#include "ConfigCommand.h"
#include "LearnCommand.h"
#include "RecognizeCommand.h"
#include "ReplayCommand.h"

#include "config/ConfigFile.h"
#include "recognition/CaptureFile.h"
#include "base/Utf8Path.h"
#include "support/GameScreen.h"
#include "support/JsonPath.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace tvx {
namespace {

class ConfigCommandTest : public testing::Test {
protected:
    int run(std::vector<std::string> args)
    {
        m_out.str("");
        m_err.str("");
        args.insert(args.begin() + 1, {"--home", pathUtf8(m_home)});
        return cli::runConfig(args, m_out, m_err);
    }

    // A hand-edited file: LF endings, so a rewrite shows as CR LF.
    void writeConfig(const Settings& s)
    {
        std::string text = configFileText(s);
        for (std::size_t at; (at = text.find("\r\n")) != std::string::npos;)
            text.erase(at, 1);
        std::ofstream(m_home / "TV2MConfig.ini", std::ios::binary) << text;
    }

    std::string file() const { return test::readAll(m_home / "TV2MConfig.ini"); }

    bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

    test::TempFolder m_temp;
    const std::filesystem::path& m_home = m_temp.path();
    std::ostringstream m_out;
    std::ostringstream m_err;
};

TEST_F(ConfigCommandTest, ShowCreatesAMissingFileWithTheAnsweredScreenMode)
{
    EXPECT_EQ(run({"show", "--window"}), 0);
    const std::string json = m_out.str();
    EXPECT_TRUE(json.starts_with("{\"CaptureRegion\":[{\"StartX\":38,\"StartY\":600,\"SizeX\":50,\"SizeY\":9},"))
        << json;
    EXPECT_TRUE(has(json, ",\"SaveFolder\":\"" + test::jsonPath(m_home) + "\",\"SaveFile\":\"給与明細\","));
    EXPECT_TRUE(json.ends_with(",\"SearchWindowName\":\"MapleStory\"}\n")) << json;
    EXPECT_TRUE(has(m_err.str(), "を選択してください。 -> いいえ\n")) << m_err.str();
    EXPECT_TRUE(has(file(), "     38 ,    600 ,     50 ,      9 , "));
}

TEST_F(ConfigCommandTest, ShowSaveAndDefaultsTreatAnEditedFileAsTheProgramWould)
{
    Settings edited = defaultSettings(pathUtf8(m_home));
    edited.CaptureInterval = 9;
    edited.SearchWindowName = "Other Game";
    RegionReading& shapes = edited.Reading[RegionExp];
    shapes.Mode = ReadingMode::Shapes;
    shapes.EndGap = 3;
    shapes.Tolerance = 40;
    shapes.Shapes = {GlyphShape{1, 2, 3, {1, 2, 3}}};
    const char* taught =
        "{\"Mode\":\"shapes\",\"EndGap\":3,\"Tolerance\":40,\"Pitch\":0,\"Separator\":\"\",\"Shapes\":\"1:2x3:123\"}";
    struct Case {
        std::vector<std::string> args;
        const char* interval;
        const char* target;
        bool rewritten;
        bool shapes;
    };
    const Case cases[] = {
        {{"show", "--no"}, "\"CaptureInterval\":9,", "\"MapleStory\"", false, true},
        {{"show", "--yes"}, "\"CaptureInterval\":9,", "\"Other Game\"", true, true},
        {{"save", "--no"}, "\"CaptureInterval\":9,", "\"MapleStory\"", true, true},
        {{"defaults", "--yes"}, "\"CaptureInterval\":6,", "\"Other Game\"", true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args[1]);
        writeConfig(edited);
        EXPECT_EQ(run(c.args), 0);
        EXPECT_TRUE(has(m_out.str(), c.interval)) << m_out.str();
        EXPECT_TRUE(has(m_out.str(), std::string("\"SearchWindowName\":") + c.target)) << m_out.str();
        EXPECT_EQ(has(m_out.str(), taught), c.shapes) << m_out.str();
        EXPECT_EQ(has(file(), "\r\n"), c.rewritten);
    }
}

TEST_F(ConfigCommandTest, BadUsageAndAFailedWriteHaveTheirOwnExitCodes)
{
    EXPECT_EQ(cli::runConfig({}, m_out, m_err), 1);
    EXPECT_EQ(run({"show", "--maybe"}), 1);
    EXPECT_TRUE(has(m_err.str(), "usage: tallivex-cli config"));
    std::filesystem::create_directories(m_home / "TV2MConfig.ini.tmp" / "x");
    EXPECT_EQ(run({"save"}), 2);
    EXPECT_TRUE(has(m_err.str(), "[設定ファイル書き込み] 設定をファイルに保存できませんでした。"));

    // A folder in the file's place: nothing can be read, backed up or written.
    std::filesystem::remove_all(m_home / "TV2MConfig.ini.tmp");
    std::filesystem::create_directories(m_home / "TV2MConfig.ini");
    EXPECT_EQ(run({"show"}), 2);
    EXPECT_TRUE(has(m_err.str(), "読込みできない設定ファイルです。")) << m_err.str();
}

// Settings no screen can have, read by the commands that use a home's configuration: the
// file is replaced by the defaults, or the value clamped and said on stderr, and neither
// recognize nor replay crashes, hangs or reads a number that is not on the screen.
TEST_F(ConfigCommandTest, ImpossibleSettingsNeitherCrashNorMisreadTheCommands)
{
    const Frame frame = test::gameScreen({"50", "1234", "777"});
    const std::filesystem::path frames = m_home / "frames";
    std::filesystem::create_directories(frames);
    for (const char* name : {"shot.bmp", "frames/0.bmp", "frames/400.bmp"})
        ASSERT_TRUE(writeBitmap24(m_home / name, frame));
    const std::string image = pathUtf8(m_home / "shot.bmp");
    constexpr const char* kRead = "\"level\":50,\"exp\":1234,\"money\":777";
    struct Case {
        const char* name;
        void (*damage)(Settings&);
        const char* json;    // what recognize reads the image as
        const char* clamped; // the stderr line of a clamped value, or null when the file is damaged
        const char* replayed = "開始  Lv:  50"; // what replay's log box shows
    };
    const Case cases[] = {
        // Damaged: the defaults take over, and read the screen.
        {"region 70000 wide", [](Settings& s) { s.CaptureRegion[0].SizeX = 70000; }, kRead, nullptr},
        // A clamped threshold reads nothing rather than overflowing, and says why.
        {"threshold 600000000", [](Settings& s) { s.BinaryThreshold[1] = 600000000; },
         "\"level\":50,\"exp\":-1,\"money\":777", "BinaryThreshold(2) 600000000 -> 255", "10:06  認識失敗  Exp NG"},
        // The level's digits are white: the brightest threshold still finds them.
        {"threshold 99999", [](Settings& s) { s.BinaryThreshold[0] = 99999; }, kRead, "BinaryThreshold(1) 99999 -> 255"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (const bool replay : {false, true}) {
            Settings s = defaultSettings(pathUtf8(m_home));
            c.damage(s);
            writeConfig(s);
            m_out.str("");
            m_err.str("");
            const int status =
                replay ? cli::runReplay({pathUtf8(frames), "--save-folder", pathUtf8(m_home / "saves"), "--home",
                                         pathUtf8(m_home), "--start", "2024-05-01 10:00", "--per-session"},
                                        m_out, m_err)
                       : cli::runRecognize({"--home", pathUtf8(m_home), image}, m_out, m_err);
            EXPECT_EQ(status, 0) << m_err.str();
            EXPECT_TRUE(has(m_out.str(), replay ? c.replayed : c.json)) << m_out.str() << m_err.str();
            EXPECT_EQ(has(m_err.str(), "読込みできない設定ファイルです。"), c.clamped == nullptr) << m_err.str();
            if (c.clamped) {
                EXPECT_TRUE(has(m_err.str(), "[TV2MConfig.ini] Setting Out Of Range : " + std::string(c.clamped) + " \n"))
                    << m_err.str();
            }
            EXPECT_FALSE(has(m_err.str(), "Error Trap")) << m_err.str();
        }
    }
}

// A home that is a file cannot hold a configuration: every command says so and stops.
TEST_F(ConfigCommandTest, AHomeThatIsAFileIsRefusedByEveryCommand)
{
    const std::filesystem::path file = m_home / "home.txt";
    std::ofstream(file) << "not a folder";
    ASSERT_TRUE(writeBitmap24(m_home / "0.bmp", test::gameScreen({"50", "1234", "777"})));
    const std::string home = pathUtf8(file);
    const std::string image = pathUtf8(m_home / "0.bmp");
    using Command = int (*)(const std::vector<std::string>&, std::ostream&, std::ostream&);
    const std::pair<Command, std::vector<std::string>> commands[] = {
        {cli::runConfig, {"show", "--home", home}},
        {cli::runRecognize, {"--home", home, image}},
        {cli::runReplay, {pathUtf8(m_home), "--save-folder", pathUtf8(m_home / "saves"), "--home", home}},
        {cli::runLearn, {"--home", home, image, "50", "1234", "777"}},
    };
    for (const auto& [command, args] : commands) {
        SCOPED_TRACE(args[0]);
        m_out.str("");
        m_err.str("");
        EXPECT_EQ(command(args, m_out, m_err), 2);
        EXPECT_TRUE(m_err.str().starts_with("tallivex-cli: the home folder ")) << m_err.str();
        EXPECT_TRUE(m_err.str().ends_with("home.txt is not a folder and cannot be made one\n")) << m_err.str();
        EXPECT_EQ(m_out.str(), "");
    }
    EXPECT_FALSE(std::filesystem::exists(m_home / "saves"));
}

} // namespace
} // namespace tvx
