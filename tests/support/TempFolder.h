#pragma once

#include "base/Utf8Path.h"

#include <filesystem>
#include <string>
#include <unistd.h>

namespace tvx::test {

// A fresh folder, unique per process and instance, removed at the end. Its name holds Japanese and
// blanks, as players' folders do, so every file test checks paths' UTF-8 (Windows' narrow strings are ANSI).
class TempFolder {
public:
    TempFolder()
    {
        static int instances = 0;
        m_path = std::filesystem::temp_directory_path() /
                 utf8Path("tallivex 試験 " + std::to_string(getpid()) + "-" + std::to_string(++instances));
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~TempFolder()
    {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace tvx::test
