#pragma once

#include <filesystem>
#include <system_error>

namespace tvx {

// Copies a file over another one, replacing it whole (back-ups that keep one generation).
// The copy is made beside the target and renamed over it, so an interrupted copy leaves the
// previous back-up as it was; and MinGW's copy_file refuses to overwrite an existing file.
// Returns the error, empty on success.
std::error_code copyOver(const std::filesystem::path& from, const std::filesystem::path& to);

} // namespace tvx
