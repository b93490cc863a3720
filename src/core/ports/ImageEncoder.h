#pragma once

#include "recognition/Frame.h"

#include <filesystem>

namespace tvx {

// Port: compressed image files. Returns false when the file could not be written.
class ImageEncoder {
public:
    virtual ~ImageEncoder() = default;
    virtual bool writePng(const Frame& image, const std::filesystem::path& path) = 0;
    virtual bool writeJpeg(const Frame& image, const std::filesystem::path& path, int quality) = 0;
};

} // namespace tvx
