// The configuration file: its bytes; edited, damaged, older and unicode files; ranges, defaults, templates.
#include "config/ConfigFile.h"
#include "config/PatternColumns.h"
#include "config/SettingRanges.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"
#include "support/TestData.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>

namespace tvx {
namespace {

std::string firstLines(const std::string& text, int count)
{
    std::size_t end = 0;
    for (int i = 0; i < count; ++i)
        end = text.find("\r\n", end) + 2;
    return text.substr(0, end);
}

const std::string kUnreadableMessage = "読込みできない設定ファイルです。\r\n"
                                       "　　初期値で設定ファイルを再作成します。\r\n"
                                       "　　以前のファイルは「TV2MConfigBack.ini」で保存されます。";
const std::string kReversedNote = "※注意！ Windowsの環境により逆を選択したほうが良い場合もあります。";

class ConfigFileTest : public testing::Test {
protected:
    ConfigFileTest() { m_settings.SaveFolder = pathUtf8(m_home); }

    // Runs one mode with these answers, questions recorded afresh; buffers sized exactly once whatever happens.
    void run(int mode, const std::vector<bool>& answers = {})
    {
        m_prompter.shown.clear();
        m_prompter.answers.assign(answers.begin(), answers.end());
        int sized = 0;
        ConfigFile config(m_settings, m_home, m_prompter, *m_codec, &m_log, [&sized] { ++sized; });
        config.run(mode);
        EXPECT_EQ(sized, 1) << "mode " << mode;
    }

    Settings defaults(ScreenMode mode = ScreenMode::FullScreen) const
    {
        Settings s = defaultSettings(pathUtf8(m_home), mode);
        s.SearchWindowName = m_settings.SearchWindowName;
        return s;
    }

    std::string cp932(const Settings& s) { return m_codec->toCp932(configFileText(s)); }
    std::filesystem::path file() const { return m_home / "TV2MConfig.ini"; }
    std::string logText() const { return test::readAll(m_home / "debug.txt"); }

    // Loads a file changed from the defaults by `change`: whether it was taken as damaged.
    template <typename Change>
    bool loadChanged(Change change)
    {
        Settings onDisk = defaults();
        change(onDisk);
        std::ofstream(file(), std::ios::binary) << cp932(onDisk);
        std::filesystem::remove(m_home / "debug.txt");
        m_settings = defaults();
        run(ConfigFile::Load, {true, true});
        const bool damaged = !m_prompter.shown.empty() && m_prompter.shown[0].text == kUnreadableMessage;
        if (damaged) {
            EXPECT_EQ(m_prompter.kinds(), (std::vector<std::string>{"message", "yesno", "okcancel"}));
            EXPECT_EQ(m_settings, defaults());
        } else {
            EXPECT_TRUE(m_prompter.shown.empty());
        }
        return damaged;
    }

