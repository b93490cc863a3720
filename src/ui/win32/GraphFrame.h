#pragma once

#include "Win32Ui.h"

#include "view/GraphFrameView.h"

#include <windows.h>

#include <array>
#include <string>

namespace tvx::win32ui {

// frmGraph on Win32: one child window that paints what the core's GraphFrameView holds
// (labels, picture, grid, curves) with GDI, shows the labels' tooltips and passes clicks
// on to the view.
class GraphFrame {
public:
    GraphFrame(HWND parent, int id);
    ~GraphFrame();
    GraphFrame(const GraphFrame&) = delete;
    GraphFrame& operator=(const GraphFrame&) = delete;

    HWND handle() const { return m_window; }
    GraphFrameView& view() { return m_view; }
    // Places the frame (pixels at 96 dpi, in the parent) and lays it out again.
    void place(const PixelRect& rect, Dpi dpi);
    void GraphFrameDisplay();
    // The captions and tool tips in the current language.
    void retranslate();

    LRESULT handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    void paint(HDC dc, const RECT& client);
    void paintPicture(HDC dc);
    void updateToolTips();

    HWND m_window = nullptr;
    HWND m_toolTips = nullptr;
    Dpi m_dpi;
    Font m_font;
    GraphFrameView m_view;
    std::array<std::wstring, kGraphLabelCount> m_tipTexts;
    bool m_pressed = false;
};

} // namespace tvx::win32ui
