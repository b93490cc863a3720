#include "CommandLine.h"

namespace tvx::platform {

// The arguments are UTF-8 bytes already.
std::vector<std::string> commandLineUtf8(int argc, char** argv)
{
    return argv == nullptr || argc <= 0 ? std::vector<std::string>() : std::vector<std::string>(argv, argv + argc);
}

} // namespace tvx::platform
