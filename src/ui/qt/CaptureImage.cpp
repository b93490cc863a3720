#include "CaptureImage.h"

#include <algorithm>

namespace tvx::ui {
namespace {

// Screen row y sits in the bottom-up file row height - 1 - y, as the recogniser reads it.
const std::uint8_t* screenPixel(const CaptureBitmap& bitmap, std::int64_t x, std::int64_t y)
{
    const std::int64_t row = bitmap.infoHeader.biHeight - 1 - y;
    if (x < 0 || y < 0 || row < 0 || row >= bitmap.rows || 3 * x + 2 >= bitmap.stride)
        return nullptr;
    const auto index = static_cast<std::size_t>(row * bitmap.stride + 3 * x);
    return index + 2 < bitmap.pixels.size() ? bitmap.pixels.data() + index : nullptr;
}

} // namespace

QImage regionImage(const CaptureBitmap& bitmap, const CaptureRegionRect& rect)
{
    if (rect.SizeX <= 0 || rect.SizeY <= 0)
        return {};
    QImage image(rect.SizeX, rect.SizeY, QImage::Format_RGB32);
    image.fill(Qt::black);
    for (std::int32_t y = 0; y < rect.SizeY; ++y)
        for (std::int32_t x = 0; x < rect.SizeX; ++x)
            if (const std::uint8_t* p = screenPixel(bitmap, std::int64_t{rect.StartX} + x, std::int64_t{rect.StartY} + y))
                image.setPixel(x, y, qRgb(p[2], p[1], p[0]));
    return image;
}

} // namespace tvx::ui
