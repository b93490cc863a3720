#include "base/Utf8Path.h"
#include "StartGuard.h"
#include "AppStart.h"
#include "config/ConfigFile.h"

#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/ReadFile.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"
#include "support/WindowDriver.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(StartGuard, RefusesASecondInstanceAndTheTemporaryFolder)
{
    test::TempFolder home;
    test::TempFolder other;
    test::ScriptedPrompter prompter;
    const std::pair<std::string, std::string> noTemp{"", ""};

    auto first = app::guardStart(home.path(), home.path(), noTemp, prompter);
    ASSERT_TRUE(first);
    EXPECT_FALSE(app::guardStart(home.path(), home.path(), noTemp, prompter));
    ASSERT_EQ(prompter.shown.size(), 1u);
    EXPECT_EQ(prompter.shown[0].text, "既にプログラムは起動しています。");
    EXPECT_EQ(prompter.shown[0].title, "起動エラー");
    EXPECT_TRUE(app::guardStart(other.path(), other.path(), noTemp, prompter)) << "another home is another meter";
    first.reset();
    EXPECT_TRUE(app::guardStart(home.path(), home.path(), noTemp, prompter)) << "free again once the first ended";

    prompter.shown.clear();
    const std::string temp = pathUtf8(home.path().parent_path());
    EXPECT_FALSE(app::guardStart(home.path(), home.path() / "Tallivex", {temp, ""}, prompter));
    ASSERT_EQ(prompter.shown.size(), 1u);
    EXPECT_EQ(prompter.shown[0].text.substr(0, prompter.shown[0].text.find("\r\n")), "テンポラリフォルダでは実行できません。");
}

TEST(StartUp, TheDebugLogTellsTheRunInOrder)
{
    test::TempFolder home;
    test::TempFolder program;
    test::FakeMachine machine;
    test::ScriptedPrompter prompter;
    test::MarkingCodec codec;
    Settings settings = defaultSettings(pathUtf8(home.path()));
    settings.SaveFolder = pathUtf8(home.path());
    DebugLog log(home.path(), machine.clock);
    ConfigFile config(settings, home.path(), prompter, codec, &log);
    const app::LibraryCheck check{{{"present.so", "x"}, {"missing.so", "warning"}},
                                  [](const std::string& name) { return name == "present.so"; }};
    prompter.answers = {true, true}; // a first start: full screen, confirmed
    app::startUp(log, programTitle("MapleStory"), program.path(), check, prompter, config, "ja_JP.UTF-8");
    settings.StartDelay = 0;
    {
        const auto host = test::makeMainWindowHost(settings, log, machine);
        host->load();
        host->close();
    }
    machine.events.clear();
    app::unload(log, EnvironmentFacts{}, machine);

    const std::string text = test::readAll(log.path());
    const std::string lines[] = {
        "Starting Program  Tallivex  for MapleStory    Ver.2.20\r\n",
        "Execute Folder : " + pathUtf8(program.path()) + "\r\n",
        "System File of missing.so is Not Find ",
        "Result of System File Check : A missing item ",
        "Reading ConfigFile ･･･ End ",
        "Log AutoStart ･･･ ",
        "Program StartUp Complete ",
        "Closing Program ･･･ ",
        "End of the Program ",
        "OperatingInformation",
    };
    std::size_t at = 0;
    for (const std::string& line : lines) {
        const std::size_t found = text.find(line, at);
        ASSERT_NE(found, std::string::npos) << line << "\n" << text;
        at = found;
    }
    EXPECT_LACKS(text, "System File of present.so");
    EXPECT_EQ(machine.events, std::vector<std::string>{"wait 500"}) << "half a second of events before the end";
}

} // namespace
} // namespace tvx
