#include "config/PatternColumns.h"
#include "config/Settings.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(PatternColumns, DecodesWholeGroupsOnlyAndWritesUpperCase)
{
    EXPECT_EQ(decodePatternColumns("007C01ff"), (std::vector<std::uint16_t>{0x007C, 0x01FF}));
    EXPECT_EQ(decodePatternColumns(""), std::vector<std::uint16_t>{});
    for (const char* bad : {"007", "00G0", "007C 01F", "-001"})
        EXPECT_EQ(decodePatternColumns(bad), std::nullopt) << bad;
    EXPECT_EQ(encodePatternColumns({0x007C, 0xFFFF, 0}), "007CFFFF0000");
    for (const PatternSet& set : defaultPatternStrings())
        for (const std::string& pattern : set)
            EXPECT_EQ(encodePatternColumns(*decodePatternColumns(pattern)), pattern);
}

} // namespace
} // namespace tvx
