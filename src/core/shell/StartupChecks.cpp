#include "shell/StartupChecks.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace tvx {

namespace {

std::string upper(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return result;
}

// The shorter text is searched for in the longer one.
bool overlaps(const std::string& program, std::string_view temp)
{
    if (temp.empty())
        return false;
    const std::string t = upper(temp);
    return t.size() < program.size() ? program.find(t) != std::string::npos : t.find(program) != std::string::npos;
}

} // namespace

bool IsTempFolder(std::string_view programFolder, std::string_view tempLong, std::string_view tempShort)
{
    const std::string program = upper(programFolder);
    return overlaps(program, tempLong) || overlaps(program, tempShort);
}

} // namespace tvx
