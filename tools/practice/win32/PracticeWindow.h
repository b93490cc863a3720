#pragma once

#include "PracticeSession.h"

#include "win32/Win32Handles.h"

#include <windows.h>

#include <cstdint>
#include <map>
#include <vector>

namespace tvx::practice {

// The stand-in game window on Win32: draws what the session shows with GDI, forwards the
// timer and the keys to it.
class PracticeWindow {
public:
    explicit PracticeWindow(const PracticeOptions& options);
    PracticeWindow(const PracticeWindow&) = delete;
    PracticeWindow& operator=(const PracticeWindow&) = delete;

    // Creates, shows and starts the window; false when the system refuses it.
    bool open(HINSTANCE instance, int show);

private:
    using Font = platform::win32::Unique<HFONT, &DeleteObject>;

    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam);
    // Redraws at once and then notes the state, so a state line never comes before its picture.
    void redraw(PracticeSession::Redraw redraw);
    void takeScene();
    void paint(HDC dc);
    HFONT font(std::int32_t pixelSize);

    PracticeSession m_session;
    std::vector<std::uint8_t> m_rows; // the scene, bottom-up rows padded to four bytes
    std::map<std::int32_t, Font> m_fonts;
    HWND m_window = nullptr;
};

} // namespace tvx::practice
