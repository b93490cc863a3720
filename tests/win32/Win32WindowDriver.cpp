// The Win32 front end behind the shared window scenarios of tests/windows.
#include "support/WindowDriver.h"

#include "DesktopSupport.h"
#include "FormCalibrate.h"
#include "FormInputCheck.h"
#include "FormJoke.h"
#include "FormMain.h"
#include "FormOption.h"
#include "CompactWindow.h"
#include "HistoryWindow.h"
#include "GlyphControl.h"
#include "Win32Prompter.h"
#include "Win32Ui.h"

#include "TextCodecFactory.h"
#include "config/ConfigFile.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "view/FormMainCommands.h"
#include "view/LiveView.h"
#include "view/MainMenu.h"
#include "view/OptionFields.h"
#include "view/Calibration.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace tvx::test {

namespace {

// The size of a text as a control draws it, in its font, within `room`.
RECT measure(HWND control, const std::wstring& text, UINT format, RECT room)
{
    const HDC dc = GetDC(control);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &room, DT_CALCRECT | format);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return room;
}

bool isClass(HWND window, const wchar_t* kind)
{
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    return lstrcmpiW(name, kind) == 0;
}

// The texts of a window's shown child controls (or of `only`) that do not fit them as they draw them.
std::vector<std::string> clippedTexts(HWND window, HWND only = nullptr)
{
    std::vector<std::string> clipped;
    if (window == nullptr)
        return clipped;
    const auto check = [&](const std::wstring& text, int needed, int room) {
        if (!text.empty() && needed > room)
            clipped.push_back(win32ui::utf8(text) + " (" + std::to_string(needed) + " > " + std::to_string(room) + ")");
    };
    for (HWND child : childrenOf(window)) {
        if (!IsWindowVisible(child) || (only != nullptr && child != only))
            continue;
        RECT client{};
        GetClientRect(child, &client);
        const std::wstring text = textOf(child);
        const LONG style = GetWindowLongW(child, GWL_STYLE);
        // A control pushed past its parent's edge is cut off whatever its own size.
        RECT placed{};
        GetWindowRect(child, &placed);
        MapWindowPoints(HWND_DESKTOP, GetParent(child), reinterpret_cast<POINT*>(&placed), 2);
        RECT room{};
        GetClientRect(GetParent(child), &room);
        check(text + L" reaches past the window", placed.right, room.right);
        if (isClass(child, L"Static") && (style & SS_TYPEMASK) <= SS_RIGHT) {
            // Lines may reach a pixel or two into the bottom edge: their leading, not ink.
            const RECT needed = measure(child, text, DT_WORDBREAK | DT_NOPREFIX, RECT{0, 0, client.right, 0});
            check(text + L" wide", needed.right, client.right);
            check(text + L" high", needed.bottom, client.bottom + 2);
        } else if (isClass(child, L"Button")) {
            const LONG type = style & BS_TYPEMASK;
            const bool box = type == BS_CHECKBOX || type == BS_AUTOCHECKBOX || type == BS_RADIOBUTTON ||
                             type == BS_AUTORADIOBUTTON || type == BS_3STATE || type == BS_AUTO3STATE;
            const int margin = type == BS_GROUPBOX ? 16 : box ? GetSystemMetrics(SM_CXMENUCHECK) + 4 : 8;
            check(text, measure(child, text, DT_SINGLELINE, RECT{}).right + margin, client.right);
        } else if (isClass(child, L"ComboBox")) {
            const int arrow = GetSystemMetrics(SM_CXVSCROLL) + 8;
            const auto count = static_cast<int>(SendMessageW(child, CB_GETCOUNT, 0, 0));
            for (int i = 0; i < count; ++i) {
                std::wstring item(static_cast<std::size_t>(SendMessageW(child, CB_GETLBTEXTLEN, i, 0)), L'\0');
                SendMessageW(child, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(item.data()));
                check(item, measure(child, item, DT_SINGLELINE | DT_NOPREFIX, RECT{}).right + arrow, client.right);
            }
        } else if (isClass(child, WC_TABCONTROLW)) {
            const auto count = static_cast<int>(SendMessageW(child, TCM_GETITEMCOUNT, 0, 0));
            RECT last{};
            if (count > 0 && SendMessageW(child, TCM_GETITEMRECT, count - 1, reinterpret_cast<LPARAM>(&last)))
                check(L"tabs", last.right, client.right);
        }
    }
    return clipped;
}

