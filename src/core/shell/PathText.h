#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tvx {

// The core keeps texts in UTF-8; a plain std::string path would be read in the ANSI code
// page on Windows, so paths cross over through char8_t.
inline std::filesystem::path pathFromUtf8(std::string_view text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string utf8FromPath(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

} // namespace tvx
