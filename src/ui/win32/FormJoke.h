#pragma once

#include "view/JokePopup.h"

#include <windows.h>

namespace tvx::win32ui {

// The joke popup over the version window, as a Win32 dialog: it draws the core's JokePopup
// and hands it every attempt to close it (the close box and Alt+F4 as WM_CLOSE, Escape as
// IDCANCEL, Enter and its button as the button's command).
class FormJoke {
public:
    // Control identifiers, for the dialog manager and the tests.
    enum Control : int { lblMessage = 1201, cmdClose };

    FormJoke() = default;
    ~FormJoke();
    FormJoke(const FormJoke&) = delete;
    FormJoke& operator=(const FormJoke&) = delete;

    // Plays the script from its first line, modal over owner; returns once the popup has
    // let go.
    void run(HWND owner);

private:
    static INT_PTR CALLBACK dialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void build();
    void draw();
    void attempt();

    JokePopup m_popup;
    HWND m_dialog = nullptr;
    SIZE m_client{}; // pixels at 96 dpi
    bool m_failed = false;
};

} // namespace tvx::win32ui
