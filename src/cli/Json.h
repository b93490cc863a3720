#pragma once

#include <string>
#include <string_view>

namespace tvx::cli {

// A JSON string literal, quotes included.
std::string jsonString(std::string_view text);

} // namespace tvx::cli
