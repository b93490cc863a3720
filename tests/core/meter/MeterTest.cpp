// The engine over the fake machine: records, log box and graph; failed and missing readings, stops and closes
// during waits, error traps, the debug switch, the level watch, gestures, capture routes and the images kept.
#include "config/SettingRanges.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/CsvFields.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"
#include "view/FormMainCommands.h"
#include "view/RegionPreview.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>

namespace tvx {
namespace {

using test::countOf;
using test::gameCapture;
using Fields = std::vector<std::string>;

const LocalDateTime kStart{2009, 4, 1, 13, 5, 0};

// The whole engine over the fake machine, with its own save folder and debug log.
class MeterTest : public testing::Test {
protected:
    MeterTest() { restart(); }

    // A fresh machine and engine over the same folder and log, the settings as at first.
    void restart()
    {
        m_meter.reset();
        machine = test::FakeMachine{};
        machine.clock.setNow(kStart);
        settings = defaultSettings(pathUtf8(temp.path()));
        settings.StartDelay = 0;
    }

    Meter& meter()
    {
        if (!m_meter) {
            MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, machine, &machine};
            m_meter = std::make_unique<Meter>(settings, ports, log);
            m_meter->state().graph = std::make_unique<clsGraphBuffer>(machine.clock);
        }
        return *m_meter;
    }

    void show(const std::string& level, const std::string& exp, const std::string& money)
    {
        machine.screens = {gameCapture({level, exp, money})};
    }

    // One cycle at a second of the session with these numbers on the screen.
    void cycle(std::int64_t seconds, const std::string& level, const std::string& exp, const std::string& money)
    {
        machine.clock.setNow(addSeconds(kStart, seconds));
        machine.clock.setTickMs(static_cast<std::uint32_t>(seconds * 1000));
        show(level, exp, money);
        meter().cycle().runCycle();
    }

    // One timer tick a capture interval after the last.
    void tick(const std::string& level, const std::string& exp)
    {
        show(level, exp, "");
        machine.clock.advanceMs(6 * 60 * 1000);
        meter().cycle().timCaptureInterval_Timer();
    }

    std::vector<std::string> recordLines()
    {
        return test::splitLines(test::readAll(temp.path() / "log" / utf8Path("給与明細200904月.csv")));
    }

    // The fields of each record of April 2009, the header left out.
    std::vector<Fields> records()
    {
        const std::vector<std::string> lines = recordLines();
        std::vector<Fields> rows;
        for (std::size_t i = 1; i < lines.size(); ++i)
            rows.push_back(test::csvFields(lines[i]));
        return rows;
    }

    static Fields expLabels(const ResultLabels& l) { return {l.End.Lv, l.End.Exp, l.Elapse.Lv, l.Elapse.Exp}; }

    std::string box() { return meter().logBox().text(); }
    std::string debugText() { return test::readAll(log.path()); }

    test::TempFolder temp;
    test::FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};

private:
    std::unique_ptr<Meter> m_meter;
};

TEST_F(MeterTest, WholeSessionMakesTheRecordsOfEveryCase)
{
    settings.SaveCsv = true;
    meter().menuRun_Click();
    cycle(100, "10", "100", "5000");  // bases
    cycle(460, "10", "100", "5000");  // nothing moved
    cycle(820, "10", "350", "5000");  // only experience moved
    cycle(1180, "10", "350", "5610"); // only money moved
    cycle(1900, "12", "10", "5700");  // both moved, two levels up through the table
    cycle(2260, "12", "10", "");      // money not read, experience still
    cycle(2620, "12", "20", "");      // money not read, experience moved
    cycle(2980, "8", "5", "100");     // level fell: another character
    cycle(3340, "8", "50", "100");    // its bases
    cycle(3700, "8", "80", "150");
    // Rates of the records, a zero point for each reading without a record, and the
    // averaging window's zeros after the change of character.
    EXPECT_EQ(meter().state().graph->Value(0).RateE(), Currency{});
    EXPECT_EQ(meter().state().graph->Value(settings.GraphAveNum).RateM(), Currency::fromInt(-1));
    cycle(4060, "5", "10", ""); // another character, money hidden: money waits for its own reading
    cycle(4420, "5", "20", "");
    cycle(4780, "5", "40", "");
    meter().menuStop_Click();

    EXPECT_EQ(recordLines().at(0), "\xEF\xBB\xBF" + recordHeader(true));
    const std::vector<Fields> expected{
        {"04/01 13:18", "10", "3697", "5000", "250", "0", "6.0", "2", "0.0", "0"},
        {"04/01 13:24", "10", "3697", "5610", "0", "610", "0.0", "0", "6.0", "6"},
        {"04/01 13:36", "12", "7433", "5700", "3736", "90", "12.0", "18", "12.0", "0"},
        {"04/01 13:48", "12", "7443", "5700", "10", "0", "6.0", "0", "0.0", "0"},
        {"04/01 14:06", "8", "1345", "150", "30", "50", "6.0", "0", "6.0", "0"},
        {"04/01 14:24", "5", "238", "", "20", "", "6.0", "0", "", ""},
    };
    EXPECT_EQ(records(), expected);

    EXPECT_HOLDS(box(), "\r\nキャラクタチェンジ検出\r\n" + std::string(kLogHeader) + "\r\n");
    EXPECT_HOLDS(box(), "    増加  Lv:   0    Exp:           20");
}

