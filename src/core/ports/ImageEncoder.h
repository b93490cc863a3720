#pragma once

#include "recognition/CaptureFile.h"

#include <filesystem>

namespace tvx {

// Port: compressed image files. Returns false when the file could not be written.
class ImageEncoder {
public:
    virtual ~ImageEncoder() = default;
    virtual bool writePng(const CaptureBitmap& image, const std::filesystem::path& path) = 0;
    virtual bool writeJpeg(const CaptureBitmap& image, const std::filesystem::path& path, int quality) = 0;
};

} // namespace tvx
