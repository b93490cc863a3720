#pragma once

#include "config/Settings.h"
#include "measurement/LiveFigures.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// The history of sessions: one row per character of a session, beside the record files.
// Plain ASCII comma-separated lines under a header, oldest first.
inline constexpr std::string_view kHistoryFileName = "セッション履歴.csv";
inline constexpr std::string_view kHistoryHeader =
    "start,end,activeMinutes,startLevel,endLevel,expGained,expPerHour,moneyGained,moneyPerHour,levelUps,stalls";

std::filesystem::path historyFilePath(const Settings& settings);
std::filesystem::path historyFilePath(const std::filesystem::path& saveFolder);

// Active minutes as the history shows them: seconds / 6 truncated, then / 10.
double historyMinutes(std::int64_t activeSeconds);

std::string historyLine(const HistoryRow& row);
// The rows of a history file's text; RuntimeError(TypeMismatch) naming the line that is
// not a row.
std::vector<HistoryRow> parseHistory(std::string_view text);

// The rows of the file, none when it does not exist; RuntimeError naming the file when it
// cannot be read or is not a history.
std::vector<HistoryRow> loadHistory(const std::filesystem::path& path);
// Puts the row in the file: replaces the row of the same start, else adds it. The file is
// replaced whole, and one that cannot be read is left as it is (RuntimeError).
void saveHistoryRow(const std::filesystem::path& path, const HistoryRow& row);

// saveHistoryRow for a session that saves its row after every reading: the other rows are
// read once and kept while the file stays as this writer left it.
class HistoryWriter {
public:
    void save(const std::filesystem::path& path, const HistoryRow& row);

private:
    struct Stamp {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type time{};
        friend bool operator==(const Stamp&, const Stamp&) = default;
    };
    std::filesystem::path m_path;
    LocalDateTime m_start;
    std::string m_others; // every other row's line, in file order
    std::optional<Stamp> m_written;
};

} // namespace tvx