TEST_F(MeterTest, MoneyHasNoTimeRateOrCurveUntilItIsRead)
{
    // The money re-reads' waits shift the first reading's minutes.
    struct Case { const char* name; bool scan; const char* secondMinutes; };
    for (const Case& k : {Case{"money not scanned", false, "6.0"}, Case{"scanned, not found at first", true, "5.9"}}) {
        SCOPED_TRACE(k.name);
        restart();
        std::filesystem::remove_all(temp.path() / "log");
        settings.SaveCsv = true;
        settings.MoneyScan = k.scan;
        meter().menuRun_Click();
        cycle(100, "10", "100", ""); // bases, money unread
        cycle(460, "10", "350", "");
        cycle(820, "10", "600", "500"); // money's first reading is its base
        cycle(1180, "10", "850", "860");
        meter().menuStop_Click();

        const std::vector<Fields> expected{
            {"04/01 13:12", "10", "3697", "", "250", "", "6.0", "2", "", ""},
            {"04/01 13:18", "10", "3947", "500", "250", "0", k.secondMinutes, "2", "0.0", "0"},
            {"04/01 13:24", "10", "4197", "860", "250", "360", "6.0", "2", "6.0", "3"},
        };
        EXPECT_EQ(records(), expected);
        // The graph: a gap where money had no rate, then its rates.
        const clsGraphBuffer& graph = *meter().state().graph;
        const std::vector<Currency> rates{graph.Value(2).RateM(), graph.Value(1).RateM(), graph.Value(0).RateM()};
        EXPECT_EQ(rates, (std::vector{Currency::fromInt(-1), Currency::fromInt(-1), Currency::fromInt(3)}));
        const std::string text = box();
        for (const std::string& shown : test::splitLines(text))
            EXPECT_TRUE(!shown.starts_with("04/01") || shown.find('-') == std::string::npos) << shown;
        EXPECT_EQ(countOf(text, "     未認識 \r\n"), k.scan ? 1u : 0u) << text;
    }
}

TEST_F(MeterTest, MoneyIsReadAgainOnlyWhenItWasMissedAndScanned)
{
    const CaptureBitmap noMoney = gameCapture({"30", "100", ""});
    const CaptureBitmap money = gameCapture({"30", "100", "700"});
    using W = GameWindowState;
    // grabs more than one: re-read after waiting for the money window, then once more; money 99: no hand-over.
    const struct { const char* name; bool scan; std::deque<std::optional<CaptureBitmap>> screens; std::deque<W> windows;
                   int grabs; std::int64_t money; } cases[] = {
        {"scan off", false, {noMoney}, {W::Front}, 1, -1},
        {"level 0", true, {gameCapture({"0", "100", ""})}, {W::Front}, 1, -1},
        {"found at the second try", true, {noMoney, noMoney, money}, {W::Front}, 3, 700},
        {"missed twice", true, {noMoney}, {W::Front}, 3, -1},
        {"game left", true, {noMoney}, {W::Front, W::Front, W::Background}, 2, 99},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(k.name);
        restart();
        machine.screens = k.screens;
        machine.windows = k.windows;
        settings.MoneyScan = k.scan;
        settings.CaptureBeep = 2;
        meter().menuRun_Click();
        machine.events.clear();
        const std::size_t logged = box().size();
        meter().cycle().runCycle();
        EXPECT_EQ(machine.grabs, k.grabs);
        std::erase_if(machine.events, [](const std::string& e) { return e.starts_with("caption"); });
        EXPECT_EQ(machine.events, (k.grabs > 1 ? Fields{"beep 500 75", "wait 1500", "wait 1000"} : Fields{}));
        const bool handedOver = box().size() > logged;
        EXPECT_EQ(handedOver, k.money != 99);
        if (handedOver)
            EXPECT_EQ(meter().session().CurrentMoney, Currency::fromInt(k.money));
        else
            EXPECT_EQ(meter().session().NextCaptureTime, addSeconds(machine.clock.now(), 15));
    }
}

// Idle for the stall minutes, then readings failing for as long, then a gain and idle again:
// the alarm sounds for the first and the last stall only, and never while it is off.
TEST_F(MeterTest, TheStallAlarmSoundsOncePerStallAndAgainAfterAGain)
{
    for (const bool alarm : {true, false}) {
        SCOPED_TRACE(alarm);
        restart();
        settings.StallAlarm = alarm;
        settings.CaptureBeep = 2;
        show("50", "1000", "");
        meter().menuRun_Click();
        const std::pair<std::int64_t, const char*> readings[] = {
            {0, "1000"}, {300, "2000"}, {600, "2000"}, {900, "2000"}, {1199, "2000"}, {1200, "2000"},
            {1500, ""},  {1800, ""},    {2100, ""},    {2400, ""},    {2500, "3000"}, {3400, "3000"}};
        std::vector<std::size_t> beeps;
        for (const auto& [second, exp] : readings) {
            machine.events.clear();
            cycle(second, "50", exp, "");
            meter().cycle().timCaptureInterval_Timer();
            beeps.push_back(machine.count("beep"));
        }
        EXPECT_EQ(countOf(box(), "  停滞  15分間経験値が増えていません"), alarm ? 2u : 0u) << box();
        EXPECT_EQ(beeps, (std::vector<std::size_t>{0, 0, 0, 0, 0, alarm, 0, 0, 0, 0, 0, alarm}));
        EXPECT_EQ(meter().session().live().row()->stalls, 2);
    }
}