    test::TempFolder m_temp;
    const std::filesystem::path& m_home = m_temp.path();
    std::unique_ptr<TextCodec> m_codec = platform::makeTextCodec();
    test::FakeClock m_clock;
    DebugLog m_log{m_home, m_clock};
    test::ScriptedPrompter m_prompter;
    Settings m_settings;
};

TEST(ConfigFileLayout, FieldsAreSixBytesWideAndTemplatesWholeUpperCaseColumns)
{
    const std::pair<const char*, const char*> cases[] = {
        {"0", "      0 "}, {"False", "  False "}, {"1234567", " 1234567 "}, {"記録", "   記録 "}, {"ｱｲ", "     ｱｲ "},
        {"", "        "},
    };
    for (const auto& [text, field] : cases)
        EXPECT_EQ(padField(text), field) << text;
    EXPECT_EQ(decodePatternColumns("007C01ff"), (std::vector<std::uint16_t>{0x007C, 0x01FF}));
    EXPECT_EQ(decodePatternColumns(""), std::vector<std::uint16_t>{});
    for (const char* bad : {"007", "00G0", "007C 01F", "-001"})
        EXPECT_EQ(decodePatternColumns(bad), std::nullopt) << bad;
    EXPECT_EQ(encodePatternColumns({0x007C, 0xFFFF, 0}), "007CFFFF0000");
}

TEST_F(ConfigFileTest, AFreshInstallationWritesTheDefaultFileByteForByte)
{
    run(ConfigFile::Load, {true, true}); // full screen, confirmed
    ASSERT_EQ(m_prompter.shown.size(), 2u);
    EXPECT_EQ(m_prompter.shown[0].text, "MapleStoryをフルスクリーンモードでプレイするときは「はい」を、\r\n"
                                        "ウィンドウモードでプレイする場合は「いいえ」を選択してください。");
    EXPECT_EQ(m_prompter.shown[1].text, "フルスクリーンモードでよろしいですか？\r\n" + kReversedNote);
    EXPECT_EQ(m_settings, defaults());
    const std::string bytes = test::readAll(file());
    EXPECT_EQ(m_codec->fromCp932(bytes), test::withValue(test::testData("default.ini"), "folder", pathUtf8(m_home)));
    // CP932 on disk, not UTF-8: line 5's comment as Windows encodes it.
    EXPECT_HOLDS(bytes, "   True ,          \x8E\xA9\x93\xAE\x8A\x4A\x8E\x6E\x83\x74\x83\x89\x83\x4F\r\n");
    EXPECT_FALSE(std::filesystem::exists(m_home / "TV2MConfig.ini.tmp"));
}

// Every line differs from the default's: a field not read or not written back changes the bytes.
TEST_F(ConfigFileTest, EveryFieldSurvivesALoadAndASave)
{
    const std::string text = test::withValue(test::testData("every-field.ini"), "folder", pathUtf8(m_home));
    std::ofstream(file(), std::ios::binary) << m_codec->toCp932(text);
    m_settings = defaults();
    run(ConfigFile::Load, {true}); // take over the new target
    ASSERT_EQ(m_prompter.shown.size(), 1u);
    EXPECT_EQ(m_prompter.shown[0].text, "ターゲットは MapleStory Test でよろしいいですか？");
    EXPECT_EQ(m_prompter.shown[0].title, "ターゲット変更選択");
    std::filesystem::remove(file());
    run(ConfigFile::Save);
    EXPECT_EQ(m_codec->fromCp932(test::readAll(file())), text);

    // The compact window's place is written alone: an option kept for this run only stays so.
    const Settings saved = m_settings;
    ConfigFile config(m_settings, m_home, m_prompter, *m_codec, &m_log, [] {});
    config.run(ConfigFile::Load);
    m_settings.CaptureInterval = 30;
    m_settings.CompactX = 640;
    config.run(ConfigFile::SaveWindowPlace);
    EXPECT_EQ(m_settings.CaptureInterval, 30); // the running meter keeps the edit
    run(ConfigFile::Load);
    EXPECT_EQ(std::tie(m_settings.CaptureInterval, m_settings.CompactX), std::make_tuple(saved.CaptureInterval, 640));
}

TEST_F(ConfigFileTest, OurLineAfterTheSixtyIsOptionalAndNeverCondemnsTheFile)
{
    const std::string sixty = firstLines(configFileText(defaults()), 60);
    const struct { const char* extra; CaptureMethod expected; } cases[] = {
        {"", CaptureMethod::Direct},                         // the older program's file
        {"1 , 画面の取り込み方法\r\n", CaptureMethod::PrintScreen},
        {"abc , 壊れた値\r\n", CaptureMethod::Direct},
        {"7\r\n", CaptureMethod::Direct},
    };
    // Values out of their range keep the defaults, line by line.
    const std::string badLive = "0\r\n0\r\n0\r\n0\r\n\r\n\r\n\r\n1,0\r\n45\r\n0,0,101,1\r\n";
    std::ofstream(file(), std::ios::binary) << m_codec->toCp932(sixty + badLive);
    run(ConfigFile::Load);
    EXPECT_EQ(std::tie(m_settings.StallAlarm, m_settings.NextLevelWindow, m_settings.CompactOpacity),
              std::make_tuple(false, 30, 90));
    for (const auto& c : cases) {
        std::ofstream(file(), std::ios::binary) << m_codec->toCp932(sixty + c.extra);
        m_settings.ScreenCapture = c.expected == CaptureMethod::Direct ? CaptureMethod::PrintScreen : CaptureMethod::Direct;
        run(ConfigFile::Load);
        EXPECT_EQ(m_settings.ScreenCapture, c.expected) << c.extra;
        EXPECT_TRUE(m_prompter.shown.empty()) << c.extra;
    }
}

// Unreadable files: each ends in the message, the back-up, the defaults and a new file.
TEST_F(ConfigFileTest, AnUnreadableFileIsBackedUpAndReplacedByTheDefaults)
{
    const std::string good = configFileText(defaults());
    const auto replaceLine = [&good](int line, const std::string& with) {
        const std::string head = firstLines(good, line - 1);
        return head + with + "\r\n" + good.substr(firstLines(good, line).size());
    };
    struct Case { const char* name; std::string bytes; const char* logged; };
    // A copy cut short earlier leaves its temporary file; the next one replaces it.
    std::ofstream(m_home / "TV2MConfigBack.ini.copy", std::ios::binary) << "left by a copy that was cut short";
    const Case cases[] = {
        {"cut after line 20", m_codec->toCp932(firstLines(good, 20)), "CODE62  Input past end of file"},
        {"empty", "", "CODE62  Input past end of file"},
        {"word for a number", m_codec->toCp932(replaceLine(6, "  six ,   x")), "CODE13  Type mismatch"},
        {"too large", m_codec->toCp932(replaceLine(11, " 99999999999 , x")), "CODE6  Overflow"},
        {"unknown flag", m_codec->toCp932(replaceLine(5, " Maybe , x")), "CODE13  Type mismatch"},
        {"neither CP932 nor UTF-8", m_codec->toCp932(firstLines(good, 7)) + "\x85\x40\r\n", "CODE13  Type mismatch"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_settings = defaults();
        m_settings.CaptureInterval = 45; // must not survive
        std::ofstream(file(), std::ios::binary) << c.bytes;
        run(ConfigFile::Load, {false, true}); // window mode, confirmed
        EXPECT_EQ(m_prompter.shown[0].title, "設定ファイル読込み");
        EXPECT_EQ(m_prompter.shown[2].text, "ウィンドウモードでよろしいですか？\r\n" + kReversedNote);
        EXPECT_EQ(test::readAll(m_home / "TV2MConfigBack.ini"), c.bytes);
        EXPECT_EQ(m_settings, defaults(ScreenMode::Window));
        EXPECT_EQ(test::readAll(file()), cp932(m_settings));
        EXPECT_HOLDS(logText(), std::string("Error Trap : ConfigFile : ") + c.logged + "\r\n");
    }
    EXPECT_FALSE(std::filesystem::exists(m_home / "TV2MConfigBack.ini.copy"));
}

TEST_F(ConfigFileTest, TheLastLineMayChangeTheTarget)
{
    struct Case { const char* name; const char* line; std::vector<bool> answers; const char* target; bool rewritten; };
    const Case cases[] = {
        {"refused", "Other Game", {false}, "MapleStory", false},
        {"four double-width characters", "ゲーム名", {}, "MapleStory", true},
        {"the same", "MapleStory", {}, "MapleStory", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_settings = defaults();
        m_settings.SearchWindowName = "MapleStory";
        Settings onDisk = m_settings;
        onDisk.SearchWindowName = c.line;
        // LF endings show a rewrite as CR LF; flags as a hand writes them: a tab, any case, a number.
        std::string text = configFileText(onDisk);
        std::erase(text, '\r');
        text.replace(text.find("   True ,"), 9, "\ttrue,");
        text.replace(text.find("  False ,"), 9, "0 ,");
        std::ofstream(file(), std::ios::binary) << m_codec->toCp932(text);
        run(ConfigFile::Load, c.answers);
        EXPECT_EQ(m_settings.SearchWindowName, c.target);
        EXPECT_EQ(m_prompter.shown.size(), c.answers.size());
        EXPECT_EQ(test::readAll(file()).find("\r\n") != std::string::npos, c.rewritten);
    }
}

TEST_F(ConfigFileTest, TheOlderFileIsMigratedOnRequest)
{
    Settings old = defaults();
    old.CaptureInterval = 3;
    old.Gesture = true;
    old.SaveFile = "旧記録";
    old.CaptureRegion[0] = {1, 1, 1, 1};
    old.Lag = 99999; // out of range: clamped when taken over
    const std::string oldText = configFileText(old);
    const std::string oldBody = firstLines(oldText, 20).substr(firstLines(oldText, 1).size());
    struct Case { const char* name; std::string bytes; std::vector<bool> answers; std::vector<std::string> kinds;
                  bool takenOver; };
    const Case cases[] = {
        {"taken over", m_codec->toCp932(oldBody), {true, false, true}, {"yesno", "yesno", "okcancel"}, true},
        {"declined", m_codec->toCp932(oldBody), {false, false, true}, {"yesno", "yesno", "okcancel"}, false},
        {"unreadable", m_codec->toCp932(firstLines(oldBody, 10)), {true, false, true},
         {"yesno", "message", "yesno", "okcancel"}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove(file());
        std::ofstream(m_home / "TV2Config.ini", std::ios::binary) << c.bytes;
        m_settings = defaults();
        run(ConfigFile::Load, c.answers);
        EXPECT_EQ(m_prompter.kinds(), c.kinds);
        EXPECT_EQ(m_prompter.shown[0].text, "以前の設定ファイルが見つかりました。\r\n　　共通する設定を引き継ぎますか？");
        EXPECT_EQ(std::tie(m_settings.CaptureInterval, m_settings.Gesture, m_settings.Lag),
                  c.takenOver ? std::make_tuple(3, true, 10000) : std::make_tuple(6, false, 500));
        // Regions and recognition always start afresh, here in window mode.
        EXPECT_EQ(m_settings.CaptureRegion, defaultCaptureRegions(ScreenMode::Window));
        EXPECT_EQ(test::readAll(file()), cp932(m_settings));
        EXPECT_EQ(test::readAll(m_home / "TV2Config.ini"), c.bytes);
    }
    EXPECT_FALSE(std::filesystem::exists(m_home / "TV2MConfigBack.ini"));
}

TEST_F(ConfigFileTest, UnicodeFilesAreReadAndAMissingRecordFolderFallsBackToTheProgramFolder)
{
    Settings onDisk = defaults();
    onDisk.SaveFile = "ｱｲｳ記録～";
    onDisk.StartUp[0].Path = "メモ帳.exe";
    onDisk.CaptureInterval = 9;
    for (const std::string prefix : {"", "\xEF\xBB\xBF"}) { // with or without a byte order mark
        std::ofstream(file(), std::ios::binary) << prefix + configFileText(onDisk);
        m_settings = defaults();
        run(ConfigFile::Load);
        EXPECT_EQ(m_settings, onDisk);
    }
    onDisk.SaveFolder = pathUtf8(m_home / "gone");
    std::ofstream(file(), std::ios::binary) << cp932(onDisk);
    run(ConfigFile::Load);
    ASSERT_EQ(m_prompter.kinds(), std::vector<std::string>{"message"});
    EXPECT_EQ(m_prompter.shown[0].text, "時給記録フォルダが不正のため\r\nデフォルトフォルダに変更しました。");
    EXPECT_EQ(m_settings.SaveFolder, pathUtf8(m_home));
    EXPECT_EQ(test::readAll(file()), cp932(m_settings));
}

TEST_F(ConfigFileTest, EveryRangedSettingKeepsItsBoundsAndFollowsItsRuleBeyondThem)
{
    for (const SettingRange& range : settingRanges()) {
        for (std::size_t i = 0; i < range.count; ++i) {
            const std::string name = settingName(range, i);
            const auto setTo = [&](std::int32_t value) {
                return [&range, i, value](Settings& s) {
                    range.field(s, i) = value;
                    // Templates that fit a glyph width, so that a width can be tried on its own.
                    if (range.name.starts_with("ReferenceSize(#).Width"))
                        for (std::string& pattern : s.PatternStrings[i])
                            pattern.assign(4 * static_cast<std::size_t>(std::clamp(value, 0, 100)), '0');
                };
            };
            for (const std::int32_t inside : {range.low, range.high}) {
                EXPECT_FALSE(loadChanged(setTo(inside))) << name << " = " << inside;
                EXPECT_EQ(range.field(m_settings, i), inside) << name;
            }
            for (const std::int64_t wide : {std::int64_t{range.low} - 1, std::int64_t{range.high} + 1,
                                            std::int64_t{INT32_MIN}, std::int64_t{INT32_MAX}}) {
                if (wide < INT32_MIN || wide > INT32_MAX || (wide >= range.low && wide <= range.high))
                    continue;
                const auto outside = static_cast<std::int32_t>(wide);
                SCOPED_TRACE(name + " = " + std::to_string(outside));
                const bool damaged = loadChanged(setTo(outside));
                EXPECT_EQ(damaged, range.rule == OutOfRange::Damaged);
                if (!damaged) {
                    EXPECT_EQ(range.field(m_settings, i), outside < range.low ? range.low : range.high);
                }
            }
        }
    }
}

// Templates teaching one screen at a time leaves, or a slip of the hand: the file stays the
// player's and the log says which. An image format the program cannot write becomes PNG.
TEST_F(ConfigFileTest, TemplatesThatAreNotWholeAreKeptAndLoggedAndUnknownFormatsReplaced)
{
    const std::string digitZero = defaultPatternStrings()[0][0]; // seven columns, the level's width
    struct Case { const char* name; std::string pattern; std::string format; std::string kept; std::string logged; };
    const Case cases[] = {
        {"three characters", "007", ".png", "007", "0 not hexadecimal columns"},
        {"empty", "", ".png", "", "0 empty"},
        {"one column short", digitZero.substr(4), ".png", digitZero.substr(4), "0 6 columns"},
        {"lower case", "007c00fe00820082008200fe007c", ".png", digitZero,
         "PatternStrings(1,0) 007c00fe00820082008200fe007c"},
        {"as it should be", digitZero, ".jpg70", digitZero, ""},
        {"unknown image format", digitZero, ".gif", digitZero,
         "Setting Out Of Range : SaveFormat \".gif\" -> .png \r\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(loadChanged([&c](Settings& s) {
            s.PatternStrings[0][0] = c.pattern;
            s.SaveFormat = c.format;
        }));
        EXPECT_EQ(m_settings.PatternStrings[0][0], c.kept);
        EXPECT_EQ(m_settings.SaveFormat, c.format == ".gif" ? ".png" : c.format);
        if (c.logged.empty())
            EXPECT_LACKS(logText(), "PatternStrings");
        else
            EXPECT_HOLDS(logText(), c.logged);
    }
}

TEST_F(ConfigFileTest, AFolderInThePlaceOfTheFilePromisesNoBackUpAndSaysTheWriteFailed)
{
    std::filesystem::create_directories(file());
    // A failed copy leaves the older back-up whole.
    std::ofstream(m_home / "TV2MConfigBack.ini", std::ios::binary) << "kept";
    run(ConfigFile::Load, {true, true});
    ASSERT_EQ(m_prompter.kinds(), (std::vector<std::string>{"message", "yesno", "okcancel", "message"}));
    EXPECT_EQ(m_prompter.shown[0].text, "読込みできない設定ファイルです。\r\n　　初期値で設定ファイルを再作成します。");
    EXPECT_EQ(test::readAll(m_home / "TV2MConfigBack.ini"), "kept");
    EXPECT_EQ(m_settings, defaults());
}

} // namespace
} // namespace tvx
