#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tvx {

// Port: conversion between the core's UTF-8 and the Japanese ANSI code page (CP932),
// used only where a file format asks for it.
class TextCodec {
public:
    virtual ~TextCodec() = default;
    // Characters CP932 cannot hold become "?".
    virtual std::string toCp932(std::string_view utf8) = 0;
    // nullopt when the bytes are not valid CP932.
    virtual std::optional<std::string> fromCp932(std::string_view bytes) = 0;
};

} // namespace tvx
