// What the program asks of Windows besides its windows: one meter a home folder, files found
// and opened through the shell, a wait that a close ends, and WMI's report of the machine.
#include "Environment.h"
#include "SingleInstance.h"
#include "win32/Win32Ports.h"
#include "Win32Waiter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <windows.h>

namespace tvx {
namespace {

using platform::acquireSingleInstance;

TEST(SingleInstanceTest, AHomeIsTakenOnceHoweverSpelledAndFreeAgainWhenReleased)
{
    test::TempFolder home;
    auto first = acquireSingleInstance(home.path());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(acquireSingleInstance(home.path()), nullptr);
    // The same folder spelled differently is still the same home.
    std::wstring upper = home.path().wstring();
    for (auto& c : upper)
        c = static_cast<wchar_t>(towupper(c));
    for (const auto& same : {std::filesystem::path(upper), home.path() / "", home.path() / "sub" / ".."})
        EXPECT_EQ(acquireSingleInstance(same), nullptr);
    // Other homes are free, a Japanese one too.
    auto second = acquireSingleInstance(home.path() / "b");
    auto japanese = acquireSingleInstance(home.path() / std::filesystem::path(u8"メイプル"));
    EXPECT_NE(second, nullptr);
    EXPECT_NE(japanese, nullptr);
    first.reset();
    auto again = acquireSingleInstance(home.path());
    EXPECT_NE(again, nullptr);
    EXPECT_EQ(acquireSingleInstance(home.path()), nullptr);
}

TEST(ShellLauncherTest, FileExistsTakesUtf8NamesAndOpeningAMissingFileIsRefused)
{
    test::TempFolder folder;
    const auto inFolder = [&folder](const std::filesystem::path& name) {
        const std::u8string path = (folder.path() / name).u8string();
        return std::string(path.begin(), path.end());
    };
    std::ofstream(folder.path() / std::filesystem::path(u8"使用方法M.mht")) << "x";
    auto shell = platform::makeWin32ShellLauncher();
    EXPECT_TRUE(shell->fileExists(inFolder(u8"使用方法M.mht")));
    EXPECT_FALSE(shell->fileExists(inFolder("ReadMeM.txt")));
    EXPECT_FALSE(shell->fileExists(""));
    EXPECT_FALSE(shell->open(inFolder("missing.mht")));
    EXPECT_FALSE(shell->open(""));
}

TEST(Win32WaiterTest, ACloseEndsTheWaitsInProgressOnly)
{
    static win32ui::Win32Waiter* waiter = nullptr;
    static int ticks = 0;
    win32ui::Win32Waiter theWaiter;
    waiter = &theWaiter;
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) {
        ++ticks;
        KillTimer(nullptr, id);
        waiter->endWaits();
    });
    ASSERT_NE(timer, 0u);
    const DWORD start = GetTickCount();
    theWaiter.WaitMs(60000); // the timer's message arrives during the wait and closes
    EXPECT_EQ(ticks, 1);
    EXPECT_LT(GetTickCount() - start, 60000u) << "the wait ended with the close";

    const DWORD again = GetTickCount();
    theWaiter.WaitMs(200);
    EXPECT_GE(GetTickCount() - again, 150u) << "a wait begun after the close waits";
}

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
    EXPECT_NE(report.find("GraphicAdapter : " + facts.graphicAdapter + "\r\n"), std::string::npos);
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
