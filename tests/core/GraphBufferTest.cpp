#include "graph/clsGraphBuffer.h"

#include "base/DateTime.h"
#include "base/Errors.h"
#include "support/ExpectError.h"
#include "support/FakeClock.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

namespace tvx {
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

class GraphBufferTest : public ::testing::Test {
protected:
    void add(double rateE, double rateM, std::int32_t aveNum = 1, std::int32_t maxNum = 1, double time = 0.0)
    {
        buffer.AddGraphData(money(rateE), money(rateM), aveNum, maxNum, time);
    }

    test::FakeClock clock{LocalDateTime{2024, 3, 15, 18, 30, 0}};
    clsGraphBuffer buffer{clock};
};

TEST_F(GraphBufferTest, AdditionsKeepTheLengthAndDropTheOldest)
{
    for (int i = 1; i <= 513; ++i)
        add(i, -1);
    EXPECT_EQ(buffer.BufferSize(), 512);
    EXPECT_EQ(buffer.Value(0).RateE().toString(), "513");
    EXPECT_EQ(buffer.Value(511).RateE().toString(), "2");
}

TEST_F(GraphBufferTest, AveragesOverTheNewestWindow)
{
    struct Case {
        const char* name;
        std::vector<std::pair<double, double>> added; // (RateE, RateM), oldest first
        std::int32_t aveNum;
        const char* aveE;
        const char* aveM;
    };
    const Case cases[] = {
        {"no-value entry left out of the count", {{600, 5}, {-1, 5}, {300, 5}}, 3, "450", "5"},
        {"empty entries count as zeros", {{100, 100}, {200, 200}}, 5, "60", "60"},
        {"all money no-value keeps the average 0", {{10, -1}, {20, -1}}, 2, "15", "0"},
        {"series are counted independently", {{-1, 8}, {4, -1}}, 2, "4", "8"},
        {"window 0 gives 0", {{5, 5}}, 0, "0", "0"},
        {"negative rates other than -1 count", {{-3, -7}, {1, 1}}, 2, "-1", "-3"},
        {"rounded to four decimals", {{2, 1}, {0, 0}, {0, 0}}, 3, "0.6667", "0.3333"},
        {"clamped rates are averaged", {{5000000, -5000000}}, 1, "2147483", "-2147483"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::FakeClock caseClock;
        clsGraphBuffer b(caseClock);
        for (const auto& [rateE, rateM] : c.added)
            b.AddGraphData(money(rateE), money(rateM), c.aveNum, 1);
        EXPECT_EQ(b.Value(0).RateAveE().toString(), c.aveE);
        EXPECT_EQ(b.Value(0).RateAveM().toString(), c.aveM);
        EXPECT_EQ(b.AveNum(), c.aveNum);
    }
}

TEST_F(GraphBufferTest, WindowsBeyondTheLengthAreCutToIt)
{
    add(512, 1024, 1000, 1000);
    for (int i = 0; i < 511; ++i)
        add(0, 0, 1000, 1000);

    EXPECT_EQ(buffer.AveNum(), 512);
    EXPECT_EQ(buffer.MaxNum(), 512);
    EXPECT_EQ(buffer.Value(0).RateAveE().toString(), "1");
    EXPECT_EQ(buffer.Value(0).RateAveM().toString(), "2");
    EXPECT_EQ(buffer.MaxValueRateE().toString(), "512");

    // One more pushes the large entry off the end; the maxima start again from 0.
    add(0, 0, 1000, 1000);
    EXPECT_EQ(buffer.MaxValueRateE(), Currency());
    EXPECT_EQ(buffer.MaxValueRateM(), Currency());
}

TEST_F(GraphBufferTest, RatesAreClampedToTheGraphRange)
{
    const std::pair<double, const char*> cases[] = {
        {5000000, "2147483"}, {-5000000, "-2147483"}, {2147483.0001, "2147483"},
        {-2147483, "-2147483"}, {-1, "-1"}, {123.4567, "123.4567"},
    };
    for (const auto& [rate, stored] : cases) {
        SCOPED_TRACE(rate);
        add(rate, rate);
        EXPECT_EQ(buffer.Value(0).RateE().toString(), stored);
        EXPECT_EQ(buffer.Value(0).RateM().toString(), stored);
    }
}

TEST_F(GraphBufferTest, MaximaCoverTheNewestMaxNumEntriesFieldByField)
{
    struct Case {
        const char* name;
        std::vector<std::pair<double, double>> added; // (RateE, RateM), oldest first
        std::int32_t aveNum;
        std::int32_t maxNum;
        const char* maxE;
        const char* maxM;
        const char* maxAveE;
        const char* maxAveM;
    };
    const Case cases[] = {
        {"fields peak in different entries", {{10, 1}, {3, 50}}, 1, 2, "10", "50", "10", "50"},
        {"averages are maxed on their own", {{0, 0}, {100, 40}, {0, 0}}, 2, 1, "0", "0", "50", "20"},
        {"money all no-value gives 0", {{5, -1}, {6, -1}}, 1, 2, "6", "0", "6", "0"},
        {"negative rates never become a maximum", {{-5, -2}, {-1, -3}}, 2, 2, "0", "0", "0", "0"},
        {"older entries outside MaxNum are ignored", {{100, 100}, {1, 3}, {2, 4}}, 1, 2, "2", "4", "2", "4"},
        {"MaxNum 0 gives zeros", {{7, 7}}, 1, 0, "0", "0", "0", "0"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::FakeClock caseClock;
        clsGraphBuffer b(caseClock);
        for (const auto& [rateE, rateM] : c.added)
            b.AddGraphData(money(rateE), money(rateM), c.aveNum, c.maxNum);
        EXPECT_EQ(b.MaxValueRateE().toString(), c.maxE);
        EXPECT_EQ(b.MaxValueRateM().toString(), c.maxM);
        EXPECT_EQ(b.MaxValueRateAveE().toString(), c.maxAveE);
        EXPECT_EQ(b.MaxValueRateAveM().toString(), c.maxAveM);
        EXPECT_EQ(b.MaxNum(), c.maxNum);
    }
}

TEST_F(GraphBufferTest, MaxValueTimeIsTheLatestTimeRoundedHalfToEven)
{
    const std::pair<double, std::int32_t> cases[] = {
        {45000.5, 45000}, {45001.5, 45002}, {45000.25, 45000}, {45000.75, 45001},
    };
    for (const auto& [time, day] : cases) {
        SCOPED_TRACE(time);
        add(1, 1, 1, 1, time);
        EXPECT_EQ(buffer.MaxValueTime(), day);
    }

    add(1, 1, 1, 1, 45100.0);
    add(1, 1, 1, 2, 45050.0);
    EXPECT_EQ(buffer.MaxValueTime(), 45100);
    // Time 0 takes the clock's present.
    add(1, 1);
    EXPECT_DOUBLE_EQ(buffer.Value(0).Time(), toOleDate(LocalDateTime{2024, 3, 15, 18, 30, 0}));
}

TEST_F(GraphBufferTest, ValueOutsideTheBufferFails)
{
    add(42, 7);
    EXPECT_EQ(buffer.Value(0).RateE().toString(), "42");
    EXPECT_EQ(buffer.Value(511), clsGraphFormat());
    for (std::int32_t index : {-1, 512, INT_MIN, INT_MAX}) {
        SCOPED_TRACE(index);
        test::expectError(ErrorNumber::SubscriptOutOfRange, [&] { (void)buffer.Value(index); });
    }
}

TEST_F(GraphBufferTest, BufferSizeTrimsAndExtendsAtTheOldestEnd)
{
    for (int i = 1; i <= 3; ++i)
        add(i, i);

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

TEST_F(GraphBufferTest, DataShiftMovesTheHistory)
{
    struct Case {
        std::int32_t count;
        std::int32_t direction;
        std::vector<std::string> after; // newest first
    };
    const Case cases[] = {
        {3, clsGraphBuffer::kTowardsPresent, {"2", "1", "fresh", "fresh", "fresh"}},
        {2, clsGraphBuffer::kTowardsPast, {"fresh", "fresh", "5", "4", "3"}},
        {9, clsGraphBuffer::kTowardsPast, {"fresh", "fresh", "fresh", "fresh", "fresh"}},
        {9, clsGraphBuffer::kTowardsPresent, {"fresh", "fresh", "fresh", "fresh", "fresh"}},
        {0, clsGraphBuffer::kTowardsPast, {"5", "4", "3", "2", "1"}},
        {-1, clsGraphBuffer::kTowardsPast, {"5", "4", "3", "2", "1"}},
        {3, 2, {"5", "4", "3", "2", "1"}},
    };
    for (const Case& c : cases) {
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

} // namespace
} // namespace tvx
