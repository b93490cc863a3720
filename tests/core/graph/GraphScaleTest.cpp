#include "graph/GraphScale.h"

#include "graph/StepTrap.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <string>
#include <vector>

namespace tvx {
namespace {

Currency amount(double value)
{
    return Currency::fromDouble(value);
}

TEST(ScaleStep, PicksTheFirstStepStrictlyAbove)
{
    const std::vector<std::pair<double, double>> cases = {
        {-5, 10},       {0, 10},          {9.9999, 10},   {10, 20},       {20, 40},
        {99.5, 100},    {999.9999, 1000}, {1000, 2000},   {9000, 10000},  {10000, 15000},
        {15000, 20000}, {94999, 95000},   {95000, 0},     {97000, 0},     {100000, 0},
        {100000.0001, 100000},            {2147483, 100000},
    };
    for (const auto& [in, out] : cases)
        EXPECT_EQ(ScaleStep(amount(in)), amount(out)) << "amount " << in;
}

TEST(GraphScaleTexts, LabelsOfBothColumns)
{
    struct Case { double maxE; double maxM; float zoom; std::array<std::string, 4> el; std::array<std::string, 4> ml; };
    const Case cases[] = {
        // An empty history: 7.5 and 2.5 are rounded by the format, half away from zero.
        {0, 0, 1.0f, {"    10", "     8", "     5", "     3"}, {"10", "8", "5", "3"}},
        {1000, 97000, 1.0f, {" 2,000", " 1,500", " 1,000", "   500"}, {"0", "0", "0", "0"}},
        // Seven characters lose their first one in the left column only.
        {150000, 150000, 1.0f, {"00,000", "75,000", "50,000", "25,000"}, {"100,000", "75,000", "50,000", "25,000"}},
        {1000, 60, 0.5f, {"   600", "   450", "   300", "   150"}, {"40", "30", "20", "10"}},
        {50, 50, 2.0f, {"   200", "   150", "   100", "    50"}, {"200", "150", "100", "50"}},
        {30, 30, 1.0f, {"    40", "    30", "    20", "    10"}, {"40", "30", "20", "10"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "maxE " << c.maxE << " maxM " << c.maxM << " zoom " << c.zoom);
        StepTrap trap;
        const GraphScaleTexts texts = graphScaleTexts(amount(c.maxE), amount(c.maxM), c.zoom, 6, 20, trap);
        EXPECT_EQ(texts.lblGraph_El, c.el);
        EXPECT_EQ(texts.lblGraph_Ml, c.ml);
        EXPECT_FALSE(trap.error());
    }
}

TEST(GraphScaleTexts, TimeAxisTitleGivesMinutesPerGridDivision)
{
    EXPECT_EQ(timeAxisTitle(6, 20), "経過時間(30分間隔)");
    EXPECT_EQ(timeAxisTitle(6, 60), "経過時間(90分間隔)");
    EXPECT_EQ(timeAxisTitle(1, 7), "経過時間(1分間隔)");
    // A demonstration's interval in seconds names seconds, or minutes when they are whole.
    EXPECT_EQ(timeAxisTitleSeconds(2, 20), "経過時間(10秒間隔)");
    EXPECT_EQ(timeAxisTitleSeconds(12, 20), "経過時間(1分間隔)");
    StepTrap demo;
    EXPECT_EQ(graphScaleTexts(Currency{}, Currency{}, 1.0f, 6, 20, demo, 10).lblGraph_Tt, "経過時間(50秒間隔)");

    StepTrap trap;
    const GraphScaleTexts texts = graphScaleTexts(amount(0), amount(0), 1.0f, INT_MAX, 2, trap);
    EXPECT_EQ(texts.lblGraph_Tt, "経過時間(0分間隔)");
    EXPECT_EQ(trap.error(), ErrorNumber::Overflow);
    EXPECT_EQ(texts.lblGraph_El[0], "    10") << "the other steps still run";
}

TEST(GraphZoom, ClicksStepByATenthWithinTheLimits)
{
    float zoom = 1.0f;
    for (int i = 0; i < 9; ++i)
        zoom = zoomIn(zoom);
    EXPECT_GT(zoom, 1.89f);
    EXPECT_LT(zoom, 2.0f);
    zoom = zoomIn(zoom); // lands just above 2.0 and is cut
    EXPECT_EQ(zoom, 2.0f);
    EXPECT_EQ(zoomIn(zoom), 2.0f);

    zoom = 1.0f;
    std::vector<float> down;
    for (int i = 0; i < 9; ++i)
        down.push_back(zoom = zoomOut(zoom));
    EXPECT_NEAR(down[4], 0.5f, 1e-6f);
    EXPECT_GT(down[6], 0.29f) << "the seventh click is still above the limit";
    EXPECT_EQ(down[7], 0.2f) << "the eighth lands just below 0.2 and is set to it";
    EXPECT_EQ(down[8], 0.2f);
}

TEST(GraphShift, ClicksMoveAQuarterOfTheVisibleEntries)
{
    std::int32_t shift = 0;
    std::vector<std::int32_t> past;
    for (int i = 0; i < 32; ++i)
        past.push_back(shift = shiftToPast(shift, 60, 512));
    EXPECT_EQ(past[0], 15);
    EXPECT_EQ(past[29], 450);
    EXPECT_EQ(past[30], 451) << "60 + 465 would reach the end of the buffer";
    EXPECT_EQ(past[31], 451);

    EXPECT_EQ(shiftToPresent(451, 60), 436);
    EXPECT_EQ(shiftToPresent(10, 60), 0);
    EXPECT_EQ(shiftToPresent(-1, 512), 0);

    // A time scale as long as the buffer leaves a negative shift.
    EXPECT_EQ(shiftToPast(0, 512, 512), -1);
    EXPECT_EQ(shiftToPast(0, 600, 512), -89);
    EXPECT_EQ(shiftToPast(0, 3, 512), 0) << "a quarter of 3 entries is no step";
}

} // namespace
} // namespace tvx
