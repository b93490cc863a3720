#include "view/HistoryView.h"

#include "base/Language.h"

#include "measurement/RecordFormat.h"
#include "measurement/SessionHistory.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace tvx {
namespace {

std::string amount(std::int64_t value)
{
    return formatNumber(Currency::fromInt(value), 0, false);
}

std::string optionalAmount(const std::optional<std::int64_t>& value)
{
    return value ? amount(*value) : std::string();
}

std::string minutes(std::int64_t seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", historyMinutes(seconds));
    return text;
}

std::string date(const LocalDateTime& t)
{
    char text[16];
    std::snprintf(text, sizeof text, "%04d/%02d/%02d", t.year, t.month, t.day);
    return text;
}

// Sessions added up under one day or week.
struct Totals {
    int sessions = 0;
    std::int64_t seconds = 0;
    std::int64_t exp = 0;
    std::optional<std::int64_t> money;
    std::int64_t moneySeconds = 0;
    std::int32_t levelUps = 0;
    std::int32_t stalls = 0;

    void add(const HistoryRow& row)
    {
        ++sessions;
        seconds += row.activeSeconds;
        exp += row.expGained;
        if (row.moneyGained) {
            money = money.value_or(0) + *row.moneyGained;
            moneySeconds += row.activeSeconds;
        }
        levelUps += row.levelUps;
        stalls += row.stalls;
    }

    std::vector<std::string> cells(std::string label) const
    {
        return {std::move(label),
                std::to_string(sessions),
                minutes(seconds),
                amount(exp),
                optionalAmount(thousandsPerHour(exp, seconds * 1000)),
                optionalAmount(money),
                money ? optionalAmount(thousandsPerHour(*money, moneySeconds * 1000)) : std::string(),
                std::to_string(levelUps),
                std::to_string(stalls)};
    }
};

// Headers in Japanese, shown through tr().
constexpr std::array kTotalHeaders{"", N_("回数"), N_("時間(分)"), N_("Exp獲得"), N_("Exp時給(k/h)"), N_("メル獲得"),
                                   N_("メル時給(k/h)"), N_("Lvアップ"), N_("停滞")};

template <std::size_t N>
std::vector<std::string> shownHeaders(const std::array<const char*, N>& japanese)
{
    std::vector<std::string> headers;
    for (const char* header : japanese)
        headers.emplace_back(*header == '\0' ? header : tr(header));
    return headers;
}

template <typename Key>
HistoryTable totals(const std::vector<HistoryRow>& rows, std::string firstHeader, Key key)
{
    std::map<std::string, Totals, std::greater<>> groups;
    for (const HistoryRow& row : rows)
        groups[key(row.start)].add(row);
    HistoryTable table{shownHeaders(kTotalHeaders), {}};
    table.headers[0] = std::move(firstHeader);
    for (const auto& [label, sum] : groups)
        table.rows.push_back(sum.cells(label));
    return table;
}

std::vector<HistoryRow> newestFirst(std::vector<HistoryRow> rows)
{
    std::stable_sort(rows.begin(), rows.end(), [](const HistoryRow& a, const HistoryRow& b) { return a.start > b.start; });
    return rows;
}

constexpr std::array kSessionHeaders{N_("開始"),   N_("終了"),         N_("時間(分)"),      N_("開始Lv"),
                                     N_("終了Lv"), N_("Exp獲得"),      N_("Exp時給(k/h)"),  N_("メル獲得"),
                                     N_("メル時給(k/h)"), N_("Lvアップ"), N_("停滞")};

} // namespace

HistoryTable historySessions(const std::vector<HistoryRow>& rows)
{
    HistoryTable table{shownHeaders(kSessionHeaders), {}};
    for (const HistoryRow& row : newestFirst(rows))
        table.rows.push_back({formatTimestamp(row.start), formatTimestamp(row.end), minutes(row.activeSeconds),
                              std::to_string(row.startLevel), std::to_string(row.endLevel), amount(row.expGained),
                              optionalAmount(row.expPerHour), optionalAmount(row.moneyGained),
                              optionalAmount(row.moneyPerHour), std::to_string(row.levelUps),
                              std::to_string(row.stalls)});
    return table;
}

HistoryTable historyDays(const std::vector<HistoryRow>& rows)
{
    return totals(rows, tr("日付"), [](const LocalDateTime& t) { return date(t); });
}

HistoryTable historyWeeks(const std::vector<HistoryRow>& rows)
{
    return totals(rows, tr("週（月曜から）"), [](const LocalDateTime& t) {
        // Day 0 of the OLE date, 30 December 1899, was a Saturday: five days after a Monday.
        const auto day = static_cast<std::int64_t>(std::floor(toOleDate({t.year, t.month, t.day, 0, 0, 0})));
        const std::int64_t monday = day - (day + 5) % 7;
        return date(addSeconds({1899, 12, 30, 0, 0, 0}, monday * 86400));
    });
}

std::string historyCsv(const std::vector<HistoryRow>& rows)
{
    std::string csv = "\xEF\xBB\xBF";
    const auto line = [&csv](const std::vector<std::string>& cells) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (i > 0)
                csv += ',';
            // Amounts are written without separators so that a spreadsheet sees numbers.
            std::string cell = cells[i];
            cell.erase(std::remove(cell.begin(), cell.end(), ','), cell.end());
            csv += cell;
        }
        csv += "\r\n";
    };
    const HistoryTable table = historySessions(rows);
    line(table.headers);
    for (const auto& row : table.rows)
        line(row);
    return csv;
}

} // namespace tvx
