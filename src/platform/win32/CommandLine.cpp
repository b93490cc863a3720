#include "CommandLine.h"

#include "Win32Handles.h"
#include "Win32Text.h"

#include <shellapi.h>

namespace tvx::platform {

// argv holds the arguments in the ANSI code page, where a Japanese folder name may not even
// fit; the system keeps them in UTF-16.
std::vector<std::string> commandLineUtf8(int argc, char** argv)
{
    int count = 0;
    const win32::Unique<LPWSTR*, &LocalFree> wideArgs(CommandLineToArgvW(GetCommandLineW(), &count));
    if (!wideArgs)
        return argv == nullptr || argc <= 0 ? std::vector<std::string>() : std::vector<std::string>(argv, argv + argc);
    std::vector<std::string> args;
    args.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        args.push_back(win32::utf8(wideArgs.get()[i]));
    return args;
}

} // namespace tvx::platform
