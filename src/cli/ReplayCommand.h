#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tvx::cli {

// tallivex-cli replay FRAMES_DIR --save-folder DIR [--start "YYYY-MM-DD hh:mm"] [--csv]
//     [--per-session] [--money-scan] [--window-mode]
// Runs one measurement session over screen images named by their second of the session
// and writes the record file as the desktop program would; the log box goes to `out`.
// Returns 0, 1 for bad arguments, 2 when some image could not be read.
int runReplay(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace tvx::cli
