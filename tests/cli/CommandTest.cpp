// The command line's commands, each with its arguments, images and home folder: what it prints, its status.
#include "ConfigCommand.h"
#include "HistoryCommand.h"
#include "Json.h"
#include "LearnCommand.h"
#include "RecognizeCommand.h"
#include "ReplayCommand.h"

#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "measurement/ExpTable.h"
#include "recognition/CaptureFile.h"
#include "support/BitmapFont.h"
#include "support/GameScreen.h"
#include "support/JsonPath.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TestData.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iomanip>
#include <optional>
#include <regex>
#include <sstream>

namespace tvx {
namespace {

// A frame of the live session: its second and what it shows, level 0 when it cannot be read.
struct Shown { std::int64_t t; std::int32_t level; std::int64_t exp; std::optional<std::int64_t> money; };

std::int64_t total(const Shown& s) { return ExpTable(s.level).wholePart() + s.exp; }
double position(const Shown& s)
{
    const double span = (ExpTable(s.level + 1) - ExpTable(s.level)).toDouble();
    return s.level + static_cast<double>(s.exp) / span;
}
// gain x 3.6 / seconds, rounded toward minus infinity.
std::int64_t floorRate(std::int64_t gain, std::int64_t seconds)
{
    return static_cast<std::int64_t>(std::floor(static_cast<double>(gain * 36) / static_cast<double>(seconds * 10)));
}

// A three-hour session every five minutes: a level-up, twenty minutes of failed readings,
// a long idle stretch, money on some readings, a death, then another character.
std::vector<Shown> script()
{
    std::vector<Shown> frames;
    std::int32_t level = 100;
    std::int64_t exp = (ExpTable(101) - ExpTable(100)).wholePart() - 3'000'000;
    std::int64_t money = 50'000;
    for (int i = 0; i < 38; ++i) {
        const std::int64_t t = 30 + i * 300;
        if (i == 27)
            level = 150, exp = 5000; // another character
        const bool failed = i >= 9 && i <= 12;
        const bool idle = i >= 16 && i <= 21;
        if (!idle && !failed) {
            exp += 1'000'000 + 37'777 * (i % 5);
            money += 333 * (i % 3);
        }
        const std::int64_t span = (ExpTable(level + 1) - ExpTable(level)).wholePart();
        if (exp >= span)
            exp -= span, ++level;
        if (i == 24)
            exp = 0; // died: experience lost, level kept
        const std::optional<std::int64_t> shownMoney = i % 3 == 0 ? std::nullopt : std::optional(money);
        frames.push_back({t, failed ? 0 : level, exp, shownMoney});
    }
    return frames;
}

std::string field(const std::string& line, const std::string& name)
{
    const std::regex pattern("\"" + name + "\": (null|\"[A-Za-z]*\"|-?[0-9.]+)");
    std::smatch match;
    return std::regex_search(line, match, pattern) ? match[1].str() : "missing";
}

// A figure as the live file writes it: null, or fixed with `places` decimals.
std::string figure(std::optional<double> value, int places)
{
    if (!value)
        return "null";
    std::ostringstream text;
    text << std::fixed << std::setprecision(places) << *value;
    return text.str() == "-0.00" ? "0.00" : text.str();
}

class CommandTest : public testing::Test {
protected:
    using Command = int (*)(const std::vector<std::string>&, std::ostream&, std::ostream&);

    // A command's status; what it printed stays in out and err.
    int run(Command command, const std::vector<std::string>& args)
    {
        out.str("");
        err.str("");
        return command(args, out, err);
    }
    int inHome(Command command, std::vector<std::string> args)
    {
        args.insert(args.begin(), {"--home", pathUtf8(home)});
        return run(command, args);
    }
    int replay(std::vector<std::string> extra)
    {
        extra.insert(extra.begin(), {pathUtf8(frames), "--save-folder", pathUtf8(saves), "--start", "2024-01-31 23:50"});
        return run(cli::runReplay, extra);
    }

