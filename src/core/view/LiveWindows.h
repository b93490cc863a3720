#pragma once

#include "measurement/LiveFigures.h"
#include "view/LiveView.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class Meter;

// What the compact and the history windows of every front end share beyond LiveView and
// HistoryView: the live view of a running meter, the captions of their controls, and the
// history's load and export with the words a failure gets.

// The live view as the meter stands: its figures, whether a session runs or is suspended,
// and the live settings.
LiveView meterLiveView(Meter& meter);

inline constexpr std::string_view kCompactCloseCaption = "閉じる";
// The context menu's opacity item: "不透明度 90％".
std::string compactOpacityCaption(std::int32_t percent);

inline constexpr std::array<std::string_view, 3> kHistoryTabCaptions{"セッション", "日ごと", "週ごと"};
inline constexpr std::string_view kHistoryExportCaption = "CSVに書き出す...";
inline constexpr std::string_view kHistoryCloseCaption = "閉じる";
inline constexpr std::string_view kHistoryExportFilter = "CSV (*.csv)";

// The rows of the history file for the window; an unreadable file gives no rows and the
// message naming it. The file is left as it is.
struct HistoryLoad {
    std::vector<HistoryRow> rows;
    std::optional<std::string> message;
};
HistoryLoad loadHistoryForWindow(const std::filesystem::path& historyFile);

// Writes historyCsv(rows) to target; the message for the player when it could not be
// written. The history file itself is never the target: its rows would be lost.
std::optional<std::string> exportHistory(const std::filesystem::path& target, const std::filesystem::path& historyFile,
                                         const std::vector<HistoryRow>& rows);

} // namespace tvx
