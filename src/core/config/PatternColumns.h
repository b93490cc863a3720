#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// The value of one hexadecimal digit, either case; -1 for any other character.
int hexDigitValue(char c);

// A template or column string ("007C00FE...") as pixel columns, bit y = row y, and back.
// nullopt unless the text is whole groups of four hexadecimal digits.
std::optional<std::vector<std::uint16_t>> decodePatternColumns(std::string_view groups);
std::string encodePatternColumns(const std::vector<std::uint16_t>& columns);

} // namespace tvx
