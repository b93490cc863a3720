#include "measurement/SessionHistory.h"

#include "base/Errors.h"
#include "base/Utf8Path.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace tvx {

namespace {

constexpr std::size_t kFields = 11;

std::string optionalText(const std::optional<std::int64_t>& value)
{
    return value ? std::to_string(*value) : std::string();
}

std::vector<std::string_view> splitFields(std::string_view line)
{
    std::vector<std::string_view> fields;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = line.find(',', start);
        fields.push_back(line.substr(start, comma == std::string_view::npos ? line.npos : comma - start));
        if (comma == std::string_view::npos)
            return fields;
        start = comma + 1;
    }
}

std::optional<std::int64_t> wholeNumber(std::string_view text)
{
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return value;
}

std::optional<LocalDateTime> timestamp(std::string_view text)
{
    LocalDateTime t;
    char tail = 0;
    const std::string copy(text);
    if (std::sscanf(copy.c_str(), "%4d/%2d/%2d %2d:%2d:%2d%c", &t.year, &t.month, &t.day, &t.hour, &t.minute,
                    &t.second, &tail) != 6 ||
        formatTimestamp(t) != copy || addSeconds(t, 0) != t)
        return std::nullopt;
    return t;
}

// Tenths of a minute ("12.5") as seconds.
std::optional<std::int64_t> minutesAsSeconds(std::string_view text)
{
    const std::size_t dot = text.find('.');
    const auto whole = wholeNumber(text.substr(0, dot));
    if (!whole || dot == std::string_view::npos || text.size() != dot + 2 || text[dot + 1] < '0' || text[dot + 1] > '9')
        return std::nullopt;
    return *whole * 60 + (text[dot + 1] - '0') * 6;
}

std::optional<HistoryRow> parseRow(std::string_view line)
{
    const auto fields = splitFields(line);
    if (fields.size() != kFields)
        return std::nullopt;
    HistoryRow row;
    const auto start = timestamp(fields[0]);
    const auto end = timestamp(fields[1]);
    const auto seconds = minutesAsSeconds(fields[2]);
    const auto startLevel = wholeNumber(fields[3]);
    const auto endLevel = wholeNumber(fields[4]);
    const auto gained = wholeNumber(fields[5]);
    const auto levelUps = wholeNumber(fields[9]);
    const auto stalls = wholeNumber(fields[10]);
    const auto small = [](const std::optional<std::int64_t>& v) { return v && *v >= 0 && *v <= 1'000'000; };
    if (!start || !end || !seconds || !small(startLevel) || !small(endLevel) || !gained || !small(levelUps) ||
        !small(stalls))
        return std::nullopt;
    const auto optionalField = [&](std::size_t i, std::optional<std::int64_t>& out) {
        if (fields[i].empty())
            return true;
        out = wholeNumber(fields[i]);
        return out.has_value();
    };
    if (!optionalField(6, row.expPerHour) || !optionalField(7, row.moneyGained) ||
        !optionalField(8, row.moneyPerHour))
        return std::nullopt;
    row.start = *start;
    row.end = *end;
    row.activeSeconds = *seconds;
    row.startLevel = static_cast<std::int32_t>(*startLevel);
    row.endLevel = static_cast<std::int32_t>(*endLevel);
    row.expGained = *gained;
    row.levelUps = static_cast<std::int32_t>(*levelUps);
    row.stalls = static_cast<std::int32_t>(*stalls);
    return row;
}

} // namespace

std::filesystem::path historyFilePath(const std::filesystem::path& saveFolder)
{
    return saveFolder / "log" / utf8Path(kHistoryFileName);
}

std::filesystem::path historyFilePath(const Settings& settings)
{
    return historyFilePath(utf8Path(settings.SaveFolder));
}

double historyMinutes(std::int64_t activeSeconds)
{
    return static_cast<double>(activeSeconds / 6) / 10.0;
}

