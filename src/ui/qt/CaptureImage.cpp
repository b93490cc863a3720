#include "CaptureImage.h"

#include "view/RegionPreview.h"

namespace tvx::ui {

QImage pixelImage(int width, int height, const std::vector<std::uint32_t>& pixels)
{
    if (width <= 0 || height <= 0 || pixels.size() < static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
        return {};
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            line[x] = 0xFF000000u | pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    return image;
}

QImage regionImage(const CaptureBitmap& bitmap, const CaptureRegionRect& rect)
{
    return pixelImage(rect.SizeX, rect.SizeY, regionPixels(bitmap, rect));
}

} // namespace tvx::ui
