#pragma once

#include <cstddef>
#include <string_view>

namespace tvx {

// How many bytes a UTF-8 text takes in the Japanese ANSI code page (CP932): one for ASCII
// and half-width katakana, two for every other character (a character CP932 cannot hold
// becomes a one-byte "?", but the layouts that use this only ever meet Japanese text).
std::size_t cp932ByteLength(std::string_view utf8);

// The bytes beyond one per character: what double-width characters add to a layout.
std::size_t doubleWidthExtra(std::string_view utf8);

// Number of characters (code points) in a UTF-8 text.
std::size_t characterCount(std::string_view utf8);

} // namespace tvx