std::string historyLine(const HistoryRow& row)
{
    char minutes[32];
    std::snprintf(minutes, sizeof minutes, "%.1f", historyMinutes(row.activeSeconds));
    return formatTimestamp(row.start) + ',' + formatTimestamp(row.end) + ',' + minutes + ',' +
           std::to_string(row.startLevel) + ',' + std::to_string(row.endLevel) + ',' + std::to_string(row.expGained) +
           ',' + optionalText(row.expPerHour) + ',' + optionalText(row.moneyGained) + ',' +
           optionalText(row.moneyPerHour) + ',' + std::to_string(row.levelUps) + ',' + std::to_string(row.stalls);
}

std::vector<HistoryRow> parseHistory(std::string_view text)
{
    std::vector<HistoryRow> rows;
    std::size_t number = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        std::string_view line = text.substr(start, end - start);
        start = end + 1;
        ++number;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (number == 1 && line == kHistoryHeader)
            continue;
        if (line.empty())
            continue;
        const auto row = number == 1 ? std::nullopt : parseRow(line);
        if (!row)
            throw RuntimeError(ErrorNumber::TypeMismatch, "line " + std::to_string(number));
        rows.push_back(*row);
    }
    return rows;
}

std::vector<HistoryRow> loadHistory(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return {};
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw RuntimeError(ErrorNumber::PermissionDenied, pathUtf8(path));
    std::ostringstream text;
    text << in.rdbuf();
    try {
        return parseHistory(text.str());
    } catch (const RuntimeError& failure) {
        throw RuntimeError(ErrorNumber::TypeMismatch, pathUtf8(path) + " " + failure.what());
    }
}

namespace {

std::string linesOf(const std::vector<HistoryRow>& rows)
{
    std::string text;
    for (const HistoryRow& r : rows)
        text += historyLine(r) + "\r\n";
    return text;
}

void writeHistory(const std::filesystem::path& path, const std::string& text)
{
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error)
        throw RuntimeError(ErrorNumber::PathNotFound, pathUtf8(path.parent_path()));
    // Written beside it and renamed over it: a crash leaves the old history whole.
    std::filesystem::path temporary = path;
    temporary += ".new";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        out.close();
        if (!out) {
            std::filesystem::remove(temporary, error);
            throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(temporary));
        }
    }
    std::filesystem::rename(temporary, path, error);
    if (error) {
        std::filesystem::remove(temporary, error);
        throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(path));
    }
}

} // namespace

void saveHistoryRow(const std::filesystem::path& path, const HistoryRow& row)
{
    std::vector<HistoryRow> rows = loadHistory(path);
    const auto same = std::find_if(rows.begin(), rows.end(), [&](const HistoryRow& r) { return r.start == row.start; });
    if (same != rows.end())
        *same = row;
    else
        rows.push_back(row);
    writeHistory(path, std::string(kHistoryHeader) + "\r\n" + linesOf(rows));
}

void HistoryWriter::save(const std::filesystem::path& path, const HistoryRow& row)
{
    std::error_code error;
    const auto stampNow = [&]() -> std::optional<Stamp> {
        const auto size = std::filesystem::file_size(path, error);
        if (error)
            return std::nullopt;
        const auto time = std::filesystem::last_write_time(path, error);
        return error ? std::nullopt : std::optional(Stamp{size, time});
    };
    // The kept rows hold while nobody else wrote the file since; else it is read again.
    if (path != m_path || row.start != m_start || !m_written || stampNow() != m_written) {
        m_written.reset();
        std::vector<HistoryRow> rows = loadHistory(path);
        std::erase_if(rows, [&](const HistoryRow& r) { return r.start == row.start; });
        m_others = linesOf(rows);
        m_path = path;
        m_start = row.start;
    }
    writeHistory(path, std::string(kHistoryHeader) + "\r\n" + m_others + historyLine(row) + "\r\n");
    m_written = stampNow();
}

} // namespace tvx