TEST_F(MeterTest, AFailedReadingIsReportedAndChangesNeitherLabelsNorRecordsNorSummary)
{
    settings.SaveCsv = true;
    meter().menuRun_Click();
    cycle(40, "", "", "");
    EXPECT_TRUE(box().ends_with("\r\n04/01 13:05  認識失敗  全部 NG\r\n"));
    EXPECT_FALSE(std::filesystem::exists(temp.path() / "log")) << "no record before a reading";
    cycle(100, "10", "100", "");
    cycle(460, "11", "50", "");
    const Fields before = expLabels(meter().state().labels);
    const struct { const char* lv; const char* exp; const char* said; } failures[] = {
        {"", "", "LvとExp NG"}, {"12", "", "Exp NG"}, {"", "70", "Lv NG"}};
    for (const auto& f : failures) {
        cycle(820, f.lv, f.exp, "33");
        meter().session().DisplayResult(MeasurementSession::kUpdate); // as the level watch's burst does
        EXPECT_TRUE(box().ends_with(std::string("04/01 13:18  認識失敗  ") + f.said + "\r\n")) << box();
        EXPECT_EQ(expLabels(meter().state().labels), before) << f.said;
    }
    EXPECT_EQ(records().size(), 1u);
    meter().menuStop_Click();
    EXPECT_HOLDS(box(), "    終了  Lv:  11    Exp:           50 ");
    EXPECT_HOLDS(box(), "    増加  Lv:   1    Exp:         1666 ");
}

TEST_F(MeterTest, AReadingThatOutlivesItsSessionIsDropped)
{
    settings.MoneyScan = true;
    settings.SaveCsv = true;
    meter().menuRun_Click();
    // The player stops while the cycle waits for the money window, then starts again.
    machine.onWait = [this](std::int32_t ms) {
        if (ms == settings.MoneyWait) {
            meter().menuStop_Click();
            meter().menuRun_Click();
        }
    };
    cycle(100, "10", "100", "");
    machine.onWait = nullptr;
    EXPECT_EQ(machine.grabs, 1) << "no money re-read for a session that ended";

    cycle(460, "10", "350", "700");
    cycle(820, "10", "600", "700");
    ASSERT_EQ(records().size(), 1u) << "the first reading of the new session is its base";
    EXPECT_EQ(records()[0][6], "6.0");
    EXPECT_EQ(countOf(box(), " 経過: "), 1u) << "one summary, of the first session";
}

TEST_F(MeterTest, AnUnwritableRecordFolderAndAMissingGameAreToldOnceASessionAndTheSessionGoesOn)
{
    const auto blocker = temp.path() / "blocked";
    std::ofstream(blocker) << "a file where the folder should be";
    settings.SaveFolder = pathUtf8(blocker);
    settings.MoneyScan = true;
    const std::string unwritable = "message エラー: 時給記録ファイルに書き込めません。";
    const std::string missing = "notice エラー: MapleStoryが起動していません";
    meter().menuRun_Click();
    cycle(100, "10", "100", "5000");
    cycle(460, "10", "350", "5900");
    cycle(820, "10", "600", "5900");
    EXPECT_EQ(countOf(box(), "04/01 13:"), 2u) << "each record once, none piled up";
    machine.windows = {GameWindowState::Missing};
    const int grabs = machine.grabs;
    meter().cycle().runCycle();
    meter().cycle().runCycle();
    EXPECT_EQ(machine.grabs, grabs) << "nothing to take a picture of";
    EXPECT_EQ(machine.count(unwritable), 1u);
    EXPECT_EQ(machine.count(missing), 1u);
    meter().menuStop_Click();
    EXPECT_EQ(machine.count("notice hidden"), 1u) << "the notice goes with the session";

    // Both are said again in the next session, which starts from nothing.
    meter().menuRun_Click();
    meter().cycle().runCycle();
    EXPECT_EQ(machine.count(missing), 2u);
    machine.windows = {GameWindowState::Front};
    cycle(1180, "", "", ""); // nothing read: no money re-read either
    EXPECT_EQ(machine.count("notice hidden"), 2u) << "the game is back";
    cycle(1540, "10", "700", "");
    EXPECT_EQ(machine.count(unwritable), 2u);
    meter().logBox().clear();
    meter().menuStop_Click();
    for (const char* before : {"5000", "5900", "3697"})
        EXPECT_LACKS(box(), before) << "in the summary";
}

TEST_F(MeterTest, TheTimerRunsACycleOnlyWhenItIsTimeCycleSkipHoldsItAndAGameBehindIsTriedAgainIn15Seconds)
{
    show("50", "1", "1");
    meter().menuRun_Click();
    meter().cycle().timCaptureInterval_Timer();
    machine.clock.advanceMs(20000);
    meter().state().cycleSkip = true;
    meter().cycle().timCaptureInterval_Timer();
    meter().watch().timDoHLInterval_Timer();
    EXPECT_EQ(machine.grabs, 0) << "not yet time, then held";
    meter().state().cycleSkip = false;
    meter().cycle().timCaptureInterval_Timer();
    EXPECT_EQ(machine.grabs, 1) << "the held cycle runs at the next tick";
    EXPECT_EQ(meter().session().NextCaptureTime, addSeconds(machine.clock.now(), 6 * 60));

    machine.windows = {GameWindowState::Background};
    for (int pass = 1; pass <= 480; ++pass)
        meter().cycle().runCycle();
    EXPECT_EQ(machine.grabs, 1) << "no picture of a game behind another window";
    EXPECT_EQ(meter().session().NextCaptureTime, addSeconds(machine.clock.now(), 15));
    meter().state().graph->AddGraphData(Currency::fromInt(9), Currency::fromInt(9), 1, 1);
    EXPECT_EQ(meter().cycle().missCount(), 480);
    meter().cycle().runCycle(); // the 481st adds a zero point
    EXPECT_EQ(meter().state().graph->Value(0).RateE(), Currency{});
    EXPECT_EQ(meter().state().graph->Value(1).RateE(), Currency::fromInt(9));

    meter().menuStop_Click();
    meter().state().controls.captureTimerEnabled = true;
    machine.clock.advanceMs(6 * 60 * 1000);
    meter().cycle().timCaptureInterval_Timer(); // no session: the timer switches itself off
    EXPECT_FALSE(meter().state().controls.captureTimerEnabled);
    EXPECT_EQ(machine.grabs, 1);
}

