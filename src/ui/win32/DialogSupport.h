#pragma once

#include "Win32Ui.h"

#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace tvx {
class DebugLog;
}

namespace tvx::win32ui {

// A dialog box with no controls of its own (they are made in WM_INITDIALOG), so the
// dialog manager gives Tab, Escape and the close box their usual meaning.
HWND createDialog(HWND owner, DLGPROC procedure, LPARAM parameter, DWORD style);

// Runs the dialog modally: the owner is disabled, messages flow until done() holds.
// intercept sees every message first and returns true for the ones it handled. A
// WM_QUIT ends the loop and is posted again for the outer loop.
void runModal(HWND dialog, HWND owner, const std::function<bool()>& done,
              const std::function<bool(const MSG&)>& intercept = {});

// Sizes window to the client size (in pixels at 96 dpi, scaled to the screen) and places
// it over owner, inside the owner's monitor work area.
void placeOver(HWND window, HWND owner, int clientWidth, int clientHeight);

// Scrolls a page whose controls reach beyond its window, as far as they reach: the page
// (WS_VSCROLL | WS_HSCROLL) passes its size and scroll messages here.
class PageScroller {
public:
    // The content is what the page's controls cover now, at scroll position 0.
    void attach(HWND page);
    // WM_SIZE, WM_VSCROLL, WM_HSCROLL and WM_MOUSEWHEEL; true when the message was one.
    bool handle(UINT message, WPARAM wParam, LPARAM lParam);

private:
    void fit();
    void scrollTo(int x, int y);

    HWND m_page = nullptr;
    SIZE m_content{};
    POINT m_position{};
    bool m_fitting = false;
};

// Pixels at 96 dpi on this screen.
int scaled(int pixels);

// The dialogs' font: a Japanese UI face where one is installed, else the message font.
HFONT dialogFont();
// A fixed-pitch font for numbers and pattern strings.
HFONT fixedFont();

// A child control in pixels at 96 dpi, with the dialog font; id names it for the dialog
// manager and the tests.
HWND addControl(HWND parent, const wchar_t* windowClass, std::string_view text, DWORD style, int id, int x, int y,
                int width, int height, HFONT font = nullptr);

// The controls of one dialog by identifier, and the helpers its window class builds them
// with (a control with identifier 0 is not kept).
class DialogControls {
protected:
    HWND add(HWND parent, const wchar_t* windowClass, std::string_view text, DWORD style, int id, int x, int y,
             int width, int height, HFONT font = nullptr);
    HWND label(HWND parent, std::string_view text, int x, int y, int width, int height = 18, DWORD style = SS_LEFT,
               int id = 0);
    HWND button(HWND parent, std::string_view text, int id, int x, int y, int width, int height = 26);

    std::map<int, HWND> m_controls;
};

// The identifier of a named control in a dialog's table of names; 0 for an unknown name.
int controlIdIn(const std::map<std::string, int, std::less<>>& ids, std::string_view name);

// Runs a window's reaction to an event; whatever it throws ends here as the error-trap line
// of procedure in the debug log (log may be null), so nothing reaches the message loop.
void guarded(DebugLog* log, const char* procedure, const std::function<void()>& action);

// An edit control that drops the typed characters accepts refuses (control keys pass).
void filterCharacters(HWND edit, bool (*accepts)(char32_t));

} // namespace tvx::win32ui
