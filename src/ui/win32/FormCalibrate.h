#pragma once

#include <windows.h>

#include <string_view>

namespace tvx {
class DebugLog;
class ScreenSource;
class Waiter;
struct CaptureBitmap;
struct Settings;
} // namespace tvx

namespace tvx::win32ui {

// What the calibration window works with. Without screen and waiter its capture button is
// disabled; screenshot (the last capture) and log may be null.
struct CalibrationContext {
    Settings* settings = nullptr;
    const CaptureBitmap* screenshot = nullptr;
    ScreenSource* screen = nullptr;
    Waiter* waiter = nullptr;
    DebugLog* log = nullptr;
};

// "Learn from the screen", modal over owner: the regions dragged on the capture, the
// numbers typed and learnt. True when the player confirmed, the settings then holding the
// result; otherwise they are as they were.
bool ShowFormCalibrate(HWND owner, const CalibrationContext& context);

// The identifier of a control of the calibration window by its name ("cmdLearn",
// "txtNumber1", "picGlyph105", ...); 0 for an unknown name.
int calibrateControlId(std::string_view name);

} // namespace tvx::win32ui
