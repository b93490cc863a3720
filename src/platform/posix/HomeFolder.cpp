#include "HomeFolder.h"

#include <cstdlib>
#include <unistd.h>

namespace tvx::platform {

bool isWritableFolder(const std::filesystem::path& folder)
{
    return access(folder.c_str(), W_OK) == 0;
}

std::filesystem::path userDataFolder()
{
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data)
        return std::filesystem::path(data) / "tallivex";
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home && *home ? home : "/tmp") / ".local/share/tallivex";
}

std::filesystem::path programFolder()
{
    std::error_code ec;
    const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::filesystem::current_path() : exe.parent_path();
}

std::pair<std::string, std::string> temporaryFolder()
{
    return {};
}

} // namespace tvx::platform
