#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tvx::cli {

// tallivex-cli history --save-folder DIR: prints the session history kept beside DIR's
// record files, one JSON line per row, oldest first. Returns 0, 1 for bad arguments, 2 when
// the history cannot be read.
int runHistory(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace tvx::cli
