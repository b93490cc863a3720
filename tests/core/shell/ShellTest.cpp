// The program's shell: the debug log and its back-up, the environment report, launching
// the help documents and applications, and the temporary-folder check at start-up.
#include "shell/DebugLog.h"
#include "shell/EnvironmentReport.h"
#include "shell/Launcher.h"
#include "shell/StartupChecks.h"
#include "support/FakeClock.h"
#include "support/FakeMachine.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tvx {
namespace {

EnvironmentFacts fullFacts()
{
    EnvironmentFacts facts;
    facts.operatingSystem = "Debian GNU/Linux 12";
    facts.version = "6.1.0";
    facts.freePhysicalBytes = 1234567;
    facts.totalPhysicalBytes = 8000000000;
    facts.processor = "Ryzen";
    facts.caches = {{"L2 Unified", 512}};
    facts.adapterRamBytes = 268435456;
    facts.manufacturer = "ACME";
    facts.availablePhysicalBytes = 2048000;
    return facts;
}

TEST(DebugLogTest, EachStartRenewsTheLogKeepsOneBackUpAndTheUnloadReportFollows)
{
    test::TempFolder home;
    test::FakeClock clock{LocalDateTime{2009, 4, 1, 13, 5, 9}};
    DebugLog log(home.path(), clock);
    log.WriteDebugLog("Starting Program  first", DebugLog::kNewLog);
    EXPECT_FALSE(std::filesystem::exists(log.backupPath()));
    log.WriteDebugLog("Suspend Mode On ");
    EXPECT_EQ(test::readAll(log.path()), "2009/04/01 13:05:09 Starting Program  first\r\n"
                                   "2009/04/01 13:05:09 Suspend Mode On \r\n");

    clock.setNow(LocalDateTime{2010, 12, 31, 23, 59, 58});
    log.WriteDebugLog("Starting Program  second", DebugLog::kNewLog);
    EXPECT_EQ(test::readAll(log.path()), "2010/12/31 23:59:58 Starting Program  second\r\n");
    EXPECT_EQ(test::readAll(log.backupPath()), "2009/04/01 13:05:09 Starting Program  first\r\n"
                                         "2009/04/01 13:05:09 Suspend Mode On \r\n");

    // The report written at the unload: no blank line; 2,048,000 bytes are 2,000 kB, 0% of 8 GB.
    WriteOperatingInformation(fullFacts(), log);
    const std::string text = test::readAll(log.path());
    EXPECT_LACKS(text, "\r\n\r\n");
    EXPECT_HOLDS(text, "2,000 kByte  0%\r\n");

    EXPECT_THROW(DebugLog(home.path() / "no" / "such" / "folder", clock).WriteDebugLog("x"), RuntimeError);
}

// Japanese labels, indents and grouped numbers; what the system does not say is left out.
TEST(EnvironmentReport, JapaneseLabelsIndentsAndGroupedNumbersAndNothingUnknown)
{
    EXPECT_EQ(ReportEnvironment(fullFacts(), true),
              "実行環境情報\r\n"
              "　　オペレーティングシステム : Debian GNU/Linux 12\r\n"
              "　　　バージョン : 6.1.0\r\n"
              "　　　物理メモリ 空き/最大 : 1,234,567 / 8,000,000,000 Byte\r\n"
              "　　プロセッサ : Ryzen\r\n"
              "　　　キャッシュメモリ : L2 Unified = 512 kByte\r\n"
              "　　　　グラフィックメモリ : 268,435,456 Byte\r\n"
              "　　製造メーカー : ACME\r\n");
    EXPECT_HOLDS(ReportEnvironment(fullFacts(), false), "　　　FreePhysicalMemory : 1,234,567 / 8,000,000,000 Byte\r\n");

    EnvironmentFacts facts;
    facts.processor = "Ryzen";
    facts.servicePack.assign(2, ' ');
    facts.freeVirtualBytes = 0; // no swap at all
    facts.totalVirtualBytes = 0;
    facts.freePhysicalBytes = 5;
    EXPECT_EQ(ReportEnvironment(facts, true), "実行環境情報\r\n"
                                              "　　プロセッサ : Ryzen\r\n　　　キャッシュメモリ : NONE\r\n");
    EXPECT_EQ(ReportEnvironment(facts, false), "　　Processor : Ryzen\r\n　　　CacheMemory : NONE\r\n");
}

TEST(LauncherTest, TellsThePlayerWhatCouldNotBeOpenedAndWaitsForWhatWas)
{
    test::TempFolder temp;
    test::FakeMachine machine;
    DebugLog log{temp.path(), machine.clock};
    Launcher launcher{machine, machine, machine, log};
    const std::string help = "/opt/tallivex/bin/使用方法M.mht";
    machine.existingFiles = {help};
    const struct { bool url, opens; std::string target; std::vector<std::string> events; } cases[] = {
        {true, false, "", {"message 実行エラー: サイトが見つかりません。"}},
        {false, false, help, {"open " + help, "message 実行エラー: 使用方法M.mhtを開くプログラムが見つかりません。"}},
        {true, false, "https://example.org/a",
         {"open https://example.org/a", "message 実行エラー: aを開くプログラムが見つかりません。"}},
        {false, true, help, {"open " + help, "wait 500"}},
    };
    for (const auto& c : cases) {
        machine.events.clear();
        machine.shellOpens = c.opens;
        c.url ? launcher.RunUrl(c.target, 500) : launcher.RunFile(c.target, 500);
        EXPECT_EQ(machine.events, c.events) << c.target;
    }
}

TEST(IsTempFolderTest, EitherFolderInsideTheOther)
{
    const char* temp = "C:\\Users\\mei\\AppData\\Local\\Temp\\";
    const char* shortTemp = "C:\\Users\\MEI~1\\AppData\\Local\\Temp\\";
    const struct { const char* program; bool refused; } cases[] = {
        {"C:\\Users\\mei\\AppData\\Local\\Temp\\", true},
        {"c:\\users\\mei\\appdata\\local\\temp\\Temp1_tv.zip\\tv", true}, // case ignored
        {"C:\\USERS\\MEI~1\\APPDATA\\LOCAL\\TEMP\\x", true},            // the short form
        {"C:\\Users", true},                                            // a parent of the temporary folder
        {"D:\\Games\\Tallivex", false},
    };
    for (const auto& k : cases)
        EXPECT_EQ(IsTempFolder(k.program, temp, shortTemp), k.refused) << k.program;
    EXPECT_FALSE(IsTempFolder("/opt/tallivex", "", ""));
}

} // namespace
} // namespace tvx
