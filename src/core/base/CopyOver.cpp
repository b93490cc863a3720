#include "base/CopyOver.h"

namespace tvx {

std::error_code copyOver(const std::filesystem::path& from, const std::filesystem::path& to)
{
    std::filesystem::path temporary = to;
    temporary += ".copy";
    std::error_code error;
    std::filesystem::remove(temporary, error);
    if (std::filesystem::copy_file(from, temporary, error) && !error)
        std::filesystem::rename(temporary, to, error);
    if (error) {
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
    }
    return error;
}

} // namespace tvx