WindowDriver::Box boxOf(HWND window)
{
    RECT r{};
    GetWindowRect(window, &r);
    return {r.left, r.top, r.right - r.left, r.bottom - r.top};
}

// Finds a control of a window by the name the Qt window gives it.
using ControlFinder = std::function<HWND(HWND window, const std::string& name)>;

ControlFinder byId(std::function<int(std::string_view)> idOf)
{
    return [idOf = std::move(idOf)](HWND window, const std::string& name) { return childWithId(window, idOf(name)); };
}

// The identifiers of the number dialog's, the small windows' and the history window's controls.
int listedControlId(std::string_view name)
{
    using C = win32ui::FormInputCheck;
    const std::pair<const char*, int> ids[] = {
        {"txtInput", C::txtInput}, {"cmdInc", C::cmdInc}, {"cmdDec", C::cmdDec},   {"cmdEnter", C::cmdEnter},
        {"cmdCancel", C::cmdCancel}, {"lblmsg", C::lblmsg}, {"lblmax", C::lblmax}, {"lblmaxv", C::lblmaxv},
        {"lblmin", C::lblmin}, {"lblminV", C::lblminV}, {"cmdJoke", 101}, {"cmdOK", IDOK},
        {"lblMessage", win32ui::FormJoke::lblMessage}, {"cmdClose", win32ui::FormJoke::cmdClose},
        {"cmdExport", win32ui::HistoryWindow::kCmdExport},
    };
    for (const auto& [known, id] : ids)
        if (name == known)
            return id;
    ADD_FAILURE() << "no such control: " << name;
    return 0;
}

// A Win32 window, found afresh for every call, and its controls.
class Win32WindowDriver final : public WindowDriver {
public:
    Win32WindowDriver(std::function<HWND()> window, ControlFinder find = byId(listedControlId))
        : m_window(std::move(window)), m_find(std::move(find))
    {
    }

