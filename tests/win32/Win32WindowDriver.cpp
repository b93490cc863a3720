// The Win32 front end behind the shared window scenarios of tests/windows.
#include "support/WindowDriver.h"

#include "DesktopSupport.h"
#include "DialogScript.h"
#include "FormInputCheck.h"
#include "FormMain.h"
#include "Win32Prompter.h"
#include "Win32Ui.h"

#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "view/MainMenu.h"

#include <gtest/gtest.h>

#include <utility>

namespace tvx::test {

namespace {

WindowDriver::Box boxOf(HWND window)
{
    RECT r{};
    GetWindowRect(window, &r);
    return {r.left, r.top, r.right - r.left, r.bottom - r.top};
}

// A Win32 window, found afresh for every call, and its controls by the identifiers their
// names map to.
class Win32WindowDriver final : public WindowDriver {
public:
    Win32WindowDriver(std::function<HWND()> window, std::function<int(const std::string&)> idOf)
        : m_window(std::move(window)), m_idOf(std::move(idOf))
    {
    }

    bool isOpen() override { return m_window() != nullptr && IsWindowVisible(m_window()); }
    std::string title() override { return win32ui::windowText(m_window()); }
    bool has(const std::string& name) override { return m_window() && childWithId(m_window(), m_idOf(name)); }
    std::string text(const std::string& name) override { return win32ui::windowText(control(name)); }
    bool enabled(const std::string& name) override { return IsWindowEnabled(control(name)) != FALSE; }
    bool focused(const std::string& name) override
    {
        return GetFocus() != nullptr && m_window() != nullptr && GetFocus() == childWithId(m_window(), m_idOf(name));
    }
    void focus(const std::string& name) override { SetFocus(control(name)); }
    void click(const std::string& name) override { PostMessageW(control(name), BM_CLICK, 0, 0); }
    void type(const std::string& name, const std::string& text) override
    {
        typeInto(control(name), win32ui::wide(text));
    }
    void setText(const std::string& name, const std::string& text) override { win32ui::setText(control(name), text); }
    void press(Key key) override { pressKey(key == Key::Enter ? VK_RETURN : VK_ESCAPE); }
    Box frame() override { return boxOf(m_window()); }
    void close() override { PostMessageW(m_window(), WM_CLOSE, 0, 0); }

