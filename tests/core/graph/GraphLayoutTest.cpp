#include "graph/GraphLayout.h"

#include "graph/StepTrap.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>

namespace tvx {
namespace {

TEST(GraphFrameLayout, AFrameTooSmallKeepsThePictureAndLaysOutTheRest)
{
    GraphFrameInput input{70, 20, {3000, 1500}, {1200, 180}, {450, 180}, {450, 180}};
    StepTrap trap;
    const GraphFrameLayout layout = graphFrameLayout(input, trap);
    EXPECT_FALSE(layout.picGraph);
    EXPECT_TRUE(trap.error());
    EXPECT_EQ(layout.lblGraph_Tl0Left, 570 + 3000 - 225) << "the present picture width is used";
    EXPECT_EQ(layout.scaleTop, (std::array<std::int32_t, 4>{0, -15, -30, -45}));
    EXPECT_EQ(layout.scaleLeftM, 510);
}

TEST(FormResizeLayout, SnapsBackToTheMinimumSizes)
{
    const struct {
        std::int32_t width, height;
        bool graph;
        std::int32_t clientWidth, clientHeight;
        std::optional<std::int32_t> outerWidth, outerHeight;
        std::int32_t frameWidth, frameHeight;
    } cases[] = {
        {700, 290, true, 710, 300, 10650, 5190, 220, 294},
        {800, 400, true, 800, 400, std::nullopt, std::nullopt, 310, 394},
        {710, 300, true, 710, 300, std::nullopt, std::nullopt, 220, 294},
        {500, 600, false, 488, 600, 7320, std::nullopt, 0, 0},
        {300, 200, false, 488, 300, 7320, 5190, 0, 0},
        {488, 700, false, 488, 700, std::nullopt, std::nullopt, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " x " << c.height << (c.graph ? " graph" : ""));
        const FormResizeLayout layout = formResizeLayout(c.width, c.height, c.graph);
        EXPECT_EQ(layout.clientWidth, c.clientWidth);
        EXPECT_EQ(layout.clientHeight, c.clientHeight);
        EXPECT_EQ(layout.outerWidthTwips, c.outerWidth);
        EXPECT_EQ(layout.outerHeightTwips, c.outerHeight);
        EXPECT_EQ(layout.frmGraphVisible, c.graph);
        if (c.graph) {
            EXPECT_EQ(layout.frmGraphWidth, c.frameWidth);
            EXPECT_EQ(layout.frmGraphHeight, c.frameHeight);
        }
        EXPECT_EQ(layout.txtLogWidth, 465);
    }
}

TEST(GraphLayout, TwipsToPixelsRoundsToTheNearestPixel)
{
    for (const auto& [twips, pixels] : std::array<std::pair<int, int>, 6>{{{0, 0}, {7, 0}, {8, 1}, {570, 38}, {-7, 0}, {-8, -1}}})
        EXPECT_EQ(twipsToPixels(twips), pixels) << twips;
}

} // namespace
} // namespace tvx