    bool isOpen() override { return m_window() != nullptr && IsWindowVisible(m_window()); }
    std::string title() override { return win32ui::windowText(m_window()); }
    std::string text(const std::string& name) override { return win32ui::windowText(control(name)); }
    bool enabled(const std::string& name) override { return IsWindowEnabled(control(name)) != FALSE; }
    bool focused(const std::string& name) override
    {
        return GetFocus() != nullptr && m_window() != nullptr && GetFocus() == m_find(m_window(), name);
    }
    void focus(const std::string& name) override { SetFocus(control(name)); }
    void click(const std::string& name) override { PostMessageW(control(name), BM_CLICK, 0, 0); }
    void clickNow(const std::string& name) override { SendMessageW(control(name), BM_CLICK, 0, 0); }
    void type(const std::string& name, const std::string& text) override
    {
        for (const wchar_t c : win32ui::wide(text))
            SendMessageW(control(name), WM_CHAR, c, 1);
    }
    void setText(const std::string& name, const std::string& text) override { win32ui::setText(control(name), text); }
    // Posted to the focused control through the window's own loop; to the window itself while
    // another program's window has the focus.
    void press(Key key) override
    {
        const HWND focus = GetFocus();
        const HWND target = focus != nullptr && IsChild(m_window(), focus) ? focus : m_window();
        PostMessageW(target, WM_KEYDOWN, virtualKey(key), 1);
        PostMessageW(target, WM_KEYUP, virtualKey(key), 0xC0000001);
    }
    void key(const std::string& name, Key key) override
    {
        SendMessageW(control(name), WM_KEYDOWN, virtualKey(key), 1);
        SendMessageW(control(name), WM_KEYUP, virtualKey(key), 0xC0000001);
    }
    void choose(const std::string& name, int index) override
    {
        const HWND list = control(name);
        const auto item = static_cast<WPARAM>(index);
        if (isClass(list, WC_TABCONTROLW)) {
            SendMessageW(list, TCM_SETCURSEL, item, 0);
            NMHDR change{list, static_cast<UINT_PTR>(GetDlgCtrlID(list)), TCN_SELCHANGE};
            SendMessageW(GetParent(list), WM_NOTIFY, change.idFrom, reinterpret_cast<LPARAM>(&change));
        } else {
            SendMessageW(list, CB_SETCURSEL, item, 0);
            SendMessageW(GetParent(list), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), CBN_SELCHANGE),
                         reinterpret_cast<LPARAM>(list));
        }
    }
    std::vector<std::uint16_t> glyph(const std::string& name) override { return canvas(name).columns(); }
    void clickCell(const std::string& name, int column, int row) override
    {
        const GlyphCanvas& glyph = canvas(name);
        const int half = glyph.pixelSize() / 2;
        mouse(control(name), {glyph.pixelLeft(column) + half, glyph.pixelTop(row) + half}, {});
    }
    void drag(const std::string& name, Point from, Point to) override
    {
        mouse(control(name), from, Point{(from.x + to.x) / 2, (from.y + to.y) / 2}, to);
    }
    // What the screen shows of it, its children and frame included.
    Frame picture(const std::string& name) override
    {
        if (name.empty())
            pumpMessages(300); // painted, behind whatever it opened over
        RECT r;
        GetWindowRect(name.empty() ? m_window() : control(name), &r);
        const platform::win32::WindowDC screen;
        const platform::win32::MemoryDC memory(CreateCompatibleDC(screen.get()));
        const platform::win32::Bitmap bitmap(CreateCompatibleBitmap(screen.get(), r.right - r.left, r.bottom - r.top));
        {
            const platform::win32::Selection selected(memory.get(), bitmap.get());
            BitBlt(memory.get(), 0, 0, r.right - r.left, r.bottom - r.top, screen.get(), r.left, r.top, SRCCOPY);
        }
        return frameOf(bitmap.get()); // once the bitmap is out of the DC
    }
    Box frame() override { return boxOf(m_window()); }
    void close() override { PostMessageW(m_window(), WM_CLOSE, 0, 0); }
    std::vector<std::string> clipped(const std::string& name) override
    {
        return clippedTexts(m_window(), name.empty() ? nullptr : control(name));
    }

    HWND window() { return m_window(); }
    HWND control(const std::string& name)
    {
        const HWND found = m_window() ? m_find(m_window(), name) : nullptr;
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

private:
    static WPARAM virtualKey(Key key) { return key == Key::Enter ? VK_RETURN : key == Key::Escape ? VK_ESCAPE : VK_RIGHT; }

    const GlyphCanvas& canvas(const std::string& name)
    {
        return *reinterpret_cast<const GlyphCanvas*>(GetWindowLongPtrW(control(name), GWLP_USERDATA));
    }

    // A press, an optional move with the button held and a release, in the control's
    // pixels before scrolling.
    static void mouse(HWND target, Point down, std::optional<Point> move, std::optional<Point> up = {})
    {
        const auto at = [target](Point p) {
            const bool h = GetWindowLongPtrW(target, GWL_STYLE) & WS_HSCROLL;
            const bool v = GetWindowLongPtrW(target, GWL_STYLE) & WS_VSCROLL;
            return MAKELPARAM(p.x - (h ? GetScrollPos(target, SB_HORZ) : 0), p.y - (v ? GetScrollPos(target, SB_VERT) : 0));
        };
        SendMessageW(target, WM_LBUTTONDOWN, MK_LBUTTON, at(down));
        if (move)
            SendMessageW(target, WM_MOUSEMOVE, MK_LBUTTON, at(*move));
        SendMessageW(target, WM_LBUTTONUP, 0, at(up.value_or(move.value_or(down))));
    }

    std::function<HWND()> m_window;
    ControlFinder m_find;
};

// The visible window of this thread that `holds`.
HWND threadWindow(const std::function<bool(HWND)>& holds)
{
    std::vector<HWND> windows;
    EnumThreadWindows(GetCurrentThreadId(), [](HWND window, LPARAM list) {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
        return TRUE;
    }, reinterpret_cast<LPARAM>(&windows));
    for (HWND window : windows)
        if (IsWindowVisible(window) && holds(window))
            return window;
    return nullptr;
}

