#include "DialogScript.h"
#include "FormOption.h"
#include "Win32Prompter.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "recognition/CaptureFile.h"
#include "recognition/GlyphPainter.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace tvx::win32ui {
namespace {

using test::DialogScript;
using test::pressKey;
using test::shownWindow;
using test::staticTexts;
using test::textOf;
using test::typeInto;

constexpr wchar_t kOptions[] = L"設定";

struct Search {
    int id;
    HWND found;
};

// The options window itself, not a message box of the same title.
HWND optionsWindow()
{
    Search search{optionControlId("tabOption"), nullptr};
    EnumWindows(
        [](HWND window, LPARAM into) -> BOOL {
            auto* s = reinterpret_cast<Search*>(into);
            if (!IsWindowVisible(window) || textOf(window) != kOptions || !GetDlgItem(window, s->id))
                return TRUE;
            s->found = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND optionControl(const char* name)
{
    return test::childWithId(optionsWindow(), optionControlId(name));
}

void click(const char* name)
{
    PostMessageW(optionControl(name), BM_CLICK, 0, 0);
}

// A message box or question with this title: its text, then the button.
std::function<bool()> answerBox(const wchar_t* title, UINT button, std::wstring* text)
{
    return [=] {
        struct Wanted {
            const wchar_t* title;
            HWND options;
            HWND found;
        } wanted{title, optionsWindow(), nullptr};
        EnumWindows(
            [](HWND window, LPARAM into) -> BOOL {
                auto* w = reinterpret_cast<Wanted*>(into);
                if (window == w->options || !IsWindowVisible(window) || textOf(window) != w->title)
                    return TRUE;
                w->found = window;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&wanted));
        const HWND box = wanted.found;
        if (!box)
            return false;
        *text = staticTexts(box);
        PostMessageW(box, WM_COMMAND, button, 0);
        return true;
    };
}

CaptureBitmap gameScreen(const char* level = "137")
{
    const Settings s = defaultSettings("");
    Frame frame(800, 600);
    paintStatusNumbers(frame, s, {level, "12345", "9876543"});
    return toCaptureBitmap(frame);
}

class FormOptionTest : public testing::Test {
protected:
    void show(std::deque<std::function<bool()>> steps)
    {
        DialogScript script(std::move(steps), 20000);
        OptionsContext context;
        context.config = &m_config;
        context.lastCapture = &m_capture;
        context.prompter = &m_prompter;
        context.settingsChanged = [this] { ++m_changes; };
        ShowFormOption(nullptr, context);
        EXPECT_TRUE(script.finished());
        EXPECT_FALSE(script.timedOut());
    }

    test::TempFolder m_temp;
    const std::filesystem::path& m_home = m_temp.path();
    test::FakeClock m_clock{LocalDateTime{2024, 3, 9, 7, 5, 2}};
    DebugLog m_log{m_home, m_clock};
    Win32Prompter m_prompter;
    std::unique_ptr<TextCodec> m_codec = platform::makeTextCodec();
    Settings m_settings = defaultSettings(pathUtf8(m_home));
    ConfigFile m_config{m_settings, m_home, m_prompter, *m_codec, &m_log};
    CaptureBitmap m_capture = gameScreen();
    int m_changes = 0;
};

TEST_F(FormOptionTest, ANumberIsAskedOverTheWindowAndClosingOffersToSaveTheEdits)
{
    std::wstring before;
    std::wstring after;
    std::wstring levelRead;
    std::wstring question;
    std::wstring saved;
    show({
        [] { return optionsWindow() != nullptr; },
        [&] {
            levelRead = textOf(optionControl("lblResult0"));
            before = textOf(optionControl("cmdCaptureInterval"));
            click("cmdCaptureInterval");
            return true;
        },
        [] {
            const HWND input = GetFocus();
            if (!shownWindow(L"設定値入力") || !input)
                return false;
            typeInto(input, L"12");
            pressKey(VK_RETURN);
            return true;
        },
        [] {
            pressKey(VK_RETURN);
            return true;
        },
        [&] {
            if (shownWindow(L"設定値入力"))
                return false;
            after = textOf(optionControl("cmdCaptureInterval"));
            click("chkGraph");
            click("cmdClose");
            return true;
        },
        answerBox(kOptions, IDYES, &question),
        answerBox(kOptions, IDOK, &saved),
    });
    EXPECT_EQ(before, L"6");
    EXPECT_EQ(after, L"12");
    EXPECT_EQ(levelRead, L"認識結果： 137　［完全一致］");
    EXPECT_EQ(m_settings.CaptureInterval, 12);
    EXPECT_FALSE(m_settings.Graph);
    EXPECT_GE(m_changes, 2);
    EXPECT_NE(question.find(L"変更した設定はまだ保存されていません。"), std::wstring::npos);
    EXPECT_EQ(saved, L"設定を保存しました。\n");
    const std::string file = m_codec->fromCp932(test::readAll(m_home / "TV2MConfig.ini")).value_or("");
    EXPECT_NE(file.find("     12 ,          キャプチャインターバル(分)\r\n"), std::string::npos);
}

TEST_F(FormOptionTest, APixelClickedInTheEditorAndColumnsTakenFromTheCaptureBecomeTheTemplate)
{
    const std::string five = m_settings.PatternStrings[RegionLevel][5];
    m_settings.PatternStrings[RegionLevel][5] = "";
    m_capture = gameScreen("57");
    bool takeEnabled = false;
    std::wstring question;
    std::wstring levelRead;
    const auto press = [](const char* name, int x, int y) {
        const HWND control = optionControl(name);
        PostMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
        PostMessageW(control, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
    };
    show({
        [] { return optionsWindow() != nullptr; },
        [&] {
            press("picPattern5", 5, 5);
            // The "57" starts at column 1 of the level region: 5 pixels a column, 2 of margin.
            press("picColumns", 2 + 5 * 1 + 2, 10);
            return true;
        },
        [&] {
            takeEnabled = IsWindowEnabled(optionControl("cmdTakeColumns")) != FALSE;
            click("cmdTakeColumns");
            return true;
        },
        [&] {
            levelRead = textOf(optionControl("lblResult0"));
            press("picEditor", 2 + 5, 2 + 5); // row 0 of the first column, 11 pixels a side
            return true;
        },
        [] {
            PostMessageW(optionsWindow(), WM_CLOSE, 0, 0);
            return true;
        },
        answerBox(kOptions, IDNO, &question),
    });
    EXPECT_TRUE(takeEnabled);
    EXPECT_EQ(levelRead, L"認識結果： 57　［完全一致］");
    EXPECT_FALSE(question.empty()) << "the edits were not saved, so closing asked";
    EXPECT_EQ(m_settings.PatternStrings[RegionLevel][5], "004F" + five.substr(4));
}

// Whether a control lies wholly inside its parent's client area.
bool inView(HWND control)
{
    RECT inside{};
    GetWindowRect(control, &inside);
    MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&inside), 2);
    RECT client{};
    GetClientRect(GetParent(control), &client);
    return inside.left >= client.left && inside.top >= client.top && inside.right <= client.right &&
           inside.bottom <= client.bottom;
}

TEST_F(FormOptionTest, AWindowTooSmallForAPageScrollsItAndKeepsItsButtonsInView)
{
    bool closeInView = false;
    bool captureHidden = false;
    bool captureScrolledIn = false;
    bool captureInViewGrown = false;
    show({
        [] { return optionsWindow() != nullptr; },
        [] {
            SetWindowPos(optionsWindow(), nullptr, 0, 0, 560, 400, SWP_NOMOVE | SWP_NOZORDER);
            return true;
        },
        [&] {
            // The regions page's last row, far below a 400-pixel window.
            const HWND capture = optionControl("cmdCapture");
            const HWND page = GetParent(capture);
            closeInView = inView(optionControl("cmdClose")) && inView(optionControl("cmdSave"));
            captureHidden = !inView(capture);
            SendMessageW(page, WM_VSCROLL, SB_BOTTOM, 0);
            captureScrolledIn = inView(capture);
            // Grown back, the page shows everything from its top again.
            SetWindowPos(optionsWindow(), nullptr, 0, 0, 1000, 760, SWP_NOMOVE | SWP_NOZORDER);
            captureInViewGrown = inView(capture);
            PostMessageW(optionsWindow(), WM_CLOSE, 0, 0);
            return true;
        },
    });
    EXPECT_TRUE(closeInView);
    EXPECT_TRUE(captureHidden);
    EXPECT_TRUE(captureScrolledIn);
    EXPECT_TRUE(captureInViewGrown);
}

// Every page at the opening size: no scroll bar, every control wholly on the page. The
// number dialog opens over the window. With TALLIVEX_SHOT_DIR set, each leaves its picture.
TEST_F(FormOptionTest, EveryPageShowsAllItsControlsAsItOpens)
{
    const char* folder = std::getenv("TALLIVEX_SHOT_DIR");
    const auto shoot = [folder](const std::string& name) {
        if (folder)
            test::saveWindowPicture(GetForegroundWindow(), std::filesystem::path(folder) / (name + ".bmp"));
    };
    std::vector<std::string> faults;
    RECT dialog{};
    RECT owner{};
    std::deque<std::function<bool()>> steps{[] { return optionsWindow() != nullptr; }};
    for (int tab = 0; tab < kOptionTabCount; ++tab)
        steps.push_back([tab, shoot, &faults] {
            const HWND tabs = optionControl("tabOption");
            SendMessageW(tabs, TCM_SETCURSEL, static_cast<WPARAM>(tab), 0);
            NMHDR change{tabs, static_cast<UINT_PTR>(optionControlId("tabOption")), TCN_SELCHANGE};
            SendMessageW(optionsWindow(), WM_NOTIFY, change.idFrom, reinterpret_cast<LPARAM>(&change));
            test::pump(400);
            HWND page = nullptr;
            for (HWND c = GetWindow(optionsWindow(), GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT))
                if (c != tabs && IsWindowVisible(c) && GetWindow(c, GW_CHILD))
                    page = c;
            const std::string where = "tab " + std::to_string(tab);
            if (!page)
                faults.push_back(where + ": no page shown");
            else if (GetWindowLongPtrW(page, GWL_STYLE) & (WS_VSCROLL | WS_HSCROLL))
                faults.push_back(where + ": scroll bars");
            for (HWND c = page ? GetWindow(page, GW_CHILD) : nullptr; c; c = GetWindow(c, GW_HWNDNEXT))
                if (!inView(c))
                    faults.push_back(where + ": control " + std::to_string(GetDlgCtrlID(c)) + " cut off");
            shoot("options-tab" + std::to_string(tab));
            return true;
        });
    steps.push_back([] {
        click("cmdCaptureInterval");
        return true;
    });
    steps.push_back([&] {
        const HWND number = shownWindow(L"設定値入力");
        if (!number)
            return false;
        test::pump(400);
        GetWindowRect(number, &dialog);
        GetWindowRect(optionsWindow(), &owner);
        shoot("number-dialog");
        pressKey(VK_ESCAPE);
        return true;
    });
    steps.push_back([] {
        if (shownWindow(L"設定値入力"))
            return false;
        PostMessageW(optionsWindow(), WM_CLOSE, 0, 0);
        return true;
    });
    show(std::move(steps));
    EXPECT_TRUE(faults.empty()) << faults.front() << " (" << faults.size() << " in all)";
    const POINT centre{(dialog.left + dialog.right) / 2, (dialog.top + dialog.bottom) / 2};
    EXPECT_TRUE(PtInRect(&owner, centre)) << "the number dialog opens over the options window";
}

} // namespace
} // namespace tvx::win32ui
