#include "view/RegionPreview.h"

#include "base/Errors.h"
#include "base/Language.h"
#include "config/PatternColumns.h"
#include "recognition/Recognizer.h"
#include "recognition/RegionLearner.h"
#include "recognition/ShapeReader.h"

#include <algorithm>
#include <sstream>

namespace tvx {

RegionPreview previewRegion(const CaptureBitmap* screen, const Settings& settings, int region)
{
    const auto r = static_cast<std::size_t>(region);
    const CaptureRegionRect& rect = settings.CaptureRegion.at(r);
    RegionPreview out;
    out.rows = std::clamp(rect.SizeY, 1, kPreviewMaxRows);
    if (!screen) {
        out.reading = tr("キャプチャ画像がありません");
        return out;
    }
    out.pixels = regionPixels(*screen, rect);
    out.width = out.pixels.empty() ? 0 : rect.SizeX;
    out.height = out.pixels.empty() ? 0 : rect.SizeY;
    try {
        const RegionLevels levels = regionLevelsOf(*screen, rect);
        const InkGrid grid = binarizeGrid(levels, settings.BinaryThreshold[r], settings.BinaryMask[r]);
        out.columns = previewColumns(grid, out.rows);
        const RecognitionResult result = readRegionLevels(settings, region, levels);
        out.read = !result.digits.empty();
        out.reading = out.read ? result.digits : failureText(settings, region, result);
    } catch (const RuntimeError&) {
        out.columns.clear();
        out.reading = tr("領域が画像の外です");
    }
    return out;
}

std::string failureText(const Settings& settings, int region, const RecognitionResult& result)
{
    // Short enough for the options window's line: the digits run together, the end mark named.
    const RegionReading& reading = settings.Reading.at(static_cast<std::size_t>(region));
    std::string digits;
    bool endMark = false;
    if (reading.Mode == ReadingMode::Shapes) {
        digits = missingShapeDigits(reading);
    } else {
        std::istringstream list(result.untaught);
        for (int index = 0; list >> index;) {
            if (index == kDelimiterIndex)
                endMark = true;
            else
                digits += static_cast<char>('0' + index);
        }
    }
    if (digits.empty() && !endMark)
        return tr("認識できません");
    const std::string missing = !endMark        ? digits
                                : digits.empty() ? std::string(tr("終わりの記号"))
                                                 : trFormat("%1・終わりの記号", {digits});
    return trFormat("認識できません（未学習：%1）", {missing});
}

std::string readingModeName(ReadingMode mode)
{
    return mode == ReadingMode::Shapes ? tr("字形") : tr("完全一致");
}

std::vector<std::uint16_t> previewColumns(const InkGrid& grid, int& rows)
{
    // Ink of a tall region is shown from its top row, halved or more until it fits.
    int top = grid.height();
    int bottom = -1;
    for (int y = 0; y < grid.height(); ++y)
        for (int x = 0; x < grid.width(); ++x)
            if (grid.at(x, y)) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    if (grid.height() <= kPreviewMaxRows || bottom < 0) {
        top = 0;
        bottom = std::min(grid.height(), kPreviewMaxRows) - 1;
    }
    const int height = bottom - top + 1;
    const int step = (height + kPreviewMaxRows - 1) / kPreviewMaxRows;
    rows = std::max(1, (height + step - 1) / step);
    std::vector<std::uint16_t> columns(static_cast<std::size_t>(grid.width()), 0);
    for (int x = 0; x < grid.width(); ++x)
        for (int y = top; y <= bottom; ++y)
            if (grid.at(x, y))
                columns[static_cast<std::size_t>(x)] |= static_cast<std::uint16_t>(1u << ((y - top) / step));
    return columns;
}

std::vector<std::uint32_t> regionPixels(const CaptureBitmap& bitmap, const CaptureRegionRect& rect)
{
    if (rect.SizeX <= 0 || rect.SizeY <= 0)
        return {};
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(rect.SizeX) * static_cast<std::size_t>(rect.SizeY), 0);
    for (std::int32_t y = 0; y < rect.SizeY; ++y) {
        // Screen row y sits in the bottom-up file row height - 1 - y, as the recogniser reads it.
        const std::int64_t row = std::int64_t{bitmap.infoHeader.biHeight} - 1 - (std::int64_t{rect.StartY} + y);
        if (rect.StartY + y < 0 || row < 0 || row >= bitmap.rows)
            continue;
        for (std::int32_t x = 0; x < rect.SizeX; ++x) {
            const std::int64_t column = std::int64_t{rect.StartX} + x;
            const std::int64_t index = row * bitmap.stride + 3 * column;
            if (column < 0 || 3 * column + 2 >= bitmap.stride || index + 2 >= static_cast<std::int64_t>(bitmap.pixels.size()))
                continue;
            const auto at = static_cast<std::size_t>(index);
            pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(rect.SizeX) + static_cast<std::size_t>(x)] =
                std::uint32_t{bitmap.pixels[at + 2]} << 16 | std::uint32_t{bitmap.pixels[at + 1]} << 8 |
                bitmap.pixels[at];
        }
    }
    return pixels;
}

} // namespace tvx
