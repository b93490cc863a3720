#pragma once

#include <gtest/gtest.h>

#include <string>

namespace tvx::test {

// Whether a text holds (wanted) or lacks a part; a failure shows the whole text.
inline testing::AssertionResult partOf(const char* textExpression, const char* partExpression, const char*,
                                       const std::string& text, const std::string& part, bool wanted)
{
    if ((text.find(part) != std::string::npos) == wanted)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << textExpression << (wanted ? " lacks " : " holds ") << partExpression
                                       << " \"" << part << "\":\n" << text;
}

} // namespace tvx::test

#define EXPECT_HOLDS(text, part) EXPECT_PRED_FORMAT3(::tvx::test::partOf, text, part, true)
#define EXPECT_LACKS(text, part) EXPECT_PRED_FORMAT3(::tvx::test::partOf, text, part, false)
