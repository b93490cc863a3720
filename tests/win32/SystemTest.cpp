// What the program asks of Windows besides its windows: one meter a home, the shell, waits a close ends,
// WMI, the command line and console in UTF-8, Raw Input's mouse buttons and GDI+'s image files.
#include "DesktopSupport.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include "CommandLine.h"
#include "Environment.h"
#include "MouseButtons.h"
#include "SingleInstance.h"
#include "StandardStreams.h"
#include "base/Utf8Path.h"
#include "Win32Waiter.h"
#include "win32/RawMouseButtons.h"
#include "win32/Win32Ports.h"
#include "win32/Win32Text.h"

#include <objbase.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <numeric>
#include <regex>
#include <string>

namespace tvx {
namespace {

TEST(SingleInstanceTest, AHomeIsTakenOnceHoweverSpelledAndFreeAgainWhenReleased)
{
    test::TempFolder home;
    auto first = platform::acquireSingleInstance(home.path());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(platform::acquireSingleInstance(home.path()), nullptr);
    // The same folder spelled differently is still the same home.
    std::wstring upper = home.path().wstring();
    CharUpperW(upper.data());
    for (const auto& same : {std::filesystem::path(upper), home.path() / "", home.path() / "sub" / ".."})
        EXPECT_EQ(platform::acquireSingleInstance(same), nullptr);
    // Another home is free, one with a Japanese name too.
    EXPECT_NE(platform::acquireSingleInstance(home.path() / std::filesystem::path(u8"メイプル")), nullptr);
    first.reset();
    EXPECT_NE(platform::acquireSingleInstance(home.path()), nullptr);
}

TEST(ShellLauncherTest, FileExistsTakesUtf8NamesAndOpeningAMissingFileIsRefused)
{
    test::TempFolder folder;
    const auto help = folder.path() / std::filesystem::path(u8"使用方法M.mht");
    std::ofstream(help) << "x";
    auto shell = platform::makeWin32ShellLauncher();
    EXPECT_TRUE(shell->fileExists(pathUtf8(help)));
    EXPECT_FALSE(shell->fileExists(pathUtf8(folder.path() / "ReadMeM.txt")));
    EXPECT_FALSE(shell->fileExists(""));
    EXPECT_FALSE(shell->open(pathUtf8(folder.path() / "missing.mht")));
    EXPECT_FALSE(shell->open(""));
}

TEST(Win32WaiterTest, ACloseEndsTheWaitsInProgressOnly)
{
    static win32ui::Win32Waiter waiter;
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) {
        KillTimer(nullptr, id);
        waiter.endWaits();
    });
    ASSERT_NE(timer, 0u);
    const DWORD start = GetTickCount();
    waiter.WaitMs(60000); // the timer's message arrives during the wait and closes
    EXPECT_LT(GetTickCount() - start, 60000u) << "the wait ended with the close";

    const DWORD again = GetTickCount();
    waiter.WaitMs(200);
    EXPECT_GE(GetTickCount() - again, 150u) << "a wait begun after the close waits";
}

TEST(EnvironmentTest, SystemLibrariesLoadAndWmiAnswersTheReportItems)
{
    for (const RequiredLibrary& library : platform::requiredLibraries())
        EXPECT_TRUE(platform::canLoadLibrary(library.name)) << library.name;
    EXPECT_FALSE(platform::canLoadLibrary("tallivex-no-such-library.dll"));
    const EnvironmentFacts facts = platform::gatherEnvironment();
    // Only WMI knows these; the fallbacks leave them empty (how the report's lines are made: ShellTest).
    EXPECT_NE(facts.operatingSystem, "Windows");
    for (const std::string& item : {facts.operatingSystem, facts.version, facts.processor, facts.graphicAdapter,
                                    facts.manufacturer})
        EXPECT_FALSE(item.empty());
    // A 32-bit WMI number above 2 GB must not come out negative or missing.
    const std::uint64_t ram = facts.adapterRamBytes.value_or(0); // 0: missing
    EXPECT_TRUE(ram > 0 && ram < (1ull << 32)) << ram;
    EXPECT_TRUE(std::regex_match(facts.localTime, std::regex(R"(\d{4}/\d{2}/\d{2} \d{2}:\d{2}:\d{2})")))
        << facts.localTime;

    // The same machine through the plain API.
    const DWORD os = GetVersion(); // the major version in the low byte, the minor in the next
    EXPECT_EQ(facts.version.rfind(std::to_string(os & 0xFF) + "." + std::to_string(os >> 8 & 0xFF), 0), 0u)
        << facts.version;
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof memory;
    ASSERT_TRUE(GlobalMemoryStatusEx(&memory));
    EXPECT_NEAR(static_cast<double>(facts.totalPhysicalBytes.value_or(0)) / memory.ullTotalPhys, 1.0, 0.05);
    EXPECT_TRUE(facts.freePhysicalBytes && facts.freePhysicalBytes <= facts.totalPhysicalBytes);
}

