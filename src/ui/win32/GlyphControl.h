#pragma once

#include "view/GlyphCanvas.h"

#include <windows.h>

#include <cstdint>
#include <vector>

namespace tvx::win32ui {

// Notification codes a glyph control sends its parent in WM_COMMAND (BN_CLICKED for a click
// on a Button-mode canvas).
inline constexpr WORD kGlyphColumnsEdited = 0x7001;
inline constexpr WORD kGlyphSelectionChanged = 0x7002;

// A child window that draws a GlyphCanvas and forwards the mouse to it; a canvas wider
// than the window scrolls sideways. The canvas belongs to the caller and must outlive it.
HWND createGlyphControl(HWND parent, int id, GlyphCanvas& canvas, int x, int y, int width, int height);
// After the canvas changed: redraw and fit the scroll bar.
void updateGlyphControl(HWND control);

// A scroll bar message (WM_HSCROLL with SB_HORZ, WM_VSCROLL with SB_VERT) moves the
// window's own scroll bar by lines of 20 pixels or by pages, and repaints the window.
void scrollWith(HWND window, int bar, WPARAM wParam);

// A child window that shows 0xRRGGBB pixels enlarged by a whole factor.
HWND createPixelImage(HWND parent, int id, int x, int y, int width, int height);
void setPixelImage(HWND control, int width, int height, std::vector<std::uint32_t> pixels, int scale);

} // namespace tvx::win32ui
