#pragma once

#include "Win32Ui.h"

#include "view/LiveView.h"

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace tvx {
struct Settings;
}

namespace tvx::win32ui {

// frmCompact: the live figures in a small window that stays over the game and never takes
// the front from it. It has no frame: a drag anywhere moves it, the cross in its corner
// closes it, and its context menu sets the opacity. Its place, opacity and being open live
// in the settings; whenever the player changes one, saveSettings writes them.
class CompactWindow {
public:
    // Context-menu commands: one per entry of kCompactOpacities, then close.
    static constexpr int kCmdOpacity = 100;
    static constexpr int kCmdClose = 120;

    CompactWindow(Settings& settings, std::function<void()> saveSettings);
    ~CompactWindow();
    CompactWindow(const CompactWindow&) = delete;
    CompactWindow& operator=(const CompactWindow&) = delete;

    // Opens it where the settings place it, showing view; remember: CompactShown is saved on.
    void open(const LiveView& view, bool remember = true);
    // The player closes it: its place is kept and CompactShown saved off.
    void close();
    // The meter closes: its place is kept and CompactShown stays on, so the next start opens it.
    void closeWithMeter();
    bool isOpen() const { return m_window != nullptr; }
    // New texts; the height follows the number of lines.
    void show(const LiveView& view);
    // The settings were loaded again: opacity and place follow them.
    void followSettings();
    // The title in the current language; the lines follow the next show().
    void retranslate();

    HWND handle() const { return m_window; }
    // The texts the last paint drew, in order (state, level, then caption and value of each
    // line), and whether any of them was cut short by the window's width.
    const std::vector<std::string>& drawnTexts() const { return m_drawn; }
    bool clipped() const { return m_clipped; }

    LRESULT handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    void create();
    void place();
    void applyOpacity();
    void keepPlace();
    void endDrag();
    void paint(HDC dc, const RECT& client);
    RECT closeBox() const;
    void showMenu(POINT at);
    void command(int id);

    Settings& m_settings;
    std::function<void()> m_save;
    HWND m_window = nullptr;
    Dpi m_dpi;
    Font m_font;
    Font m_levelFont;
    LiveView m_view;
    std::vector<std::string> m_drawn;
    bool m_clipped = false;
    bool m_dragging = false;
    POINT m_dragFrom{}; // where the drag holds it, in its client pixels
};

} // namespace tvx::win32ui
