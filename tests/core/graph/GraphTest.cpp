// The graph: its buffer of rates, the scales and labels, the curves, the frame's layout, zoom and shift.
#include "graph/GraphLayout.h"
#include "graph/GraphPlot.h"
#include "graph/GraphScale.h"
#include "graph/StepTrap.h"
#include "graph/clsGraphBuffer.h"

#include "base/DateTime.h"
#include "base/Errors.h"
#include "support/ExpectError.h"
#include "support/FakeClock.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <tuple>

namespace tvx {

void PrintTo(const GraphSegment& s, std::ostream* os)
{
    *os << "(" << s.from.x << "," << s.from.y << ")-(" << s.to.x << "," << s.to.y << ")";
}

namespace {

Currency money(double value)
{
    return Currency::fromDouble(value);
}

// RateE of each entry, newest first; an entry equal to a fresh one reads as "fresh".
std::vector<std::string> rateEs(const clsGraphBuffer& buffer)
{
    std::vector<std::string> out;
    for (std::int32_t i = 0; i < buffer.BufferSize(); ++i) {
        const clsGraphFormat entry = buffer.Value(i);
        out.push_back(entry == clsGraphFormat() ? "fresh" : entry.RateE().toString());
    }
    return out;
}

// The newest entry's RateE RateM|averages|maxima of E, M, AveE, AveM|the windows AveNum MaxNum.
std::string summary(const clsGraphBuffer& b)
{
    const clsGraphFormat n = b.Value(0);
    return n.RateE().toString() + " " + n.RateM().toString() + "|" + n.RateAveE().toString() + " " +
           n.RateAveM().toString() + "|" + b.MaxValueRateE().toString() + " " + b.MaxValueRateM().toString() + " " +
           b.MaxValueRateAveE().toString() + " " + b.MaxValueRateAveM().toString() + "|" +
           std::to_string(b.AveNum()) + " " + std::to_string(b.MaxNum());
}

// Averages over the newest AveNum entries, maxima over the newest MaxNum, both windows cut to 512.
TEST(GraphBuffer, ClampsRatesAndAveragesAndMaximaOverTheNewestWindows)
{
    // added: (RateE, RateM), oldest first.
    struct Case { const char* name; std::vector<std::pair<double, double>> added; std::int32_t aveNum, maxNum;
                  const char* summary; };
    const Case cases[] = {
        {"no-value entry left out of the count", {{600, 5}, {-1, 5}, {300, 5}}, 3, 1, "300 5|450 5|300 5 450 5|3 1"},
        {"empty entries count as zeros", {{100, 100}, {200, 200}}, 5, 1, "200 200|60 60|200 200 60 60|5 1"},
        {"all money no-value", {{10, -1}, {20, -1}}, 2, 1, "20 -1|15 0|20 0 15 0|2 1"},
        {"series are counted independently", {{-1, 8}, {4, -1}}, 2, 1, "4 -1|4 8|4 0 4 8|2 1"},
        {"windows of 0 give 0", {{5, 5}}, 0, 0, "5 5|0 0|0 0 0 0|0 0"},
        {"negative rates count but are no maximum", {{-3, -7}, {1, 1}}, 2, 1, "1 1|-1 -3|1 1 0 0|2 1"},
        {"rounded to four decimals", {{2, 1}, {0, 0}, {0, 0}}, 3, 1, "0 0|0.6667 0.3333|0 0 0.6667 0.3333|3 1"},
        {"at the edges", {{2147483.0001, -2147483}}, 1, 1, "2147483 -2147483|2147483 -2147483|2147483 0 2147483 0|1 1"},
        {"averages are maxed on their own", {{0, 0}, {100, 40}, {0, 0}}, 2, 1, "0 0|50 20|0 0 50 20|2 1"},
        {"older entries outside MaxNum are ignored", {{100, 100}, {1, 3}, {2, 4}}, 1, 2, "2 4|2 4|2 4 2 4|1 2"},
        {"windows beyond the length", {{256, 512}, {256, 512}}, 1000, 1000, "256 512|1 2|256 512 1 2|512 512"},
    };
    for (const Case& c : cases) {
        test::FakeClock clock;
        clsGraphBuffer b(clock);
        for (const auto& [rateE, rateM] : c.added)
            b.AddGraphData(money(rateE), money(rateM), c.aveNum, c.maxNum);
        EXPECT_EQ(summary(b), c.summary) << c.name;
    }
}

TEST(GraphBuffer, MaxValueTimeIsTheLatestTimeRoundedHalfToEven)
{
    test::FakeClock clock{LocalDateTime{2024, 3, 15, 18, 30, 0}};
    clsGraphBuffer buffer{clock};
    for (const auto& [time, day] :
         {std::pair{45000.5, 45000}, {45001.5, 45002}, {45000.25, 45000}, {45000.75, 45001}}) {
        SCOPED_TRACE(time);
        buffer.AddGraphData(money(1), money(1), 1, 1, time);
        EXPECT_EQ(buffer.MaxValueTime(), day);
    }

    buffer.AddGraphData(money(1), money(1), 1, 1, 45100.0);
    buffer.AddGraphData(money(1), money(1), 1, 2, 45050.0);
    EXPECT_EQ(buffer.MaxValueTime(), 45100);
    // Time 0 takes the clock's present.
    buffer.AddGraphData(money(1), money(1), 1, 1);
    EXPECT_DOUBLE_EQ(buffer.Value(0).Time(), toOleDate(LocalDateTime{2024, 3, 15, 18, 30, 0}));
}

// Entries outside the buffer fail, whatever the index.
TEST(GraphBuffer, BufferSizeTrimsAndExtendsAtTheOldestEnd)
{
    test::FakeClock clock;
    clsGraphBuffer buffer{clock};
    for (int i = 1; i <= 3; ++i)
        buffer.AddGraphData(money(i), money(i), 1, 1);
    EXPECT_EQ(buffer.Value(511), clsGraphFormat());
    for (std::int32_t index : {-1, 512, INT_MIN, INT_MAX})
        test::expectError(ErrorNumber::SubscriptOutOfRange, [&] { (void)buffer.Value(index); });

    buffer.setBufferSize(2);
    EXPECT_EQ(rateEs(buffer), (std::vector<std::string>{"3", "2"}));
    buffer.setBufferSize(4);
    EXPECT_EQ(rateEs(buffer), (std::vector<std::string>{"3", "2", "fresh", "fresh"}));
    test::expectError(ErrorNumber::SubscriptOutOfRange, [&] { buffer.setBufferSize(0); });
    EXPECT_EQ(buffer.BufferSize(), 4);
    buffer.setBufferSize(70000);
    EXPECT_EQ(buffer.BufferSize(), 65535);
    EXPECT_EQ(buffer.Value(0).RateE().toString(), "3");
    EXPECT_EQ(buffer.Value(65534), clsGraphFormat());
}

TEST(GraphBuffer, DataShiftMovesTheHistory)
{
    const struct { std::int32_t count, direction; std::vector<std::string> after; } cases[] = { // after: newest first
        {3, clsGraphBuffer::kTowardsPresent, {"2", "1", "fresh", "fresh", "fresh"}},
        {2, clsGraphBuffer::kTowardsPast, {"fresh", "fresh", "5", "4", "3"}},
        {9, clsGraphBuffer::kTowardsPast, {"fresh", "fresh", "fresh", "fresh", "fresh"}},
        {0, clsGraphBuffer::kTowardsPast, {"5", "4", "3", "2", "1"}},
        {-1, clsGraphBuffer::kTowardsPast, {"5", "4", "3", "2", "1"}},
        {3, 2, {"5", "4", "3", "2", "1"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "count " << c.count << " direction " << c.direction);
        test::FakeClock caseClock;
        clsGraphBuffer b(caseClock);
        b.setBufferSize(5);
        for (int i = 1; i <= 5; ++i)
            b.AddGraphData(money(i), money(i), 1, 1);
        b.DataShift(c.count, c.direction);
        EXPECT_EQ(rateEs(b), c.after);
    }
}

TEST(GraphScale, StepsStrictlyAboveLabelsOfBothColumnsAndTheTimeAxisTitle)
{
    const std::vector<std::pair<double, double>> steps = {
        {-5, 10},         {0, 10},     {9.9999, 10}, {10, 20},       {999.9999, 1000}, {1000, 2000},
        {10000, 15000},   {94999, 95000}, {95000, 0}, {100000, 0}, {100000.0001, 100000}, {2147483, 100000},
    };
    for (const auto& [in, out] : steps)
        EXPECT_EQ(ScaleStep(money(in)), money(out)) << "amount " << in;

    struct Case { double maxE; double maxM; float zoom; std::array<std::string, 4> el; std::array<std::string, 4> ml; };
    const Case cases[] = {
        // An empty history: 7.5 and 2.5 are rounded by the format, half away from zero.
        {0, 0, 1.0f, {"    10", "     8", "     5", "     3"}, {"10", "8", "5", "3"}},
        {1000, 97000, 1.0f, {" 2,000", " 1,500", " 1,000", "   500"}, {"0", "0", "0", "0"}},
        {1000, 60, 0.5f, {"   600", "   450", "   300", "   150"}, {"40", "30", "20", "10"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "maxE " << c.maxE << " maxM " << c.maxM << " zoom " << c.zoom);
        StepTrap trap;
        const GraphScaleTexts texts = graphScaleTexts(money(c.maxE), money(c.maxM), c.zoom, 6, 20, trap);
        EXPECT_EQ(texts.lblGraph_El, c.el);
        EXPECT_EQ(texts.lblGraph_Ml, c.ml);
        EXPECT_FALSE(trap.error());
    }

    // The time axis gives minutes per grid division.
    EXPECT_EQ(timeAxisTitle(6, 20), "経過時間(30分間隔)");
    EXPECT_EQ(timeAxisTitle(1, 7), "経過時間(1分間隔)");
    // A demonstration's interval in seconds names seconds, or minutes when they are whole.
    EXPECT_EQ(timeAxisTitleSeconds(12, 20), "経過時間(1分間隔)");
    StepTrap demo;
    EXPECT_EQ(graphScaleTexts(Currency{}, Currency{}, 1.0f, 6, 20, demo, 10).lblGraph_Tt, "経過時間(50秒間隔)");

    StepTrap trap;
    const GraphScaleTexts texts = graphScaleTexts(money(0), money(0), 1.0f, INT_MAX, 2, trap);
    EXPECT_EQ(texts.lblGraph_Tt, "経過時間(0分間隔)");
    EXPECT_EQ(trap.error(), ErrorNumber::Overflow);
    EXPECT_EQ(texts.lblGraph_El[0], "    10") << "the other steps still run";
}

TEST(GraphView, ZoomClicksStepByATenthAndShiftsByAQuarterWithinTheLimits)
{
    const auto clicks = [](auto step, auto start, int count) {
        std::vector<decltype(start)> after;
        for (int i = 0; i < count; ++i)
            after.push_back(start = step(start));
        return after;
    };
    const std::vector<float> up = clicks(zoomIn, 1.0f, 10);
    EXPECT_EQ(up[9], 2.0f) << "the tenth lands just above 2.0 and is cut";
    const std::vector<float> down = clicks(zoomOut, 1.0f, 8);
    EXPECT_EQ(down[7], 0.2f) << "the eighth lands just below 0.2 and is set to it";

    // A shift moves a quarter of the visible entries.
    const auto past = clicks([](std::int32_t shift) { return shiftToPast(shift, 60, 512); }, std::int32_t{0}, 31);
    EXPECT_EQ(past[0], 15);
    EXPECT_EQ(past[30], 451) << "60 + 465 would reach the end of the buffer";

    EXPECT_EQ(shiftToPresent(451, 60), 436);
    EXPECT_EQ(shiftToPresent(10, 60), 0);

    // A time scale as long as the buffer leaves a negative shift.
    EXPECT_EQ(shiftToPast(0, 512, 512), -1);
    EXPECT_EQ(shiftToPast(0, 3, 512), 0) << "a quarter of 3 entries is no step";
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

TEST_F(GraphCurveTest, GapsAreBridgedAveragesDrawEveryEntryAndSeriesWithoutAScaleAreLeftOut)
{
    // The money begins and ends in a gap: its curve begins at its first value.
    fill({{50, -1}, {-1, 20}, {20, -1}, {10, 40}, {0, -1}});
    const GraphCurves curves = plot();
    EXPECT_EQ(curves.rateE, path({{400, 50}, {200, 80}, {100, 90}, {0, 100}}));
    EXPECT_EQ(curves.rateAveE, path({{400, 50}, {300, 100}, {200, 80}, {100, 90}, {0, 100}}));
    EXPECT_EQ(curves.rateM, path({{300, 80}, {100, 60}}));
    EXPECT_EQ(curves.rateAveM, path({{400, 100}, {300, 80}, {200, 100}, {100, 60}, {0, 100}}));
    EXPECT_FALSE(trap.error());

    // Series without money scan or without a scale are left out.
    const auto sizes = [](const GraphCurves& c) {
        return std::vector{c.rateE.size(), c.rateAveE.size(), c.rateM.size(), c.rateAveM.size()};
    };
    input.moneyScan = false;
    EXPECT_EQ(sizes(plot()), (std::vector<std::size_t>{3, 4, 0, 0}));
    input.moneyScan = true;
    input.maxE = Currency();
    EXPECT_EQ(sizes(plot()), (std::vector<std::size_t>{0, 0, 1, 4}));
    EXPECT_EQ(trap.error(), ErrorNumber::DivisionByZero) << "a scale of 0 is a failed step, logged";
}

TEST_F(GraphCurveTest, EntriesBeyondTheBufferAreSkippedAndReported)
{
    struct Case { std::int32_t shift, timeScale; std::optional<ErrorNumber> error; std::vector<GraphPoint> rateE; };
    const Case cases[] = {
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

TEST(GraphLayout, AFrameTooSmallKeepsThePictureAndTheFormSnapsBackToTheMinimumSizes)
{
    GraphFrameInput input{70, 20, {3000, 1500}, {1200, 180}, {450, 180}, {450, 180}};
    StepTrap trap;
    const GraphFrameLayout layout = graphFrameLayout(input, trap);
    EXPECT_FALSE(layout.picGraph);
    EXPECT_TRUE(trap.error());
    EXPECT_EQ(layout.lblGraph_Tl0Left, 570 + 3000 - 225) << "the present picture width is used";

    // Client size, the outer size written back in twips when it snapped, the graph frame's state, the log box's width.
    using Twips = std::optional<std::int32_t>;
    using Layout = std::tuple<std::int32_t, std::int32_t, Twips, Twips, bool, std::int32_t, std::int32_t, std::int32_t>;
    const struct { std::int32_t width, height; bool graph; Layout layout; } cases[] = {
        {700, 290, true, {710, 300, 10650, 5190, true, 220, 294, 465}},
        {710, 300, true, {710, 300, std::nullopt, std::nullopt, true, 220, 294, 465}},
        {500, 600, false, {488, 600, 7320, std::nullopt, false, 0, 0, 465}},
        {488, 700, false, {488, 700, std::nullopt, std::nullopt, false, 0, 0, 465}},
    };
    for (const auto& c : cases) {
        const FormResizeLayout l = formResizeLayout(c.width, c.height, c.graph);
        EXPECT_EQ(Layout(l.clientWidth, l.clientHeight, l.outerWidthTwips, l.outerHeightTwips, l.frmGraphVisible,
                         l.frmGraphWidth, l.frmGraphHeight, l.txtLogWidth),
                  c.layout)
            << c.width << " x " << c.height;
    }
    // Twips round to the nearest pixel.
    for (const auto& [twips, pixels] : {std::pair{0, 0}, {7, 0}, {8, 1}, {570, 38}, {-7, 0}, {-8, -1}})
        EXPECT_EQ(twipsToPixels(twips), pixels) << twips;
}

} // namespace
} // namespace tvx
