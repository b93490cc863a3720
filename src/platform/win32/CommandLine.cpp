#include "CommandLine.h"

#include "Win32Text.h"

#include <shellapi.h>
#include <windows.h>

namespace tvx::platform {

std::vector<std::string> commandLineUtf8(int, char**)
{
    int count = 0;
    LPWSTR* words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> args;
    if (words == nullptr)
        return args;
    for (int i = 0; i < count; ++i)
        args.push_back(win32::utf8(words[i]));
    LocalFree(words);
    return args;
}

} // namespace tvx::platform