    // A screen written in the home folder: its path. The test font is unknown to the built-in templates.
    std::string image(const std::string& name, const Frame& screen)
    {
        EXPECT_TRUE(writeBitmap24(home / name, screen));
        return pathUtf8(home / name);
    }
    std::string fontImage(const std::string& name, std::array<std::string, kRegionCount> texts, std::uint32_t seed = 1)
    {
        return image(name, test::fontScreen(texts, seed));
    }
    void frame(const std::string& name, const std::string& level, const std::string& exp, const std::string& money)
    {
        std::filesystem::create_directories(frames);
        image("frames/" + name, test::gameScreen({level, exp, money}));
    }

    // A hand-edited file: LF endings, so a rewrite shows as CR LF.
    void writeConfigFile(const Settings& s)
    {
        std::string text = configFileText(s);
        std::erase(text, '\r');
        std::ofstream(home / "TV2MConfig.ini", std::ios::binary) << text;
    }
    std::string configFile() const { return test::readAll(home / "TV2MConfig.ini"); }

    test::TempFolder temp;
    const std::filesystem::path& home = temp.path();
    std::filesystem::path frames = home / "frames";
    std::filesystem::path saves = home / "saves";
    std::ostringstream out;
    std::ostringstream err;
};

// Names the commands print may hold any character: each is a JSON string read back unchanged.
TEST(JsonText, QuotesBackslashesAndControlCharactersAreEscaped)
{
    const std::pair<std::string, std::string> cases[] = {
        {"C:\\記録\\給与明細", "\"C:\\\\記録\\\\給与明細\""},
        {"say \"hi\"", "\"say \\\"hi\\\"\""},
        {"a\r\n\tb", "\"a\\r\\n\\tb\""},
        {std::string("\x01\x1f ", 3), "\"\\u0001\\u001f \""},
    };
    for (const auto& [text, json] : cases)
        EXPECT_EQ(cli::jsonString(text), json) << json;
}

TEST_F(CommandTest, ShowSaveAndDefaultsTreatAnEditedFileAsTheProgramWould)
{
    Settings edited = defaultSettings(pathUtf8(home));
    edited.CaptureInterval = 9;
    edited.SearchWindowName = "Other Game";
    edited.Reading[RegionExp] = {ReadingMode::Shapes, 3, "", 0, 40, {GlyphShape{1, 2, 3, {1, 2, 3}}}};
    const char* taught =
        "{\"Mode\":\"shapes\",\"EndGap\":3,\"Tolerance\":40,\"Pitch\":0,\"Separator\":\"\",\"Shapes\":\"1:2x3:123\"}";
    struct Case { std::vector<std::string> args; const char* interval; const char* target; bool rewritten, shapes; };
    const Case cases[] = {
        {{"show", "--no"}, "\"CaptureInterval\":9,", "\"MapleStory\"", false, true},
        {{"show", "--yes"}, "\"CaptureInterval\":9,", "\"Other Game\"", true, true},
        {{"save", "--no"}, "\"CaptureInterval\":9,", "\"MapleStory\"", true, true},
        {{"defaults", "--yes"}, "\"CaptureInterval\":6,", "\"Other Game\"", true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args[1]);
        writeConfigFile(edited);
        EXPECT_EQ(inHome(cli::runConfig, c.args), 0);
        // Our settings after the sixty lines are shown too.
        EXPECT_TRUE(out.str().ends_with(",\"StallAlarm\":false,\"StallMinutes\":15,\"NextLevelWindow\":30,"
                                        "\"CompactX\":-32768,\"CompactY\":-32768,\"CompactOpacity\":90,"
                                        "\"CompactShown\":false,\"UiLanguage\":\"\"}\n"))
            << out.str();
        EXPECT_EQ(test::countOf(err.str(), "でよろしいいですか？ -> いいえ\n") > 0, c.args[1] == "--no") << err.str();
        EXPECT_HOLDS(out.str(), c.interval);
        EXPECT_HOLDS(out.str(), std::string("\"SearchWindowName\":") + c.target);
        EXPECT_EQ(test::countOf(out.str(), taught), c.shapes ? 1u : 0u) << out.str();
        EXPECT_EQ(test::countOf(configFile(), "\r\n") > 0, c.rewritten);
    }
}

// Unusable arguments end in 1, unusable homes and files in 2; only config prints its settings.
TEST_F(CommandTest, RefusedArgumentsAndHomesHaveTheirOwnExitCodes)
{
    frame("0.bmp", "1", "2", "3");
    const std::string image = pathUtf8(frames / "0.bmp");
    const std::string f = pathUtf8(frames);
    const std::string s = pathUtf8(saves);
    std::ofstream(home / "home.txt") << "not a folder";
    const std::string file = pathUtf8(home / "home.txt");
    const std::string noHome = "tallivex-cli: the home folder " + file + " is not a folder and cannot be made one\n";
    std::filesystem::create_directories(home / "unwritable" / "TV2MConfig.ini.tmp" / "x");
    std::filesystem::create_directories(home / "unreadable" / "TV2MConfig.ini"); // nothing to read, back up or write
    struct Case { Command command; std::vector<std::string> args; int status; std::string said; bool printed = false; };
    const Case cases[] = {
        {cli::runConfig, {}, 1, "usage: tallivex-cli config"},
        {cli::runConfig, {"--home", pathUtf8(home), "show", "--maybe"}, 1, "usage: tallivex-cli config"},
        {cli::runConfig, {"save", "--home", pathUtf8(home / "unwritable")}, 2,
         "[設定ファイル書き込み] 設定をファイルに保存できませんでした。", true},
        {cli::runConfig, {"show", "--home", pathUtf8(home / "unreadable")}, 2, "読込みできない設定ファイルです。", true},
        {cli::runReplay, {f}, 1, "usage: tallivex-cli replay"},
        {cli::runReplay, {f, "--save-folder", s, "--start"}, 1, "--start needs a value"},
        {cli::runReplay, {f, "--save-folder", "x", "--start", "2024-02-30 10:00"}, 1, "not \"2024-02-30 10:00\""},
        {cli::runReplay, {pathUtf8(home / "none"), "--save-folder", "x"}, 1, "cannot read the folder"},
        {cli::runReplay, {f, "--save-folder", s, "--fast"}, 1, "unknown option --fast"},
        {cli::runLearn, {"--home", pathUtf8(home), image, "37", "-"}, 1, "usage: tallivex-cli learn"},
        {cli::runLearn, {"--home", pathUtf8(home), image, "3x", "-", "-"}, 2, "level 3x: not a number"},
        {cli::runConfig, {"show", "--home", file}, 2, noHome},
        {cli::runRecognize, {"--home", file, image}, 2, noHome},
        {cli::runReplay, {f, "--save-folder", s, "--home", file}, 2, noHome},
        {cli::runLearn, {"--home", file, image, "50", "1234", "777"}, 2, noHome},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        EXPECT_EQ(run(c.command, c.args), c.status);
        EXPECT_HOLDS(err.str(), c.said);
        EXPECT_EQ(out.str().empty(), !c.printed);
    }
    EXPECT_FALSE(std::filesystem::exists(saves));
}

// Settings no screen can have: the file is replaced by the defaults, or the value clamped and
// said on stderr; neither recognize nor replay crashes, hangs or reads what is not on the screen.
TEST_F(CommandTest, ImpossibleSettingsNeitherCrashNorMisreadTheCommands)
{
    const std::string image = this->image("shot.bmp", test::gameScreen({"50", "1234", "777"}));
    frame("0.bmp", "50", "1234", "777");
    frame("400.bmp", "50", "1234", "777");
    constexpr const char* kRead = "\"level\":50,\"exp\":1234,\"money\":777";
    // What recognize reads, what is said on stderr and replay's log box.
    struct Case { const char* name; void (*damage)(Settings&); const char* json, *said, *replayed = "開始  Lv:  50"; };
    const Case cases[] = {
        // Damaged: the defaults take over, and read the screen.
        {"region 70000 wide", [](Settings& s) { s.CaptureRegion[0].SizeX = 70000; }, kRead, "読込みできない設定ファイルです。"},
        // A clamped threshold reads nothing rather than overflowing, and says why.
        {"threshold 600000000", [](Settings& s) { s.BinaryThreshold[1] = 600000000; },
         "\"level\":50,\"exp\":-1,\"money\":777",
         "[TV2MConfig.ini] Setting Out Of Range : BinaryThreshold(2) 600000000 -> 255 \n", "23:56  認識失敗  Exp NG"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (const bool replaying : {false, true}) {
            Settings s = defaultSettings(pathUtf8(home));
            c.damage(s);
            writeConfigFile(s);
            const int status = replaying ? replay({"--per-session", "--home", pathUtf8(home)})
                                         : inHome(cli::runRecognize, {image});
            EXPECT_EQ(status, 0) << err.str();
            EXPECT_HOLDS(out.str(), replaying ? c.replayed : c.json) << err.str();
            EXPECT_HOLDS(err.str(), c.said);
            EXPECT_LACKS(err.str(), "Error Trap");
        }
    }
}

TEST_F(CommandTest, AFewScreensTeachAnUnknownFontThatRecognizeThenReads)
{
    const std::array<std::string, kRegionCount> taught[] = {
        {"58", "1234567", "90,210"},  {"147", "8890123", "5,006,400"}, {"203", "4455667", "77,318"},
        {"96", "9087654", "1,234,589"}, {"110", "3141592", "2,718,281"},
    };
    std::vector<std::string> args;
    for (std::uint32_t i = 0; i < std::size(taught); ++i) {
        args.push_back(fontImage(std::to_string(i) + ".bmp", taught[i], i + 1));
        args.insert(args.end(), taught[i].begin(), taught[i].end());
    }
    ASSERT_EQ(inHome(cli::runLearn, args), 0) << err.str();
    EXPECT_EQ(out.str(), test::testData("cli/learn-five-screens.txt", false));

    const std::string unseen = fontImage("new.bmp", {"185", "7301264", "6,543,210"}, 9);
    EXPECT_EQ(inHome(cli::runRecognize, {unseen}), 0) << err.str();
    EXPECT_EQ(out.str(),
              "{\"file\":\"" + test::jsonPath(utf8Path(unseen)) + "\",\"level\":185,\"exp\":7301264,\"money\":6543210}\n");
}

// A contradicting screen saves nothing; teaching the level alone keeps the other regions' templates.
TEST_F(CommandTest, ARefusedImageSavesNothingAndSkippedRegionsKeepTheirTemplates)
{
    const std::string before = (inHome(cli::runLearn, {fontImage("a.bmp", {"", "", ""}), "-", "-", "-"}), configFile());
    const std::string good = fontImage("good.bmp", {"37", "", ""});
    const std::string wrong = fontImage("wrong.bmp", {"73", "", ""}, 2);
    EXPECT_EQ(inHome(cli::runLearn, {good, "37", "-", "-", wrong, "37", "-", "-"}), 2);
    EXPECT_HOLDS(err.str(), wrong + ": level 37: the digit 3 differs from the one learnt before");
    EXPECT_HOLDS(err.str(), "nothing was saved");
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(configFile(), before);

    const std::string more = fontImage("c.bmp", {"773", "", ""}, 2);
    ASSERT_EQ(inHome(cli::runLearn, {good, "37", "-", "-", more, "773", "-", "-"}), 0) << err.str();
    EXPECT_HOLDS(out.str(), "\"region\":\"level\",\"images\":2,\"mode\":\"exact\",\"width\":6,\"threshold\":188,"
                            "\"thresholdProposed\":false,\"learnt\":\"37\",\"missing\":\"01245689\"");
    // Lines 21 to 33 hold the level's settings, 34 to 59 those of the experience and money.
    const std::vector<std::string> now = test::splitLines(configFile()), was = test::splitLines(before);
    EXPECT_EQ(std::vector(now.begin() + 33, now.begin() + 59), std::vector(was.begin() + 33, was.begin() + 59));
    EXPECT_NE(std::vector(now.begin() + 20, now.begin() + 33), std::vector(was.begin() + 20, was.begin() + 33));
}

// One screen a call: the calls add up, the file loads as saved, an untaught digit fails the reading.
TEST_F(CommandTest, ScreensTaughtOneACallAddUpAndLoadAsSaved)
{
    const std::array<std::string, kRegionCount> calls[] = {{"72", "1430517", "-"}, {"3", "86", "-"}, {"194", "29", "-"}};
    for (std::uint32_t i = 0; i < std::size(calls); ++i) {
        const std::string image = fontImage(std::to_string(i) + ".bmp", {calls[i][0], calls[i][1], ""}, i + 1);
        ASSERT_EQ(inHome(cli::runLearn, {image, calls[i][0], calls[i][1], "-"}), 0) << err.str();
        EXPECT_LACKS(out.str(), "\"replaced\":true") << "call " << i << ": " << out.str();
        // Read back as the program loads it: the defaults do not take its place.
        const std::string saved = configFile();
        EXPECT_EQ(inHome(cli::runRecognize, {image}), 0) << err.str();
        EXPECT_HOLDS(out.str(), "\"level\":" + calls[i][0] + ",\"exp\":" + calls[i][1]);
        EXPECT_EQ(configFile(), saved);
    }
    // Digits of all three calls together; 5 and 6 of the level were never shown.
    EXPECT_EQ(inHome(cli::runRecognize,
                     {fontImage("held.bmp", {"147", "9831", ""}, 7), fontImage("new.bmp", {"56", "3", ""}, 8)}),
              0);
    EXPECT_HOLDS(out.str(), "\"level\":147,\"exp\":9831");
    EXPECT_HOLDS(out.str(), "\"level\":-1,\"exp\":3,");
}

TEST_F(CommandTest, RecognizeReadsTheWindowModeTracesAndNamesTheImagesItCannotRead)
{
    const auto shot = image("w.bmp", test::gameScreen({"42", "777", "31"}, ScreenMode::Window));
    EXPECT_EQ(run(cli::runRecognize, {"--window-mode", "--trace", shot}), 0);
    EXPECT_HOLDS(out.str(), "\"level\":42,\"exp\":777,\"money\":31");
    EXPECT_HOLDS(err.str(), "category0 変換データ : ");
    EXPECT_EQ(run(cli::runRecognize, {shot}), 0);
    EXPECT_HOLDS(out.str(), "\"level\":-1,\"exp\":-1,\"money\":-1");

    // Each image that cannot be read is named with its result; the others are still read.
    const std::string good = image("good.bmp", test::gameScreen({"9", "9", "9"}));
    const std::string small = image("small.bmp", Frame(20, 20));
    const std::string broken = pathUtf8(home / "broken.bmp"), missing = pathUtf8(home / "missing.bmp");
    std::ofstream(home / "broken.bmp", std::ios::binary) << "PK\x03\x04";
    EXPECT_EQ(run(cli::runRecognize, {broken, missing, small, good}), 2);
    for (const std::string& said : {broken + ": cannot read the image (result -4",
                                    missing + ": cannot read the image (result -5", small + ": level region: error 9"})
        EXPECT_HOLDS(err.str(), said) << err.str();
    EXPECT_TRUE(out.str().ends_with("{\"file\":\"" + test::jsonPath(utf8Path(good)) +
                                      "\",\"level\":9,\"exp\":9,\"money\":9}\n"))
        << out.str();
}

// The home is made with its configuration and log where there was none.
TEST_F(CommandTest, ReplayWritesTheRecordFileAndTheLogBoxOrSaysOnceItCannotWriteTheRecords)
{
    frame("10.bmp", "137", "1000", "5000");
    frame("0370.bmp", "137", "4600", "5000"); // leading zeros allowed
    frame("730.bmp", "138", "100", "5800");
    frame("notes.txt.bmp", "1", "1", "1");    // not named by a second: ignored
    const auto made = home / "new" / "home";
    ASSERT_EQ(replay({"--per-session", "--money-scan", "--home", pathUtf8(made)}), 0) << err.str();

    EXPECT_EQ(test::readAll(saves / "log" / utf8Path("給与明細202401312350.txt")),
              test::testData("cli/replay-record.txt"));
    EXPECT_EQ(out.str(), test::testData("cli/replay-log-box.txt"));
    EXPECT_TRUE(std::filesystem::exists(made / "TV2MConfig.ini") && std::filesystem::exists(made / "debug.txt"));

    // An unwritable record file is said once, as the desktop program's message box would; the session goes on.
    std::filesystem::remove_all(saves);
    std::ofstream(saves) << "a file where the folder should be";
    EXPECT_EQ(replay({}), 2) << err.str() << out.str();
    EXPECT_EQ(test::countOf(err.str(), "tallivex-cli replay: エラー: 時給記録ファイルに書き込めません。"), 1u) << err.str();
    EXPECT_HOLDS(out.str(), "02/01 00:02  138");
}

// Unreadable frames are named and are failed readings; an unreadable history is named and left alone.
TEST_F(CommandTest, FramesAndAHistoryThatCannotBeReadAreNamedAndTheSessionGoesOn)
{
    const std::filesystem::path history = saves / "log" / utf8Path("セッション履歴.csv");
    std::filesystem::create_directories(history.parent_path());
    std::ofstream(history, std::ios::binary) << "not a history\r\n";
    frame("10.bmp", "137", "1000", "5000");
    std::filesystem::create_directories(frames / "180.bmp");
    std::ofstream(frames / "360.bmp") << "not an image";
    frame("720.bmp", "137", "4600", "5000");
    EXPECT_EQ(replay({"--per-session", "--csv"}), 2);
    for (const char* name : {"180.bmp", "360.bmp"})
        EXPECT_HOLDS(err.str(), pathUtf8(frames / name) + ": cannot read the image (");
    EXPECT_HOLDS(out.str(), "01/31 23:56  認識失敗  全部 NG\r\n");
    // The frame at 720 s makes the only record.
    const auto lines = test::splitLines(test::readAll(saves / "log" / utf8Path("給与明細202401312350.csv")));
    ASSERT_EQ(lines.size(), 2u) << out.str() << err.str();
    EXPECT_TRUE(lines[1].starts_with("02/01 00:02 ,  137  ,")) << lines[1];
    EXPECT_HOLDS(err.str(), "セッション履歴");
    EXPECT_EQ(test::readAll(history), "not a history\r\n");
    EXPECT_EQ(run(cli::runHistory, {"--save-folder", pathUtf8(saves)}), 2);
    EXPECT_HOLDS(err.str(), "line 1");
}

// replay --live against figures worked out here from the frames alone.
TEST_F(CommandTest, EveryLiveLineHoldsTheFiguresOfItsReading)
{
    const std::vector<Shown> shown = script();
    std::filesystem::create_directories(frames);
    for (const Shown& s : shown) {
        const std::string level = s.level > 0 ? std::to_string(s.level) : "";
        const std::string money = s.money ? std::to_string(*s.money) : "";
        ASSERT_TRUE(writeBitmap24(frames / (std::to_string(s.t) + ".bmp"),
                                  test::gameScreen({level, std::to_string(s.exp), money}, ScreenMode::FullScreen,
                                                   static_cast<std::uint32_t>(s.t), 560, 590)));
    }
    const std::filesystem::path live = home / "live.jsonl";
    ASSERT_EQ(replay({"--live", pathUtf8(live)}), 0) << err.str();
    std::istringstream lines(test::readAll(live));

    const std::pair<std::string, std::int64_t> windows[] = {{"10", 10}, {"30", 30}, {"60", 60}, {"Session", 100000}};
    std::vector<std::size_t> character; // readings of the current character
    std::optional<std::int64_t> lastValid;
    std::int64_t lastGain = 0;
    std::int32_t previousLevel = 0;
    int stalls = 0;
    bool armed = true;
    for (std::size_t n = 0; n < shown.size(); ++n) {
        const Shown& now = shown[n];
        std::string line;
        ASSERT_TRUE(std::getline(lines, line)) << "no line for second " << now.t;
        SCOPED_TRACE(line);
        EXPECT_EQ(field(line, "t"), std::to_string(now.t));
        const bool valid = now.level > 0;
        if (valid) {
            if (previousLevel != 0 && (now.level < previousLevel || now.level >= previousLevel + 4))
                character.clear(), armed = true;
            if (character.empty())
                lastGain = now.t;
            else if (total(now) > total(shown[character.back()]))
                lastGain = now.t, armed = true;
            character.push_back(n);
            lastValid = now.t;
            previousLevel = now.level;
        }
        std::optional<std::int64_t> exp30;
        for (const auto& [name, minutes] : windows) {
            std::optional<std::int64_t> exp, money;
            std::optional<double> level;
            if (valid) {
                const Shown* from = nullptr;
                const Shown* moneyFrom = nullptr;
                for (std::size_t j : character) {
                    const Shown& then = shown[j];
                    if (then.t < now.t - minutes * 60)
                        continue;
                    from = from ? from : &then;
                    if (then.money && !moneyFrom)
                        moneyFrom = &then;
                }
                if (from->t < now.t) {
                    exp = floorRate(total(now) - total(*from), now.t - from->t);
                    level = std::round((position(now) - position(*from)) * 100 * 3600 / (now.t - from->t) * 100) / 100;
                }
                if (now.money && moneyFrom->t < now.t)
                    money = floorRate(*now.money - *moneyFrom->money, now.t - moneyFrom->t);
            }
            EXPECT_EQ((std::array{field(line, "exp" + name), field(line, "level" + name), field(line, "money" + name)}),
                      (std::array{figure(exp, 0), figure(level, 2), figure(money, 0)})) << name;
            if (name == "30")
                exp30 = exp;
        }
        std::optional<double> next;
        if (valid && exp30 && *exp30 > 0) {
            const double left = static_cast<double>(ExpTable(now.level + 1).wholePart() - total(now));
            next = std::round(left * 60 / (*exp30 * 1000.0) * 10) / 10;
        }
        EXPECT_EQ(field(line, "nextLevelMinutes"), figure(next, 1));

        std::string stall = "null";
        if (now.t - lastValid.value_or(0) >= 15 * 60)
            stall = "\"noReading\"";
        else if (now.t - lastGain >= 15 * 60)
            stall = "\"noGain\"";
        if (stall != "null" && armed)
            ++stalls, armed = false;
        EXPECT_EQ(field(line, "stall"), stall);
    }

    // One history row per character, as the desktop program leaves them.
    ASSERT_EQ(run(cli::runHistory, {"--save-folder", pathUtf8(saves)}), 0) << err.str();
    const std::string text = out.str();
    ASSERT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
    const std::string first = text.substr(0, text.find('\n'));
    EXPECT_EQ(field(first, "startLevel"), "100");
    EXPECT_EQ(field(first, "levelUps"), std::to_string(shown[26].level - 100));
    EXPECT_EQ(field(first, "expGained"), std::to_string(total(shown[26]) - total(shown[0])));
    EXPECT_HOLDS(first, "\"start\": \"2024/01/31 23:50:30\", \"end\": \"2024/02/01 02:00:30\"");
    const std::string second = text.substr(first.size() + 1);
    EXPECT_EQ(field(second, "startLevel"), "150");
    EXPECT_EQ(field(first, "stalls") + "+" + field(second, "stalls"), std::to_string(stalls) + "+0");
}

} // namespace
} // namespace tvx