// The window of this thread with this title ("": any) and a control with this identifier.
HWND windowWith(std::string_view title, int control)
{
    return threadWindow([&](HWND w) {
        return (title.empty() || textOf(w) == win32ui::wide(title)) && childWithId(w, control) != nullptr;
    });
}

class Win32Desktop final : public Desktop {
public:
    Win32Desktop()
    {
        // A plain top-level window away from the screen's centre.
        m_owner = CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 40, 420, 300, nullptr,
                                  nullptr, GetModuleHandleW(nullptr), nullptr);
        SetForegroundWindow(m_owner);
        SetActiveWindow(m_owner);
        pumpMessages(50);
        m_prompter.setOwner(m_owner);
    }
    ~Win32Desktop() override { DestroyWindow(m_owner); }

    Prompter& prompter() override { return m_prompter; }
    WindowDriver& numberDialog() override { return m_dialog; }
    WindowDriver& options() override { return m_options; }
    WindowDriver& calibration() override { return m_calibration; }
    WindowDriver::Box owner() override { return boxOf(m_owner); }

    // A message box: a window with the title that is none of the program's own.
    std::optional<std::string> answerBox(const std::string& title, Button button) override
    {
        const HWND own[] = {m_dialog.window(), m_options.window(), m_calibration.window()};
        const HWND box = threadWindow([&](HWND w) {
            return textOf(w) == win32ui::wide(title) && std::find(std::begin(own), std::end(own), w) == std::end(own);
        });
        if (box == nullptr)
            return std::nullopt;
        std::string text; // its static controls' lines
        for (HWND child : childrenOf(box))
            if (isClass(child, L"Static") && GetWindowTextLengthW(child) > 0)
                text += win32ui::windowText(child) + "\n";
        std::erase(text, '\r');
        if (text.ends_with('\n'))
            text.pop_back();
        const UINT ids[] = {IDOK, IDCANCEL, IDYES, IDNO};
        PostMessageW(box, WM_COMMAND, ids[static_cast<int>(button)], 0);
        return text;
    }

    void showOptions(ConfigFile& config, const CaptureBitmap* lastCapture, const WindowServices& services) override
    {
        win32ui::ShowFormOption(m_owner, {&config, lastCapture, services.screen, services.waiter, services.clock,
                                          &m_prompter, services.cycleSkip, {}, services.settingsChanged});
    }

    bool showCalibration(Settings& settings, const CaptureBitmap* screen, const WindowServices& services) override
    {
        return win32ui::ShowFormCalibrate(m_owner, {&settings, screen, services.screen, services.waiter, services.log});
    }

private:
    HWND m_owner = nullptr;
    win32ui::Win32Prompter m_prompter;
    Win32WindowDriver m_dialog{[] { return windowWith("", win32ui::FormInputCheck::lblmaxv); }};
    Win32WindowDriver m_options{[] { return windowWith(kOptionsTitle, win32ui::optionControlId("tabOption")); },
                                byId(win32ui::optionControlId)};
    Win32WindowDriver m_calibration{
        [] { return windowWith(kCalibrationTitle, win32ui::calibrateControlId("cmdLearn")); },
        byId(win32ui::calibrateControlId)};
};

