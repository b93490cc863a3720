#include "recognition/PixelLevels.h"

#include "base/Errors.h"
#include "config/SettingRanges.h"

#include <algorithm>

namespace tvx {
namespace {

[[noreturn]] void outOfRange()
{
    throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
}

} // namespace

void PixelLevels::SecurePixels(const std::array<CaptureRegionRect, kRegionCount>& regions)
{
    std::int32_t maxX = regions[0].SizeX;
    std::int32_t maxY = regions[0].SizeY;
    for (const CaptureRegionRect& r : regions) {
        maxX = std::max(maxX, r.SizeX);
        maxY = std::max(maxY, r.SizeY);
    }
    // A region is a line of text: at most a screen wide and a few dozen rows tall. Anything
    // larger would only allocate gigabytes before failing.
    if (maxX < 0 || maxY < 0 || maxX > kMaxScreenSide || maxY > kMaxScreenSide ||
        (std::int64_t{maxX} + 1) * (std::int64_t{maxY} + 1) > kMaxRegionCells)
        outOfRange();
    // Upper bounds are inclusive, so a size of n gives n + 1 slots.
    m_columns = maxX + 1;
    m_rows = maxY + 1;
    m_levels.assign(static_cast<std::size_t>(kRegionCount) * static_cast<std::size_t>(m_columns) *
                        static_cast<std::size_t>(m_rows),
                    0);
}

void PixelLevels::checkFits(int region, const CaptureRegionRect& rect) const
{
    if (region < 0 || region >= kRegionCount || rect.SizeX > m_columns || rect.SizeY > m_rows)
        outOfRange();
}

void FillPixelLevels(PixelLevels& levels, int region, const CaptureRegionRect& rect, const CaptureBitmap& bitmap)
{
    if (rect.SizeX <= 0 || rect.SizeY <= 0)
        return;
    levels.checkFits(region, rect);
    // Screen row StartY + y sits in the bottom-up file row H - StartY - 1 - y.
    const std::int64_t height = bitmap.infoHeader.biHeight;
    const std::int64_t firstRow = height - rect.StartY - 1;
    const std::int64_t lastRow = firstRow - (rect.SizeY - 1);
    const std::int64_t firstByte = 3 * std::int64_t{rect.StartX};
    const std::int64_t lastByte = 3 * (std::int64_t{rect.StartX} + rect.SizeX - 1) + 2;
    if (lastRow < 0 || firstRow >= bitmap.rows || firstByte < 0 || lastByte >= bitmap.stride)
        outOfRange();

    const std::uint8_t* pixels = bitmap.pixels.data();
    for (std::int32_t y = 0; y < rect.SizeY; ++y) {
        const std::uint8_t* p = pixels + static_cast<std::size_t>((firstRow - y) * bitmap.stride + firstByte);
        std::int32_t* level = levels.row(region, y);
        for (std::int32_t x = 0; x < rect.SizeX; ++x, p += 3)
            level[x] = p[0] + 2 * p[1] + p[2];
    }
}

} // namespace tvx
