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

    // `wanted` as for ScreenSource::grab; empty asks for the whole screen.
    Result take(std::span<const CaptureRegionRect> wanted, std::optional<CaptureBitmap>& image);

    // A reading: the whole screen for the capture file, where it is kept for the player
    // (below), and the image the recogniser reads its `regions` from, of one moment. Where
    // the source hands the screen over in bands and the file takes them, the screen goes
    // to the file without being held whole, and the image holds only the regions (black
    // elsewhere, as far as the furthest one reaches); otherwise it is the whole screen.
    Result takeReading(std::span<const CaptureRegionRect> regions, std::optional<CaptureBitmap>& image);

    // The last reading's whole screen, which the pattern save and the options window show;
    // nullopt when there was none or the capture file that held it was changed by someone
    // else. It stays in the capture file when the reading wrote it there, so the meter does
    // not hold a screen's 6 MB between readings; it is held in memory when there is no such
    // file, its write failed, or another capture is about to replace the file.
    std::optional<CaptureBitmap> kept() const;

private:
    // A file as last written here: a change by anyone else changes its size or time.
    struct FileStamp {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type written;
        friend bool operator==(const FileStamp&, const FileStamp&) = default;
    };
    std::optional<FileStamp> captureFileStamp() const;

    // `toKeep`: the picture is a reading's, to replace the kept one, which then need not be
    // saved from the capture file this take may replace.
    Result takeScreen(std::span<const CaptureRegionRect> wanted, std::optional<CaptureBitmap>& image, bool toKeep);
    // The reading through the source's bands; false when that route is not there (no
    // capture file, one that cannot be written, a source without bands): nothing was taken.
    bool streamReading(std::span<const CaptureRegionRect> regions, std::optional<CaptureBitmap>& image, Result& result);
    Result printScreenRoute(std::optional<CaptureBitmap>& image, bool& routeExists);
    void noteOnce(bool& said, const char* line);
    void keepInCaptureFile(const CaptureBitmap& image, bool toKeep);
    // The reading's whole screen (`screen`) becomes the kept picture.
    void keep(const CaptureBitmap& screen);
    // Before the capture file is written: a kept picture that lives there moves to memory.
    void holdKeptPicture();

    const Settings& m_settings;
    ScreenSource& m_screen;
    Waiter& m_waiter;
    DebugLog& m_log;
    std::filesystem::path m_captureFile;
    bool m_saidNoRoute = false;
    bool m_saidBlack = false;
    // The capture file as the last take left it, when that take's picture is the file.
    std::optional<FileStamp> m_takenInFile;
    // The kept picture: in the file with this stamp, or in memory.
    std::optional<FileStamp> m_keptInFile;
    std::optional<CaptureBitmap> m_keptInMemory;
};

// True when every pixel of the rectangles (of the whole image when none) is black.
bool isAllBlack(const CaptureBitmap& image, std::span<const CaptureRegionRect> wanted);

} // namespace tvx
