#include "measurement/ExpTable.h"
#include "measurement/MeasurementSession.h"
#include "measurement/RecordFormat.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

Currency c(double value)
{
    return Currency::fromDouble(value);
}

TEST(FormatFieldTest, RightAlignsBehindTheGap)
{
    struct Case { FieldValue value; int width, gap, decimals; bool plain; const char* expected; };
    const Case cases[] = {
        {std::int64_t{120}, 6, 1, 0, false, "  120 "},
        {std::int64_t{0}, 6, 1, 0, false, "    0 "},
        {c(1234567), 13, 1, 0, false, "   1,234,567 "},
        {c(1234567), 13, 1, 0, true, "     1234567 "},
        {c(-1234), 10, 1, 0, false, "   -1,234 "},
        {c(5.9), 6, 1, 1, true, "  5.9 "},
        {c(0), 12, 1, 1, false, "        0.0 "},
        {c(1234.5), 12, 1, 1, false, "    1,234.5 "},
        {c(0.25), 6, 1, 0, true, "      "}, // "#" leaves a fraction below one half empty
        // Wider than its field: written whole, the rest moves right.
        {c(123456789), 6, 1, 0, false, " 123,456,789 "},
        {std::string("abc"), 6, 3, 0, false, "   abc "},
        {true, 8, 1, 0, false, "   True "},
        // A full-width character takes a column of the gap, but one blank always stays.
        {std::string("5.83％"), 11, 1, 0, false, "     5.83％ "},
        {std::string("5.83％"), 11, 3, 0, false, "    5.83％ "},
    };
    for (const Case& k : cases)
        EXPECT_EQ(FormatField(k.value, k.width, k.gap, k.decimals, k.plain), k.expected)
            << k.width << "/" << k.gap << "/" << k.decimals;
}

TEST(FormatDurationTest, CountsCalendarMinutes)
{
    const LocalDateTime start{2024, 3, 1, 23, 10, 59};
    EXPECT_EQ(FormatDuration(start, {2024, 3, 2, 0, 15, 0}), "0日 1時 5分間");
    EXPECT_EQ(FormatDuration(start, {2024, 3, 1, 23, 11, 0}), "0日 0時 1分間"); // one second, one minute
    EXPECT_EQ(FormatDuration(start, {2024, 3, 4, 1, 9, 0}), "2日 1時 59分間");
    EXPECT_EQ(FormatNow({2009, 4, 1, 3, 5, 9}), "2009/04/01 03:05:09");
}

TEST(RatesTest, TruncateMinutesAndRoundRatesDown)
{
    EXPECT_EQ(elapsedMinutes(359), c(5.9));
    EXPECT_EQ(elapsedMinutes(3599), c(59.9));
    EXPECT_EQ(elapsedMinutes(-7), c(-0.1));
    EXPECT_EQ(hourlyRate(c(1234567), 3600), c(1234));
    EXPECT_EQ(hourlyRate(c(-1234567), 3600), c(-1235));
    EXPECT_EQ(hourlyRate(c(-1), 3600), c(-1));
    EXPECT_EQ(hourlyRate(c(999), 0), c(0));
}

TEST(ExpTableTest, CumulativeWithinOneToTwoHundred)
{
    EXPECT_EQ(ExpTable(0, c(50)), c(0));
    EXPECT_EQ(ExpTable(201, c(50)), c(0));
    EXPECT_EQ(ExpTable(1), c(0));
    EXPECT_EQ(ExpTable(120, c(7)), c(536150649));
    EXPECT_EQ(ExpTable(200), c(38703313816.0));
    for (int level = 1; level < 200; ++level)
        ASSERT_LT(ExpTable(level), ExpTable(level + 1)) << level;
}

TEST(FailureTextTest, NamesEveryFailedValue)
{
    const Currency bad = c(-1);
    const Currency good = c(5);
    EXPECT_EQ(failureText(-1, bad, bad), "全部 NG");
    EXPECT_EQ(failureText(3, bad, bad), "ExpとMoney NG");
    EXPECT_EQ(failureText(-1, good, bad), "LvとMoney NG");
    EXPECT_EQ(failureText(3, good, bad), "Money NG");
    EXPECT_EQ(failureText(-1, bad, good), "LvとExp NG");
    EXPECT_EQ(failureText(3, bad, good), "Exp NG");
    EXPECT_EQ(failureText(-1, good, good), "Lv NG");
}

} // namespace
} // namespace tvx
