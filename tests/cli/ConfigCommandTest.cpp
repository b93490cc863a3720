#include "ConfigCommand.h"
#include "RecognizeCommand.h"

#include "config/ConfigFile.h"
#include "recognition/CaptureFile.h"
#include "recognition/GlyphPainter.h"
#include "base/Utf8Path.h"
#include "support/GameScreen.h"
#include "support/JsonPath.h"
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

    std::string file() const
    {
        std::ifstream in(m_home / "TV2MConfig.ini", std::ios::binary);
        std::ostringstream bytes;
        bytes << in.rdbuf();
        return bytes.str();
    }

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
    struct Case {
        std::vector<std::string> args;
        const char* interval;
        const char* target;
        bool rewritten;
    };
    const Case cases[] = {
        {{"show", "--no"}, "\"CaptureInterval\":9,", "\"MapleStory\"", false},
        {{"show", "--yes"}, "\"CaptureInterval\":9,", "\"Other Game\"", true},
        {{"save", "--no"}, "\"CaptureInterval\":9,", "\"MapleStory\"", true},
        {{"defaults", "--yes"}, "\"CaptureInterval\":6,", "\"Other Game\"", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args[1]);
        writeConfig(edited);
        EXPECT_EQ(run(c.args), 0);
        EXPECT_TRUE(has(m_out.str(), c.interval)) << m_out.str();
        EXPECT_TRUE(has(m_out.str(), std::string("\"SearchWindowName\":") + c.target)) << m_out.str();
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
    EXPECT_FALSE(has(m_err.str(), "TV2MConfigBack.ini")) << m_err.str();
    EXPECT_FALSE(std::filesystem::exists(m_home / "TV2MConfigBack.ini"));
}

// Settings no screen can have, read by the commands that use a home's configuration.
TEST_F(ConfigCommandTest, ImpossibleSettingsNeitherCrashNorMisreadTheCommands)
{
    Frame frame = test::gameScreen({"50", "1234", "777"});
    ASSERT_TRUE(writeBitmap24(m_home / "shot.bmp", frame));
    const std::string image = pathUtf8(m_home / "shot.bmp");
    struct Case {
        const char* name;
        void (*damage)(Settings&);
        const char* json; // what the image then reads as
        bool damaged;     // the file was replaced by the defaults
    };
    const Case cases[] = {
        {"region wider than a screen", [](Settings& s) { s.CaptureRegion[0].SizeX = 70000; },
         "\"level\":50,\"exp\":1234,\"money\":777", true},
        {"region of 65535 x 65535", [](Settings& s) { s.CaptureRegion[0] = {35, 578, 65535, 65535}; },
         "\"level\":50,\"exp\":1234,\"money\":777", true},
        {"region of size 0", [](Settings& s) { s.CaptureRegion[1].SizeX = 0; },
         "\"level\":50,\"exp\":1234,\"money\":777", true},
        {"damaged digit template", [](Settings& s) { s.PatternStrings[0][0] = "7C0"; },
         "\"level\":50,\"exp\":1234,\"money\":777", true},
        {"glyph width -7", [](Settings& s) { s.ReferenceSize[2].Width = -7; },
         "\"level\":50,\"exp\":1234,\"money\":777", true},
        // A clamped threshold reads nothing rather than overflowing.
        {"threshold 600000000", [](Settings& s) { s.BinaryThreshold[1] = 600000000; },
         "\"level\":50,\"exp\":-1,\"money\":777", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Settings s = defaultSettings(pathUtf8(m_home));
        c.damage(s);
        writeConfig(s);
        m_out.str("");
        m_err.str("");
        EXPECT_EQ(cli::runRecognize({"--home", pathUtf8(m_home), image}, m_out, m_err), 0) << m_err.str();
        EXPECT_TRUE(has(m_out.str(), c.json)) << m_out.str() << m_err.str();
        EXPECT_EQ(has(m_err.str(), "読込みできない設定ファイルです。"), c.damaged) << m_err.str();
    }
}

TEST_F(ConfigCommandTest, RecognizeReadsTheRegionsOfTheHomeConfiguration)
{
    // Regions moved to where nothing but this number is drawn.
    Settings s = defaultSettings(pathUtf8(m_home));
    s.CaptureRegion[RegionLevel] = {100, 40, 50, 9};
    writeConfig(s);
    Frame frame(800, 600);
    const InkColors colours = defaultInkColors(RegionLevel);
    paintRegionBackground(frame, s.CaptureRegion[RegionLevel], colours);
    paintColumns(frame, s.CaptureRegion[RegionLevel], 1, numberColumns(s.PatternStrings[RegionLevel], "57", true),
                 colours);
    const std::string image = pathUtf8(m_home / "shot.bmp");
    ASSERT_TRUE(writeBitmap24(m_home / "shot.bmp", frame));

    EXPECT_EQ(cli::runRecognize({"--home", pathUtf8(m_home), image}, m_out, m_err), 0);
    EXPECT_TRUE(has(m_out.str(), "\"level\":57,")) << m_out.str() << m_err.str();
}

} // namespace
} // namespace tvx
