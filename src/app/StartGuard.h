#pragma once

#include "SingleInstance.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

namespace tvx {
class Prompter;
} // namespace tvx

namespace tvx::app {

// The two refusals before anything is written: a second instance on the same home
// folder, and a run from inside the temporary folder the system unpacks archives into.
// Returns the held instance, or null after telling the player why not.
std::unique_ptr<platform::SingleInstance> guardStart(const std::filesystem::path& home,
                                                     const std::filesystem::path& programFolder,
                                                     const std::pair<std::string, std::string>& temporaryFolder,
                                                     Prompter& prompter);

} // namespace tvx::app
