#include "view/HistoryView.h"
#include "view/LiveView.h"
#include "view/LiveWindowModel.h"
#include "measurement/SessionHistory.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(LiveViewTest, TheStateOfTheReadingsAtAGlance)
{
    struct Case { bool running, suspended, alarm; Stall stall; bool latestValid; const char* expected; };
    // Stopped, waiting, reading, stalled without a gain and suspended are the windows' (LiveWindowsTest).
    for (const Case& c : {
             Case{true, false, false, Stall::None, false, "認識失敗"},
             Case{true, false, false, Stall::NoReading, true, "読み取り中"}, // the alarm is off
             Case{true, false, true, Stall::NoReading, false, "停滞：読み取れません"},
             Case{true, true, true, Stall::NoGain, true, "一時停止中"}, // suspended wins over a stall
         }) {
        LiveFigures f;
        f.stall = c.stall;
        f.readings = 4;
        f.latestValid = c.latestValid;
        EXPECT_EQ(liveView(f, {c.running, c.suspended, c.alarm, 30}).stateText, c.expected);
    }
}

TEST(LiveViewTest, FiguresShowWithTheirUnitsAndAbsentOnesAsADash)
{
    LiveFigures f;
    f.hasCharacter = true;
    f.level = 120;
    f.exp = 0;
    f.rates[Window10].exp = 1'234'567;
    f.rates[Window60].level = -0.001;
    f.nextLevelMinutes = 85.25;
    f.nextLevelAt = LocalDateTime{2025, 6, 1, 14, 5, 0};
    LiveView view = liveView(f, {true, false, false, 60});
    EXPECT_EQ(view.levelText, "Lv 120  0.00％");
    ASSERT_EQ(view.compact.size(), 3u); // no money line: money was never read
    EXPECT_EQ(std::tie(view.compact[0].value, view.compact[1].value, view.compact[2].value),
              std::tuple("1,234,567k/h", "—", "85.2分（14:05）"));
    EXPECT_EQ(view.outlook, "Lv 0.00％/h（60分）  次のLvまで 85.2分（14:05）［60分］");
    f.money = 10;
    EXPECT_EQ(liveView(f, {}).compact[2].caption, "メル 60分");
}

TEST(HistoryViewTest, SessionsNewestFirstAndTotalsPerDayAndWeek)
{
    const auto row = [](int day, int hour, std::int64_t seconds, std::int64_t exp, std::optional<std::int64_t> money) {
        HistoryRow r;
        r.start = {2025, 6, day, hour, 0, 0};
        r.end = addSeconds(r.start, seconds);
        r.activeSeconds = seconds;
        r.expGained = exp;
        r.moneyGained = money;
        r.levelUps = 1;
        return r;
    };
    // Sunday 1 June belongs to the week of Monday 26 May; Monday 2 June starts the next.
    const std::vector<HistoryRow> rows{row(1, 10, 3600, 1'000'000, 5000), row(1, 20, 1800, 500'000, std::nullopt),
                                       row(2, 9, 7200, 4'000'000, 1000)};
    const HistoryTable days = historyDays(rows);
    ASSERT_EQ(days.rows.size(), 2u);
    EXPECT_EQ(days.rows[1], (std::vector<std::string>{"2025/06/01", "2", "90.0", "1,500,000", "1,000", "5,000", "5", "2", "0"}));
    // A day without money read has neither money nor money per hour.
    EXPECT_EQ(historyDays({row(4, 8, 600, 100'000, std::nullopt)}).rows.at(0),
              (std::vector<std::string>{"2025/06/04", "1", "10.0", "100,000", "600", "", "", "1", "0"}));
    const HistoryTable weeks = historyWeeks(rows);
    ASSERT_EQ(weeks.rows.size(), 2u);
    EXPECT_EQ(std::tie(weeks.rows[0][0], weeks.rows[1][0]), std::tuple("2025/06/02", "2025/05/26"));

    const std::string csv = historyCsv(rows);
    EXPECT_EQ(csv.substr(0, 3), "\xEF\xBB\xBF");
    EXPECT_HOLDS(csv, "\r\n2025/06/02 09:00:00,2025/06/02 11:00:00,120.0,0,0,4000000,");

    // The history window over a file not written yet: nothing listed, and no fault to name.
    const test::TempFolder temp;
    const HistoryWindowData none = openHistoryWindow(historyFilePath(temp.path()));
    EXPECT_FALSE(none.error);
    EXPECT_TRUE(none.rows.empty());
}

} // namespace
} // namespace tvx
