#pragma once

#include "support/ReadFile.h"

#include <gtest/gtest.h>

#include <string>

namespace tvx::test {

// A file under tests/data, its LF line ends made the program's CR LF unless crlf is false.
inline std::string testData(const std::string& name, bool crlf = true)
{
    std::string text;
    for (const char c : readAll(std::filesystem::path(TALLIVEX_TEST_DATA) / name)) {
        if (c == '\n' && crlf)
            text += '\r';
        text += c;
    }
    EXPECT_FALSE(text.empty()) << name << " is missing";
    return text;
}

// The text with every `{name}` replaced.
inline std::string withValue(std::string text, const std::string& name, const std::string& value)
{
    const std::string key = "{" + name + "}";
    for (std::size_t at; (at = text.find(key)) != std::string::npos;)
        text.replace(at, key.size(), value);
    return text;
}

} // namespace tvx::test
