#include "base/Currency.h"

#include "base/Errors.h"

#include <cmath>
#include <limits>

namespace tvx {
namespace {

[[noreturn]] void overflow()
{
    throw RuntimeError(ErrorNumber::Overflow);
}

// 2^63 as a double: every double at or above it (or below -2^63) is out of range.
constexpr double kRawLimit = 9223372036854775808.0;

Currency fromScaledDouble(double scaled)
{
    if (!std::isfinite(scaled) || scaled >= kRawLimit || scaled < -kRawLimit)
        overflow();
    return Currency::fromRaw(static_cast<std::int64_t>(scaled));
}

} // namespace

Currency Currency::fromInt(std::int64_t whole)
{
    std::int64_t raw = 0;
    if (__builtin_mul_overflow(whole, kScale, &raw))
        overflow();
    return Currency(raw);
}

Currency Currency::fromDouble(double value)
{
    // nearbyint rounds half to even in the default rounding mode.
    return fromScaledDouble(std::nearbyint(value * static_cast<double>(kScale)));
}

Currency Currency::intOf(double value)
{
    const double whole = std::floor(value);
    if (!std::isfinite(whole) || std::fabs(whole) >= kRawLimit / kScale)
        overflow();
    return fromInt(static_cast<std::int64_t>(whole));
}

std::optional<Currency> Currency::parse(std::string_view text)
{
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    const auto dot = text.find('.');
    const std::string_view whole = text.substr(0, dot);
    const std::string_view fraction = dot == std::string_view::npos ? std::string_view{} : text.substr(dot + 1);
    if (whole.empty() && fraction.empty())
        return std::nullopt;
    std::int64_t raw = 0;
    auto addDigit = [&raw](char c) {
        if (__builtin_mul_overflow(raw, 10, &raw) || __builtin_add_overflow(raw, c - '0', &raw))
            overflow();
    };
    for (char c : whole) {
        if (c < '0' || c > '9')
            return std::nullopt;
        addDigit(c);
    }
    for (std::size_t i = 0; i < 4; ++i) {
        const char c = i < fraction.size() ? fraction[i] : '0';
        if (c < '0' || c > '9')
            return std::nullopt;
        addDigit(c);
    }
    for (std::size_t i = 4; i < fraction.size(); ++i) {
        if (fraction[i] < '0' || fraction[i] > '9')
            return std::nullopt;
    }
    // Digits past the fourth decimal round half to even.
    if (fraction.size() > 4) {
        const int next = fraction[4] - '0';
        const bool rest = fraction.find_first_not_of('0', 5) != std::string_view::npos;
        if ((next > 5 || (next == 5 && (rest || raw % 2 != 0))) && __builtin_add_overflow(raw, 1, &raw))
            overflow();
    }
    return Currency(negative ? -raw : raw);
}

Currency Currency::floor() const
{
    std::int64_t whole = m_raw / kScale;
    if (m_raw % kScale < 0)
        --whole;
    return fromInt(whole);
}

std::string Currency::toString() const
{
    const bool negative = m_raw < 0;
    // Work in unsigned so that the most negative value has a magnitude too.
    const std::uint64_t magnitude = negative ? 0 - static_cast<std::uint64_t>(m_raw) : static_cast<std::uint64_t>(m_raw);
    std::string text = negative ? "-" : "";
    text += std::to_string(magnitude / kScale);
    std::uint64_t fraction = magnitude % kScale;
    if (fraction != 0) {
        std::string digits = std::to_string(fraction + kScale).substr(1);
        digits.erase(digits.find_last_not_of('0') + 1);
        text += '.';
        text += digits;
    }
    return text;
}

Currency Currency::operator-() const
{
    if (m_raw == std::numeric_limits<std::int64_t>::min())
        overflow();
    return Currency(-m_raw);
}

Currency& Currency::operator+=(Currency other)
{
    std::int64_t result = 0;
    if (__builtin_add_overflow(m_raw, other.m_raw, &result))
        overflow();
    m_raw = result;
    return *this;
}

Currency& Currency::operator-=(Currency other)
{
    std::int64_t result = 0;
    if (__builtin_sub_overflow(m_raw, other.m_raw, &result))
        overflow();
    m_raw = result;
    return *this;
}

} // namespace tvx
