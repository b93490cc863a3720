#pragma once

#include "config/Settings.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace tvx::cli {

// tallivex-cli config show|defaults|save [--home DIR] [--fullscreen|--window] [--yes|--no]
// Prints the settings as one JSON line; returns 0, 2 when the file could not be written,
// 1 on bad usage.
int runConfig(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// Every field of the settings record, named as in Settings, on one line.
std::string settingsJson(const Settings& settings);

} // namespace tvx::cli