TEST_F(MeterTest, SuspendPausesTheTimerAResumeReadsOnceAndGesturesAlwaysSaySo)
{
    const auto gesture = [this](Gesture g) {
        const std::size_t before = box().size();
        meter().runGesture(g);
        return box().substr(before);
    };
    meter().session().ChangeSuspend(0); // idle: only the log line
    EXPECT_FALSE(meter().session().Suspended);
    show("5", "6", "7");
    meter().menuRun_Click();
    meter().cycle().cmdTempStop_Click(3);
    EXPECT_FALSE(meter().state().controls.captureTimerEnabled);
    EXPECT_TRUE(meter().state().controls.tempStopRed);
    EXPECT_EQ(gesture(Gesture::Suspend), "マウスジェスチャ：時給測定一時停止\r\n") << "said, nothing done";
    EXPECT_TRUE(meter().session().Suspended);
    meter().cycle().cmdTempStop_Click(3);
    EXPECT_TRUE(meter().state().controls.captureTimerEnabled);
    ASSERT_EQ(machine.grabs, 1) << "the resume reads once";

    gesture(Gesture::Suspend);
    gesture(Gesture::Resume);
    EXPECT_EQ(machine.grabs, 2) << "the resume reads once";
    gesture(Gesture::Resume);
    EXPECT_FALSE(meter().session().Suspended);

    gesture(Gesture::MoneyScanOn);
    gesture(Gesture::WatchOn);
    EXPECT_TRUE(settings.MoneyScan && meter().state().controls.doHLTimerEnabled);
    EXPECT_EQ(gesture(Gesture::MoneyScanOff), "マウスジェスチャ：メル時給測定停止\r\n");
    gesture(Gesture::WatchOff);
    EXPECT_FALSE(settings.MoneyScan || settings.DoHLCheckExec || meter().state().controls.doHLTimerEnabled);

    gesture(Gesture::CycleReset);
    EXPECT_EQ(machine.grabs, 3);
    meter().menuStop_Click();
    EXPECT_EQ(gesture(Gesture::CycleReset), "マウスジェスチャ：時給サイクルタイマリセット\r\n");
    EXPECT_EQ(machine.grabs, 3) << "no session, no reading";

    settings.SaveFormat = ".bmp";
    EXPECT_EQ(gesture(Gesture::PrintScreen), "マウスジェスチャ：プリントスクリーン\r\n");
    EXPECT_TRUE(std::filesystem::exists(temp.path() / "ss" / "PrtScr_20090401130503.bmp"));
}

TEST_F(MeterTest, LevelWatchFollowsItsSettingsStartsAfreshWhenSwitchedOnAndCapturesRisesOnceArmed)
{
    show("50", "1", "1");
    settings.DoHLCheckExec = true;
    settings.DoHLInterval = 250;
    settings.SaveFormat = ".jpg70";
    meter().settingsChanged();
    EXPECT_TRUE(meter().state().controls.doHLTimerEnabled);
    EXPECT_EQ(meter().state().controls.doHLIntervalMs, 250);

    meter().menuRun_Click();
    meter().watch().timDoHLInterval_Timer(); // primes at 50
    meter().runGesture(Gesture::WatchOff);
    show("51", "1", "1"); // a level-up while the watch was off
    meter().runGesture(Gesture::WatchOn);
    meter().watch().timDoHLInterval_Timer();
    EXPECT_LACKS(box(), "LvUP or Dead 検出") << "no burst for the jump";
    show("52", "1", "1");
    meter().watch().timDoHLInterval_Timer();
    EXPECT_HOLDS(box(), "LvUP or Dead 検出") << "the next rise is captured";
    EXPECT_TRUE(std::filesystem::exists(temp.path() / "ss" / "LvUP_20090401130500_a.jpg"));
    EXPECT_EQ(machine.count("jpeg 70"), 4u);

    const struct { std::vector<int> readings; std::size_t bursts; } cases[] = {
        {{120, 120}, 0},
        {{120, -1, 121}, 1},        // an unread level changes nothing
        {{120, 119, 120, 121}, 2},  // the first reading is where the level starts; a fall only arms
    };
    for (const auto& k : cases) {
        LevelWatch& watch = meter().watch();
        watch.reset();
        meter().logBox().clear();
        for (int reading : k.readings) {
            watch.DoHLReading = Currency::fromInt(reading);
            watch.CaptureLevelChange();
        }
        EXPECT_EQ(countOf(box(), "LvUP or Dead 検出"), k.bursts) << k.readings.size();
    }

    machine.windows = {GameWindowState::Background};
    const int grabs = machine.grabs;
    meter().watch().timDoHLInterval_Timer();
    EXPECT_EQ(machine.grabs, grabs);
    settings.DoHLCheckExec = false;
    meter().settingsChanged();
    EXPECT_FALSE(meter().state().controls.doHLTimerEnabled);
}

