#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tvx {

// Paths from and to the core's UTF-8 text. A plain std::string would be taken in the
// ANSI code page on Windows and mangle Japanese folder names.
inline std::filesystem::path utf8Path(std::string_view text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string pathUtf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

} // namespace tvx
