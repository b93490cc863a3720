#pragma once

#include <string_view>

namespace tvx {

// True when the program's folder lies inside the temporary folder (given long and short,
// either may be empty), or the temporary folder inside it: a program started straight
// from a zip archive runs there and would lose its settings. Case is ignored.
bool IsTempFolder(std::string_view programFolder, std::string_view tempLong, std::string_view tempShort);

} // namespace tvx