    HWND control(const std::string& name)
    {
        const HWND found = childWithId(m_window(), m_idOf(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

private:
    std::function<HWND()> m_window;
    std::function<int(const std::string&)> m_idOf;
};

// The visible message box of this thread with this title, answered: its text, lines joined by "\n".
std::optional<std::string> answerBox(const std::string& title, PromptHost::Button button, HWND except)
{
    struct Wanted {
        std::wstring title;
        HWND except;
        HWND found;
    } wanted{win32ui::wide(title), except, nullptr};
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM into) -> BOOL {
            auto* w = reinterpret_cast<Wanted*>(into);
            if (window == w->except || !IsWindowVisible(window) || textOf(window) != w->title)
                return TRUE;
            w->found = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&wanted));
    if (wanted.found == nullptr)
        return std::nullopt;
    std::string text = win32ui::utf8(staticTexts(wanted.found));
    for (std::size_t cr; (cr = text.find('\r')) != std::string::npos;)
        text.erase(cr, 1);
    if (text.ends_with('\n'))
        text.pop_back();
    const UINT ids[] = {IDOK, IDCANCEL, IDYES, IDNO};
    PostMessageW(wanted.found, WM_COMMAND, ids[static_cast<int>(button)], 0);
    return text;
}

// The number dialog: the visible window of this thread with its 決定 button.
HWND numberDialogWindow()
{
    HWND found = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM into) -> BOOL {
            if (!IsWindowVisible(window) || !GetDlgItem(window, win32ui::FormInputCheck::lblmaxv))
                return TRUE;
            *reinterpret_cast<HWND*>(into) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

int numberControlId(const std::string& name)
{
    using C = win32ui::FormInputCheck;
    const std::pair<const char*, int> ids[] = {
        {"txtInput", C::txtInput}, {"cmdInc", C::cmdInc}, {"cmdDec", C::cmdDec},   {"cmdEnter", C::cmdEnter},
        {"cmdCancel", C::cmdCancel}, {"lblmsg", C::lblmsg}, {"lblmax", C::lblmax}, {"lblmaxv", C::lblmaxv},
        {"lblmin", C::lblmin},     {"lblminV", C::lblminV},
    };
    for (const auto& [known, id] : ids)
        if (name == known)
            return id;
    ADD_FAILURE() << "no such control: " << name;
    return 0;
}

class Win32PromptHost final : public PromptHost {
public:
    Win32PromptHost()
    {
        // A plain top-level window away from the screen's centre.
        m_owner = CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 40, 420, 300, nullptr,
                                  nullptr, GetModuleHandleW(nullptr), nullptr);
        SetForegroundWindow(m_owner);
        SetActiveWindow(m_owner);
        pump(50);
        m_prompter.setOwner(m_owner);
    }
    ~Win32PromptHost() override { DestroyWindow(m_owner); }

    Prompter& prompter() override { return m_prompter; }

    void play(std::deque<PlayerStep> steps, const std::function<void()>& question) override
    {
        DialogScript script(std::move(steps));
        question();
        EXPECT_TRUE(script.finished()) << "the window closed before the player was done";
        EXPECT_FALSE(script.timedOut());
    }

    WindowDriver& numberDialog() override { return m_dialog; }

    WindowDriver::Box owner() override { return boxOf(m_owner); }

    std::optional<std::string> answerBox(const std::string& title, Button button) override
    {
        return test::answerBox(title, button, numberDialogWindow());
    }

private:
    HWND m_owner = nullptr;
    win32ui::Win32Prompter m_prompter;
    Win32WindowDriver m_dialog{numberDialogWindow, numberControlId};
};

std::string withoutCarriageReturns(std::string text)
{
    std::erase(text, '\r');
    return text;
}

class Win32MainWindowHost final : public MainWindowHost {
public:
    Win32MainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine)
        : m_window(programTitle("MapleStory"), log, log.path().parent_path()),
          m_ports{machine.clock, machine, machine, machine, machine, machine, machine, m_window},
          m_meter(settings, m_ports, log)
    {
        m_window.attach(m_meter);
        ShowWindow(m_window.handle(), SW_SHOWNA);
    }

    Meter& meter() override { return m_meter; }

    void load() override
    {
        m_window.FormMain_Load();
        pumpMessages(50);
    }

    std::string title() override { return win32ui::windowText(m_window.handle()); }
    std::string text(const std::string& control) override { return m_window.controlText(control); }

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
        return withoutCarriageReturns(m_window.handle() ? win32ui::windowText(m_window.txtLog())
                                                        : m_meter.logBox().text());
    }

    void clickGraphLabel(GraphLabel label) override
    {
        const PixelRect& at = m_window.frmGraph().view().label(label).rect;
        const LPARAM point = MAKELPARAM(at.left + at.width / 2, at.top + at.height / 2);
        SendMessageW(m_window.frmGraph().handle(), WM_LBUTTONDOWN, MK_LBUTTON, point);
        SendMessageW(m_window.frmGraph().handle(), WM_LBUTTONUP, 0, point);
    }

    void close() override
    {
        SendMessageW(m_window.handle(), WM_CLOSE, 0, 0);
        EXPECT_EQ(m_window.handle(), nullptr);
        MSG quit;
        EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "the main loop is told to end";
    }

private:
    // The menu command of an item name.
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

    win32ui::FormMain m_window;
    MeterPorts m_ports;
    Meter m_meter;
};

} // namespace

std::unique_ptr<MainWindowHost> makeMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine)
{
    return std::make_unique<Win32MainWindowHost>(settings, log, machine);
}

std::unique_ptr<PromptHost> makePromptHost()
{
    return std::make_unique<Win32PromptHost>();
}

} // namespace tvx::test
