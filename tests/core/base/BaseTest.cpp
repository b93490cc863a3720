// Basic types: money amounts that never wrap.
#include "base/Currency.h"
#include "base/Errors.h"
#include "support/ExpectError.h"

#include <gtest/gtest.h>

#include <limits>

namespace tvx {
namespace {

TEST(Currency, ParsesDecimalTextExactly)
{
    struct Case { const char* text; std::optional<std::int64_t> raw; };
    for (const Case& c : {Case{"0", 0}, Case{"1234567", 12345670000}, Case{"0001", 10000}, Case{"-1", -10000},
                          Case{"12.5", 125000}, Case{".5", 5000}, Case{"1.23456", 12346}, Case{"1.23455", 12346},
                          Case{"1.23465", 12346}, Case{"1.234651", 12347}, Case{"922337203685477", 9223372036854770000},
                          Case{"", std::nullopt}, Case{"-", std::nullopt}, Case{"12a", std::nullopt},
                          Case{"1,000", std::nullopt}, Case{"1.2.3", std::nullopt}}) {
        const auto parsed = Currency::parse(c.text);
        ASSERT_EQ(parsed.has_value(), c.raw.has_value()) << c.text;
        if (parsed) {
            EXPECT_EQ(parsed->raw(), *c.raw) << c.text;
        }
    }
    EXPECT_THROW(Currency::parse("922337203685478"), RuntimeError);
    EXPECT_THROW(Currency::parse("99999999999999999999"), RuntimeError);
}

TEST(Currency, StoredDivisionsRoundHalfToEvenAndIntRoundsDown)
{
    struct Case {
        double value;
        std::int64_t rounded; // raw, four decimals
        std::int64_t floored; // whole
    };
    for (const Case& c : {Case{1.03125, 10312, 1}, Case{1.09375, 10938, 1}, Case{-1.03125, -10312, -2}, Case{2.0 / 3.0, 6667, 0},
                          Case{-2.0 / 3.0, -6667, -1}, Case{1234.99, 12349900, 1234}, Case{-0.1, -1000, -1},
                          Case{-3.0, -30000, -3}, Case{450.0, 4500000, 450}}) {
        EXPECT_EQ(Currency::fromDouble(c.value).raw(), c.rounded) << c.value;
        EXPECT_EQ(Currency::intOf(c.value).wholePart(), c.floored) << c.value;
    }
    EXPECT_EQ(Currency::fromRaw(-12345).floor().raw(), -20000);
    EXPECT_EQ(Currency::fromRaw(12345).floor().raw(), 10000);
    EXPECT_EQ(Currency::fromRaw(-10000).floor().raw(), -10000);
}

TEST(Currency, OverflowIsReportedNotWrapped)
{
    const Currency top = Currency::fromRaw(std::numeric_limits<std::int64_t>::max());
    const Currency bottom = Currency::fromRaw(std::numeric_limits<std::int64_t>::min());
    const auto expectOverflow = [](auto&& operation) { test::expectError(ErrorNumber::Overflow, operation); };
    expectOverflow([&] { return top + Currency::fromRaw(1); });
    expectOverflow([&] { return bottom - Currency::fromRaw(1); });
    expectOverflow([&] { return -bottom; });
    expectOverflow([] { return Currency::fromInt(std::int64_t{1} << 60); });
    expectOverflow([] { return Currency::fromDouble(1e16); });
    expectOverflow([] { return Currency::intOf(std::numeric_limits<double>::infinity()); });
    expectOverflow([] { return Currency::fromDouble(std::numeric_limits<double>::quiet_NaN()); });
    Currency kept = top;
    EXPECT_THROW(kept += Currency::fromRaw(5), RuntimeError);
    EXPECT_EQ(kept, top);
}

} // namespace
} // namespace tvx