TEST_F(MeterTest, EveryEntryPointTrapsWhatItCallsAndTheSessionGoesOnOrEnds)
{
    using Thrower = std::function<void()>;
    // The thrower runs on the game window's probe, or else on the next wait.
    const struct { const char* line; bool onProbe; Thrower thrower; std::function<void(Meter&)> command; } cases[] = {
        {"Error Trap : timCaptureInterval_Timer : CODE9  Subscript out of range", true,
         [] { throw std::out_of_range("index"); }, [](Meter& m) { m.cycle().timCaptureInterval_Timer(); }},
        {"Error Trap : timDoHLInterval_Timer : CODE7  Out of memory", true, [] { throw std::bad_alloc(); },
         [](Meter& m) { m.watch().timDoHLInterval_Timer(); }},
        {"Error Trap : MouseGesture : CODE75  Path/File access error", true,
         [] { throw std::filesystem::filesystem_error("exists", std::make_error_code(std::errc::filename_too_long)); },
         [](Meter& m) { m.runGesture(Gesture::CycleReset); }},
        {"Error Trap : cmdCapture_Click : CODE13  Type mismatch", false, [] { throw std::invalid_argument("stoll"); },
         [](Meter& m) { m.cycle().cmdCapture_Click(); }},
        {"Error Trap : menuPrtScr_Click : CODE1004  Application-defined or object-defined error", false,
         [] { throw 42; }, [](Meter& m) { m.menuPrtScr_Click(); }},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(k.line);
        restart();
        std::filesystem::remove(log.path());
        show("10", "100", "5");
        meter().menuRun_Click();
        machine.clock.advanceMs(20000);
        if (k.onProbe)
            machine.onProbe = k.thrower;
        else
            machine.onWait = [&k](std::int32_t) { k.thrower(); };
        EXPECT_NO_THROW(k.command(meter()));
        EXPECT_HOLDS(debugText(), k.line);
        EXPECT_TRUE(!meter().state().busy && meter().state().controls.testButtonsEnabled) << "ready for more";
    }

    // A trap whose line cannot be written still holds the error.
    DebugLog nowhere(temp.path() / "no" / "folder", machine.clock);
    EXPECT_NO_THROW(nowhere.writeErrorTrap("Main", ErrorNumber::Overflow));
    EXPECT_FALSE(trapErrors(nowhere, "Main", [] { throw std::overflow_error("x"); }));
    EXPECT_TRUE(trapErrors(nowhere, "Main", [] {}));

    // Stop ends the session even when the log box's window fails to show its summary.
    restart();
    meter().menuRun_Click();
    meter().session().CurrentLv = 10;
    meter().logBox().setListener([](std::string_view) { throw std::bad_alloc(); });
    meter().menuStop_Click();
    EXPECT_FALSE(meter().session().running());
    EXPECT_TRUE(meter().state().controls.runEnabled);
    EXPECT_HOLDS(debugText(), "Error Trap : menuStop_Click : CODE7  Out of memory");
}

TEST_F(MeterTest, AStopOrACloseDuringAWaitEndsWhatWaitedAndStartsNothingMore)
{
    using Step = std::function<void()>;
    const Step moneyHidden = [this] {
        settings.MoneyScan = true;
        show("10", "100", "");
        meter().cycle().runCycle();
    };
    const Step suspendAndResume = [this] {
        meter().cycle().cmdTempStop_Click(3);
        meter().cycle().cmdTempStop_Click(3);
    };
    const Step levelUp = [this] {
        meter().watch().timDoHLInterval_Timer(); // where the level starts
        show("11", "100", "");
        meter().watch().timDoHLInterval_Timer();
    };
    // At the wait of waitMs the player stops, or else closes.
    const struct { const char* name; std::int32_t waitMs; bool stop; Step command; int grabs; bool shot; } cases[] = {
        {"money re-read, stop", 1500, true, moneyHidden, 1, false},
        {"money re-read, close", 1500, false, moneyHidden, 1, false},
        {"level-up shots, stop", 300, true, levelUp, 3, true}, // two reads and the first shot
        {"level-up shots, close", 300, false, levelUp, 3, true},
        {"resume, stop", 3000, true, suspendAndResume, 0, false},
        {"resume, close", 3000, false, suspendAndResume, 0, false},
        {"print screen, close", 10000, false, [this] { meter().menuPrtScr_Click(); }, 0, false},
        {"test capture, close", 10000, false, [this] { meter().cycle().cmdCapture_Click(); }, 0, false},
    };
    const std::filesystem::path shots = temp.path() / "ss";
    for (const auto& k : cases) {
        SCOPED_TRACE(k.name);
        std::filesystem::remove_all(shots);
        restart();
        show("10", "100", "5");
        Meter& m = meter();
        m.menuRun_Click();
        bool done = false;
        machine.onWait = [&](std::int32_t ms) {
            if (ms != k.waitMs || done)
                return;
            done = true;
            if (k.stop)
                m.menuStop_Click();
            else
                m.close();
        };
        k.command();
        EXPECT_EQ(machine.grabs, k.grabs);
        EXPECT_EQ(std::filesystem::exists(shots), k.shot);
        EXPECT_TRUE(m.state().labels.Start.Time.empty()) << "no reading shown after the wait";
        EXPECT_LACKS(m.logBox().text(), "LvUP or Dead 検出");
        EXPECT_FALSE(m.state().controls.captureTimerEnabled);
    }

    // A close during the start-up's waits ends them and starts nothing more.
    const struct { const char* name; std::int32_t waitMs; std::size_t opened; } startUps[] = {
        {"the first application's launch", 500, 1},
        {"the wait between the applications", 7000, 1},
        {"the wait for the game", 15000, 2},
    };
    for (const auto& k : startUps) {
        SCOPED_TRACE(k.name);
        restart();
        show("10", "100", "5");
        settings.StartDelay = 15;
        settings.StartUpDelay = 7;
        settings.StartUp = {{{true, "/apps/one"}, {true, "/apps/two"}}};
        machine.existingFiles = {"/apps/one", "/apps/two"};
        int waitsAfterClose = 0;
        machine.onWait = [&](std::int32_t ms) {
            if (meter().state().closing)
                ++waitsAfterClose;
            else if (ms == k.waitMs)
                meter().close();
        };
        test::FakeClock graphClock;
        meter().load(graphClock);
        EXPECT_EQ(machine.count("end waits"), 1u);
        EXPECT_EQ(machine.count("open /apps/"), k.opened);
        EXPECT_EQ(waitsAfterClose, 0);
        meter().cycle().timCaptureInterval_Timer();
        EXPECT_EQ(machine.grabs, 0);
    }
}

