#include "DesktopSupport.h"
#include "FormMain.h"

#include "TextCodecFactory.h"
#include "config/ConfigFile.h"
#include "measurement/SessionHistory.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "view/LiveWindowModel.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <cstdlib>
#include <fstream>

namespace tvx {
namespace {

using win32ui::CompactWindow;
using win32ui::FormMain;
using win32ui::HistoryWindow;

// With TALLIVEX_SHOT_DIR set, the window as the player sees it, for a look.
void shoot(HWND window, const char* name)
{
    if (const char* folder = std::getenv("TALLIVEX_SHOT_DIR")) {
        test::pumpMessages(300); // painted, behind whatever it opened over
        writeBitmap24(std::filesystem::path(folder) / name, test::screenPicture(window));
    }
}

// The texts the compact window should draw, in its order.
std::vector<std::string> compactTexts(const LiveView& view)
{
    std::vector<std::string> texts{view.stateText, view.levelText};
    for (const LiveLine& line : view.compact) {
        texts.push_back(line.caption);
        texts.push_back(line.value);
    }
    return texts;
}

int opacityOf(HWND window)
{
    BYTE alpha = 0;
    DWORD flags = 0;
    GetLayeredWindowAttributes(window, nullptr, &alpha, &flags);
    return (flags & LWA_ALPHA) != 0 ? MulDiv(alpha, 100, 255) : -1;
}

POINT placeOf(HWND window)
{
    RECT r{};
    GetWindowRect(window, &r);
    return POINT{r.left, r.top};
}

bool above(HWND upper, HWND lower)
{
    for (HWND w = GetWindow(upper, GW_HWNDNEXT); w != nullptr; w = GetWindow(w, GW_HWNDNEXT))
        if (w == lower)
            return true;
    return false;
}

int drawnWidth(HWND control, const std::string& text)
{
    HDC dc = GetDC(control);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    const std::wstring line = win32ui::wide(text);
    SIZE size{};
    GetTextExtentPoint32W(dc, line.c_str(), static_cast<int>(line.size()), &size);
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

std::string cell(HWND list, int row, int column)
{
    wchar_t text[128] = {};
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 128;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return win32ui::utf8(text);
}

int rowsOf(HWND list)
{
    return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}

// The meter with its main window over a fake machine, and the configuration file in a
// temporary home, as the desktop program wires them.
class LiveWindowsWin32Test : public testing::Test {
protected:
    LiveWindowsWin32Test()
    {
        settings.SaveFolder = temp.path().string();
        settings.StartDelay = 0;
        window.setOptionsContext({&config, nullptr, nullptr, nullptr, nullptr, &machine, nullptr, {}, {}});
        window.attach(meter);
        ShowWindow(window.handle(), SW_SHOWNA);
    }

    void command(MenuCommand which)
    {
        SendMessageW(window.handle(), WM_COMMAND, static_cast<WPARAM>(FormMain::commandId(which)), 0);
    }

    // A reading of these numbers after the given minutes of play.
    void readAfter(int minutes, const std::array<std::string, kRegionCount>& numbers)
    {
        machine.clock.advanceMs(static_cast<std::uint32_t>(minutes) * 60'000);
        machine.screens = {test::gameCapture(numbers)};
        meter.cycle().runCycle();
    }

    // The settings as the configuration file holds them now.
    Settings saved()
    {
        Settings read = defaultSettings("");
        ConfigFile file(read, temp.path(), machine, *codec);
        file.run(ConfigFile::Load);
        return read;
    }

    test::TempFolder temp;
    test::FakeMachine machine;
    Settings settings = defaultSettings("");
    std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    DebugLog log{temp.path(), machine.clock};
    ConfigFile config{settings, temp.path(), machine, *codec, &log};
    FormMain window{programTitle("MapleStory"), log, temp.path()};
    MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, window};
    Meter meter{settings, ports, log};
};

TEST_F(LiveWindowsWin32Test, TheCompactWindowShowsTheLiveTextsOverTheGameAndKeepsItsPlaceAndOpacity)
{
    const test::PaintedWindow game(L"MapleStory", test::noiseFrame(400, 300, 3));
    window.FormMain_Load();
    readAfter(0, {"120", "1000", "50000"});
    readAfter(10, {"120", "2501000", "350000"});
    command(MenuCommand::Compact);
    const HWND compact = window.compact().handle();
    ASSERT_NE(compact, nullptr);
    EXPECT_EQ(win32ui::windowText(compact), kCompactTitle);
    const auto style = GetWindowLongPtrW(compact, GWL_EXSTYLE);
    constexpr LONG_PTR overlay = WS_EX_TOPMOST | WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE;
    EXPECT_EQ(style & overlay, overlay);
    SetWindowPos(game.handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_TRUE(above(compact, game.handle())) << "the game brought to the front stays under it";
    EXPECT_EQ(opacityOf(compact), settings.CompactOpacity);

    // The main window's two lines and the compact window draw what the core says.
    const LiveView view = meterLiveView(meter);
    ASSERT_EQ(view.stateText, "読み取り中");
    EXPECT_NE(view.rates.find("15,000k/h"), std::string::npos) << view.rates; // 2.5 million in 10 minutes
    EXPECT_EQ(window.controlText("lblLiveRates"), view.rates);
    EXPECT_EQ(window.controlText("lblLiveOutlook"), view.outlook);
    UpdateWindow(compact);
    EXPECT_EQ(window.compact().drawnTexts(), compactTexts(view));
    EXPECT_FALSE(window.compact().clipped());
    RECT client{};
    GetClientRect(compact, &client);
    EXPECT_EQ(client.bottom, 2 * kCompactMargin + static_cast<int>(view.compact.size() + 2) * kCompactLineHeight);
    shoot(compact, "compact-reading.bmp");

    // Dragged and made more transparent: the file knows at once.
    SetWindowPos(compact, nullptr, 250, 150, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    SendMessageW(compact, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(40, 30));
    SendMessageW(compact, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(70, 50));
    SendMessageW(compact, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(60, 60)); // in the moved window
    SendMessageW(compact, WM_LBUTTONUP, 0, MAKELPARAM(40, 30));
    SendMessageW(compact, WM_COMMAND, CompactWindow::kCmdOpacity + 3, 0);
    EXPECT_EQ(opacityOf(compact), 60);
    Settings file = saved();
    EXPECT_EQ(std::tuple(file.CompactX, file.CompactY, file.CompactOpacity, file.CompactShown),
              std::tuple(300, 200, 60, true));

    // Closed and opened again from the menu: where it was left, as transparent.
    command(MenuCommand::Compact);
    EXPECT_EQ(window.compact().handle(), nullptr);
    EXPECT_FALSE(saved().CompactShown);
    command(MenuCommand::Compact);
    ASSERT_NE(window.compact().handle(), nullptr);
    EXPECT_EQ(placeOf(window.compact().handle()).x, 300);
    EXPECT_EQ(placeOf(window.compact().handle()).y, 200);
    EXPECT_EQ(opacityOf(window.compact().handle()), 60);

    // Open when the meter closes: the next start opens it in its place.
    SendMessageW(window.handle(), WM_CLOSE, 0, 0);
    test::pumpMessages(50);
    EXPECT_FALSE(IsWindow(compact));
    Settings next = saved();
    ASSERT_TRUE(next.CompactShown);
    next.SaveFolder = temp.path().string();
    FormMain again{programTitle("MapleStory"), log, temp.path()};
    MeterPorts againPorts{machine.clock, machine, machine, machine, machine, machine, machine, again};
    Meter againMeter{next, againPorts, log};
    again.attach(againMeter);
    again.FormMain_Load();
    ASSERT_NE(again.compact().handle(), nullptr);
    EXPECT_EQ(placeOf(again.compact().handle()).x, 300);
    EXPECT_EQ(opacityOf(again.compact().handle()), 60);
}

TEST_F(LiveWindowsWin32Test, AStallShowsInTheCompactWindowAndTheWidestLiveTextsFit)
{
    settings.StallAlarm = true;
    settings.StallMinutes = 1;
    window.FormMain_Load();
    command(MenuCommand::Compact);
    readAfter(0, {"150", "1000", "1000000"});
    readAfter(10, {"150", "166001000", "16667666666"}); // about a million k/h of each
    readAfter(2, {"150", "166001000", "16667666666"});
    const LiveView view = meterLiveView(meter);
    ASSERT_EQ(view.stateText, "停滞：経験値が増えません");
    UpdateWindow(window.compact().handle());
    EXPECT_EQ(window.compact().drawnTexts(), compactTexts(view));
    EXPECT_FALSE(window.compact().clipped());
    for (const std::string& line : {view.rates, view.outlook}) {
        const HWND label = childWithText(window.handle(), line);
        ASSERT_NE(label, nullptr) << line;
        RECT client{};
        GetClientRect(label, &client);
        EXPECT_LE(drawnWidth(label, line), client.right) << line;
    }
    shoot(window.compact().handle(), "compact-stall.bmp");
}

TEST_F(LiveWindowsWin32Test, TheHistoryWindowListsTheSessionsNewestFirstExportsThemAndNamesAnUnreadableFile)
{
    const std::filesystem::path history = historyFilePath(settings);
    for (int day : {2, 9, 3}) {
        HistoryRow row;
        row.start = {2025, 6, day, 21, 0, 0};
        row.end = addSeconds(row.start, 5400);
        row.activeSeconds = 5400;
        row.startLevel = 140;
        row.endLevel = 141;
        row.expGained = 123'456'789LL * day;
        row.expPerHour = row.expGained / 1500;
        row.moneyGained = 98'765'432;
        row.moneyPerHour = 65'843;
        saveHistoryRow(history, row);
    }
    std::optional<std::filesystem::path> target = temp.path() / utf8Path("書き出し 先.csv");
    window.setExportChooser([&target](HWND) { return target; });
    command(MenuCommand::History);
    const HWND shown = window.history().handle();
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(win32ui::windowText(shown), kHistoryTitle);
    const HWND sessions = window.history().listView(0);
    ASSERT_EQ(rowsOf(sessions), 3);
    EXPECT_EQ(cell(sessions, 0, 0), "2025/06/09 21:00:00");
    EXPECT_EQ(cell(sessions, 2, 0), "2025/06/02 21:00:00");
    EXPECT_EQ(cell(sessions, 0, 5), "1,111,111,101");
    EXPECT_EQ(rowsOf(window.history().listView(1)), 3);
    EXPECT_EQ(rowsOf(window.history().listView(2)), 2); // 2 and 3 June share a week
    // Every column shows its header and its cells whole.
    for (std::size_t page = 0; page < 3; ++page) {
        const HWND list = window.history().listView(page);
        const HWND header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
        const int columns = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
        for (int column = 0; column < columns; ++column) {
            wchar_t caption[64] = {};
            HDITEMW item{};
            item.mask = HDI_TEXT;
            item.pszText = caption;
            item.cchTextMax = 64;
            SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
            std::vector<std::wstring> texts{caption};
            for (int row = 0; row < rowsOf(list); ++row)
                texts.push_back(win32ui::wide(cell(list, row, column)));
            for (const std::wstring& text : texts) {
                const auto width = SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(text.c_str()));
                EXPECT_GE(SendMessageW(list, LVM_GETCOLUMNWIDTH, column, 0), width + 12)
                    << page << " " << column << " " << win32ui::utf8(text);
            }
        }
    }
    // The pages change with the tabs.
    SendMessageW(window.history().tabs(), TCM_SETCURSEL, 2, 0);
    NMHDR change{window.history().tabs(), HistoryWindow::kTabPages, TCN_SELCHANGE};
    SendMessageW(shown, WM_NOTIFY, change.idFrom, reinterpret_cast<LPARAM>(&change));
    EXPECT_TRUE(IsWindowVisible(window.history().listView(2)));
    EXPECT_FALSE(IsWindowVisible(sessions));
    shoot(shown, "history.bmp");

    const auto exportNow = [&] {
        SendMessageW(shown, WM_COMMAND, MAKEWPARAM(HistoryWindow::kCmdExport, BN_CLICKED), 0);
    };
    exportNow();
    EXPECT_EQ(test::readAll(*target), historyCsv(loadHistory(history)));
    target = temp.path() / "missing" / "history.csv";
    exportNow();
    ASSERT_FALSE(machine.events.empty());
    EXPECT_NE(machine.events.back().find("missing"), std::string::npos) << machine.events.back();

    // A file that is not a history: named, nothing listed, nothing to export, left alone.
    const std::string broken = "start,end\r\nnot,a,row\r\n";
    std::ofstream(history, std::ios::binary) << broken;
    machine.events.clear();
    command(MenuCommand::History);
    ASSERT_EQ(machine.events.size(), 1u);
    EXPECT_NE(machine.events[0].find(pathUtf8(history)), std::string::npos) << machine.events[0];
    for (std::size_t page = 0; page < 3; ++page)
        EXPECT_EQ(rowsOf(window.history().listView(page)), 0);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(shown, HistoryWindow::kCmdExport)));
    EXPECT_EQ(test::readAll(history), broken);

    SendMessageW(shown, WM_COMMAND, MAKEWPARAM(HistoryWindow::kCmdClose, BN_CLICKED), 0);
    EXPECT_EQ(window.history().handle(), nullptr);
}

} // namespace
} // namespace tvx
