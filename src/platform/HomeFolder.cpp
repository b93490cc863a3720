#include "HomeFolder.h"

namespace tvx::platform {

std::filesystem::path homeFolder(const std::optional<std::filesystem::path>& override)
{
    std::filesystem::path folder = override ? *override : programFolder();
    if (!override && !isWritableFolder(folder))
        folder = userDataFolder();
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    return std::filesystem::absolute(folder, ec);
}

} // namespace tvx::platform
