#include "CommandLine.h"

#include "Win32Text.h"

#include <windows.h>
#include <shellapi.h>

namespace tvx::platform {

std::vector<std::string> commandLineUtf8(int argc, char** argv)
{
    int count = 0;
    LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr)
        return std::vector<std::string>(argv, argv + argc);
    std::vector<std::string> result;
    for (int i = 0; i < count; ++i)
        result.push_back(win32::utf8(arguments[i]));
    LocalFree(arguments);
    return result;
}

} // namespace tvx::platform
