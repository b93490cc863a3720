#include "shell/EnvironmentReport.h"

#include "shell/DebugLog.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

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

TEST(EnvironmentReport, JapaneseLabelsIndentsAndGroupedNumbers)
{
    const std::string report = ReportEnvironment(fullFacts(), true);
    const char* lines[] = {
        "実行環境情報\r\n",
        "　　オペレーティングシステム : Debian GNU/Linux 12\r\n",
        "　　　バージョン : 6.1.0\r\n",
        "　　　物理メモリ 空き/最大 : 1,234,567 / 8,000,000,000 Byte\r\n",
        "　　プロセッサ : Ryzen\r\n",
        "　　　キャッシュメモリ : L2 Unified = 512 kByte\r\n",
        "　　　　グラフィックメモリ : 268,435,456 Byte\r\n",
        "　　製造メーカー : ACME\r\n",
    };
    std::size_t at = 0;
    for (const char* line : lines) {
        const std::size_t found = report.find(line, at);
        ASSERT_NE(found, std::string::npos) << line << "\n" << report;
        at = found;
    }
    EXPECT_NE(ReportEnvironment(fullFacts(), false).find("　　　FreePhysicalMemory : 1,234,567 / 8,000,000,000 Byte\r\n"),
              std::string::npos);
}

TEST(EnvironmentReport, WhatTheSystemDoesNotSayIsLeftOut)
{
    EnvironmentFacts facts;
    facts.processor = "Ryzen";
    facts.servicePack.assign(2, ' ');
    facts.freeVirtualBytes = 0; // no swap at all
    facts.totalVirtualBytes = 0;
    facts.freePhysicalBytes = 5;
    for (const bool japanese : {true, false}) {
        const std::string report = ReportEnvironment(facts, japanese);
        EXPECT_EQ(report.find("Byte"), std::string::npos) << report;
        EXPECT_EQ(report.find(" : \r\n"), std::string::npos) << report;
        EXPECT_EQ(report.find("\r\n\r\n"), std::string::npos) << report;
    }
    const std::string english = ReportEnvironment(facts, false);
    EXPECT_EQ(english, "　　Processor : Ryzen\r\n　　　CacheMemory : NONE\r\n");
}

TEST(EnvironmentReport, TheUnloadReportHasNoBlankLine)
{
    test::TempFolder home;
    test::FakeClock clock;
    DebugLog log(home.path(), clock);
    WriteOperatingInformation(fullFacts(), log);
    const std::string text = test::readAll(log.path());
    EXPECT_EQ(text.find("\r\n\r\n"), std::string::npos) << text;
    EXPECT_NE(text.find(" OperatingInformation\r\n"), std::string::npos);
    // 2,048,000 bytes are 2,000 kB; a small fraction of the 8 GB total.
    EXPECT_NE(text.find("　　Available Physical Memory"), std::string::npos) << text;
    EXPECT_NE(text.find("2,000 kByte  0%\r\n"), std::string::npos) << text;
}

} // namespace
} // namespace tvx
