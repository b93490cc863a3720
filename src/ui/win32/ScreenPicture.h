#pragma once

#include <windows.h>

namespace tvx {
class RegionPicker;
}

namespace tvx::win32ui {

// Notification code the screen picture sends its parent in WM_COMMAND when the selected
// region was dragged or nudged.
inline constexpr WORD kRegionMoved = 0x7003;

// The capture of the whole screen, enlarged by the picker's zoom and scrolled, with the
// three regions drawn over it. Dragging sets the selected region; arrow keys move it by
// one pixel. The picker belongs to the caller and must outlive the window.
HWND createScreenPicture(HWND parent, int id, RegionPicker& picker, int x, int y, int width, int height);
// After the picker's screen or zoom changed: the picture anew, its middle scrolled to the
// selected region.
void refreshScreenPicture(HWND control);

} // namespace tvx::win32ui
