#pragma once

#include <string>
#include <vector>

namespace tvx::platform {

// The program's arguments in UTF-8, program name first. On Windows they are read as UTF-16
// from the system (argv is in the ANSI code page there); elsewhere argv is already UTF-8.
std::vector<std::string> commandLineUtf8(int argc, char** argv);

} // namespace tvx::platform
