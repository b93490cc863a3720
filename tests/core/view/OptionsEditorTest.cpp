#include "view/GlyphCanvas.h"
#include "view/OptionsEditor.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "config/PatternColumns.h"
#include "support/FakeClock.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace tvx {
namespace {

const NumberField& number(const std::string& name)
{
    for (const NumberField& f : numberFields())
        if (f.name == name)
            return f;
    throw std::logic_error("no field " + name);
}

TEST(OptionFieldsTest, EveryFieldIsNamedOnceReadsItsOwnSettingAndAcceptsItsDefault)
{
    const Settings defaults = defaultSettings("/home");
    std::set<std::string> names;
    for (const NumberField& f : numberFields()) {
        EXPECT_TRUE(names.insert(f.name).second) << f.name;
        Settings s = defaults;
        const std::int32_t value = f.value(s, f.region);
        EXPECT_TRUE(f.lower < f.upper && f.lower <= value && value <= f.upper) << f.name << " " << value;
        // Exactly this field sees a change made through it.
        f.value(s, f.region) = 123456;
        int seen = 0;
        for (const NumberField& other : numberFields())
            seen += other.value(s, other.region) == 123456;
        EXPECT_EQ(seen, 1) << f.name;
        EXPECT_FALSE(f.prompt.empty()) << f.name;
    }
    for (const FlagField& f : flagFields()) {
        EXPECT_TRUE(names.insert(f.name).second) << f.name;
        if (!f.value)
            continue; // the debug switch, tested with the editor
        Settings s = defaults;
        f.value(s) = !f.value(s);
        EXPECT_NE(s, defaults) << f.name;
    }
    for (const TextField& f : textFields()) {
        EXPECT_TRUE(names.insert(f.name).second) << f.name;
        Settings s = defaults;
        f.value(s) = "changed";
        EXPECT_NE(s, defaults) << f.name;
    }
}

class OptionsEditorTest : public testing::Test {
protected:
    test::TempFolder m_temp;
    const std::filesystem::path& m_home = m_temp.path();
    test::FakeClock m_clock{LocalDateTime{2024, 3, 9, 7, 5, 2}};
    DebugLog m_log{m_home, m_clock};
    test::ScriptedPrompter m_prompter;
    std::unique_ptr<TextCodec> m_codec = platform::makeTextCodec();
    Settings m_settings = defaultSettings(pathUtf8(m_home));
    ConfigFile m_config{m_settings, m_home, m_prompter, *m_codec, &m_log};
};

TEST_F(OptionsEditorTest, AnswersAreStoredRoundedWithinTheLimitsAndChoicesKeepAHandEditedValue)
{
    OptionsEditor editor(m_settings);
    const ChoiceField& format = choiceFields()[1];
    EXPECT_EQ(chosenIndex(format, m_settings), 1u);
    m_settings.SaveFormat = ".gif";
    EXPECT_EQ(choicesFor(format, m_settings).size(), 5u);
    EXPECT_EQ(chosenIndex(format, m_settings), 4u);
    editor.choose(format, 2);
    EXPECT_EQ(m_settings.SaveFormat, ".jpg70");

    // A cancel (19999) changes nothing.
    const NumberField& interval = number("cmdCaptureInterval");
    const OptionsEditor::NumberQuestion q = editor.question(interval);
    EXPECT_EQ(std::tuple(q.limitA, q.limitB, q.step, q.proposed, q.title, q.prompt),
              std::tuple("1", "1440", "1", 6, "設定値入力", "キャプチャインターバル(分)を入力してください"));
    const std::pair<double, std::int32_t> answers[] = {{19999, 6}, {12.4, 12}, {12.6, 13}, {5000, 1440}, {-3, 1}};
    for (const auto& [given, stored] : answers) {
        EXPECT_EQ(editor.answer(interval, given), given != 19999) << given;
        EXPECT_EQ(m_settings.CaptureInterval, stored) << given;
        EXPECT_EQ(editor.numberText(interval), std::to_string(stored));
    }
    const TextField& name = textFields()[0];
    editor.setText(name, "  Maple,Story  ");
    EXPECT_EQ(m_settings.SearchWindowName, "MapleStory");
    EXPECT_FALSE(OptionsEditor::acceptsTextCharacter(U','));
}

TEST_F(OptionsEditorTest, PreviewsShowWhatTheTemplatesReadAndARegionOffThePicture)
{
    // No capture yet, a region the built-in templates cannot read, and the pixels' 0xRRGGBB
    // (RegionPixelsTest) are the others'.
    const CaptureBitmap capture = test::gameCapture({"137", "", ""});
    OptionsEditor editor(m_settings, &capture);

    // A region moved off the picture says so; its pixels read black.
    ASSERT_TRUE(editor.answer(number("cmdStartY2"), 9000));
    EXPECT_EQ(editor.previewResult(RegionMoney), "認識結果： 領域が画像の外です　［完全一致］");
    EXPECT_EQ(editor.previews()[RegionMoney].pixels, std::vector<std::uint32_t>(146 * 9, 0));
    // Templates the number needs and the region lacks are named.
    Settings lacking = m_settings;
    lacking.PatternStrings[RegionLevel][3] = "";
    lacking.PatternStrings[RegionLevel][kDelimiterIndex] = "00";
    OptionsEditor untaught(lacking, &capture);
    EXPECT_EQ(untaught.previewResult(RegionLevel), "認識結果： 認識できません（未学習：3・終わりの記号）　［完全一致］");
}

TEST_F(OptionsEditorTest, ATemplateIsTakenFromTheCaptureDrawnOrTypedAndTheNoteFollowsItsWidth)
{
    // Taking the "5" back from the capture is the options window's too (OptionsWindowTest).
    m_settings.PatternStrings[RegionLevel][5] = "";
    const CaptureBitmap capture = test::gameCapture({"57", "", ""});
    OptionsEditor editor(m_settings, &capture);
    editor.selectPattern(RegionLevel, 5);
    EXPECT_EQ(editor.patternView().editorCaption, "Lv (1) のパターン「5」");
    EXPECT_EQ(editor.patternView().note, "幅 0 列：基準幅 7 列と違うため、このままでは認識に使われません。");
    // The "5" starts at column 1 of the region.
    EXPECT_FALSE(editor.takeColumns(45, 7));
    ASSERT_TRUE(editor.takeColumns(1, 7));
    EXPECT_EQ(editor.patternView().captureResult, "この領域の認識結果： 57　［完全一致］");
    EXPECT_EQ(editor.patternView().note, "幅 7 列（基準幅どおり）");

    struct Step { std::function<bool()> edit; std::size_t width; std::string note; };
    const Step steps[] = {
        {[&] { editor.addColumn(); return true; }, 8, "幅 8 列：基準幅 7 列と違うため、このままでは認識に使われません。"},
        {[&] { editor.removeColumn(); return true; }, 7, "幅 7 列（基準幅どおり）"},
        {[&] { editor.clearPattern(); return true; }, 7, "幅 7 列（基準幅どおり）"},
        {[&] { return !editor.setPatternText("12345"); }, 7, "変換文字列は16進数4桁ずつ（1列に4桁）です。"},
        {[&] { return editor.setPatternText("00FF"); }, 1, "幅 1 列：基準幅 7 列と違うため、このままでは認識に使われません。"},
    };
    for (const Step& step : steps) {
        EXPECT_TRUE(step.edit()) << step.note;
        EXPECT_EQ(editor.patternView().editor.size(), step.width) << step.note;
        EXPECT_EQ(editor.patternView().note, step.note);
    }
    EXPECT_EQ(m_settings.PatternStrings[RegionLevel][5], "00FF");
    editor.selectPattern(RegionMoney, kDelimiterIndex);
    EXPECT_EQ(editor.patternView().editorCaption, "マネー (3) のパターン「区切り」");
    EXPECT_EQ(editor.patternView().text, m_settings.PatternStrings[RegionMoney][kDelimiterIndex]);
}

TEST_F(OptionsEditorTest, DebugSwitchReachesTheMeterAndOtherEditsAreUnsavedUntilSaved)
{
    const FlagField& debug = *std::find_if(flagFields().begin(), flagFields().end(),
                                           [](const FlagField& f) { return f.name == "chkDebugMode"; });
    OptionsEditor editor(m_settings);
    EXPECT_FALSE(editor.flagAvailable(debug)) << "no meter to switch";
    editor.setFlag(debug, true);
    EXPECT_FALSE(editor.flag(debug));

    bool meterDebug = false;
    editor.setDebugSwitch({[&] { return meterDebug; }, [&](bool on) { meterDebug = on; }});
    editor.setFlag(debug, true); // reaching the meter at once: FormMainTest
    EXPECT_TRUE(editor.flag(debug));
    EXPECT_FALSE(editor.hasUnsavedEdits()) << "debug mode is not saved with the settings";

    // The message and the file written are the options window's (OptionsWindowTest).
    editor.setFlag(flagFields()[0], false);
    EXPECT_TRUE(editor.hasUnsavedEdits());
    EXPECT_TRUE(editor.runConfigFile(m_config, ConfigFile::Save));
    EXPECT_FALSE(editor.hasUnsavedEdits());
    m_settings.CompactX = 300;
    EXPECT_FALSE(editor.hasUnsavedEdits()) << "the compact window saves its own place";

    ASSERT_TRUE(editor.answer(number("cmdLag"), 700));
    EXPECT_TRUE(editor.hasUnsavedEdits());
    EXPECT_EQ(editor.runConfigFile(m_config, ConfigFile::Load), std::nullopt);
    EXPECT_EQ(m_settings.Lag, 500) << "the file's value is back";
    EXPECT_FALSE(editor.hasUnsavedEdits());

    // A save that cannot be written says nothing of success and keeps the edit unsaved.
    ASSERT_TRUE(editor.answer(number("cmdLag"), 800));
    std::filesystem::remove_all(m_home);
    EXPECT_EQ(editor.runConfigFile(m_config, ConfigFile::Save), std::nullopt);
    EXPECT_EQ(m_prompter.shown.back().text, "設定をファイルに保存できませんでした。");
    EXPECT_TRUE(editor.hasUnsavedEdits());
}

TEST(GlyphCanvasTest, EditTogglesThenDragsTheSameInkAndSelectTakesAGlyphWidth)
{
    GlyphCanvas edit(GlyphCanvas::Mode::Edit);
    edit.setPixelSize(10);
    edit.setRows(9);
    edit.setColumns({0x0001, 0x0000, 0x0000});
    const auto centre = [](int cell) { return 2 + cell * 10 + 5; }; // of a column or a row
    EXPECT_EQ(edit.press(centre(0), centre(0)), GlyphCanvas::Change::Columns); // an inked pixel: the drag erases
    EXPECT_EQ(edit.move(centre(1), centre(0)), GlyphCanvas::Change::None);     // already blank
    edit.release();
    EXPECT_EQ(edit.press(centre(2), centre(3)), GlyphCanvas::Change::Columns);
    EXPECT_EQ(edit.move(centre(1), centre(3)), GlyphCanvas::Change::Columns);
    EXPECT_EQ(edit.move(centre(1), 500), GlyphCanvas::Change::None) << "below the rows";
    edit.release();
    EXPECT_EQ(edit.move(2, 2), GlyphCanvas::Change::None) << "no drag after the release";
    EXPECT_EQ(edit.columns(), (std::vector<std::uint16_t>{0x0000, 0x0008, 0x0008}));

    GlyphCanvas select(GlyphCanvas::Mode::Select);
    select.setPixelSize(6);
    select.setColumns(std::vector<std::uint16_t>(20, 0));
    select.setSelectionWidth(7);
    EXPECT_EQ(select.press(2 + 6 * 15 + 1, 5), GlyphCanvas::Change::Selection);
    EXPECT_EQ(std::pair(select.selectionStart(), select.selectionLength()), std::pair(15, 5))
        << "cut at the last column";
    EXPECT_EQ(select.move(2 + 6 * 12, 5), GlyphCanvas::Change::Selection);
    EXPECT_EQ(std::pair(select.selectionStart(), select.selectionLength()), std::pair(12, 4));
    select.release();
    select.setColumns(std::vector<std::uint16_t>(10, 0));
    EXPECT_EQ(select.selectionStart(), -1) << "a selection past the new columns goes";

    GlyphCanvas button(GlyphCanvas::Mode::Button);
    EXPECT_EQ(button.press(0, 0), GlyphCanvas::Change::Clicked);
    GlyphCanvas shown;
    EXPECT_EQ(shown.press(3, 3), GlyphCanvas::Change::None);
}

} // namespace
} // namespace tvx
