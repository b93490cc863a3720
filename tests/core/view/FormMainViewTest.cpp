// What the main window shows and decides, toolkit-free: its menu, its layout, its commands
// and the graph frame's labels, picture and clicks.
#include "base/Utf8Path.h"
#include "config/Settings.h"
#include "graph/clsGraphBuffer.h"
#include "graph/GraphLayout.h"
#include "graph/StepTrap.h"
#include "meter/Meter.h"
#include "meter/MeterState.h"
#include "shell/DebugLog.h"
#include "view/FormMainCommands.h"
#include "view/FormMainLayout.h"
#include "view/GraphFrameView.h"
#include "support/FakeClock.h"
#include "support/FakeMachine.h"
#include "support/GraphFrameParts.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <map>
#include <tuple>

namespace tvx {
namespace {

TEST(FormMainLayout, LogBoxAndDebugAreaShareTheHeight)
{
    // Too low for the debug area: the log box keeps the least height asked for and the step is trapped.
    for (const auto& [clientHeight, debug, trapped] :
         {std::tuple{400, false, false}, {400, true, false}, {160, true, true}}) {
        StepTrap trap;
        const FormMainLayout layout = formMainLayout(clientHeight, debug, 77, trap);
        EXPECT_GE(layout.txtLog.height, 77) << clientHeight;
        EXPECT_EQ(layout.frmDebugVisible, debug);
        // The live lines stay at the foot, under everything else.
        EXPECT_EQ(layout.lblLiveOutlook.top + layout.lblLiveOutlook.height, clientHeight - 2);
        EXPECT_EQ(trap.error().has_value(), trapped) << clientHeight;
    }
}

class FormMainCommandsTest : public testing::Test {
protected:
    FormMainCommandsTest() { settings.SaveFolder = pathUtf8(temp.path()); }

    std::string logText() const { return test::readAll(log.path()); }

