#pragma once

#include "recognition/CaptureFile.h"

#include <filesystem>
#include <iosfwd>

namespace tvx::cli {

// Reads one screen image for a command. Whatever goes wrong (no such file, a folder, an
// unreadable or damaged image) ends in false and a line on err that names the file.
bool loadCliImage(const std::filesystem::path& path, CaptureBitmap& bitmap, std::ostream& err);

} // namespace tvx::cli