// The argument ctest gives this program (tests/win32/CMakeLists.txt).
const std::string kArgument = "記録 フォルダ";

TEST(CommandLineTest, ArgumentsArriveInUtf8WhateverTheCodePage)
{
    const std::vector<std::string> args = platform::commandLineUtf8(0, nullptr);
    ASSERT_FALSE(args.empty());
    EXPECT_TRUE(args.front().ends_with("tallivex_win32_tests.exe")) << args.front();
    if (args.size() < 2 || args.back().starts_with("--gtest"))
        GTEST_SKIP() << "started without the argument that ctest passes (\"" << kArgument << "\")";
    EXPECT_EQ(args.back(), kArgument);
}

TEST(ConsoleTextTest, PiecesEndingInsideACharacterWaitForTheRest)
{
    struct Case { const char* text; std::size_t complete; };
    const Case cases[] = {
        {"", 0},
        {"a\xE3", 1},                 // first byte of あ
        {"\xF0\x9F\x98", 0},          // three of a four-byte character
        {"\xF0\x9F\x98\x80", 4},      // whole
        {"\xEF\xBE\x99\xC3", 3},      // ﾙ, then the first byte of é
        {"x\x80", 2},                 // a stray continuation byte goes out as it is
        {"x\xFF", 2},                 // so does a byte that starts nothing
    };
    for (const Case& c : cases)
        EXPECT_EQ(platform::win32::completeUtf8Length(c.text), c.complete) << '"' << c.text << '"';
}

TEST(ConsoleTextTest, JapaneseShowsRightOnAConsoleOfAnotherCodePage)
{
    const auto create = [] {
        return CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                         CONSOLE_TEXTMODE_BUFFER, nullptr);
    };
    HANDLE console = create();
    if (console == INVALID_HANDLE_VALUE) {
        // Wine started from a terminal gives a console without buffers of its own.
        FreeConsole();
        console = AllocConsole() ? create() : INVALID_HANDLE_VALUE;
    }
    DWORD mode = 0;
    if (console == INVALID_HANDLE_VALUE || !GetConsoleMode(console, &mode))
        GTEST_SKIP() << "no console to write to: wine opens one only on a display";
    const HANDLE previous = GetStdHandle(STD_OUTPUT_HANDLE);
    const UINT codePage = GetConsoleOutputCP();
    SetStdHandle(STD_OUTPUT_HANDLE, console);
    SetConsoleOutputCP(437); // a code page without Japanese
    {
        const platform::Utf8StandardStreams streams;
        // Written in pieces that split a character, as stream insertions may.
        std::cout << "経過: 0日 " << std::string("\xE3\x81") << std::flush << std::string("\x82 ﾒﾙ") << std::endl;
    }
    SetConsoleOutputCP(codePage);
    SetStdHandle(STD_OUTPUT_HANDLE, previous);
    // The first line as the player would see it, trailing blanks cut.
    std::wstring line(80, L'\0');
    DWORD read = 0;
    ReadConsoleOutputCharacterW(console, line.data(), static_cast<DWORD>(line.size()), COORD{0, 0}, &read);
    line.resize(read);
    EXPECT_EQ(line.erase(line.find_last_not_of(L' ') + 1), L"経過: 0日 あ ﾒﾙ");
    CloseHandle(console);
}

constexpr MouseButtonEvent kLeftDown{MouseButton::Left, true};
constexpr MouseButtonEvent kLeftUp{MouseButton::Left, false};
constexpr MouseButtonEvent kRightDown{MouseButton::Right, true};
constexpr MouseButtonEvent kRightUp{MouseButton::Right, false};

TEST(RawMouseFlagsTest, ButtonFlagsBecomeEventsLeftFirst)
{
    const struct { std::uint16_t flags; std::vector<MouseButtonEvent> events; } cases[] = {
        {0, {}},
        {RI_MOUSE_RIGHT_BUTTON_DOWN | RI_MOUSE_LEFT_BUTTON_UP, {kLeftUp, kRightDown}},
        {RI_MOUSE_LEFT_BUTTON_DOWN | RI_MOUSE_RIGHT_BUTTON_UP, {kLeftDown, kRightUp}},
        // Middle, side buttons and the wheel are not reported.
        {RI_MOUSE_MIDDLE_BUTTON_DOWN | RI_MOUSE_BUTTON_4_UP | RI_MOUSE_BUTTON_5_DOWN | RI_MOUSE_WHEEL, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.flags);
        EXPECT_EQ(platform::win32::mouseButtonEvents(c.flags), c.events);
    }
}

void click(DWORD down, DWORD up)
{
    INPUT in[2]{{.type = INPUT_MOUSE, .mi = {0, 0, 0, down, 0, 0}}, {.type = INPUT_MOUSE, .mi = {0, 0, 0, up, 0, 0}}};
    SendInput(2, in, sizeof(INPUT));
}

