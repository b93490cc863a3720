#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tvx::cli {

// tallivex-cli learn --home DIR [--window-mode] IMAGE LEVEL EXP MONEY [IMAGE LEVEL EXP MONEY ...]
// Learns each region's glyph width and templates from screen images and the numbers they
// show ("-" skips a region). Saves them into the home's configuration only when every
// image was accepted, and prints one JSON line per region. Returns 0, 2 when an image was
// refused or the file could not be written (nothing is saved), 1 on bad usage.
int runLearn(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace tvx::cli
