#pragma once

#include "base/Currency.h"
#include "base/DateTime.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace tvx {

// A value for the fixed-width field formatter: a text (kept as it is), a flag (written
// "True"/"False") or a number.
using FieldValue = std::variant<std::string, bool, std::int64_t, Currency>;

// The value right-aligned in (width - gap - 1) characters plus one trailing blank, behind
// `gap` leading blanks less what double-width characters add (at least one). Numbers get
// `decimals` places; `plain` leaves out the digit grouping.
std::string FormatField(const FieldValue& value, int width, int gap, int decimals, bool plain);

// A number as the formatter writes it, without padding: "0" for zero, "1,234" grouped.
std::string formatNumber(Currency value, int decimals, bool plain);

// The present time as "yyyy/mm/dd hh:mm:ss".
std::string FormatNow(const LocalDateTime& now);

// "D日 H時 M分間" for the calendar minutes from start to end.
std::string FormatDuration(const LocalDateTime& start, const LocalDateTime& end);

} // namespace tvx