class Win32MainWindowHost final : public MainWindowHost {
public:
    Win32MainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine)
        : m_config(settings, log.path().parent_path(), machine, *m_codec, &log),
          m_window(programTitle("MapleStory"), log, log.path().parent_path()),
          m_ports{machine.clock, machine, machine, machine, machine, machine, machine, m_window},
          m_meter(settings, m_ports, log)
    {
        m_window.setOptionsContext({&m_config, nullptr, nullptr, nullptr, nullptr, &machine, nullptr, {}, {}});
        m_window.setExportChooser([this](HWND) { return m_exportTarget; });
        m_window.attach(m_meter);
        ShowWindow(m_window.handle(), SW_SHOWNA);
    }

    Meter& meter() override { return m_meter; }
    WindowDriver& window() override { return m_main; }
    WindowDriver& version() override { return m_version; }
    WindowDriver& joke() override { return m_joke; }
    WindowDriver& compact() override { return m_compact; }
    WindowDriver& history() override { return m_history; }

    void load() override
    {
        m_window.FormMain_Load();
        pumpMessages(50);
    }

    void retranslate() override
    {
        m_window.retranslate();
        pumpMessages(50);
    }

    std::string menuText(const std::string& item) override
    {
        wchar_t text[128] = {};
        GetMenuStringW(m_window.menu(), id(item), text, 128, MF_BYCOMMAND);
        return win32ui::utf8(text);
    }

    bool menuEnabled(const std::string& item) override
    {
        return (GetMenuState(m_window.menu(), id(item), MF_BYCOMMAND) & (MF_GRAYED | MF_DISABLED)) == 0;
    }

    void choose(const std::string& item) override { SendMessageW(m_window.handle(), WM_COMMAND, id(item), 0); }

    std::string logBox() override
    {
        std::string text = m_window.handle() ? win32ui::windowText(m_window.txtLog()) : m_meter.logBox().text();
        std::erase(text, '\r');
        return text;
    }

    void clickGraphLabel(GraphLabel label) override
    {
        const PixelRect& at = m_window.frmGraph().view().label(label).rect;
        const LPARAM point = MAKELPARAM(at.left + at.width / 2, at.top + at.height / 2);
        SendMessageW(m_window.frmGraph().handle(), WM_LBUTTONDOWN, MK_LBUTTON, point);
        SendMessageW(m_window.frmGraph().handle(), WM_LBUTTONUP, 0, point);
    }

    WindowDriver::Box screen() override { return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}; }

    void close() override
    {
        SendMessageW(m_window.handle(), WM_CLOSE, 0, 0);
        EXPECT_EQ(m_window.handle(), nullptr);
        MSG quit;
        EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "the main loop is told to end";
    }

    CompactShown compactShown() override
    {
        const HWND window = m_window.compact().handle();
        UpdateWindow(window);
        constexpr LONG_PTR overlay = WS_EX_TOPMOST | WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE;
        BYTE alpha = 0;
        DWORD flags = 0;
        GetLayeredWindowAttributes(window, nullptr, &alpha, &flags);
        return {m_window.compact().drawnTexts(), !m_window.compact().clipped(),
                (GetWindowLongPtrW(window, GWL_EXSTYLE) & overlay) == overlay,
                (flags & LWA_ALPHA) != 0 ? MulDiv(alpha, 100, 255) : -1};
    }

    // Held at one point and moved there by the drag.
    void dragCompact(int dx, int dy) override
    {
        const HWND window = m_window.compact().handle();
        SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(40, 30));
        SendMessageW(window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(40 + dx, 30 + dy));
        SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(40, 30));
    }

    void compactMenu(int opacity) override
    {
        const auto* at = std::find(kCompactOpacities.begin(), kCompactOpacities.end(), opacity);
        const int command = opacity == 0 ? win32ui::CompactWindow::kCmdClose
                                         : win32ui::CompactWindow::kCmdOpacity + static_cast<int>(at - kCompactOpacities.begin());
        SendMessageW(m_window.compact().handle(), WM_COMMAND, static_cast<WPARAM>(command), 0);
    }

    std::vector<std::vector<std::vector<std::string>>> historyPages(bool* columnsWhole) override
    {
        std::vector<std::vector<std::vector<std::string>>> pages;
        *columnsWhole = true;
        for (std::size_t page = 0; page < 3; ++page) {
            const HWND list = m_window.history().listView(page);
            const HWND header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
            const int columns = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
            const int rows = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
            std::vector<std::vector<std::string>>& table = pages.emplace_back(static_cast<std::size_t>(rows) + 1);
            for (int column = 0; column < columns; ++column) {
                const auto width = SendMessageW(list, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0);
                // The header's caption first, then the rows' texts.
                for (int row = -1; row < rows; ++row) {
                    wchar_t text[128] = {};
                    HDITEMW item{};
                    LVITEMW cell{};
                    item.mask = HDI_TEXT;
                    item.pszText = cell.pszText = text;
                    item.cchTextMax = cell.cchTextMax = 128;
                    cell.iSubItem = column;
                    if (row < 0)
                        SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
                    else
                        SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&cell));
                    table[static_cast<std::size_t>(row + 1)].push_back(win32ui::utf8(text));
                    const auto needed = SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(text));
                    *columnsWhole = *columnsWhole && width >= needed + 12;
                }
            }
        }
        return pages;
    }

    std::optional<std::string> exportHistory(const std::filesystem::path& to) override
    {
        m_exportTarget = to;
        SendMessageW(m_window.history().handle(), WM_COMMAND, MAKEWPARAM(win32ui::HistoryWindow::kCmdExport, BN_CLICKED), 0);
        return std::nullopt;
    }

