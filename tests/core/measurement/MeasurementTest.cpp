// The measurement's pieces: formats, rates, records, the tools, the log box, live figures and history.
#include "base/Errors.h"
#include "measurement/ExpTable.h"
#include "measurement/LiveFigures.h"
#include "measurement/MeasurementSession.h"
#include "measurement/RandomTools.h"
#include "measurement/RecordFile.h"
#include "measurement/RecordFormat.h"
#include "measurement/SessionHistory.h"
#include "measurement/TimeLeft.h"
#include "shell/DebugLog.h"
#include "shell/LogBox.h"
#include "support/ExpectError.h"
#include "support/FakeMachine.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <fstream>
#include <numeric>
#include <set>

namespace tvx {
namespace {

Currency c(double value)
{
    return Currency::fromDouble(value);
}

TEST(FormatFieldTest, RightAlignsBehindTheGap)
{
    struct Case { FieldValue value; int width, gap, decimals; bool plain; const char* expected; };
    const Case cases[] = {
        {std::int64_t{120}, 6, 1, 0, false, "  120 "},
        {c(1234567), 13, 1, 0, true, "     1234567 "},
        {c(-1234), 10, 1, 0, false, "   -1,234 "},
        {c(1234.5), 12, 1, 1, false, "    1,234.5 "},
        {c(0.25), 6, 1, 0, true, "      "}, // "#" leaves a fraction below one half empty
        // Wider than its field: written whole, the rest moves right.
        {c(123456789), 6, 1, 0, false, " 123,456,789 "},
        {true, 8, 1, 0, false, "   True "},
        // A full-width character takes a column of the gap, but one blank always stays.
        {std::string("5.83％"), 11, 1, 0, false, "     5.83％ "},
        {std::string("5.83％"), 11, 3, 0, false, "    5.83％ "},
    };
    for (const Case& k : cases)
        EXPECT_EQ(FormatField(k.value, k.width, k.gap, k.decimals, k.plain), k.expected)
            << k.width << "/" << k.gap << "/" << k.decimals;
}

// Durations count calendar minutes; minutes and rates are cut towards minus infinity.
TEST(DurationAndRatesTest, CountCalendarMinutesAndRoundDown)
{
    const LocalDateTime start{2024, 3, 1, 23, 10, 59};
    EXPECT_EQ(FormatDuration(start, {2024, 3, 2, 0, 15, 0}), "0日 1時 5分間");
    EXPECT_EQ(FormatDuration(start, {2024, 3, 1, 23, 11, 0}), "0日 0時 1分間"); // one second, one minute
    EXPECT_EQ(FormatDuration(start, {2024, 3, 4, 1, 9, 0}), "2日 1時 59分間");
    EXPECT_EQ(FormatNow({2009, 4, 1, 3, 5, 9}), "2009/04/01 03:05:09");
    EXPECT_EQ(elapsedMinutes(359), c(5.9));
    EXPECT_EQ(elapsedMinutes(-7), c(-0.1));
    EXPECT_EQ(hourlyRate(c(1234567), 3600), c(1234));
    EXPECT_EQ(hourlyRate(c(-1234567), 3600), c(-1235));
    EXPECT_EQ(hourlyRate(c(999), 0), c(0));
}

TEST(ExpTableTest, CumulativeWithinOneToTwoHundred)
{
    EXPECT_EQ(ExpTable(0, c(50)), c(0));
    EXPECT_EQ(ExpTable(201, c(50)), c(0));
    EXPECT_EQ(ExpTable(1), c(0));
    EXPECT_EQ(ExpTable(120, c(7)), c(536150649));
    EXPECT_EQ(ExpTable(200), c(38703313816.0));
    for (int level = 1; level < 200; ++level)
        ASSERT_LT(ExpTable(level), ExpTable(level + 1)) << level;
}

// Bit 0 of a case: the level was read, bit 1 the experience, bit 2 the money.
TEST(FailureTextTest, NamesEveryFailedValue)
{
    const char* texts[] = {"全部 NG", "ExpとMoney NG", "LvとMoney NG", "Money NG", "LvとExp NG", "Exp NG", "Lv NG"};
    for (int read = 0; read < 7; ++read)
        EXPECT_EQ(failureText(read & 1 ? 3 : -1, c(read & 2 ? 5 : -1), c(read & 4 ? 5 : -1)), texts[read]) << read;
}

TEST(RecordFileTest, HeaderRulesTheEncodingTheFileHasAndRefusalsAsTrappedErrors)
{
    test::TempFolder temp;
    Settings settings = defaultSettings(pathUtf8(temp.path()));
    test::MarkingCodec codec;
    RecordFile records{settings, &codec};
    const char* stamp = "202401311200";
    const auto file = [&] { return test::readAll(recordFilePath(settings, stamp)); };
    const std::string header = "\xEF\xBB\xBF" + recordHeader(false) + "\r\n";
    records.WriteRecordLine("", "no session", RecordFile::kAppend);
    EXPECT_FALSE(std::filesystem::exists(temp.path() / "log"));

    // A record that finds no file only starts it; the next one lands below the header.
    records.WriteRecordLine(stamp, "lost", RecordFile::kAppend);
    records.WriteRecordLine(stamp, "one", RecordFile::kAppend);

    // A second session of the month appends below the first.
    records.WriteRecordLine(stamp, "", RecordFile::kStart);
    records.WriteRecordLine(stamp, "two", RecordFile::kAppend);
    EXPECT_EQ(file(), header + "one\r\ntwo\r\n");

    // A file per session starts afresh.
    settings.SaveMonthly = false;
    records.WriteRecordLine(stamp, "old", RecordFile::kAppend);
    records.WriteRecordLine(stamp, "", RecordFile::kStart);
    EXPECT_EQ(file(), header);

    // Lines are appended in the encoding the file has.
    const std::string cp932Header = " \x8c\x8e\x93\xfa\r\n"; // " 月日" in CP932
    std::ofstream(recordFilePath(settings, stamp), std::ios::binary) << cp932Header;
    records.WriteRecordLine(stamp, "メル", RecordFile::kAppend);
    EXPECT_EQ(file(), cp932Header + "[cp932]メル\r\n");

    std::filesystem::remove(recordFilePath(settings, stamp));
    std::ofstream(recordFilePath(settings, stamp), std::ios::binary) << " 月日\r\n"; // UTF-8 without a mark
    records.WriteRecordLine(stamp, "メル", RecordFile::kAppend);
    EXPECT_EQ(file(), " 月日\r\nメル\r\n");

    std::filesystem::remove_all(temp.path() / "log");
    std::ofstream(temp.path() / "log") << "a file where the folder should be";
    test::expectError(ErrorNumber::PathNotFound, [&] { records.WriteRecordLine(stamp, "x", RecordFile::kAppend); });
    std::filesystem::remove(temp.path() / "log");

    // Longer than any file system allows: refused by the name check or the open, always trapped.
    settings.SaveFile = std::string(300, 'a');
    EXPECT_THROW(records.WriteRecordLine(stamp, "x", RecordFile::kStart), RuntimeError);
    EXPECT_THROW(records.WriteRecordLine(stamp, "x", RecordFile::kAppend), RuntimeError);
}

TEST(TimeLeftTest, AsksTargetAndRateForTheHoursToTheTargetAndStopsOnCancel)
{
    const Currency reached = ExpTable(120);
    EXPECT_EQ(timeLeftLine(120, reached, 121, 500), "\r\n  Lv121まで、あと 29,716 Kexp、59.43時間です\r\n");
    // At or below what is reached; a rate of 0 counts as 0.1 k/h.
    EXPECT_EQ(timeLeftLine(120, reached + Currency::fromInt(2000), 120, 0),
              "\r\n  Lv120まで、かつて -2 Kexp、-20.00時間です\r\n");

    test::FakeMachine machine;
    DebugLog log({}, machine.clock);
    LogBox box;
    machine.numbers = {121, 500};
    menuTimeLeft_Click(120, reached, Currency::fromInt(42), machine, box, log);
    ASSERT_EQ(machine.count("ask あと何時間？"), 2u);
    EXPECT_EQ(machine.events[1], "ask あと何時間？ | 時給Exp(k)を入力してください | 0.1 100000 42.000000 500");

    box.clear();
    menuTimeLeft_Click(120, reached, Currency{}, machine, box, log); // cancelled
    menuTimeLeft_Click(199, ExpTable(199), Currency{}, machine, box, log);
    EXPECT_EQ(box.text(), "\r\nLv200到達まであとひとつ。がんばって！\r\n");
}

TEST(RandomToolsTest, RangesAndSequences)
{
    Rnd rnd(7);
    std::set<int> seen;
    for (int i = 0; i < 200; ++i)
        seen.insert(RandomInt(rnd, 2, 1));
    EXPECT_EQ(seen, (std::set<int>{1, 2}));

    const std::vector<std::string> lines = test::splitLines(RandomSequence(rnd, 128, 1, 10, 4));
    ASSERT_EQ(lines.size(), 14u); // the title and thirteen lines of at most ten
    EXPECT_EQ(lines[0], "  1 ～ 128 の範囲の乱数列は以下のとおりです");
    std::vector<int> numbers;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        ASSERT_TRUE(lines[i].starts_with("    ") && lines[i].size() <= 4u + 50u) << lines[i];
        for (std::size_t at = 4; at < lines[i].size(); at += 5)
            numbers.push_back(std::stoi(lines[i].substr(at, 5)));
    }
    std::sort(numbers.begin(), numbers.end());
    std::vector<int> all(128);
    std::iota(all.begin(), all.end(), 1);
    EXPECT_EQ(numbers, all);
}

// The cut to the newest 512 lines is asserted where the windows show the box.
TEST(LogBoxTest, TheCaretFollowsTheTextUnlessToldToStay)
{
    LogBox box;
    box.write("line\r\n");
    EXPECT_EQ(box.caret(), box.text().size());
    box.write("a\r\nb\r\n", false);
    EXPECT_EQ(box.text().substr(box.caret()), "a\r\nb\r\n");
}

const LocalDateTime kNoon{2025, 6, 1, 12, 0, 0};

// Suspended stretches are no active time, and the tick may wrap between readings.
TEST(LiveTrackerTest, RatesAreOverActiveTimeOnlyAndALongSessionKeepsTheLastHour)
{
    struct Case { const char* name; std::uint32_t startTick, suspendAfterMs, suspendedMs; }; // suspended after 0: never
    for (const Case& c : {Case{"plain", 5000, 0, 0}, Case{"wrapping tick", 0xFFFF0000u, 600'000, 1'800'000}}) {
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
        ASSERT_TRUE(live.row());
        EXPECT_EQ(live.row()->activeSeconds, 1200);
    }

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
    std::ofstream(path, std::ios::binary) << "start,end\r\n";
    EXPECT_THROW(saveHistoryRow(path, row), RuntimeError);
    EXPECT_EQ(test::readAll(path), "start,end\r\n");

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
