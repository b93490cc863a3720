#include "meter/Meter.h"

#include "shell/DebugLog.h"
#include "support/CsvFields.h"
#include "support/ReadFile.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/MeterFixture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace tvx {
namespace {

using test::csvFields;
using test::splitLines;
using test::kStart;
using MeterTest = test::MeterFixture;

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
    meter().menuStop_Click();

    const auto lines = splitLines(test::readAll(temp.path() / "log" / utf8Path("給与明細200904月.csv")));
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0], "\xEF\xBB\xBF" + recordHeader(true));
    const std::vector<std::vector<std::string>> expected{
        {"04/01 13:18", "10", "3697", "5000", "250", "0", "6.0", "2", "0.0", "0"},
        {"04/01 13:24", "10", "3697", "5610", "0", "610", "0.0", "0", "6.0", "6"},
        {"04/01 13:36", "12", "7433", "5700", "3736", "90", "12.0", "18", "12.0", "0"},
        {"04/01 13:48", "12", "7443", "5700", "10", "0", "6.0", "0", "0.0", "0"},
        {"04/01 14:06", "8", "1345", "150", "30", "50", "6.0", "0", "6.0", "0"},
    };
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(csvFields(lines[i + 1]), expected[i]) << lines[i + 1];

    const std::string text = meter().logBox().text();
    EXPECT_TRUE(text.starts_with(std::string(kLogHeader) + "\r\n\r\n   10        3,447         5,000 \r\n")) << text;
    EXPECT_NE(text.find("\r\n04/01 13:18   10          250   6.0         2 \r\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\r\nキャラクタチェンジ検出\r\n" + std::string(kLogHeader) + "\r\n"), std::string::npos);
    EXPECT_NE(text.find("    増加  Lv:   0    Exp:           30"), std::string::npos) << text;
    EXPECT_NE(debugText().find("Detect Character Change "), std::string::npos);
    // Rates of the records, a zero point for each reading without a record, and the
    // averaging window's zeros after the change of character.
    EXPECT_EQ(meter().state().graph->Value(0).RateE(), Currency{});
    EXPECT_EQ(meter().state().graph->Value(settings.GraphAveNum).RateM(), Currency::fromInt(-1));
}

TEST_F(MeterTest, GameBehindAnotherWindowIsTriedAgainIn15Seconds)
{
    machine.windows = {GameWindowState::Background};
    meter().menuRun_Click();
    for (int pass = 1; pass <= 480; ++pass)
        meter().cycle().runCycle();
    EXPECT_EQ(machine.grabs, 0);
    EXPECT_EQ(meter().session().NextCaptureTime, addSeconds(machine.clock.now(), 15));
    EXPECT_EQ(meter().cycle().missCount(), 480);
    meter().state().graph->AddGraphData(Currency::fromInt(9), Currency::fromInt(9), 1, 1);
    meter().cycle().runCycle(); // the 481st adds a zero point
    EXPECT_EQ(meter().cycle().missCount(), 0);
    EXPECT_EQ(meter().state().graph->Value(0).RateE(), Currency{});
    EXPECT_EQ(meter().state().graph->Value(1).RateE(), Currency::fromInt(9));
}

// A level whose 0 was never taught is no reading at all, never 5 for 50; the debug log
// says which templates the level lacks, once until that changes.
TEST_F(MeterTest, AReadingThatNeedsAnUntaughtTemplateFailsAndTheLogSaysWhich)
{
    settings.PatternStrings[RegionLevel][0] = "";
    meter().menuRun_Click();
    cycle(0, "50", "1000", "5000");
    cycle(360, "50", "1200", "5000");
    EXPECT_EQ(meter().session().CurrentLv, -1);
    EXPECT_EQ(meter().session().CurrentExp, Currency::fromInt(1200));
    const std::string text = debugText();
    const std::size_t first = text.find("Recognize Untaught : Lv : templates 0 ");
    EXPECT_NE(first, std::string::npos) << text;
    EXPECT_EQ(text.find("Recognize Untaught", first + 1), std::string::npos) << text;
    cycle(720, "51", "1400", "5000");
    EXPECT_EQ(meter().session().CurrentLv, 51);
}

