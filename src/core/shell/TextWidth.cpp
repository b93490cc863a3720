#include "shell/TextWidth.h"

namespace tvx {

namespace {

// Decodes the code point at text[i] and advances i; malformed bytes count as one each.
char32_t nextCodePoint(std::string_view text, std::size_t& i)
{
    const auto lead = static_cast<unsigned char>(text[i]);
    std::size_t length = 1;
    char32_t value = lead;
    if (lead >= 0xF0) {
        length = 4;
        value = lead & 0x07u;
    } else if (lead >= 0xE0) {
        length = 3;
        value = lead & 0x0Fu;
    } else if (lead >= 0xC0) {
        length = 2;
        value = lead & 0x1Fu;
    }
    if (i + length > text.size()) {
        ++i;
        return lead;
    }
    for (std::size_t k = 1; k < length; ++k)
        value = (value << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3Fu);
    i += length;
    return value;
}

bool isSingleByte(char32_t c)
{
    return c < 0x80 || (c >= 0xFF61 && c <= 0xFF9F);
}

} // namespace

std::size_t cp932ByteLength(std::string_view utf8)
{
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < utf8.size();)
        bytes += isSingleByte(nextCodePoint(utf8, i)) ? 1 : 2;
    return bytes;
}

std::size_t characterCount(std::string_view utf8)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < utf8.size(); ++count)
        nextCodePoint(utf8, i);
    return count;
}

std::size_t doubleWidthExtra(std::string_view utf8)
{
    return cp932ByteLength(utf8) - characterCount(utf8);
}

} // namespace tvx
