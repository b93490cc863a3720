#pragma once

#include "base/Currency.h"

#include <cstdint>

namespace tvx {

inline constexpr std::int32_t kMaxLevel = 200;

// Cumulative experience needed to reach `level` from level 1, plus `offset`; 0 outside
// 1..200 (the offset is then not added either).
Currency ExpTable(std::int32_t level, Currency offset = Currency{});

} // namespace tvx
