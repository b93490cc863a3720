#pragma once

#include "base/Language.h"
#include "measurement/LiveFigures.h"
#include "view/HistoryView.h"
#include "view/LiveView.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class Meter;

// What the windows of the live figures share beyond LiveView and HistoryView: the meter's
// live texts as of now, the compact window's menu, and the history window's loading and
// export with their messages. Captions are Japanese, marked for the catalogue, and shown
// through tr(); the messages come already in the player's language.

// The live texts of the meter's session in the light of its settings.
LiveView meterLiveView(Meter& meter);

// The compact window's context menu: one item per opacity of kCompactOpacities, then close.
std::string compactOpacityCaption(std::int32_t percent);
inline constexpr std::string_view kCompactCloseCaption = N_("小窓を閉じる");

// The history window: a page per table (sessions, days, weeks), an export and a close button.
inline constexpr std::array<std::string_view, 3> kHistoryPages{N_("セッション"), N_("日別"), N_("週別")};
// The leading columns of each page that hold dates; the figures after them align right.
inline constexpr std::array<std::size_t, 3> kHistoryDateColumns{2, 1, 1};
inline constexpr std::string_view kHistoryExportCaption = N_("CSVに書き出す...");
inline constexpr std::string_view kHistoryCloseCaption = N_("閉じる");
inline constexpr std::string_view kHistoryExportName = "セッション履歴.csv";

struct HistoryWindowData {
    std::vector<HistoryRow> rows;
    std::array<HistoryTable, 3> tables; // in the order of kHistoryPages
    // The message naming the file when it could not be read; there are no rows then.
    std::optional<std::string> error;
};

// Reads the history file for the window; it is never written here.
HistoryWindowData openHistoryWindow(const std::filesystem::path& historyFile);

// Writes the rows as historyCsv into target, replacing it whole. The message for the
// player when that failed (target untouched), or when target is the history file itself,
// whose own format the export would destroy.
std::optional<std::string> exportHistory(const std::vector<HistoryRow>& rows, const std::filesystem::path& target,
                                         const std::filesystem::path& historyFile);

} // namespace tvx
