#include "shell/Launcher.h"

#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

class LauncherTest : public testing::Test {
protected:
    std::string logText() const { return test::readAll(log.path()); }

    test::TempFolder temp;
    test::FakeMachine machine;
    DebugLog log{temp.path(), machine.clock};
    Launcher launcher{machine, machine, machine, log};
};

TEST_F(LauncherTest, TellsThePlayerWhatCouldNotBeOpenedAndLogsIt)
{
    const std::string readMe = "/opt/tallivex/bin/ReadMeM.txt";
    const std::string help = "/opt/tallivex/bin/使用方法M.mht";
    machine.existingFiles = {help};
    machine.shellOpens = false;
    const struct { bool url; std::string target; const char* message; const char* line; } cases[] = {
        {false, readMe, "message 実行エラー: ReadMeM.txtファイルが見つかりません。", "Execution File Not Find  /opt/tallivex/bin/ReadMeM.txt"},
        {true, "", "message 実行エラー: サイトが見つかりません。", "Execution File Not Find  \r\n"},
        {false, help, "message 実行エラー: 使用方法M.mhtを開くプログラムが見つかりません。",
         "Error Trap : RunFile : CODE75  Path/File access error"},
        {true, "https://example.org/a", "message 実行エラー: aを開くプログラムが見つかりません。",
         "Error Trap : RunUrl : CODE75  Path/File access error"},
    };
    for (const auto& c : cases) {
        machine.events.clear();
        c.url ? launcher.RunUrl(c.target, 500) : launcher.RunFile(c.target, 500);
        EXPECT_EQ(machine.count("message "), 1u) << c.line;
        EXPECT_EQ(machine.count(c.message), 1u) << c.message;
        EXPECT_EQ(machine.count("wait "), 0u) << c.line;
        EXPECT_NE(logText().find(c.line), std::string::npos) << c.line;
    }
    EXPECT_EQ(logText().find("Finish"), std::string::npos) << "nothing ran, nothing finished";
}

TEST_F(LauncherTest, AnOpenedFileIsWaitedForAndFinishes)
{
    const std::string help = "/opt/tallivex/bin/とりあえず始めよう.mht";
    machine.existingFiles = {help};
    launcher.RunFile(help, 500);
    EXPECT_EQ(machine.events, (std::vector<std::string>{"open " + help, "wait 500"}));
    const std::string text = logText();
    const std::size_t start = text.find("Execution File Start ･･･  " + help);
    ASSERT_NE(start, std::string::npos);
    EXPECT_NE(text.find("Execution File Finish ", start), std::string::npos);
}

} // namespace
} // namespace tvx
