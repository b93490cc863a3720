#pragma once

#include <filesystem>
#include <optional>

namespace tvx::platform {

// The folder of the running program.
std::filesystem::path programFolder();

// Where configuration, debug log and capture file live: the override when given, else the
// program's folder when writable (unzip and run), else a per-user data folder. Created
// when missing.
std::filesystem::path homeFolder(const std::optional<std::filesystem::path>& override = std::nullopt);

} // namespace tvx::platform
