#include "FormMain.h"

#include "DesktopSupport.h"

#include "measurement/MeasurementSession.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

using win32ui::FormMain;

std::string menuText(HMENU menu, MenuCommand command)
{
    wchar_t text[128] = {};
    GetMenuStringW(menu, static_cast<UINT>(FormMain::commandId(command)), text, 128, MF_BYCOMMAND);
    return win32ui::utf8(text);
}

bool menuEnabled(HMENU menu, MenuCommand command)
{
    const UINT state = GetMenuState(menu, static_cast<UINT>(FormMain::commandId(command)), MF_BYCOMMAND);
    return (state & (MF_GRAYED | MF_DISABLED)) == 0;
}

class FormMainWin32Test : public testing::Test {
protected:
    FormMainWin32Test()
    {
        settings.SaveFolder = temp.path().string();
        settings.StartDelay = 0;
        window.attach(meter);
        ShowWindow(window.handle(), SW_SHOWNA);
    }

    void command(MenuCommand which)
    {
        SendMessageW(window.handle(), WM_COMMAND, static_cast<WPARAM>(FormMain::commandId(which)), 0);
    }

    std::string logBox() const { return win32ui::windowText(window.txtLog()); }
    std::string debugLog() const { return test::readAll(log.path()); }

    test::TempFolder temp;
    test::FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    FormMain window{programTitle("MapleStory"), log, temp.path()};
    MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, window};
    Meter meter{settings, ports, log};
};

TEST_F(FormMainWin32Test, MenuBarCarriesTheCommandsAndRunWaitsForTheLoad)
{
    ASSERT_NE(window.handle(), nullptr);
    EXPECT_EQ(win32ui::windowText(window.handle()), "Tallivex  for MapleStory    Ver.2.20");
    EXPECT_EQ(GetMenuItemCount(window.menu()), 6);
    EXPECT_EQ(menuText(window.menu(), MenuCommand::RandomOne), "らんだまーオンリーONE");
    EXPECT_EQ(menuText(window.menu(), MenuCommand::Version), "バージョン情報...");
    EXPECT_FALSE(menuEnabled(window.menu(), MenuCommand::Run));
    EXPECT_FALSE(menuEnabled(window.menu(), MenuCommand::Stop));
    EXPECT_EQ(window.controlText("cmdTempStop"), "一時停止");
}

TEST_F(FormMainWin32Test, AutoStartRunsTheSessionUntilStopAndTheCloseEndsIt)
{
    machine.screens = {test::gameCapture({"50", "1000", "0"})};
    window.FormMain_Load();
    EXPECT_FALSE(menuEnabled(window.menu(), MenuCommand::Run));
    EXPECT_EQ(menuText(window.menu(), MenuCommand::Run), "ロギング");
    EXPECT_TRUE(menuEnabled(window.menu(), MenuCommand::Stop));
    EXPECT_EQ(logBox().rfind(" 月日 時刻", 0), 0u) << logBox();

    meter.cycle().runCycle();
    EXPECT_EQ(window.controlText("lblStartLv"), "50");
    EXPECT_EQ(window.controlText("lblStartExpPS"), "0.14％");

    command(MenuCommand::Stop);
    EXPECT_TRUE(menuEnabled(window.menu(), MenuCommand::Run));
    EXPECT_EQ(menuText(window.menu(), MenuCommand::Run), "開始");
    EXPECT_NE(logBox().find("    開始  Lv:  50"), std::string::npos) << logBox();
    command(MenuCommand::OperatingInfo);
    EXPECT_NE(debugLog().find("Click : Operating Information "), std::string::npos);

    SendMessageW(window.handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(window.handle(), nullptr);
    EXPECT_TRUE(meter.logBox().text().ends_with("        終了しています・・・\r\n"));
    EXPECT_NE(debugLog().find("Closing Program ･･･ "), std::string::npos);
    MSG quit;
    EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "the main loop is told to end";
}

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

HWND childWithText(HWND parent, const std::string& text)
{
    for (HWND child = GetWindow(parent, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        if (win32ui::windowText(child) == text)
            return child;
    return nullptr;
}

TEST_F(FormMainWin32Test, TheAccountsWidestTextsFitTheirLabelsAndTheLogRowsLineUpUnderTheHeader)
{
    machine.screens = {test::gameCapture({"200", "1234567890", "9999999999"})};
    window.FormMain_Load();
    meter.cycle().runCycle();
    for (const char* name : {"lblStartTime", "lblStartLv", "lblStartExp", "lblStartExpPS", "lblStartMoney"}) {
        const std::string text = window.controlText(name);
        const HWND label = childWithText(window.handle(), text);
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
    const std::string text = logBox();
    EXPECT_EQ(text, meter.logBox().text());
    EXPECT_EQ(text.rfind("line 4\r\n", 0), 0u) << text.substr(0, 40);
    EXPECT_TRUE(text.ends_with("line 514\r\nline 599\r\n"));
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(window.txtLog(), EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(start, static_cast<DWORD>(GetWindowTextLengthW(window.txtLog())));
    EXPECT_EQ(start, end);
}

TEST_F(FormMainWin32Test, GraphLabelClicksReachTheViewAndTheLog)
{
    window.FormMain_Load();
    test::pumpMessages(50);
    GraphFrameView& graph = window.frmGraph().view();
    ASSERT_TRUE(graph.graphOn());
    ASSERT_GT(graph.picGraph().width, 0);
    const auto clickOn = [&](GraphLabel which) {
        const PixelRect& at = graph.label(which).rect;
        const LPARAM point = MAKELPARAM(at.left + at.width / 2, at.top + at.height / 2);
        SendMessageW(window.frmGraph().handle(), WM_LBUTTONDOWN, MK_LBUTTON, point);
        SendMessageW(window.frmGraph().handle(), WM_LBUTTONUP, 0, point);
    };
    clickOn(GraphLabel::Tl1);
    clickOn(GraphLabel::El0);
    EXPECT_EQ(meter.state().graphView.timeShift, settings.GraphTimeScale / 4);
    EXPECT_FLOAT_EQ(meter.state().graphView.zoom, 1.1f);
    EXPECT_NE(debugLog().find("Click : Graph Old View "), std::string::npos) << debugLog();
}

} // namespace
} // namespace tvx
