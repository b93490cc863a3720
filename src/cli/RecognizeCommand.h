#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tvx::cli {

// tallivex-cli recognize [--window-mode] [--trace] [--home DIR [--yes|--no]] IMAGE...
// Without --home the default regions are used; with it, that folder's configuration.
// Prints one JSON line per image; returns 0, 2 when an image could not be read, 1 on bad usage.
int runRecognize(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace tvx::cli
