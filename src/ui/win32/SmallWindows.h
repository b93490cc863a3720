#pragma once

#include "Win32Ui.h"

#include <windows.h>

#include <functional>
#include <string_view>

namespace tvx::win32ui {

// frmNotice: the modeless warning the meter shows while the game is not running. It is
// kept and shown again with new texts; OK only hides it.
class NoticeWindow {
public:
    NoticeWindow() = default;
    ~NoticeWindow();
    NoticeWindow(const NoticeWindow&) = delete;
    NoticeWindow& operator=(const NoticeWindow&) = delete;

    void show(HWND owner, std::string_view text, std::string_view title);
    void hide();
    HWND handle() const { return m_window; }
    bool visible() const { return m_window != nullptr && IsWindowVisible(m_window); }

    LRESULT handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    void create(HWND owner);

    HWND m_window = nullptr;
    HWND m_icon = nullptr;
    HWND m_text = nullptr;
    HWND m_ok = nullptr;
    Font m_font;
};

// FormVersion: the program and its target, then the version, modal over the owner until
// closed; its "おまけ" button opens the joke popup over it.
void showVersionWindow(HWND owner, std::string_view title);

// Runs the window modally over its owner: the owner is disabled until the window is gone.
// A quit request ends the loop and is handed back to the main loop.
void runModal(HWND owner, HWND window);

} // namespace tvx::win32ui
