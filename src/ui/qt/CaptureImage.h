#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <QImage>

#include <cstdint>
#include <vector>

namespace tvx::ui {

// 0xRRGGBB pixels row by row, as the core's previews hold them.
QImage pixelImage(int width, int height, const std::vector<std::uint32_t>& pixels);

// One rectangle of the captured screen; pixels outside the bitmap are black.
QImage regionImage(const CaptureBitmap& bitmap, const CaptureRegionRect& rect);

} // namespace tvx::ui
