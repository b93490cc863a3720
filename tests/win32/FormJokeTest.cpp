#include "DesktopSupport.h"
#include "FormJoke.h"
#include "SmallWindows.h"

#include "view/JokePopup.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace tvx::win32ui {
namespace {

// Whether a control's text, as it draws it, fits the control: wrapped when `flags` say so.
bool fits(HWND control, UINT flags, int padding)
{
    RECT room{};
    GetClientRect(control, &room);
    const std::wstring text = test::textOf(control);
    const HDC dc = GetDC(control);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT needed{0, 0, room.right - padding, 0};
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &needed, DT_CALCRECT | DT_NOPREFIX | flags);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return needed.right <= room.right - padding && needed.bottom <= room.bottom;
}

// One way a player tries to close the popup, in turn: the close box, Alt+F4, Escape, its button.
void attemptToClose(HWND popup, std::size_t kind)
{
    switch (kind % 4) {
    case 0: PostMessageW(popup, WM_SYSCOMMAND, SC_CLOSE, 0); break;
    case 1:
        PostMessageW(GetFocus(), WM_SYSKEYDOWN, VK_F4, 0x20000001);
        PostMessageW(GetFocus(), WM_SYSKEYUP, VK_F4, 0xE0000001);
        break;
    case 2: test::pressKey(VK_ESCAPE); break;
    default: PostMessageW(GetDlgItem(popup, FormJoke::cmdClose), BM_CLICK, 0, 0); break;
    }
}

// The version window's "おまけ" opens the popup; each attempt shows the next line, whole,
// in a window that keeps its size, and only the attempt on the last line lets it go. With
// TALLIVEX_SHOT_DIR set, the version window and every line leave their pictures.
TEST(FormJokeTest, TheVersionWindowsPopupLetsGoOnlyAfterItsScript)
{
    const auto script = JokePopup::script();
    const char* folder = std::getenv("TALLIVEX_SHOT_DIR");
    const auto shoot = [folder](HWND window, const std::string& name) {
        if (folder) {
            UpdateWindow(window);
            writeBitmap24(std::filesystem::path(folder) / (name + ".bmp"), test::screenPicture(window));
        }
    };
    std::vector<std::string> faults;
    HWND version = nullptr;
    HWND popup = nullptr;
    RECT opened{};
    bool versionLeftOpen = false;
    std::deque<std::function<bool()>> steps{
        [&] {
            version = test::shownWindow(L"バージョン情報");
            const HWND joke = version ? FindWindowExW(version, nullptr, L"Button", L"おまけ") : nullptr;
            if (!joke)
                return false;
            shoot(version, "version");
            PostMessageW(joke, BM_CLICK, 0, 0); // opens a modal loop: posted
            return true;
        },
        [&] {
            popup = test::shownWindow(wide(script.front().caption));
            return popup != nullptr && GetWindowRect(popup, &opened);
        },
    };
    for (std::size_t line = 0; line < script.size(); ++line)
        steps.push_back([&, line] {
            const std::string at = "line " + std::to_string(line) + ": ";
            if (!IsWindowVisible(popup)) {
                faults.push_back(at + "the popup has gone");
                return true;
            }
            const HWND message = GetDlgItem(popup, FormJoke::lblMessage);
            const HWND button = GetDlgItem(popup, FormJoke::cmdClose);
            if (utf8(test::textOf(popup)) != script[line].caption || utf8(test::textOf(message)) != script[line].message ||
                utf8(test::textOf(button)) != script[line].button)
                faults.push_back(at + "shows " + utf8(test::textOf(message)));
            if (!fits(message, DT_WORDBREAK, 0) || !fits(button, DT_SINGLELINE, 8))
                faults.push_back(at + "cut off");
            RECT now{};
            GetWindowRect(popup, &now);
            if (!EqualRect(&now, &opened))
                faults.push_back(at + "moved or resized");
            shoot(popup, "popup-" + std::to_string(line + 1));
            attemptToClose(popup, line);
            return true;
        });
    steps.push_back([&] {
        if (IsWindow(popup) && IsWindowVisible(popup))
            return false; // the deadline's own closing attempts end it, and the test fails
        versionLeftOpen = IsWindowVisible(version) && IsWindowEnabled(version);
        PostMessageW(version, WM_CLOSE, 0, 0);
        return true;
    });
    test::DialogScript player(std::move(steps));
    showVersionWindow(nullptr, "Tallivex  for MapleStory    Ver.2.20");
    EXPECT_TRUE(player.finished());
    EXPECT_FALSE(player.timedOut()) << "still open after the script";
    EXPECT_TRUE(faults.empty()) << faults.front() << " (" << faults.size() << " in all)";
    EXPECT_TRUE(versionLeftOpen) << "the last attempt closes only the popup";
}

} // namespace
} // namespace tvx::win32ui
