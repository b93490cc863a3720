#include "Win32Ui.h"

#include "measurement/MeasurementSession.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/TempFolder.h"
#include "support/WindowDriver.h"

#include <gtest/gtest.h>

namespace tvx::test {
namespace {

// What only the Win32 main window has; the rest is tests/windows/MainWindowTest.cpp.
class FormMainWin32Test : public testing::Test {
protected:
    FormMainWin32Test()
    {
        settings.SaveFolder = temp.path().string();
        settings.StartDelay = 0;
    }

    HWND window() const { return FindWindowW(nullptr, win32ui::wide(host->window().title()).c_str()); }
    HWND txtLog() const { return FindWindowExW(window(), nullptr, L"Edit", nullptr); } // its only edit control

    TempFolder temp;
    FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    std::unique_ptr<MainWindowHost> host = makeMainWindowHost(settings, log, machine);
};

TEST_F(FormMainWin32Test, SixMenusAndTheAccountsWidestTextsFitTheirLabelsAndTheLogRowsLineUpUnderTheHeader)
{
    EXPECT_EQ(GetMenuItemCount(GetMenu(window())), 6);
    machine.screens = {gameCapture({"200", "1234567890", "9999999999"})};
    host->load();
    host->meter().cycle().runCycle();
    for (const char* name : {"lblStartTime", "lblStartLv", "lblStartExp", "lblStartExpPS", "lblStartMoney"})
        EXPECT_TRUE(host->window().fits(name)) << name << " " << host->window().text(name);
    // The header has full-width characters; a record line of as many columns has none.
    const auto font = reinterpret_cast<HFONT>(SendMessageW(txtLog(), WM_GETFONT, 0, 0));
    EXPECT_EQ(win32ui::textWidth(font, kLogHeader, {}), win32ui::textWidth(font, std::string(72, '0'), {}));
}

TEST_F(FormMainWin32Test, LogBoxControlKeepsTheLast512LinesWithTheCaretAtTheEnd)
{
    // A block, then single lines across the limit, each cutting the oldest line.
    std::string block;
    for (int line = 1; line <= 510; ++line)
        block += "line " + std::to_string(line) + "\r\n";
    host->meter().logBox().write(block);
    for (int line : {511, 512, 513, 514, 599})
        host->meter().logBox().write("line " + std::to_string(line) + "\r\n");
    // The control holds what the engine holds: the newest 512 lines.
    EXPECT_EQ(SendMessageW(txtLog(), EM_GETLINECOUNT, 0, 0), 513); // and the empty one after the last break
    EXPECT_EQ(win32ui::windowText(txtLog()), host->meter().logBox().text());
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(txtLog(), EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(start, static_cast<DWORD>(GetWindowTextLengthW(txtLog())));
    EXPECT_EQ(start, end);
}

} // namespace
} // namespace tvx::test
