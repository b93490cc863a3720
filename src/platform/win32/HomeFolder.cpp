#include "HomeFolder.h"
#include "Win32Text.h"

#include <windows.h>

#include <cstdlib>
#include <fstream>

namespace tvx::platform {

bool isWritableFolder(const std::filesystem::path& folder)
{
    // Program Files is read-only for players; probe with a real file.
    const std::filesystem::path probe = folder / L".tallivex-write-test";
    {
        std::ofstream out(probe);
        if (!out)
            return false;
    }
    std::error_code ec;
    std::filesystem::remove(probe, ec);
    return true;
}

std::filesystem::path userDataFolder()
{
    const wchar_t* local = _wgetenv(L"LOCALAPPDATA");
    return std::filesystem::path(local && *local ? local : L".") / L"Tallivex";
}

std::filesystem::path programFolder()
{
    wchar_t buffer[MAX_PATH * 4];
    const DWORD length = GetModuleFileNameW(nullptr, buffer, static_cast<DWORD>(std::size(buffer)));
    if (length == 0 || length >= std::size(buffer))
        return std::filesystem::current_path();
    return std::filesystem::path(std::wstring(buffer, length)).parent_path();
}

std::pair<std::string, std::string> temporaryFolder()
{
    wchar_t longPath[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, longPath);
    if (length == 0 || length > MAX_PATH)
        return {};
    wchar_t shortPath[MAX_PATH + 1] = {};
    const DWORD shortLength = GetShortPathNameW(longPath, shortPath, MAX_PATH + 1);
    return {win32::utf8(longPath), shortLength > 0 && shortLength <= MAX_PATH ? win32::utf8(shortPath) : std::string()};
}

} // namespace tvx::platform
