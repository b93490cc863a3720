#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tvx {

// Amounts of experience and money: a signed 64-bit integer counting ten-thousandths, so
// totals far beyond 32 bits stay exact. Arithmetic that leaves the range raises
// RuntimeError(Overflow) instead of wrapping.
class Currency {
public:
    static constexpr std::int64_t kScale = 10000;

    constexpr Currency() = default;

    static constexpr Currency fromRaw(std::int64_t raw) { return Currency(raw); }
    static Currency fromInt(std::int64_t whole);
    // Rounds to four decimals, half to even, as a stored division does.
    static Currency fromDouble(double value);
    // Int(): the largest whole number not above value (toward minus infinity).
    static Currency intOf(double value);
    // A decimal text such as "1234" or "-12.5"; nullopt when it is no number, and
    // RuntimeError(Overflow) when it is a number too large to hold.
    static std::optional<Currency> parse(std::string_view text);

    constexpr std::int64_t raw() const { return m_raw; }
    double toDouble() const { return static_cast<double>(m_raw) / kScale; }
    // The whole part, truncated toward zero.
    constexpr std::int64_t wholePart() const { return m_raw / kScale; }
    Currency floor() const;
    // Shortest decimal text: "1234", "-0.5", "12.3456".
    std::string toString() const;

    Currency operator-() const;
    Currency& operator+=(Currency other);
    Currency& operator-=(Currency other);
    friend Currency operator+(Currency a, Currency b) { return a += b; }
    friend Currency operator-(Currency a, Currency b) { return a -= b; }
    friend constexpr auto operator<=>(Currency, Currency) = default;

private:
    constexpr explicit Currency(std::int64_t raw) : m_raw(raw) {}
    std::int64_t m_raw = 0;
};

} // namespace tvx
