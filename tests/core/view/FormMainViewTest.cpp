#include "view/FormMainCommands.h"
#include "view/FormMainLayout.h"
#include "view/MainMenu.h"

#include "base/Utf8Path.h"
#include "graph/GraphLayout.h"
#include "graph/StepTrap.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <set>

namespace tvx {
namespace {

TEST(MainMenu, ListsEveryCommandOnceUnderItsMenu)
{
    std::set<MenuCommand> seen;
    std::set<std::string_view> names;
    std::vector<std::string_view> bar;
    for (const MenuBarEntry& entry : mainMenu()) {
        bar.push_back(entry.caption);
        const auto note = [&](const MenuItem& item) {
            EXPECT_TRUE(seen.insert(item.command).second) << item.name;
            EXPECT_TRUE(names.insert(item.name).second) << item.name;
            EXPECT_EQ(&menuItem(item.command), &item) << item.name;
        };
        if (entry.items.empty())
            note(entry.command);
        for (const MenuItem& item : entry.items)
            note(item);
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(MenuCommand::Version) + 1);
    EXPECT_EQ(bar, (std::vector<std::string_view>{"ファイル", "設定", "開始", "停止", "ツール", "ヘルプ"}));
}

TEST(FormMainLayout, LogBoxAndDebugAreaShareTheHeight)
{
    struct Case {
        std::int32_t clientHeight;
        bool debug;
        std::int32_t txtLogHeight;
        std::int32_t frmDebugTop;
        bool trapped;
    };
    StepTrap unused;
    const std::int32_t top = formMainLayout(400, false, 0, unused).txtLog.top;
    for (const Case& c : {Case{400, false, 400 - top - 8, 0, false},
                          Case{400, true, 400 - top - kFrmDebugHeight - 16, 400 - kFrmDebugHeight - 8, false},
                          Case{120, true, 77, 120 - kFrmDebugHeight - 8, true}}) {
        StepTrap trap;
        const FormMainLayout layout = formMainLayout(c.clientHeight, c.debug, 77, trap);
        EXPECT_EQ(layout.txtLog.height, c.txtLogHeight) << c.clientHeight;
        EXPECT_EQ(layout.frmDebugVisible, c.debug);
        if (c.debug) {
            EXPECT_EQ(layout.frmDebug.top, c.frmDebugTop);
        }
        EXPECT_EQ(trap.error().has_value(), c.trapped) << c.clientHeight;
    }
}

TEST(FormMainLayout, EachCaptureCaptionStandsUnderItsOwnColumn)
{
    StepTrap trap;
    const FormMainLayout layout = formMainLayout(400, false, 0, trap);
    const char* columns[] = {"Lv", "Exp", "Money"}; // the regions' order
    for (std::size_t region = 0; region < 3; ++region) {
        const std::size_t field = kCaptureFields[region];
        EXPECT_EQ(kResultFields[field], columns[region]);
        EXPECT_EQ(layout.lblCapture[region].left, layout.values[0][field].left) << columns[region];
        EXPECT_EQ(layout.lblCapture[region].width, layout.values[0][field].width) << columns[region];
    }
}

TEST(FormMainLayout, AccountColumnsStayApartInsideThePanel)
{
    StepTrap trap;
    const FormMainLayout layout = formMainLayout(400, true, 0, trap);
    for (const auto& row : layout.values) {
        for (std::size_t field = 1; field < row.size(); ++field)
            EXPECT_LT(row[field - 1].left + row[field - 1].width, row[field].left);
        EXPECT_LE(row.back().left + row.back().width, kPanelClientWidth);
    }
    EXPECT_LT(layout.values[2][0].top + layout.values[2][0].height, layout.cmdTempStop.top + 1);
    EXPECT_LT(layout.cmdTempStop.top + layout.cmdTempStop.height, layout.txtLog.top);
    EXPECT_LE(layout.txtLog.left + layout.txtLog.width, kPanelClientWidth);
    EXPECT_LE(layout.cmdCapture.top + layout.cmdCapture.height, layout.frmDebug.top + layout.frmDebug.height);
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

TEST_F(FormMainCommandsTest, EachCommandLogsAndSaysWhatTheWindowDoes)
{
    const struct { MenuCommand command; WindowAction action; const char* line; } cases[] = {
        {MenuCommand::PatternSave, WindowAction::None, "Click : Pattern Save "},
        {MenuCommand::End, WindowAction::Close, "Click : END "},
        {MenuCommand::Option, WindowAction::ShowOptions, "Click : Option "},
        {MenuCommand::Run, WindowAction::None, "Click : Run "},
        {MenuCommand::Stop, WindowAction::None, "Click : Stop "},
        {MenuCommand::TimeLeft, WindowAction::None, "Click : Leftover Time "},
        {MenuCommand::RandomOne, WindowAction::None, "Click : RandomOne "},
        {MenuCommand::RandomSome, WindowAction::None, "Click : RandomSome "},
        {MenuCommand::PrtScr, WindowAction::None, "Click : Print Screen "},
        {MenuCommand::Quick, WindowAction::None, "Click : Show Quick Reference "},
        {MenuCommand::HowToUse, WindowAction::None, "Click : Show How To Use "},
        {MenuCommand::ReadMe, WindowAction::None, "Click : Show Read Me "},
        {MenuCommand::OperatingInfo, WindowAction::None, "Click : Operating Information "},
        {MenuCommand::Version, WindowAction::ShowVersion, "Click : VersionInformation "},
    };
    ASSERT_EQ(std::size(cases), static_cast<std::size_t>(MenuCommand::Version) + 1) << "every command once";
    for (const auto& c : cases) {
        const std::size_t before = logText().size();
        EXPECT_EQ(commands.run(c.command), c.action) << c.line;
        EXPECT_NE(logText().find(c.line, before), std::string::npos) << c.line;
    }
    // The documents are looked for beside the program; none is there.
    EXPECT_EQ(machine.count("message 実行エラー: ReadMeM.txtファイルが見つかりません。"), 1u);
    EXPECT_EQ(machine.count("message 実行エラー: 使用方法M.mhtファイルが見つかりません。"), 1u);
    EXPECT_NE(meter.logBox().text().find("まだキャプチャしていません\r\n"), std::string::npos);
    EXPECT_EQ(logText().find("Error Trap"), std::string::npos) << logText();
}

TEST_F(FormMainCommandsTest, HelpDocumentsOpenFromTheirFolder)
{
    commands.setDocumentFolder(temp.path() / "docs");
    const std::pair<MenuCommand, const char*> cases[] = {
        {MenuCommand::Quick, "とりあえず始めよう.mht"},
        {MenuCommand::HowToUse, "使用方法M.mht"},
        {MenuCommand::ReadMe, "ReadMeM.txt"},
    };
    for (const auto& [command, document] : cases) {
        const std::string path = pathUtf8(temp.path() / "docs" / utf8Path(document));
        machine.existingFiles = {path};
        EXPECT_EQ(commands.run(command), WindowAction::None);
        EXPECT_EQ(machine.count("open " + path), 1u) << document;
    }
    EXPECT_EQ(machine.count("message "), 0u);
}

TEST(FormMainVersion, TheHeadingAndTheVersionLineMakeUpTheTitle)
{
    const std::string title = programTitle("Game");
    EXPECT_TRUE(title.starts_with(FormMainCommands::versionHeading("Game"))) << title;
    EXPECT_TRUE(FormMainCommands::versionLine().ends_with(title.substr(title.rfind(' ') + 1))) << title;
}

TEST_F(FormMainCommandsTest, ClosingEndsTheLogBoxAndTheTimerFollowsTheInterval)
{
    commands.closing();
    EXPECT_TRUE(meter.logBox().text().ends_with("\r\n        終了しています・・・\r\n"));
    EXPECT_TRUE(meter.state().closing);
    EXPECT_NE(logText().find("Closing Program ･･･ "), std::string::npos);
    EXPECT_EQ(FormMainCommands::captureTimerMs(0), 10000);
    EXPECT_EQ(FormMainCommands::captureTimerMs(3), 1501);
    EXPECT_EQ(FormMainCommands::captureTimerMs(60), 10000);
}

} // namespace
} // namespace tvx