TEST_F(MeterTest, DebugModeShowsTheDebugAreaAndItsCommandsWork)
{
    show("10", "100", "5");
    meter().setDebugMode(true);

    meter().cycle().cmdCapture_Click();
    EXPECT_GE(machine.count("caption 0 認識中…"), 1u) << "progress captions while tracing";
    EXPECT_EQ(std::count(machine.events.begin(), machine.events.end(), "caption 1 100"), 1);

    meter().cycle().cmdRecognize_Click();
    machine.windows = {GameWindowState::Missing, GameWindowState::Front};
    meter().cycle().runCycle(); // no session to stop, but the trace says the game went
    EXPECT_HOLDS(debugText(), "Lost MapleStory Then Capture Stop ");

    // A session's readings after its first are traced as shown.
    meter().menuRun_Click();
    tick("10", "150");
    EXPECT_HOLDS(debugText(), "Useally Measure Data Display Complete ");
    meter().menuStop_Click();

    meter().setDebugMode(false);
    const std::size_t captions = machine.count("caption 0 認識中…");
    meter().cycle().cmdRecognize_Click();
    EXPECT_EQ(machine.count("caption 0 認識中…"), captions) << "no trace with the switch off";
}

TEST_F(MeterTest, TimeLeftAsksFromTheLatestReadingOfTheSession)
{
    const auto asked = [this](const std::string& now, int proposed) {
        return machine.count("ask あと何時間？ | 目標Lvを入力してください  (現在:" + now + ") | 1 200 " +
                             std::to_string(proposed) + ".000000 1");
    };
    machine.numbers = {121, 500, 121, 500, 121, 500};
    meter().menuRun_Click();
    cycle(100, "120", "0", "");
    cycle(460, "", "", ""); // a failed reading does not unknow the level
    meter().menuTimeLeft_Click();
    meter().menuStop_Click();
    meter().menuTimeLeft_Click(); // after the Stop the tools still know it
    EXPECT_EQ(asked("120", 121), 2u) << "both times";

    meter().menuRun_Click();
    meter().menuTimeLeft_Click(); // a new session starts from nothing: a proposal within the bounds
    EXPECT_EQ(asked("未認識", 1), 1u);
}

TEST_F(MeterTest, AFailedCaptureIsAFailedReadingWithItsOwnDebugLine)
{
    // Whether the log box tells a failed reading, and what failed.
    const struct { const char* name; std::function<void()> arm; bool said = true;
                   const char* failed = "全部 NG"; } cases[] = {
        {"no picture", [this] { machine.onGrab = [this] { machine.screens = {std::nullopt}; }; }},
        {"the screen source fails",
         [this] { machine.onGrab = [] { throw RuntimeError(ErrorNumber::PermissionDenied); }; }},
        {"a region beyond the screen", [this] { settings.CaptureRegion[1].StartX = 1000; }},
        // Pixels that cannot be sized make no reading.
        {"a region too tall to hold", [this] { settings.CaptureRegion[2].SizeY = kMaxScreenSide + 1; }, false},
        // A level whose 0 was never taught is no reading at all, never 1 for 10.
        {"a level digit never taught", [this] { settings.PatternStrings[RegionLevel][0] = ""; }, true, "LvとMoney NG"},
        {"the key route's file cannot be written", [this] {
             settings.ScreenCapture = CaptureMethod::PrintScreen;
             machine.printScreenKey = true;
             machine.clipboard = {gameCapture({"10", "250", ""})};
             meter().capture().setCaptureFile(temp.path() / "missing" / "Capture.bmp");
         }},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(k.name);
        restart();
        meter().capture().setCaptureFile(temp.path() / "Capture.bmp");
        meter().menuRun_Click();
        tick("10", "100"); // the bases
        tick("10", "200");
        const Fields before = expLabels(meter().state().labels);
        const Settings good = settings;
        k.arm();
        tick("10", "250");
        EXPECT_EQ(countOf(box(), std::string("認識失敗  ") + k.failed), k.said ? 1u : 0u) << box();
        EXPECT_EQ(expLabels(meter().state().labels), before);
        EXPECT_FALSE(meter().state().busy);

        // The next capture that works makes an ordinary record from the last good reading.
        machine.onGrab = nullptr;
        settings = good;
        meter().capture().setCaptureFile(temp.path() / "Capture.bmp");
        tick("10", "300");
        EXPECT_EQ(meter().state().labels.Elapse.Exp, "200");
        EXPECT_HOLDS(test::splitLines(box()).back(), " 12.0 ");
    }
}

