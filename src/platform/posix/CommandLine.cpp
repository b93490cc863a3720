#include "CommandLine.h"

namespace tvx::platform {

std::vector<std::string> commandLineUtf8(int argc, char** argv)
{
    return std::vector<std::string>(argv, argv + argc);
}

} // namespace tvx::platform
