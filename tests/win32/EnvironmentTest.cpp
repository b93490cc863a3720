#include "Environment.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <regex>

namespace tvx {
namespace {

TEST(EnvironmentTest, WmiAnswersTheReportItems)
{
    const EnvironmentFacts facts = platform::gatherEnvironment();
    // Only WMI knows these; the fallbacks leave them empty.
    EXPECT_NE(facts.operatingSystem, "Windows");
    EXPECT_FALSE(facts.operatingSystem.empty());
    EXPECT_FALSE(facts.version.empty());
    EXPECT_FALSE(facts.processor.empty());
    EXPECT_FALSE(facts.graphicAdapter.empty());
    EXPECT_FALSE(facts.manufacturer.empty());
    // A 32-bit WMI number above 2 GB must not come out negative or missing.
    ASSERT_TRUE(facts.adapterRamBytes.has_value());
    EXPECT_GT(*facts.adapterRamBytes, 0u);
    EXPECT_LT(*facts.adapterRamBytes, 1ull << 32);
    EXPECT_TRUE(std::regex_match(facts.localTime, std::regex(R"(\d{4}/\d{2}/\d{2} \d{2}:\d{2}:\d{2})")))
        << facts.localTime;

    // The same machine through the plain API.
    OSVERSIONINFOW os{};
    os.dwOSVersionInfoSize = sizeof os;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    ASSERT_TRUE(GetVersionExW(&os));
#pragma GCC diagnostic pop
    EXPECT_EQ(facts.version.rfind(std::to_string(os.dwMajorVersion) + "." + std::to_string(os.dwMinorVersion), 0), 0u)
        << facts.version;
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof memory;
    ASSERT_TRUE(GlobalMemoryStatusEx(&memory));
    ASSERT_TRUE(facts.totalPhysicalBytes.has_value());
    const double ratio = static_cast<double>(*facts.totalPhysicalBytes) / static_cast<double>(memory.ullTotalPhys);
    EXPECT_NEAR(ratio, 1.0, 0.05);
    ASSERT_TRUE(facts.freePhysicalBytes.has_value());
    EXPECT_LE(*facts.freePhysicalBytes, *facts.totalPhysicalBytes);

    const std::string report = ReportEnvironment(facts, false);
    EXPECT_NE(report.find("Processor : " + facts.processor + "\r\n"), std::string::npos);
    EXPECT_EQ(report.find("GraphicAdapter : " + facts.graphicAdapter + "\r\n") != std::string::npos,
              !facts.graphicAdapter.empty());
    std::printf("%s", report.c_str());
}

TEST(EnvironmentTest, SystemLibrariesLoad)
{
    for (const RequiredLibrary& library : platform::requiredLibraries())
        EXPECT_TRUE(platform::canLoadLibrary(library.name)) << library.name;
    EXPECT_FALSE(platform::canLoadLibrary("tallivex-no-such-library.dll"));
}

} // namespace
} // namespace tvx
