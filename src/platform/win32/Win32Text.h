#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace tvx::platform::win32 {

// UTF-8 to UTF-16 for the W functions; invalid bytes become U+FFFD.
inline std::wstring wide(std::string_view text)
{
    if (text.empty())
        return {};
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    if (size <= 0)
        return {};
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(), size);
    return result;
}

inline std::string utf8(std::wstring_view text)
{
    if (text.empty())
        return {};
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (size <= 0)
        return {};
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

// The length of the longest prefix that does not end inside a UTF-8 sequence: text written
// in pieces may split a character, whose first bytes must wait for the rest.
inline std::size_t completeUtf8Length(std::string_view text)
{
    const std::size_t size = text.size();
    for (std::size_t back = 1; back <= 3 && back <= size; ++back) {
        const auto byte = static_cast<unsigned char>(text[size - back]);
        if ((byte & 0xC0) == 0x80)
            continue; // a continuation byte: look further back for its lead
        const std::size_t length = byte >= 0xF8 ? 1 : byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        return length > back ? size - back : size;
    }
    return size;
}

} // namespace tvx::platform::win32
