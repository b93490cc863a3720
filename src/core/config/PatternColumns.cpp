#include "config/PatternColumns.h"

namespace tvx {

int hexDigitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

std::optional<std::vector<std::uint16_t>> decodePatternColumns(std::string_view groups)
{
    if (groups.size() % 4 != 0)
        return std::nullopt;
    std::vector<std::uint16_t> columns;
    columns.reserve(groups.size() / 4);
    for (std::size_t i = 0; i < groups.size(); i += 4) {
        std::uint16_t column = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            const int digit = hexDigitValue(groups[i + k]);
            if (digit < 0)
                return std::nullopt;
            column = static_cast<std::uint16_t>((column << 4) | digit);
        }
        columns.push_back(column);
    }
    return columns;
}

std::string encodePatternColumns(const std::vector<std::uint16_t>& columns)
{
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string groups;
    groups.reserve(columns.size() * 4);
    for (const std::uint16_t column : columns)
        for (int shift = 12; shift >= 0; shift -= 4)
            groups += kHex[(column >> shift) & 0xF];
    return groups;
}

} // namespace tvx
