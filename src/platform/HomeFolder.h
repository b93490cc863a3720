#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace tvx::platform {

// The folder of the running program.
std::filesystem::path programFolder();

// Whether this user may create files in the folder.
bool isWritableFolder(const std::filesystem::path& folder);

// The per-user data folder, for a program folder that is not writable.
std::filesystem::path userDataFolder();

// Where configuration, debug log and capture file live: the override when given, else the
// program's folder when writable (unzip and run), else a per-user data folder. Created
// when missing.
std::filesystem::path homeFolder(const std::optional<std::filesystem::path>& override = std::nullopt);

// The temporary folder the system unpacks archives into, long and short (8.3) form; both
// empty where programs are not run from there (Linux: archive tools extract where asked).
std::pair<std::string, std::string> temporaryFolder();

} // namespace tvx::platform
