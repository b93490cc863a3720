#pragma once

#include "base/Utf8Path.h"

#include <filesystem>
#include <string>

namespace tvx::test {

// A path's UTF-8 text as a JSON string literal holds it: Windows separators doubled.
inline std::string jsonPath(const std::filesystem::path& path)
{
    std::string text;
    for (const char c : pathUtf8(path)) {
        if (c == '\\' || c == '"')
            text += '\\';
        text += c;
    }
    return text;
}

} // namespace tvx::test
