#include "meter/ScreenCapture.h"

#include "ports/ScreenSource.h"
#include "ports/Waiter.h"
#include "base/Errors.h"
#include "base/Utf8Path.h"
#include "shell/DebugLog.h"

#include <algorithm>
#include <cstring>
#include <vector>

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

namespace {

// A reading's whole screen as the source hands it over: every band goes on to the capture
// file, the regions' pixels into a small image, and whether it is all black is noted.
class ReadingRows final : public ScreenRows {
public:
    ReadingRows(const std::filesystem::path& file, std::span<const CaptureRegionRect> regions)
        : m_file(file), m_regions(regions.begin(), regions.end())
    {
    }

    bool opened() const { return m_file.good(); }

    void begin(std::int32_t width, std::int32_t height) override
    {
        m_width = width;
        m_height = height;
        m_file.begin(width, height);
        // As a grab of the regions gives it.
        ClippedRegions clipped = clipToScreen(m_regions, width, height);
        m_regions = std::move(clipped.rects);
        m_image = blankCapture(clipped.right, clipped.bottom);
        m_blackRow.assign(3 * static_cast<std::size_t>(std::max(width, 0)), 0);
    }

    void rows(std::int32_t top, std::int32_t count, const std::uint8_t* data) override
    {
        if (m_image.pixels.empty() || top < 0 || count <= 0 || top + count > m_height) {
            m_failed = true;
            return;
        }
        m_file.write(data, count);
        const std::size_t stride = bitmapStride24(m_width);
        const std::size_t rowBytes = 3 * static_cast<std::size_t>(m_width);
        for (std::int32_t i = 0; i < count; ++i) {
            const std::int32_t y = top + count - 1 - i;
            const std::uint8_t* row = data + static_cast<std::size_t>(i) * stride;
            if (m_black) // until the first ink: a screen's black half costs a compare, not a loop
                m_black = std::memcmp(row, m_blackRow.data(), rowBytes) == 0;
            if (y >= m_image.rows)
                continue;
            for (const CaptureRegionRect& rect : m_regions)
                if (y >= rect.StartY && y < rect.StartY + rect.SizeY)
                    std::copy_n(row + 3 * static_cast<std::size_t>(rect.StartX), 3 * static_cast<std::size_t>(rect.SizeX),
                                m_image.screenRow(y) + 3 * static_cast<std::size_t>(rect.StartX));
        }
        m_rowsSeen += count;
    }

    bool complete() const { return !m_failed && m_height > 0 && m_rowsSeen == m_height && m_file.good(); }
    bool black() const { return m_black; }
    bool commit() { return m_file.commit(); }
    CaptureBitmap& image() { return m_image; }

private:
    BitmapWriter m_file;
    std::vector<CaptureRegionRect> m_regions;
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    std::int32_t m_rowsSeen = 0;
    bool m_black = true;
    bool m_failed = false;
    CaptureBitmap m_image;
    std::vector<std::uint8_t> m_blackRow;
};

} // namespace

ScreenCapture::Result ScreenCapture::take(std::span<const CaptureRegionRect> wanted, std::optional<CaptureBitmap>& image)
{
    return takeScreen(wanted, image, false);
}

ScreenCapture::Result ScreenCapture::takeReading(std::span<const CaptureRegionRect> regions,
                                                 std::optional<CaptureBitmap>& image)
{
    Result result = Result::NoPicture;
    if (!streamReading(regions, image, result))
        result = takeScreen({}, image, true);
    if (result == Result::Taken && image)
        keep(*image);
    return result;
}

bool ScreenCapture::streamReading(std::span<const CaptureRegionRect> regions, std::optional<CaptureBitmap>& image,
                                  Result& result)
{
    image.reset();
    m_takenInFile.reset();
    if (m_settings.ScreenCapture != CaptureMethod::Direct || m_captureFile.empty())
        return false;
    ReadingRows screen(m_captureFile, regions);
    if (!screen.opened() || !m_screen.grabRows(screen) || !screen.complete())
        return false;
    if (screen.black()) {
        // Until the key route has its picture, the file still holds the last reading's.
        bool routeExists = false;
        std::optional<CaptureBitmap> viaKey;
        const Result viaKeyResult = printScreenRoute(viaKey, routeExists);
        if (routeExists) {
            noteOnce(m_saidBlack, "Direct Capture Black : PrintScreen Route Used ");
            image = std::move(viaKey);
            result = viaKeyResult;
            return true;
        }
    }
    if (!screen.commit())
        return false;
    m_takenInFile = captureFileStamp();
    image = std::move(screen.image());
    result = Result::Taken;
    return true;
}

ScreenCapture::Result ScreenCapture::takeScreen(std::span<const CaptureRegionRect> wanted,
                                                std::optional<CaptureBitmap>& image, bool toKeep)
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

void ScreenCapture::keep(const CaptureBitmap& screen)
{
    m_keptInFile.reset();
    m_keptInMemory.reset();
    if (m_takenInFile)
        m_keptInFile = m_takenInFile;
    else
        m_keptInMemory = screen;
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
