#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <filesystem>
#include <optional>
#include <span>

namespace tvx {

class DebugLog;
class ScreenSource;
class Waiter;

// One image of the screen by the route the settings choose.
//
// Print Screen: press the key, wait Lag, take the clipboard's bitmap; with a capture
// file set, the bitmap goes through that file and is read back from it. Where the
// platform has no such route, the direct copy is used (said once in the debug log).
// Direct: copy the screen now; a whole screen is kept in the capture file too. A copy that
// comes back all black (an exclusive full-screen game can give that) is taken again by the
// Print Screen route where there is one.
class ScreenCapture {
public:
    enum class Result : int { Taken = 0, NoPicture = -1, FileUnreadable = -2 };

    ScreenCapture(const Settings& settings, ScreenSource& screen, Waiter& waiter, DebugLog& log)
        : m_settings(settings), m_screen(screen), m_waiter(waiter), m_log(log) {}

    void setCaptureFile(std::filesystem::path path) { m_captureFile = std::move(path); }

    // `wanted` as for ScreenSource::grab; empty asks for the whole screen.
    Result take(std::span<const CaptureRegionRect> wanted, std::optional<CaptureBitmap>& image);

private:
    Result printScreenRoute(std::optional<CaptureBitmap>& image, bool& routeExists);
    void noteOnce(bool& said, const char* line);
    void keepInCaptureFile(const CaptureBitmap& image);

    const Settings& m_settings;
    ScreenSource& m_screen;
    Waiter& m_waiter;
    DebugLog& m_log;
    std::filesystem::path m_captureFile;
    bool m_saidNoRoute = false;
    bool m_saidBlack = false;
};

// True when every pixel of the rectangles (of the whole image when none) is black.
bool isAllBlack(const CaptureBitmap& image, std::span<const CaptureRegionRect> wanted);

} // namespace tvx
