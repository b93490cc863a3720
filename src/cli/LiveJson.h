#pragma once

#include "measurement/LiveFigures.h"

#include <cstdint>
#include <string>

namespace tvx::cli {

// What one reading showed, for the live line: the values read (-1 where a region was not),
// and whether the reading was valid, so that its figures count.
struct LiveLineReading {
    std::int64_t second = 0;
    std::int32_t level = -1;
    std::int64_t exp = -1;
    bool valid = false;
};

// One JSON line of `replay --live`: the reading and the rolling figures after it, absent
// figures as null.
std::string liveJsonLine(const LiveLineReading& reading, const LiveFigures& figures);
// One JSON line of `history`.
std::string historyJsonLine(const HistoryRow& row);

} // namespace tvx::cli