// The cycle's picture lives in the capture file and is read back from it; a file that cannot hold
// it, or that another program replaces, is told. What is kept for the player is whole screens.
TEST_F(MeterTest, TheCyclesPictureIsReadBackFromTheCaptureFileAndTheImagesKeptAreWholeScreens)
{
    const auto pixelsOf = [](const std::filesystem::path& file) {
        CaptureBitmap read;
        EXPECT_EQ(LoadCaptureBitmap(file, read), CaptureLoadResult::Read) << pathUtf8(file);
        return read.pixels;
    };
    const auto kept = [this] {
        const std::optional<CaptureBitmap> picture = meter().cycle().lastCapture();
        return picture ? picture->pixels : ZeroedBytes{};
    };
    const std::filesystem::path file = temp.path() / "Capture.bmp";
    settings.SaveFormat = ".bmp";
    meter().menuRun_Click();
    meter().capture().setCaptureFile(file);
    settings.MoneyScan = true;
    const CaptureBitmap screen = gameCapture({"50", "2", ""});
    machine.screens = {screen};
    meter().cycle().runCycle(); // the whole screen, then the money region twice
    // The level watch reads its region only; its shots are whole screens, none the cycle's picture.
    meter().watch().timDoHLInterval_Timer();
    const CaptureBitmap later = gameCapture({"51", "1", "1"}, ScreenMode::FullScreen, 2);
    machine.screens = {later};
    meter().watch().timDoHLInterval_Timer(); // a rise: four shots
    EXPECT_EQ(pixelsOf(temp.path() / "ss" / "LvUP_20090401130502_d.bmp"), later.pixels);
    FormMainCommands(meter(), log, temp.path()).run(MenuCommand::PatternSave);
    EXPECT_EQ(pixelsOf(temp.path() / ("Capture" + formatPatternStamp(machine.clock.now()) + ".bmp")), screen.pixels);
    // A whole screen that is no reading's is written, and the picture moves to memory first.
    meter().menuPrtScr_Click();
    EXPECT_EQ(pixelsOf(file), later.pixels);
    EXPECT_EQ(kept(), screen.pixels);
    meter().runGesture(Gesture::PrintScreen);
    // The cycle and its money re-reads, the watch's two region reads, its four shots, the
    // two print screens.
    EXPECT_EQ(machine.grabbedRegions, (std::vector<std::size_t>{0, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0}));

    // A capture file that cannot be written costs its line, not the reading: the picture is
    // held in memory instead, also when the file is named again.
    meter().capture().setCaptureFile(temp.path() / "missing" / "Capture.bmp");
    const CaptureBitmap unwritten = gameCapture({"51", "900", "1"});
    machine.screens = {unwritten};
    meter().cycle().runCycle();
    EXPECT_EQ(meter().state().labels.End.Exp, "900");
    meter().capture().setCaptureFile(file);
    EXPECT_EQ(kept(), unwritten.pixels);

    // Another program replaces the file the picture lives in: no picture, and the debug
    // log says why, rather than the other program's picture passing for the reading's.
    machine.screens = {screen};
    meter().cycle().runCycle();
    ASSERT_TRUE(writeBitmap24(file, toFrame(later)));
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) + std::chrono::seconds(2));
    EXPECT_TRUE(kept().empty());
    FormMainCommands(meter(), log, temp.path()).run(MenuCommand::PatternSave);
    EXPECT_HOLDS(box(), "まだキャプチャしていません");
}


TEST(ScreenCaptureTest, TheRoutesTakeWhatTheSettingAndThePlatformAllowAndAReadingKeepsTheWholeScreen)
{
    test::TempFolder home;
    Settings settings = defaultSettings("");
    settings.Lag = 500;
    test::FakeMachine machine;
    DebugLog log{home.path(), machine.clock};
    const CaptureBitmap game = test::gameCapture({"137", "4,567,890", "123,456"});
    const CaptureBitmap fromKey = test::gameCapture({"1", "2", "3"}, ScreenMode::FullScreen, 7);
    const CaptureBitmap black = toCaptureBitmap(Frame(1024, 768));
    using M = CaptureMethod;
    using R = ScreenCapture::Result;
    const struct { const char* name; M method; bool keyExists; std::optional<CaptureBitmap> direct, clipboard; R result;
                   const CaptureBitmap* expected; bool pressed; } cases[] = {
        {"key", M::PrintScreen, true, game, fromKey, R::Taken, &fromKey, true},
        {"key, empty clipboard", M::PrintScreen, true, game, std::nullopt, R::NoPicture, nullptr, true},
        {"key missing here", M::PrintScreen, false, game, fromKey, R::Taken, &game, true},
        {"direct", M::Direct, true, game, fromKey, R::Taken, &game, false},
        {"direct, black, key", M::Direct, true, black, fromKey, R::Taken, &fromKey, true},
        {"direct, black, no key", M::Direct, false, black, fromKey, R::Taken, nullptr, true},
        {"direct, no display", M::Direct, true, std::nullopt, fromKey, R::NoPicture, nullptr, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScreenCapture fresh{settings, machine, machine, log};
        settings.ScreenCapture = c.method;
        machine.events.clear();
        machine.printScreenKey = c.keyExists;
        machine.screens = {c.direct};
        machine.clipboard = {c.clipboard};
        for (int twice = 0; twice < 2; ++twice) {
            std::optional<CaptureBitmap> image;
            EXPECT_EQ(fresh.take(settings.CaptureRegion, image), c.result);
            EXPECT_TRUE(c.expected == nullptr || (image && image->pixels == c.expected->pixels));
        }
        EXPECT_EQ(machine.count("print screen key"), c.pressed ? 2u : 0u);
        // Lag is waited only when the key was really there to press.
        EXPECT_EQ(machine.count("wait 500"), c.pressed && c.keyExists ? 2u : 0u);
    }

    // A reading, by the last route (direct), writes the whole screen to the file and reads its regions of that moment.
    const CaptureBitmap narrow = toCaptureBitmap(test::gameScreen({"9", "8", "7"}, ScreenMode::FullScreen, 3, 1023, 700));
    const std::filesystem::path file = home.path() / "Capture.bmp";
    // bandRows 0: the source offers no bands; expected: the whole screen kept, and in the file when there is one;
    // wholeImage: the image is that whole screen, not the regions only.
    const struct { const char* name; std::int32_t bandRows; std::filesystem::path captureFile; CaptureBitmap screen;
                   bool keyExists; const CaptureBitmap* expected; bool wholeImage; } readings[] = {
        {"bands", 7, file, game, false, &game, false},
        {"bands of one row, padded rows", 1, file, narrow, false, &narrow, false},
        {"no bands", 0, file, game, false, &game, true},
        {"no capture file", 7, {}, game, false, &game, true},
        {"a capture file that cannot be written", 7, home.path() / "missing" / "Capture.bmp", game, false, &game, true},
        {"black, the key route", 7, file, black, true, &fromKey, true},
        {"black, no key route", 7, file, black, false, nullptr, false},
    };
    for (const auto& c : readings) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove(file);
        machine.bandRows = c.bandRows;
        machine.printScreenKey = c.keyExists;
        machine.screens = {c.screen};
        machine.clipboard = {fromKey};
        ScreenCapture fresh{settings, machine, machine, log};
        fresh.setCaptureFile(c.captureFile);
        std::optional<CaptureBitmap> image;
        ASSERT_EQ(fresh.takeReading(settings.CaptureRegion, image), ScreenCapture::Result::Taken);
        ASSERT_TRUE(image);
        const CaptureBitmap& whole = c.expected != nullptr ? *c.expected : c.screen;
        for (const CaptureRegionRect& rect : settings.CaptureRegion)
            EXPECT_EQ(regionPixels(*image, rect), regionPixels(whole, rect));
        EXPECT_EQ(image->pixels.size() == whole.pixels.size(), c.wholeImage);
        EXPECT_TRUE(!c.wholeImage || image->pixels == whole.pixels);
        const std::optional<CaptureBitmap> kept = fresh.kept();
        EXPECT_TRUE(kept && kept->pixels == whole.pixels);
        if (c.captureFile == file) {
            const std::vector<std::uint8_t> bytes = encodeBitmap24(toFrame(whole));
            EXPECT_EQ(test::readAll(file), std::string(bytes.begin(), bytes.end()));
        }
        for (const char* left : {".tmp", ".rows.tmp"})
            EXPECT_FALSE(std::filesystem::exists(file.string() + left));
    }
}

