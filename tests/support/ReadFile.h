#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace tvx::test {

// A whole file's bytes; empty when it cannot be read.
inline std::string readAll(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace tvx::test
