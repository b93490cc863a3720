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

    void setCaptureFile(std::filesystem::path path);

    // `wanted` as for ScreenSource::grab; empty asks for the whole screen. `toKeep` says the
    // picture is to become the kept one (below), so the one kept before need not be saved
    // from the capture file that this take may replace.
    Result take(std::span<const CaptureRegionRect> wanted, std::optional<CaptureBitmap>& image, bool toKeep = false);

    // The picture of the last take() becomes the one kept for the player (the reading's
    // whole screen, which the pattern save and the options window show). It stays in the
    // capture file when the take wrote it there, so the meter does not hold a screen's
    // 6 MB between readings; it is held in memory when there is no such file, its write
    // failed, or another capture is about to replace the file.
    void keep(std::optional<CaptureBitmap>&& image);
    // The kept picture; nullopt when none was kept or the capture file that held it was
    // changed by someone else.
    std::optional<CaptureBitmap> kept() const;

private:
    // A file as last written here: a change by anyone else changes its size or time.
    struct FileStamp {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type written;
        friend bool operator==(const FileStamp&, const FileStamp&) = default;
    };
    std::optional<FileStamp> captureFileStamp() const;

    Result printScreenRoute(std::optional<CaptureBitmap>& image, bool& routeExists);
    void noteOnce(bool& said, const char* line);
    void keepInCaptureFile(const CaptureBitmap& image, bool toKeep);
    // Before the capture file is written: a kept picture that lives there moves to memory.
    void holdKeptPicture();

    const Settings& m_settings;
    ScreenSource& m_screen;
    Waiter& m_waiter;
    DebugLog& m_log;
    std::filesystem::path m_captureFile;
    bool m_saidNoRoute = false;
    bool m_saidBlack = false;
    // The capture file as the last take() left it, when that take's picture is the file.
    std::optional<FileStamp> m_takenInFile;
    // The kept picture: in the file with this stamp, or in memory.
    std::optional<FileStamp> m_keptInFile;
    std::optional<CaptureBitmap> m_keptInMemory;
};

// True when every pixel of the rectangles (of the whole image when none) is black.
bool isAllBlack(const CaptureBitmap& image, std::span<const CaptureRegionRect> wanted);

} // namespace tvx
