#include "view/RegionPreview.h"

#include "base/Errors.h"
#include "config/PatternColumns.h"
#include "recognition/Recognizer.h"
#include "recognition/TemplateLearner.h"

#include <algorithm>

namespace tvx {

RegionPreview previewRegion(const CaptureBitmap* screen, const Settings& settings, int region)
{
    const auto r = static_cast<std::size_t>(region);
    const CaptureRegionRect& rect = settings.CaptureRegion.at(r);
    RegionPreview out;
    out.rows = std::clamp(rect.SizeY, 1, kPreviewMaxRows);
    if (!screen) {
        out.reading = "キャプチャ画像がありません";
        return out;
    }
    out.pixels = regionPixels(*screen, rect);
    out.width = out.pixels.empty() ? 0 : rect.SizeX;
    out.height = out.pixels.empty() ? 0 : rect.SizeY;
    try {
        const std::string columns =
            regionColumnString(*screen, rect, settings.BinaryThreshold[r], settings.BinaryMask[r]);
        out.columns = decodePatternColumns(columns).value_or(std::vector<std::uint16_t>{});
        const RecognitionResult result = RecognizeNumber(region, recognizerInput(settings, region, columns));
        out.read = !result.digits.empty();
        out.reading = out.read ? result.digits : "認識できません";
    } catch (const RuntimeError&) {
        out.columns.clear();
        out.reading = "領域が画像の外です";
    }
    return out;
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
