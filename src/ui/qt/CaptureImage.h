#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <QImage>

namespace tvx::ui {

// One rectangle of the captured screen; pixels outside the bitmap are black.
QImage regionImage(const CaptureBitmap& bitmap, const CaptureRegionRect& rect);

} // namespace tvx::ui