    test::TempFolder temp;
    test::FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, machine};
    Meter meter{settings, ports, log};
    FormMainCommands commands{meter, log, temp.path()};
};

TEST_F(FormMainCommandsTest, EachCommandLogsAndSaysWhatTheWindowDoesClosingMarksTheStateAndDocumentsOpen)
{
    // The rest are the meter's alone; each click is logged as its own line.
    const std::map<MenuCommand, WindowAction> actions = {
        {MenuCommand::End, WindowAction::Close},           {MenuCommand::Option, WindowAction::ShowOptions},
        {MenuCommand::Compact, WindowAction::ToggleCompact}, {MenuCommand::History, WindowAction::ShowHistory},
        {MenuCommand::Version, WindowAction::ShowVersion},
    };
    for (int i = 0; i <= static_cast<int>(MenuCommand::Version); ++i) {
        const auto command = static_cast<MenuCommand>(i);
        const std::size_t before = logText().size();
        EXPECT_EQ(commands.run(command), actions.contains(command) ? actions.at(command) : WindowAction::None) << i;
        EXPECT_HOLDS(logText().substr(before), "Click : ") << i;
    }
    // The documents are looked for beside the program; none is there.
    EXPECT_EQ(machine.count("message 実行エラー: 使用方法M.mhtファイルが見つかりません。"), 1u);
    EXPECT_LACKS(logText(), "Error Trap");
    // A document that is there opens from the folder given, with no message beyond the three missing above.
    commands.setDocumentFolder(temp.path() / "docs");
    const std::string path = pathUtf8(temp.path() / "docs" / utf8Path("とりあえず始めよう.mht"));
    machine.existingFiles = {path};
    EXPECT_EQ(commands.run(MenuCommand::Quick), WindowAction::None);
    EXPECT_EQ(machine.count("open " + path), 1u);
    EXPECT_EQ(machine.count("message "), 3u);

    commands.closing(); // the log box's last line and the debug log's are the windows' (MainWindowTest)
    EXPECT_TRUE(meter.state().closing);
    const auto timerMs = &FormMainCommands::captureTimerMs;
    EXPECT_EQ((std::array{timerMs(0), timerMs(3), timerMs(60)}), (std::array{10000, 1501, 10000}));
}

TEST(FormMainLanguage, HelpDocumentsAndRelabellingFollowTheLanguage)
{
    test::TempFolder temp;
    const std::filesystem::path docs = temp.path();
    std::filesystem::create_directories(docs / "en");
    std::filesystem::create_directories(docs / "ko" / "使用方法M.mht"); // a folder is no document
    std::ofstream(docs / "en" / utf8Path("使用方法M.mht")) << "x";
    const struct { Language language; const char* document; std::filesystem::path expected; } cases[] = {
        {Language::Japanese, "使用方法M.mht", docs / utf8Path("使用方法M.mht")},
        {Language::English, "使用方法M.mht", docs / "en" / utf8Path("使用方法M.mht")},
        {Language::English, "ReadMeM.txt", docs / "ReadMeM.txt"}, // no translation: the Japanese file
        {Language::Korean, "使用方法M.mht", docs / utf8Path("使用方法M.mht")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(helpDocumentPath(docs, c.document, c.language), c.expected) << c.document;

    // The options window's language comes into effect; the window relabels only on a change.
    Settings settings;
    settings.UiLanguage = "en";
    EXPECT_TRUE(followLanguageSetting(settings, Language::Japanese));
    EXPECT_EQ(currentLanguage(), Language::English);
    EXPECT_FALSE(followLanguageSetting(settings, Language::English));
    settings.UiLanguage = "xx"; // unknown: the language stays
    EXPECT_TRUE(followLanguageSetting(settings, Language::Korean));
    EXPECT_EQ(currentLanguage(), Language::English);
    settings.UiLanguage = "ja";
    EXPECT_TRUE(followLanguageSetting(settings, Language::English));
    EXPECT_EQ(currentLanguage(), Language::Japanese);
}

// Five pixels a byte: wide enough to tell the labels apart, easy to reckon.
std::int32_t measure(std::string_view text)
{
    return static_cast<std::int32_t>(text.size()) * 5;
}

class GraphFrameViewTest : public testing::Test, protected test::GraphFrameParts {
protected:
    GraphFrameViewTest()
    {
        giveTo(view);
        view.setChanged([this] { ++changes; });
        view.setFrameSize(476, 224);
    }

    // A click in the middle of a label, or of the picture.
    void clickOn(GraphLabel which) { clickIn(view.label(which).rect); }
    void clickIn(const PixelRect& r) { view.clickAt(r.left + r.width / 2, r.top + r.height / 2); }

    GraphFrameView view{measure};
    int changes = 0;
};

TEST_F(GraphFrameViewTest, LaysOutTheGridAndLabelsAndClicksFindTheirLabelOrThePicture)
{
    view.GraphFrameDisplay();
    EXPECT_EQ(view.grid().linGraphX[4].x1, 399);
    EXPECT_EQ(view.label(GraphLabel::Ml0).toolTip, " 縦軸を一時的に拡大 ");
    EXPECT_EQ(view.label(GraphLabel::Ml0).align, TextAlign::Left);
    EXPECT_EQ(view.label(GraphLabel::El0).align, TextAlign::Right);
    EXPECT_GT(changes, 0);
    EXPECT_TRUE(logText().empty()) << logText();
    clickOn(GraphLabel::Tl1);
    clickOn(GraphLabel::Tl1);
    clickOn(GraphLabel::Tl0);
    EXPECT_EQ(graphView.timeShift, 5);
    clickOn(GraphLabel::El0);
    clickOn(GraphLabel::Ml0);
    clickOn(GraphLabel::El1); // inner scale labels and the title do nothing
    clickOn(GraphLabel::Tt);
    EXPECT_FLOAT_EQ(graphView.zoom, 1.2f);
    clickOn(GraphLabel::Et);
    EXPECT_FLOAT_EQ(graphView.zoom, 1.1f);
    clickIn(view.picGraph());
    view.clickAt(470, 2); // between the labels: nothing
    EXPECT_EQ(test::countOf(logText(), "Click : Graph Refresh "), 1u) << logText();
}

TEST_F(GraphFrameViewTest, ScalesFollowTheBufferUnlessBothMenusAreEnabled)
{
    for (const auto& [e, m] : {std::pair{120.0, -1.0}, {300.0, 40.0}, {250.0, 55.0}, {80.0, -1.0}})
        buffer.AddGraphData(Currency::fromDouble(e), Currency::fromDouble(m), 3, settings.GraphTimeScale);
    view.GraphFrameDisplay();
    EXPECT_EQ(view.label(GraphLabel::El0).text, "   400");

    // Both menus enabled: the graph is left as it stands.
    controls.stopEnabled = true;
    view.GraphDataDisplay(0, 0.2f);
    EXPECT_EQ(view.label(GraphLabel::El0).text, "   400");

    // Wide scales: the experience column keeps six characters; the money column is not cut.
    controls.stopEnabled = false;
    buffer.AddGraphData(Currency::fromDouble(150000.0), Currency::fromDouble(150000.0), 3, settings.GraphTimeScale);
    view.GraphFrameDisplay();
    EXPECT_EQ(view.label(GraphLabel::El0).text, "00,000");
    EXPECT_EQ(view.label(GraphLabel::Ml0).text, "100,000");
    EXPECT_GT(view.label(GraphLabel::Ml0).rect.width, GraphFrameView::kScaleLabelWidth);
}

TEST(GraphFrameViewBlank, WithoutSettingsItNeitherDrawsNorLogs)
{
    GraphFrameView view(measure);
    view.setFrameSize(476, 224);
    view.GraphFrameDisplay();
    view.clickAt(5, 5);
    EXPECT_FALSE(view.graphOn());
    EXPECT_EQ(view.label(GraphLabel::El0).text, "98,765");
    EXPECT_EQ(view.picGraph(), PixelRect{});
}

} // namespace
} // namespace tvx
