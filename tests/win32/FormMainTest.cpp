#include "FormMain.h"

#include "measurement/MeasurementSession.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

using win32ui::FormMain;

// What only the Win32 main window has; the rest is tests/windows/MainWindowTest.cpp.
class FormMainWin32Test : public testing::Test {
protected:
    FormMainWin32Test()
    {
        settings.SaveFolder = temp.path().string();
        settings.StartDelay = 0;
        window.attach(meter);
        ShowWindow(window.handle(), SW_SHOWNA);
    }

    test::TempFolder temp;
    test::FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    FormMain window{programTitle("MapleStory"), log, temp.path()};
    MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, window};
    Meter meter{settings, ports, log};
};

// Width in pixels of a text in the font a control draws with.
int drawnWidth(HWND control, std::string_view text)
{
    HDC dc = GetDC(control);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    const std::wstring wide = win32ui::wide(text);
    SIZE size{};
    GetTextExtentPoint32W(dc, wide.c_str(), static_cast<int>(wide.size()), &size);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return size.cx;
}

TEST_F(FormMainWin32Test, SixMenusAndTheAccountsWidestTextsFitTheirLabelsAndTheLogRowsLineUpUnderTheHeader)
{
    EXPECT_EQ(GetMenuItemCount(window.menu()), 6);
    machine.screens = {test::gameCapture({"200", "1234567890", "9999999999"})};
    window.FormMain_Load();
    meter.cycle().runCycle();
    for (const char* name : {"lblStartTime", "lblStartLv", "lblStartExp", "lblStartExpPS", "lblStartMoney"}) {
        const std::string text = window.controlText(name);
        const HWND label = FindWindowExW(window.handle(), nullptr, nullptr, win32ui::wide(text).c_str());
        ASSERT_NE(label, nullptr) << name << " " << text;
        RECT client{};
        GetClientRect(label, &client);
        EXPECT_LE(drawnWidth(label, text), client.right) << name << " " << text;
    }
    // The header has full-width characters; a record line of as many columns has none.
    const std::string header(kLogHeader);
    EXPECT_EQ(drawnWidth(window.txtLog(), header), drawnWidth(window.txtLog(), std::string(72, '0')));
}

TEST_F(FormMainWin32Test, LogBoxControlKeepsTheLast512LinesWithTheCaretAtTheEnd)
{
    // A block, then single lines across the limit, each cutting the oldest line.
    std::string block;
    for (int line = 1; line <= 510; ++line)
        block += "line " + std::to_string(line) + "\r\n";
    meter.logBox().write(block);
    for (int line : {511, 512, 513, 514, 599})
        meter.logBox().write("line " + std::to_string(line) + "\r\n");
    EXPECT_EQ(SendMessageW(window.txtLog(), EM_GETLINECOUNT, 0, 0), 513); // and the empty one after the last break
    const std::string text = win32ui::windowText(window.txtLog());
    EXPECT_EQ(text, meter.logBox().text());
    EXPECT_EQ(text.rfind("line 4\r\n", 0), 0u) << text.substr(0, 40);
    EXPECT_TRUE(text.ends_with("line 514\r\nline 599\r\n"));
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(window.txtLog(), EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(start, static_cast<DWORD>(GetWindowTextLengthW(window.txtLog())));
    EXPECT_EQ(start, end);
}

} // namespace
} // namespace tvx
