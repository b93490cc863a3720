#include "HomeFolder.h"

namespace tvx::platform {

std::filesystem::path ProgramLayout::installedDataFolder() const
{
    if (dataFromProgram.empty())
        return {};
    const std::filesystem::path folder = (programFolder / dataFromProgram).lexically_normal();
    std::error_code ec;
    return std::filesystem::is_directory(folder, ec) ? folder : std::filesystem::path();
}

ProgramLayout programLayout()
{
    // Set by the build from the install layout, so the two cannot drift apart.
    return {programFolder(), std::filesystem::path(TALLIVEX_DATA_FROM_PROGRAM)};
}

std::filesystem::path documentFolder(const ProgramLayout& layout)
{
    std::filesystem::path installed = layout.installedDataFolder();
    return installed.empty() ? layout.programFolder : installed;
}

std::filesystem::path homeFolder(const std::optional<std::filesystem::path>& override, const ProgramLayout& layout)
{
    std::filesystem::path folder = override ? *override : layout.programFolder;
    if (!override && (!layout.installedDataFolder().empty() || !isWritableFolder(folder)))
        folder = userDataFolder();
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    return std::filesystem::absolute(folder, ec);
}

} // namespace tvx::platform
