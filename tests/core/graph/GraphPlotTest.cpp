#include "graph/GraphPlot.h"

#include "graph/StepTrap.h"
#include "graph/clsGraphBuffer.h"
#include "support/FakeClock.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <utility>
#include <vector>

namespace tvx {

void PrintTo(const GraphSegment& s, std::ostream* os)
{
    *os << "(" << s.from.x << "," << s.from.y << ")-(" << s.to.x << "," << s.to.y << ")";
}

namespace {

TEST(GraphGrid, WholePixelDivisionsWithTheRemainderInTheLastGap)
{
    const GraphGrid grid = graphGrid(401, 200); // w = 400, h = 199
    std::vector<std::int32_t> ys;
    for (const GridLine& line : grid.linGraphY) {
        EXPECT_EQ(line.y1, line.y2);
        EXPECT_EQ(line.x1, 0);
        EXPECT_EQ(line.x2, 400);
        ys.push_back(line.y1);
    }
    EXPECT_EQ(ys, (std::vector<std::int32_t>{0, 24, 48, 72, 96, 120, 144, 168, 199}));
    std::vector<std::int32_t> xs;
    for (const GridLine& line : grid.linGraphX) {
        EXPECT_EQ(line.x1, line.x2);
        EXPECT_EQ(line.y1, 0);
        EXPECT_EQ(line.y2, 199);
        xs.push_back(line.x1);
    }
    EXPECT_EQ(xs, (std::vector<std::int32_t>{0, 100, 200, 300, 400}));
}

TEST(GraphPlot, PointsAreRoundedHalfToEvenAndHeldWithinTwiceTheHeight)
{
    const struct { double rate; bool first; double y; } cases[] = {
        {30.5, false, 70}, {31.5, false, 68}, {30.5, true, 69.5},
        {500, false, -200}, {-500, false, 200}, {500, true, -400},
    };
    for (const auto& c : cases)
        EXPECT_EQ(plotY(Currency::fromDouble(c.rate), 1.0f, 100, c.first), c.y) << c.rate << (c.first ? " first" : "");
}

// Five entries across a 400 x 101 picture: dx 100, H 100, one pixel per unit of a scale of 100.
class GraphCurveTest : public ::testing::Test {
protected:
    // Rates newest first; the averages equal the rates (0 for -1) with a window of 1.
    void fill(const std::vector<std::pair<double, double>>& newestFirst)
    {
        for (auto it = newestFirst.rbegin(); it != newestFirst.rend(); ++it)
            buffer.AddGraphData(Currency::fromDouble(it->first), Currency::fromDouble(it->second), 1, 5);
    }

    GraphCurves plot(std::int32_t shift = 0, std::int32_t timeScale = 5)
    {
        input.shift = shift;
        input.timeScale = timeScale;
        return plotGraphCurves(buffer, input, trap);
    }

    static std::vector<GraphSegment> path(const std::vector<GraphPoint>& points)
    {
        std::vector<GraphSegment> segments;
        for (std::size_t i = 1; i < points.size(); ++i)
            segments.push_back({points[i - 1], points[i]});
        return segments;
    }

    test::FakeClock clock;
    clsGraphBuffer buffer{clock};
    GraphPlotInput input{400, 101, 5, 0, Currency::fromInt(100), Currency::fromInt(100), true};
    StepTrap trap;
};

TEST_F(GraphCurveTest, GapsAreBridgedAndAveragesDrawEveryEntry)
{
    fill({{50, 10}, {-1, 20}, {20, -1}, {10, 40}, {0, 50}});
    const GraphCurves curves = plot();
    EXPECT_EQ(curves.rateE, path({{400, 50}, {200, 80}, {100, 90}, {0, 100}}));
    EXPECT_EQ(curves.rateAveE, path({{400, 50}, {300, 100}, {200, 80}, {100, 90}, {0, 100}}));
    EXPECT_EQ(curves.rateM, path({{400, 90}, {300, 80}, {100, 60}, {0, 50}}));
    EXPECT_EQ(curves.rateAveM, path({{400, 90}, {300, 80}, {200, 100}, {100, 60}, {0, 50}}));
    EXPECT_FALSE(trap.error());
}

TEST_F(GraphCurveTest, MoneyStartingInAGapBeginsAtItsFirstValue)
{
    fill({{50, -1}, {50, -1}, {50, 30}, {50, 40}, {50, -1}});
    EXPECT_EQ(plot().rateM, path({{200, 70}, {100, 60}}));
}

TEST_F(GraphCurveTest, SeriesWithoutAScaleOrWithoutMoneyScanAreLeftOut)
{
    fill({{50, 10}, {40, 20}, {30, 30}, {20, 40}, {10, 50}});
    input.moneyScan = false;
    GraphCurves curves = plot();
    EXPECT_TRUE(curves.rateM.empty());
    EXPECT_TRUE(curves.rateAveM.empty());
    EXPECT_EQ(curves.rateE.size(), 4u);

    input.moneyScan = true;
    input.maxE = Currency();
    curves = plot();
    EXPECT_TRUE(curves.rateE.empty());
    EXPECT_TRUE(curves.rateAveE.empty());
    EXPECT_EQ(curves.rateM.size(), 4u);
    EXPECT_EQ(trap.error(), ErrorNumber::DivisionByZero) << "a scale of 0 is a failed step, logged";
}

TEST_F(GraphCurveTest, EntriesBeyondTheBufferAreSkippedAndReported)
{
    const struct {
        std::int32_t shift;
        std::int32_t timeScale;
        std::optional<ErrorNumber> error;
        std::vector<GraphPoint> rateE;
    } cases[] = {
        // Positions 510 and 511 exist, 512 to 514 do not.
        {510, 5, ErrorNumber::SubscriptOutOfRange, {{400, 100}, {300, 100}}},
        // Position -1 fails; the curve starts at the next entry without a line to it.
        {-1, 5, ErrorNumber::SubscriptOutOfRange, {{300, 50}, {200, 40}, {100, 30}, {0, 20}}},
        // One entry across the graph divides by zero and draws nothing.
        {0, 1, ErrorNumber::DivisionByZero, {}},
    };
    fill({{50, 0}, {60, 0}, {70, 0}, {80, 0}});
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "shift " << c.shift << " scale " << c.timeScale);
        trap = StepTrap();
        EXPECT_EQ(plot(c.shift, c.timeScale).rateE, path(c.rateE));
        EXPECT_EQ(trap.error(), c.error);
    }
}

} // namespace
} // namespace tvx
