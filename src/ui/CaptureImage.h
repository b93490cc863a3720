#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"
#include "recognition/Frame.h"

#include <QImage>

namespace tvx::ui {

// The capture bitmap as a top-down frame, as the bitmap writer takes it.
Frame frameOf(const CaptureBitmap& bitmap);

// One rectangle of the captured screen; pixels outside the bitmap are black.
QImage regionImage(const CaptureBitmap& bitmap, const CaptureRegionRect& rect);

} // namespace tvx::ui
