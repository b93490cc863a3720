#pragma once

#include "base/Language.h"
#include "measurement/LiveFigures.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

inline constexpr std::string_view kHistoryTitle = N_("セッション履歴"); // shown through tr()

// The history window's tables: the sessions newest first, and their totals per day and per
// week (weeks begin on Monday), each as rows of texts under headers.
struct HistoryTable {
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows;
};

HistoryTable historySessions(const std::vector<HistoryRow>& rows);
HistoryTable historyDays(const std::vector<HistoryRow>& rows);
HistoryTable historyWeeks(const std::vector<HistoryRow>& rows);

// The sessions as a CSV file for a spreadsheet: UTF-8 with a byte order mark, a header in
// the window's words (its language), newest first.
std::string historyCsv(const std::vector<HistoryRow>& rows);

} // namespace tvx
