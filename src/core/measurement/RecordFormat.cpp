#include "measurement/RecordFormat.h"
#include "base/Language.h"

#include "shell/TextWidth.h"

#include <algorithm>
#include <cstdlib>

namespace tvx {

namespace {

std::string groupThousands(const std::string& digits)
{
    std::string grouped;
    const std::size_t lead = digits.size() % 3;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && (i + 3 - lead) % 3 == 0)
            grouped += ',';
        grouped += digits[i];
    }
    return grouped;
}

// Rounds |raw| (ten-thousandths) to `decimals` places, half away from zero, and returns
// the whole part and the fraction digits.
std::pair<std::uint64_t, std::string> splitRounded(std::uint64_t magnitude, int decimals)
{
    decimals = std::clamp(decimals, 0, 4);
    std::uint64_t unit = 1;
    for (int i = decimals; i < 4; ++i)
        unit *= 10;
    const std::uint64_t steps = (magnitude + unit / 2) / unit; // in units of 10^-decimals
    std::uint64_t scale = 1;
    for (int i = 0; i < decimals; ++i)
        scale *= 10;
    std::string fraction;
    if (decimals > 0) {
        fraction = std::to_string(steps % scale + scale).substr(1);
    }
    return {steps / scale, fraction};
}

std::string fieldText(const FieldValue& value, int decimals, bool plain)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag ? "True" : "False";
    if (const auto* whole = std::get_if<std::int64_t>(&value))
        return formatNumber(Currency::fromInt(*whole), decimals, plain);
    return formatNumber(std::get<Currency>(value), decimals, plain);
}

} // namespace

std::string formatNumber(Currency value, int decimals, bool plain)
{
    if (value.raw() == 0 && decimals <= 0)
        return "0";
    const bool negative = value.raw() < 0;
    const std::uint64_t magnitude =
        negative ? 0 - static_cast<std::uint64_t>(value.raw()) : static_cast<std::uint64_t>(value.raw());
    const auto [whole, fraction] = splitRounded(magnitude, decimals);
    std::string digits;
    if (decimals > 0)
        digits = std::to_string(whole); // "0." keeps a leading zero
    else if (whole != 0)
        digits = std::to_string(whole); // "#" drops it
    if (!plain)
        digits = groupThousands(digits);
    if (decimals > 0)
        digits += "." + fraction;
    const bool showsSign = negative && digits.find_first_not_of("0.,") != std::string::npos;
    return showsSign ? "-" + digits : digits;
}

std::string FormatField(const FieldValue& value, int width, int gap, int decimals, bool plain)
{
    const std::string text = fieldText(value, decimals, plain);
    const int fieldChars = width - gap - 1;
    const int length = static_cast<int>(characterCount(text));
    std::string field = length < fieldChars ? std::string(static_cast<std::size_t>(fieldChars - length), ' ') + text : text;
    field += ' ';
    const int lead = std::max(1, gap - static_cast<int>(doubleWidthExtra(text)));
    return std::string(static_cast<std::size_t>(lead), ' ') + field;
}

std::string FormatNow(const LocalDateTime& now)
{
    return formatTimestamp(now);
}

std::string FormatDuration(const LocalDateTime& start, const LocalDateTime& end)
{
    const std::int64_t minutes = minutesBetween(start, end);
    return trFormat("%1日 %2時 %3分間", {std::to_string(minutes / 1440), std::to_string(minutes % 1440 / 60),
                                        std::to_string(minutes % 60)});
}

} // namespace tvx
