// What only the Win32 options window has: pages that scroll in a window too small for
// them, and every page whole at the opening size. The rest is tests/windows/OptionsWindowTest.cpp.
#include "DesktopSupport.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "support/GameScreen.h"
#include "support/TempFolder.h"
#include "support/WindowDriver.h"
#include "view/OptionFields.h"

#include <gtest/gtest.h>

namespace tvx::test {
namespace {

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

// Every page at the opening size: no scroll bar, every control wholly on the page (with TALLIVEX_SHOT_DIR set,
// each leaves its picture). Then, in a window too small, the regions page scrolls and the buttons stay in view.
TEST(FormOptionWin32Test, EveryPageShowsAllItsControlsAsItOpensAndScrollsInAWindowTooSmall)
{
    TempFolder temp;
    const std::unique_ptr<Desktop> desktop = makeDesktop();
    const std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    Settings settings = defaultSettings(pathUtf8(temp.path()));
    ConfigFile config{settings, temp.path(), desktop->prompter(), *codec};
    const CaptureBitmap capture = gameCapture({"137", "12345", "9876543"});
    WindowDriver& options = desktop->options();
    std::deque<PlayerStep> steps{[&] { return options.isOpen(); }};
    for (int tab = 0; tab < kOptionTabCount; ++tab)
        steps.push_back(act([&options, tab] {
            options.choose("tabOption", tab);
            pumpMessages(400);
            HWND page = nullptr;
            for (HWND c = GetWindow(handleOf(options), GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT))
                if (c != handleOf(options, "tabOption") && IsWindowVisible(c) && GetWindow(c, GW_CHILD))
                    page = c;
            SCOPED_TRACE("tab " + std::to_string(tab));
            ASSERT_NE(page, nullptr) << "no page shown";
            EXPECT_EQ(GetWindowLongPtrW(page, GWL_STYLE) & (WS_VSCROLL | WS_HSCROLL), 0) << "scroll bars";
            for (HWND c = GetWindow(page, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT))
                EXPECT_TRUE(inView(c)) << "control " << GetDlgCtrlID(c) << " cut off";
            options.shoot("options-tab" + std::to_string(tab));
        }));
    std::vector<bool> seen;
    steps.push_back(act([&] {
        options.choose("tabOption", 0);
        SetWindowPos(handleOf(options), nullptr, 0, 0, 560, 400, SWP_NOMOVE | SWP_NOZORDER);
    }));
    steps.push_back(act([&] {
        const HWND lastRow = handleOf(options, "cmdCapture");
        seen = {inView(handleOf(options, "cmdClose")) && inView(handleOf(options, "cmdSave")), !inView(lastRow)};
        SendMessageW(GetParent(lastRow), WM_VSCROLL, SB_BOTTOM, 0);
        seen.push_back(inView(lastRow));
        // Grown back, the page shows everything from its top again.
        SetWindowPos(handleOf(options), nullptr, 0, 0, 1000, 760, SWP_NOMOVE | SWP_NOZORDER);
        seen.push_back(inView(lastRow));
        options.close();
    }));
    play(std::move(steps), [&] { desktop->showOptions(config, &capture, {}); });
    EXPECT_EQ(seen, std::vector<bool>(4, true));
}

} // namespace
} // namespace tvx::test