private:
    static UINT id(const std::string& item)
    {
        for (const MenuBarEntry& entry : mainMenu()) {
            if (entry.command.name == item)
                return static_cast<UINT>(win32ui::FormMain::commandId(entry.command.command));
            for (const MenuItem& each : entry.items)
                if (each.name == item)
                    return static_cast<UINT>(win32ui::FormMain::commandId(each.command));
        }
        ADD_FAILURE() << "no menu item " << item;
        return 0;
    }

    // A control of the main window, found by the text it shows.
    HWND child(const std::string& control)
    {
        const std::string text = m_window.controlText(control);
        for (HWND c = GetWindow(m_window.handle(), GW_CHILD); c != nullptr; c = GetWindow(c, GW_HWNDNEXT))
            if (win32ui::windowText(c) == text)
                return c;
        return nullptr;
    }

    std::unique_ptr<TextCodec> m_codec = platform::makeTextCodec();
    ConfigFile m_config;
    std::optional<std::filesystem::path> m_exportTarget;
    win32ui::FormMain m_window;
    MeterPorts m_ports;
    Meter m_meter;
    Win32WindowDriver m_main{[this] { return m_window.handle(); },
                             [this](HWND, const std::string& name) { return child(name); }};
    Win32WindowDriver m_version{[] { return windowWith(kVersionCaption, 101); }};
    Win32WindowDriver m_joke{[] { return windowWith("", win32ui::FormJoke::lblMessage); }};
    Win32WindowDriver m_compact{[this] { return m_window.compact().handle(); }};
    Win32WindowDriver m_history{[this] { return m_window.history().handle(); }};
};

} // namespace

// The steps run from a thread timer while the window runs its loop. Past the deadline the active window is
// closed, so a test fails rather than hangs.
void play(std::deque<PlayerStep> steps, const std::function<void()>& modal)
{
    static struct {
        std::deque<PlayerStep> steps;
        ULONGLONG deadline = 0;
        bool running = false;
        bool timedOut = false;
    } script;
    script = {std::move(steps), GetTickCount64() + 30000};
    const UINT_PTR timer = SetTimer(nullptr, 0, 40, [](HWND, UINT, UINT_PTR, DWORD) {
        if (script.running || script.steps.empty())
            return;
        script.running = true; // a step that opens a modal loop must post, not send
        if (script.steps.front()())
            script.steps.pop_front();
        else if (GetTickCount64() > script.deadline) {
            script.timedOut = true;
            if (HWND active = GetActiveWindow())
                PostMessageW(active, WM_CLOSE, 0, 0);
        }
        script.running = false;
    });
    modal();
    KillTimer(nullptr, timer);
    EXPECT_TRUE(script.steps.empty()) << "the window closed before the player was done";
    EXPECT_FALSE(script.timedOut);
}

HWND handleOf(WindowDriver& window, const std::string& control)
{
    auto& win32 = dynamic_cast<Win32WindowDriver&>(window);
    return control.empty() ? win32.window() : win32.control(control);
}

std::unique_ptr<MainWindowHost> makeMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine)
{
    return std::make_unique<Win32MainWindowHost>(settings, log, machine);
}

std::unique_ptr<Desktop> makeDesktop()
{
    return std::make_unique<Win32Desktop>();
}

} // namespace tvx::test