TEST(RawInputMouseTest, InjectedClicksArriveWhileAnotherWindowHasTheFocus)
{
    // The clicks land on a window of this thread that is not the source's.
    test::PaintedWindow focus(L"Focus", test::noiseFrame(200, 200, 2), 400, 300);
    ASSERT_TRUE(focus.bringToFront());
    SetCursorPos(500, 400);

    auto source = platform::makeMouseButtonSource();
    std::vector<MouseButtonEvent> seen;
    const auto collect = [&](const auto& batch) { seen.insert(seen.end(), batch.begin(), batch.end()); };
    ASSERT_EQ(source->start(collect), MouseButtonSource::StartResult::Started);
    EXPECT_EQ(source->pollDescriptor(), -1);

    click(MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP);
    click(MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    test::pumpUntil([&] { return seen.size() >= 4; }, 2000);
    test::pumpMessages(100);
    EXPECT_EQ(seen, (std::vector<MouseButtonEvent>{kLeftDown, kLeftUp, kRightDown, kRightUp}));

    // Stopped, a source hears nothing; started again, it hears what comes after.
    source->stop();
    seen.clear();
    click(MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP);
    test::pumpMessages(300);
    ASSERT_EQ(source->start(collect), MouseButtonSource::StartResult::Started);
    click(MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    test::pumpUntil([&] { return seen.size() >= 2; }, 2000);
    EXPECT_EQ(seen, (std::vector<MouseButtonEvent>{kRightDown, kRightUp}));
}

// PNG (quality 0 here) is lossless; JPEG at 90 is closer to the picture and larger than at
// 70. A Japanese name, as the player's folders have. A missing folder or an empty picture fails.
TEST(ImageEncoderTest, FilesAreCompleteWithTheirSignaturesAndPngIsLossless)
{
    test::TempFolder folder;
    const std::unique_ptr<ImageEncoder> encoder = platform::makeGdiplusImageEncoder();
    // Smooth areas with some detail, like a game screen, so JPEG quality shows.
    Frame picture(123, 77);
    const Frame noise = test::noiseFrame(123, 77, 4);
    for (int y = 0; y < 77; ++y)
        for (int x = 0; x < 123; ++x)
            picture.setPixel(x, y, static_cast<std::uint8_t>(x * 2), static_cast<std::uint8_t>(y * 3),
                             static_cast<std::uint8_t>((x + y) % 40 < 20 ? 40 : 200 + noise.row(y)[x * 3] % 50));
    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    ASSERT_EQ(Gdiplus::GdiplusStartup(&token, &input, nullptr), Gdiplus::Ok); // to read the files back
    EXPECT_FALSE(encoder->writeJpeg(picture, folder.path() / "no" / "such.jpg", 90));
    EXPECT_FALSE(encoder->writePng(Frame(), folder.path() / "empty.png"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "empty.png"));
    const struct { std::filesystem::path name; int quality; std::string head, tail; double within; } files[] = {
        {u8"給与明細.png", 0, std::string("\x89PNG\r\n\x1a\n", 8), "", 0},
        {"shot70.jpg", 70, "\xFF\xD8\xFF", "\xFF\xD9", 12},
        {"shot90.jpg", 90, "\xFF\xD8\xFF", "\xFF\xD9", 12},
    };
    std::string bytes[3];
    double error[3] = {};
    for (int i = 0; i < 3; ++i) {
        const auto& file = files[i];
        SCOPED_TRACE(file.quality);
        const auto path = folder.path() / file.name;
        ASSERT_TRUE(file.quality == 0 ? encoder->writePng(picture, path)
                                      : encoder->writeJpeg(picture, path, file.quality));
        bytes[i] = test::readAll(path);
        EXPECT_TRUE(bytes[i].starts_with(file.head));
        EXPECT_TRUE(bytes[i].ends_with(file.tail));
        HBITMAP handle = nullptr;
        Gdiplus::Bitmap(path.wstring().c_str()).GetHBITMAP(Gdiplus::Color(), &handle);
        const platform::win32::Bitmap owned(handle);
        const Frame back = test::frameOf(handle);
        ASSERT_EQ(std::pair(back.width(), back.height()), std::pair(picture.width(), picture.height()));
        error[i] = std::transform_reduce(back.bytes().begin(), back.bytes().end(), picture.bytes().begin(), 0.0,
                                         std::plus<>(), [](int a, int b) { return std::abs(a - b); }) /
                   static_cast<double>(back.bytes().size());
        EXPECT_LE(error[i], file.within);
    }
    Gdiplus::GdiplusShutdown(token);
    // Wine 8's GDI+ drops the encoder parameters and always writes its default quality.
    if (bytes[1] == bytes[2] && test::runningUnderWine())
        GTEST_SKIP() << "Wine's GDI+ ignores the JPEG quality parameter";
    EXPECT_GT(bytes[2].size(), bytes[1].size());
    EXPECT_LT(error[2], error[1]);
}

} // namespace
} // namespace tvx
