#include "base/Errors.h"
#include "measurement/ExpTable.h"
#include "measurement/LiveFigures.h"
#include "measurement/SessionHistory.h"

#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

namespace tvx {
namespace {

const LocalDateTime kNoon{2025, 6, 1, 12, 0, 0};

// Suspended stretches are no active time, and the tick may wrap between readings.
TEST(LiveTrackerTest, RatesAreOverActiveTimeOnly)
{
    struct Case {
        const char* name;
        std::uint32_t startTick;
        std::uint32_t suspendAfterMs; // 0: never
        std::uint32_t suspendedMs;
    };
    for (const Case& c : {Case{"plain", 5000, 0, 0}, Case{"suspended", 5000, 600'000, 1'800'000},
                          Case{"wrapping tick", 0xFFFF0000u, 600'000, 60'000}}) {
        SCOPED_TRACE(c.name);
        LiveTracker live;
        live.start(c.startTick);
        std::uint32_t tick = c.startTick;
        live.validReading(tick, kNoon, {120, 1000, 500}, false, Window30);
        if (c.suspendAfterMs != 0) {
            live.suspend(tick + c.suspendAfterMs);
            EXPECT_EQ(live.checkStall(tick + c.suspendAfterMs + c.suspendedMs, 1), Stall::None);
            live.resume(tick + c.suspendAfterMs + c.suspendedMs);
        }
        tick += 1'200'000 + c.suspendedMs; // 20 active minutes
        live.validReading(tick, kNoon, {120, 1'000'000, 900}, false, Window30);
        const LiveFigures& f = live.figures();
        EXPECT_EQ(f.rates[Window30].exp, 2997);   // 999,000 in a third of an hour
        EXPECT_EQ(f.rates[Window30].money, 1);    // 400 per 20 minutes: 1.2 k/h
        EXPECT_FALSE(f.rates[Window10].exp);       // the window holds no earlier reading
        EXPECT_EQ(f.rates[WindowSession].exp, 2997);
        const std::int64_t left = (ExpTable(121) - ExpTable(120, Currency::fromInt(1'000'000))).wholePart();
        EXPECT_DOUBLE_EQ(*f.nextLevelMinutes, std::round(left * 60.0 / 2'997'000 * 10) / 10);
        ASSERT_TRUE(live.row());
        EXPECT_EQ(live.row()->activeSeconds, 1200);
    }
}

TEST(LiveTrackerTest, AnEightHourSessionKeepsOnlyTheLastHour)
{
    LiveTracker live;
    live.start(0);
    for (std::uint32_t s = 0; s <= 8 * 3600; s += 10)
        live.validReading(s * 1000, kNoon, {150, 1000 + s * 10, s}, false, Window30);
    EXPECT_LE(live.keptReadings(), 2u * 361u);
    EXPECT_EQ(live.figures().rates[WindowSession].exp, 36); // 10 a second
}

TEST(SessionHistoryTest, RowsSurviveTheFileAndAStrangeFileIsRefused)
{
    test::TempFolder temp;
    const auto path = historyFilePath(temp.path());
    HistoryRow row{kNoon, {2025, 6, 1, 13, 30, 6}, 5406, 120, 122, 99'000'000, 65'926, std::nullopt, std::nullopt, 2, 1};
    saveHistoryRow(path, row);
    HistoryRow later = row;
    later.start.day = 2;
    later.moneyGained = -5;
    later.moneyPerHour = 0;
    saveHistoryRow(path, later);
    row.levelUps = 3; // the running row again: replaced, not added
    saveHistoryRow(path, row);
    EXPECT_EQ(loadHistory(path), (std::vector<HistoryRow>{row, later}));
    EXPECT_HOLDS(test::readAll(path), "2025/06/01 12:00:00,2025/06/01 13:30:06,90.1,120,122,99000000,65926,,,3,1");

    for (const char* text : {"start,end\r\n", "x\r\n2025/06/01 12:00:00,2025/06/01 13:30:06,90.1,1,1,1,,,,0,0\r\n"}) {
        { std::ofstream(path, std::ios::binary) << text; }
        EXPECT_THROW(saveHistoryRow(path, row), RuntimeError) << text;
        EXPECT_EQ(test::readAll(path), text);
    }
    // A session's writer keeps the other rows, and notices a row another meter added meanwhile.
    const auto other = temp.path() / "other.csv";
    HistoryWriter writer;
    writer.save(other, row);
    saveHistoryRow(other, later);
    row.stalls = 4;
    writer.save(other, row);
    EXPECT_EQ(loadHistory(other), (std::vector<HistoryRow>{later, row}));

    for (const char* line : {"2025/06/31 12:00:00,2025/06/01 13:30:06,90.1,1,1,1,,,,0,0",
                             "2025/06/01 12:00:00,2025/06/01 13:30:06,90,1,1,1,,,,0,0",
                             "2025/06/01 12:00:00,2025/06/01 13:30:06,90.1,1,1,1,,x,,0,0"})
        EXPECT_THROW(parseHistory(std::string(kHistoryHeader) + "\n" + line), RuntimeError) << line;
}

} // namespace
} // namespace tvx