TEST_F(MeterTest, MoneyIsReadAgainOnlyWhenItWasMissedAndScanned)
{
    const CaptureBitmap noMoney = test::gameCapture({"30", "100", ""});
    const CaptureBitmap levelZero = test::gameCapture({"0", "100", ""});
    const CaptureBitmap money = test::gameCapture({"30", "100", "700"});
    using W = GameWindowState;
    struct Case {
        const char* name;
        bool scan;
        std::deque<std::optional<CaptureBitmap>> screens;
        std::deque<W> windows;
        int grabs;
        std::int64_t money; // handed over; 99 for no hand-over
        std::vector<std::string> waits;
    };
    const std::vector<Case> cases{
        {"scan off", false, {noMoney}, {W::Front}, 1, -1, {}},
        {"level 0", true, {levelZero}, {W::Front}, 1, -1, {}},
        {"found at once", true, {noMoney, money}, {W::Front}, 2, 700, {"wait 1500"}},
        {"found at the second try", true, {noMoney, noMoney, money}, {W::Front}, 3, 700, {"wait 1500", "wait 1000"}},
        {"missed twice", true, {noMoney}, {W::Front}, 3, -1, {"wait 1500", "wait 1000"}},
        {"game left", true, {noMoney}, {W::Front, W::Front, W::Background}, 2, 99, {"wait 1500", "wait 1000"}},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        restart();
        machine.screens = k.screens;
        machine.windows = k.windows;
        settings.MoneyScan = k.scan;
        settings.CaptureBeep = 2;
        Meter& m = meter();
        m.menuRun_Click();
        machine.events.clear();
        const std::size_t logged = m.logBox().text().size();
        m.cycle().runCycle();
        EXPECT_EQ(machine.grabs, k.grabs);
        std::vector<std::string> waits;
        for (const auto& e : machine.events)
            if (e.starts_with("wait"))
                waits.push_back(e);
        EXPECT_EQ(waits, k.waits);
        EXPECT_EQ(machine.count("beep 500 75"), k.waits.empty() ? 0u : 1u);
        const bool handedOver = m.logBox().text().size() > logged;
        EXPECT_EQ(handedOver, k.money != 99);
        if (handedOver)
            EXPECT_EQ(m.session().CurrentMoney, Currency::fromInt(k.money));
        else
            EXPECT_EQ(m.session().NextCaptureTime, addSeconds(machine.clock.now(), 15));
    }
}

TEST_F(MeterTest, SuspendPausesTheTimerAndResumeReadsOnce)
{
    meter().session().ChangeSuspend(0); // idle: only the log line
    EXPECT_FALSE(meter().session().Suspended);
    EXPECT_NE(debugText().find("Suspend Mode On "), std::string::npos);

    show("5", "6", "7");
    meter().menuRun_Click();
    meter().cycle().cmdTempStop_Click(3);
    EXPECT_TRUE(meter().session().Suspended);
    EXPECT_FALSE(meter().state().controls.captureTimerEnabled);
    EXPECT_TRUE(meter().state().controls.tempStopRed);
    meter().cycle().cmdTempStop_Click(3);
    EXPECT_TRUE(meter().state().controls.captureTimerEnabled);
    EXPECT_EQ(machine.count("wait 3000"), 1u);
    EXPECT_EQ(machine.grabs, 1);
}

TEST_F(MeterTest, TimerRunsACycleOnlyWhenItIsTime)
{
    show("5", "6", "7");
    meter().menuRun_Click();
    meter().cycle().timCaptureInterval_Timer();
    EXPECT_EQ(machine.grabs, 0);
    machine.clock.advanceMs(15000);
    meter().cycle().timCaptureInterval_Timer();
    EXPECT_EQ(machine.grabs, 1);
    EXPECT_EQ(meter().session().NextCaptureTime, addSeconds(machine.clock.now(), 6 * 60));
    meter().menuStop_Click();
    meter().state().controls.captureTimerEnabled = true;
    machine.clock.advanceMs(6 * 60 * 1000);
    meter().cycle().timCaptureInterval_Timer(); // no session: the timer switches itself off
    EXPECT_FALSE(meter().state().controls.captureTimerEnabled);
    EXPECT_EQ(machine.grabs, 1);
}

TEST_F(MeterTest, LevelWatchCapturesRisesOnceArmed)
{
    struct Case {
        std::vector<int> readings;
        std::size_t bursts;
    };
    const Case cases[] = {
        {{120}, 0},                 // the first reading is where the level starts
        {{120, 120}, 0},
        {{120, 121}, 1},
        {{120, -1, 121}, 1},        // an unread level changes nothing
        {{120, 119}, 0},            // a fall only arms
        {{120, 119, 120, 121}, 2},
    };
    meter().menuRun_Click(); // the watch runs within a session
    for (const Case& k : cases) {
        LevelWatch& watch = meter().watch();
        watch.reset();
        meter().logBox().clear();
        for (int reading : k.readings) {
            watch.DoHLReading = Currency::fromInt(reading);
            watch.CaptureLevelChange();
        }
        std::size_t bursts = 0;
        for (std::size_t at = 0; (at = meter().logBox().text().find("LvUP or Dead 検出", at)) != std::string::npos; ++at)
            ++bursts;
        EXPECT_EQ(bursts, k.bursts) << k.readings.size();
    }
}

