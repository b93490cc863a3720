#include "CommandLine.h"
#include "StandardStreams.h"
#include "win32/Win32Text.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <iostream>
#include <string>

namespace tvx {
namespace {

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
        {"abc\r\n", 5},
        {"a\xE3", 1},                 // first byte of あ
        {"a\xE3\x81", 1},             // two of three
        {"a\xE3\x81\x82", 4},         // あ whole
        {"\xF0\x9F\x98", 0},          // three of a four-byte character
        {"\xF0\x9F\x98\x80", 4},      // whole
        {"\xEF\xBE\x99\xC3", 3},      // ﾙ, then the first byte of é
        {"x\x80", 2},                 // a stray continuation byte goes out as it is
        {"x\xFF", 2},                 // so does a byte that starts nothing
    };
    for (const Case& c : cases)
        EXPECT_EQ(platform::win32::completeUtf8Length(c.text), c.complete) << '"' << c.text << '"';
}

// The first line of a console buffer, trailing blanks cut: what the player would see.
std::wstring firstConsoleLine(HANDLE console)
{
    std::wstring text(80, L'\0');
    DWORD read = 0;
    ReadConsoleOutputCharacterW(console, text.data(), static_cast<DWORD>(text.size()), COORD{0, 0}, &read);
    text.resize(read);
    text.erase(text.find_last_not_of(L' ') + 1);
    return text;
}

// A fresh screen buffer of this process's console, or null when no console can be had.
HANDLE newConsoleBuffer()
{
    const auto create = [] {
        return CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                         CONSOLE_TEXTMODE_BUFFER, nullptr);
    };
    HANDLE buffer = create();
    if (buffer == INVALID_HANDLE_VALUE) {
        // Wine started from a terminal gives a console without buffers of its own.
        FreeConsole();
        buffer = AllocConsole() ? create() : INVALID_HANDLE_VALUE;
    }
    DWORD mode = 0;
    if (buffer != INVALID_HANDLE_VALUE && GetConsoleMode(buffer, &mode))
        return buffer;
    if (buffer != INVALID_HANDLE_VALUE)
        CloseHandle(buffer);
    return nullptr;
}

TEST(ConsoleTextTest, JapaneseShowsRightOnAConsoleOfAnotherCodePage)
{
    const HANDLE console = newConsoleBuffer();
    if (console == nullptr)
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
    EXPECT_EQ(firstConsoleLine(console), L"経過: 0日 あ ﾒﾙ");
    CloseHandle(console);
}

} // namespace
} // namespace tvx
