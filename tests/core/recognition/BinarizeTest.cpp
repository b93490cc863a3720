#include "recognition/Binarize.h"
#include "base/Errors.h"
#include "support/ExpectError.h"

#include <gtest/gtest.h>

#include <vector>

namespace tvx {
namespace {

// One region of the given size whose pixels all have one level, except those set later.
struct Region {
    CaptureRegionRect rect;
    PixelLevels levels;

    Region(std::int32_t width, std::int32_t height, std::int32_t level) : rect{0, 0, width, height}
    {
        levels.SecurePixels({rect, CaptureRegionRect{}, CaptureRegionRect{}});
        for (std::int32_t x = 0; x < width; ++x)
            for (std::int32_t y = 0; y < height; ++y)
                levels.at(0, x, y) = level;
    }

    std::string binarize(std::int32_t threshold, std::int32_t mask)
    {
        std::string columns = "stale";
        BinarizeRegion(levels, 0, rect, threshold, mask, columns);
        return columns;
    }
};

TEST(BinarizeRegion, MaskingModesDecideWhichLevelsAreInk)
{
    struct Case { std::int32_t threshold, mask, level; bool ink; };
    const std::vector<Case> cases = {
        // Plain threshold (negative mask).
        {133, -1, 531, false}, {133, -1, 532, true}, {133, -1, 0, false}, {0, -1, 0, true},
        // Mask below threshold: very dark pixels count as ink too.
        {188, 34, 100, true}, {188, 34, 136, true}, {188, 34, 137, false}, {188, 34, 751, false},
        {188, 34, 752, true}, {188, 34, 0, true},
        // Mask equal to the threshold: dark pixels turn bright, so every level is ink.
        {100, 100, 0, true}, {100, 100, 400, true}, {100, 100, 401, true},
        // Mask above threshold: only the band between them is ink.
        {100, 200, 399, false}, {100, 200, 400, true}, {100, 200, 799, true}, {100, 200, 800, false},
        {100, 200, 1020, false}, {0, 200, 800, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "threshold " << c.threshold << " mask " << c.mask << " level " << c.level);
        Region region(1, 1, c.level);
        EXPECT_EQ(region.binarize(c.threshold, c.mask), c.ink ? "0001" : "0000");
    }
}

TEST(BinarizeRegion, ColumnsAreGroupsOfFourHexDigitsWithRowZeroInBitZero)
{
    Region allInk(3, 9, 1020);
    EXPECT_EQ(allInk.binarize(188, 34), "01FF01FF01FF");

    Region pattern(2, 12, 0);
    pattern.levels.at(0, 0, 0) = 1020;
    pattern.levels.at(0, 0, 4) = 1020;
    pattern.levels.at(0, 1, 11) = 1020;
    EXPECT_EQ(pattern.binarize(133, -1), "00110800");
}

TEST(BinarizeRegion, RowsFromSixteenOnAreLost)
{
    Region tall(1, 17, 1020);
    EXPECT_EQ(tall.binarize(133, -1), "FFFF");
    Region bottomOnly(1, 30, 0);
    for (std::int32_t y = 16; y < 30; ++y)
        bottomOnly.levels.at(0, 0, y) = 1020;
    EXPECT_EQ(bottomOnly.binarize(133, -1), "0000");
}

TEST(BinarizeRegion, MaskPastThirtyOneBitsOverflows)
{
    Region tall(1, 32, 0);
    tall.levels.at(0, 0, 30) = 1020;
    EXPECT_EQ(tall.binarize(133, -1), "0000");
    tall.levels.at(0, 0, 31) = 1020;
    test::expectError(ErrorNumber::Overflow, [&] { tall.binarize(133, -1); });
}

TEST(BinarizeRegion, EmptyAndOversizedRegions)
{
    Region region(2, 2, 1020);
    CaptureRegionRect none{0, 0, 0, 5};
    std::string columns = "stale";
    BinarizeRegion(region.levels, 0, none, 133, -1, columns);
    EXPECT_EQ(columns, "");
    CaptureRegionRect tooWide{0, 0, 5, 2};
    EXPECT_THROW(BinarizeRegion(region.levels, 0, tooWide, 133, -1, columns), RuntimeError);
}

} // namespace
} // namespace tvx
