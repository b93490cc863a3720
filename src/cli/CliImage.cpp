#include "CliImage.h"

#include "base/Utf8Path.h"

#include <exception>
#include <ostream>

namespace tvx::cli {

bool loadCliImage(const std::filesystem::path& path, CaptureBitmap& bitmap, std::ostream& err)
{
    CaptureLoadResult loaded = CaptureLoadResult::Read;
    try {
        loaded = LoadCaptureBitmap(path, bitmap);
    } catch (const std::exception& error) {
        err << pathUtf8(path) << ": cannot read the image (" << error.what() << ")\n";
        return false;
    }
    if (loaded == CaptureLoadResult::Read)
        return true;
    err << pathUtf8(path) << ": cannot read the image (result " << static_cast<int>(loaded) << ": " << describe(loaded)
        << ")\n";
    return false;
}

} // namespace tvx::cli