TEST(ScreenCaptureBlack, OnlyTheWantedRectanglesCount)
{
    Frame frame(100, 50);
    frame.row(40)[3 * 90] = 1; // one dark-blue pixel at (90, 40), outside the first rectangle
    const CaptureBitmap image = toCaptureBitmap(frame);
    const CaptureRegionRect left{0, 0, 50, 50};
    EXPECT_TRUE(isAllBlack(image, std::vector{left}));
    EXPECT_FALSE(isAllBlack(image, std::vector{left, CaptureRegionRect{80, 35, 20, 10}}));
    EXPECT_FALSE(isAllBlack(image, {}));
    EXPECT_FALSE(isAllBlack(image, std::vector{CaptureRegionRect{200, 200, 10, 10}})) << "nothing seen is not black";
    EXPECT_TRUE(isAllBlack(toCaptureBitmap(Frame(4, 4)), {}));
}

// "LdRu" -> those events; a letter without d or u is a click: "LR" is LdLuRdRu.
std::vector<MouseButtonEvent> buttonEvents(std::string_view letters)
{
    std::vector<MouseButtonEvent> result;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const MouseButton button = letters[i] == 'L' ? MouseButton::Left : MouseButton::Right;
        const char next = i + 1 < letters.size() ? letters[i + 1] : ' ';
        if (next == 'd' || next == 'u')
            result.push_back({button, letters[++i] == 'd'});
        else
            result.insert(result.end(), {{button, true}, {button, false}});
    }
    return result;
}

// Batches of events fed at their tick: what the last batch made, and the text left.
TEST(GestureMatcher, PatternsChordsPausesAndTheTextKept)
{
    struct Feed { std::uint32_t atMs; const char* letters; };
    const struct { const char* name; std::vector<Feed> feeds; Gesture last; const char* text;
                   std::uint32_t gestureTime = 500; } cases[] = {
        {"the last ten events are kept", {{0, "LLLL"}, {100, "LLLLLL"}}, Gesture::None, "LdLuLdLuLdLuLdLuLdLu"},
        // A pause of GestureTime or more starts over: L R, pause, L L is nothing.
        {"a pause", {{0, "L"}, {100, "R"}, {700, "L"}, {800, "L"}}, Gesture::None, "LdLuLdLu"},
        {"under eight events, then none: text kept", {{0, "LdRdLuRuLdRd"}, {10, ""}}, Gesture::None, "LdRdLuRuLdRd"},
        {"the double chord, released in any order", {{0, "LdRdRuLuRuLuLdRd"}}, Gesture::PrintScreen, ""},
        {"only pressed and released is no chord", {{0, "LdRdLuRuLdLuLdLu"}}, Gesture::None, "LdRdLuRuLdLuLdLu"},
        {"the earlier row wins", {{0, "LRRRR"}}, Gesture::MoneyScanOff, ""}, // holds L R R R and R R R R
        {"wrapping", {{0xFFFFFF00u, "R"}, {0xFFFFFF64u, "R"}, {0xFFFFFFC8u, "R"}, {44, "R"}}, Gesture::CycleReset, ""},
        {"GestureTime 0 never continues", {{0, "LR"}, {0, "LL"}}, Gesture::None, "LdLuLdLu", 0},
    };
    for (const auto& c : cases) {
        GestureMatcher matcher;
        Gesture last = Gesture::None;
        for (const Feed& feed : c.feeds)
            last = matcher.feed(buttonEvents(feed.letters), feed.atMs, c.gestureTime);
        EXPECT_EQ(last, c.last) << c.name;
        EXPECT_EQ(matcher.text(), c.text) << c.name;
    }
}

} // namespace
} // namespace tvx
