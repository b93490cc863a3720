#pragma once

#include <gtest/gtest.h>

#include <string>

namespace tvx::test {

// Whether a text holds a part; a failure shows the whole text.
inline testing::AssertionResult holds(const char* textExpression, const char* partExpression, const std::string& text,
                                      const std::string& part)
{
    if (text.find(part) != std::string::npos)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << textExpression << " lacks " << partExpression << " \"" << part << "\":\n"
                                       << text;
}

inline testing::AssertionResult lacks(const char* textExpression, const char* partExpression, const std::string& text,
                                      const std::string& part)
{
    if (text.find(part) == std::string::npos)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << textExpression << " holds " << partExpression << " \"" << part << "\":\n"
                                       << text;
}

} // namespace tvx::test

#define EXPECT_HOLDS(text, part) EXPECT_PRED_FORMAT2(::tvx::test::holds, text, part)
#define EXPECT_LACKS(text, part) EXPECT_PRED_FORMAT2(::tvx::test::lacks, text, part)
