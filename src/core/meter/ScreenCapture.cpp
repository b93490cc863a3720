#include "meter/ScreenCapture.h"

#include "ports/ScreenSource.h"
#include "ports/Waiter.h"
#include "base/Errors.h"
#include "base/Utf8Path.h"
#include "shell/DebugLog.h"

#include <algorithm>

namespace tvx {

namespace {

bool rectangleIsBlack(const CaptureBitmap& image, const CaptureRegionRect& rect, std::int64_t& seen)
{
    const std::int64_t width = image.infoHeader.biWidth;
    const std::int64_t x0 = std::max<std::int64_t>(rect.StartX, 0);
    const std::int64_t x1 = std::min<std::int64_t>(std::int64_t{rect.StartX} + rect.SizeX, width);
    const std::int64_t y0 = std::max<std::int64_t>(rect.StartY, 0);
    const std::int64_t y1 = std::min<std::int64_t>(std::int64_t{rect.StartY} + rect.SizeY, image.rows);
    for (std::int64_t y = y0; y < y1; ++y) {
        const std::int64_t row = image.rows - 1 - y; // rows are stored bottom-up
        for (std::int64_t byte = 3 * x0; byte < 3 * x1; ++byte) {
            ++seen;
            if (image.at(byte, row) != 0)
                return false;
        }
    }
    return true;
}

} // namespace

bool isAllBlack(const CaptureBitmap& image, std::span<const CaptureRegionRect> wanted)
{
    if (image.infoHeader.biBitCount != 24)
        return false;
    std::int64_t seen = 0;
    if (wanted.empty()) {
        const CaptureRegionRect whole{0, 0, image.infoHeader.biWidth, static_cast<std::int32_t>(image.rows)};
        return rectangleIsBlack(image, whole, seen) && seen > 0;
    }
    for (const CaptureRegionRect& rect : wanted)
        if (!rectangleIsBlack(image, rect, seen))
            return false;
    return seen > 0;
}

void ScreenCapture::setCaptureFile(std::filesystem::path path)
{
    holdKeptPicture(); // it lives in the file named until now
    m_captureFile = std::move(path);
}

void ScreenCapture::noteOnce(bool& said, const char* line)
{
    if (!said)
        m_log.WriteDebugLog(line);
    said = true;
}

ScreenCapture::Result ScreenCapture::printScreenRoute(std::optional<CaptureBitmap>& image, bool& routeExists)
{
    routeExists = m_screen.pressPrintScreen();
    if (!routeExists)
        return Result::NoPicture;
    m_waiter.WaitMs(m_settings.Lag);
    image = m_screen.clipboardPicture();
    if (!image)
        return Result::NoPicture;
    if (m_captureFile.empty())
        return Result::Taken;
    // The picture goes through the capture file, which stays on disk for the player.
    holdKeptPicture();
    CaptureBitmap fromFile;
    if (!writeBitmap24(m_captureFile, *image) || LoadCaptureBitmap(m_captureFile, fromFile) != CaptureLoadResult::Read) {
        image.reset();
        return Result::FileUnreadable;
    }
    image = std::move(fromFile);
    m_takenInFile = captureFileStamp();
    return Result::Taken;
}

ScreenCapture::Result ScreenCapture::take(std::span<const CaptureRegionRect> wanted, std::optional<CaptureBitmap>& image,
                                          bool toKeep)
{
    image.reset();
    m_takenInFile.reset();
    bool routeExists = false;
    if (m_settings.ScreenCapture == CaptureMethod::PrintScreen) {
        const Result result = printScreenRoute(image, routeExists);
        if (routeExists)
            return result;
        noteOnce(m_saidNoRoute, "PrintScreen Route Unavailable : Direct Capture Used ");
    }
    image = m_screen.grab(wanted);
    if (!image)
        return Result::NoPicture;
    if (m_settings.ScreenCapture == CaptureMethod::Direct && isAllBlack(*image, wanted)) {
        std::optional<CaptureBitmap> viaKey;
        const Result result = printScreenRoute(viaKey, routeExists);
        if (routeExists) {
            noteOnce(m_saidBlack, "Direct Capture Black : PrintScreen Route Used ");
            image = std::move(viaKey);
            return result;
        }
    }
    if (wanted.empty())
        keepInCaptureFile(*image, toKeep);
    return Result::Taken;
}

void ScreenCapture::keepInCaptureFile(const CaptureBitmap& image, bool toKeep)
{
    // The player builds templates from this file, whichever route took the screen; the
    // reading does not depend on it.
    if (m_captureFile.empty())
        return;
    trapErrors(m_log, "GetPictForClip", [&] {
        // A picture to be kept replaces the kept one. Should its write fail, the file (written
        // through a temporary name) still holds the one kept before.
        if (!toKeep)
            holdKeptPicture();
        if (!writeBitmap24(m_captureFile, image))
            throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(m_captureFile));
        m_takenInFile = captureFileStamp();
    });
}

std::optional<ScreenCapture::FileStamp> ScreenCapture::captureFileStamp() const
{
    std::error_code ec;
    const std::uintmax_t size = std::filesystem::file_size(m_captureFile, ec);
    if (ec)
        return std::nullopt;
    const std::filesystem::file_time_type written = std::filesystem::last_write_time(m_captureFile, ec);
    if (ec)
        return std::nullopt;
    return FileStamp{size, written};
}

void ScreenCapture::keep(std::optional<CaptureBitmap>&& image)
{
    m_keptInFile.reset();
    m_keptInMemory.reset();
    if (image && m_takenInFile)
        m_keptInFile = m_takenInFile;
    else
        m_keptInMemory = std::move(image);
}

std::optional<CaptureBitmap> ScreenCapture::kept() const
{
    if (!m_keptInFile)
        return m_keptInMemory;
    CaptureBitmap picture;
    if (captureFileStamp() == m_keptInFile && LoadCaptureBitmap(m_captureFile, picture) == CaptureLoadResult::Read)
        return picture;
    try {
        m_log.WriteDebugLog("CaptureFile Changed : Last Capture Lost ");
    } catch (const RuntimeError&) {
    }
    return std::nullopt;
}

void ScreenCapture::holdKeptPicture()
{
    if (!m_keptInFile)
        return;
    m_keptInMemory = kept();
    m_keptInFile.reset();
}

} // namespace tvx