TEST_F(MeterTest, LevelUpBurstWritesFourShots)
{
    settings.SaveFormat = ".jpg70";
    show("50", "1", "1");
    meter().menuRun_Click();
    meter().watch().timDoHLInterval_Timer();
    show("51", "1", "1");
    meter().watch().timDoHLInterval_Timer();
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(temp.path() / "ss"))
        names.push_back(pathUtf8(entry.path().filename()));
    std::sort(names.begin(), names.end());
    ASSERT_EQ(names.size(), 4u);
    EXPECT_EQ(names[0], "LvUP_20090401130500_a.jpg");
    EXPECT_EQ(names[3], "LvUP_20090401130500_d.jpg");
    EXPECT_EQ(machine.count("jpeg 70"), 4u);
    EXPECT_EQ(machine.count("wait 300"), 3u);

    machine.windows = {GameWindowState::Background};
    const int grabs = machine.grabs;
    meter().watch().timDoHLInterval_Timer();
    EXPECT_EQ(machine.grabs, grabs);
}

TEST_F(MeterTest, GesturesRunTheirCommandsAndAlwaysSaySo)
{
    const auto gesture = [this](Gesture g) {
        const std::size_t before = meter().logBox().text().size();
        meter().runGesture(g);
        return meter().logBox().text().substr(before);
    };
    show("5", "6", "7");
    meter().menuRun_Click();
    ASSERT_EQ(machine.grabs, 0);

    EXPECT_EQ(gesture(Gesture::Suspend), "マウスジェスチャ：時給測定一時停止\r\n");
    EXPECT_TRUE(meter().session().Suspended);
    EXPECT_EQ(gesture(Gesture::Suspend), "マウスジェスチャ：時給測定一時停止\r\n") << "said, nothing done";
    EXPECT_TRUE(meter().session().Suspended);
    gesture(Gesture::Resume);
    EXPECT_FALSE(meter().session().Suspended);
    EXPECT_EQ(machine.grabs, 1) << "the resume reads once";
    gesture(Gesture::Resume);
    EXPECT_FALSE(meter().session().Suspended);

    gesture(Gesture::MoneyScanOn);
    EXPECT_TRUE(settings.MoneyScan);
    EXPECT_EQ(gesture(Gesture::MoneyScanOff), "マウスジェスチャ：メル時給測定停止\r\n");
    EXPECT_FALSE(settings.MoneyScan);

    EXPECT_EQ(gesture(Gesture::WatchOn), "マウスジェスチャ：自動撮影 監視開始\r\n");
    EXPECT_TRUE(meter().state().controls.doHLTimerEnabled);
    gesture(Gesture::WatchOff);
    EXPECT_FALSE(meter().state().controls.doHLTimerEnabled);
    EXPECT_FALSE(settings.DoHLCheckExec);

    gesture(Gesture::CycleReset);
    EXPECT_EQ(machine.grabs, 2);
    meter().menuStop_Click();
    EXPECT_EQ(gesture(Gesture::CycleReset), "マウスジェスチャ：時給サイクルタイマリセット\r\n");
    EXPECT_EQ(machine.grabs, 2) << "no session, no reading";

    settings.SaveFormat = ".bmp";
    EXPECT_EQ(gesture(Gesture::PrintScreen), "マウスジェスチャ：プリントスクリーン\r\n");
    EXPECT_TRUE(std::filesystem::exists(temp.path() / "ss" / "PrtScr_20090401130500.bmp"));
    EXPECT_NE(debugText().find("OnLine Print Screen ･･･ End "), std::string::npos);
}

TEST_F(MeterTest, ButtonEventsReachTheGesturesThroughTheClock)
{
    show("5", "6", "7");
    meter().menuRun_Click();
    const auto click = [this](MouseButton button) {
        meter().mouseButtons({{button, true}, {button, false}});
        machine.clock.advanceMs(200);
    };
    for (MouseButton b : {MouseButton::Left, MouseButton::Right, MouseButton::Left, MouseButton::Left})
        click(b);
    EXPECT_TRUE(meter().session().Suspended);
}

} // namespace
} // namespace tvx
