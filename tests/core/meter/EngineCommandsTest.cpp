// The engine's entry points: their error traps, the debug switch and its commands, the
// level watch following its settings, and the cycle-skip flag.
#include "support/MeterFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <new>
#include <stdexcept>

namespace tvx {
namespace {

using EngineCommandsTest = test::MeterFixture;

TEST_F(EngineCommandsTest, EveryEntryPointTrapsWhatItCallsAndTheSessionGoesOn)
{
    using Thrower = std::function<void()>;
    const Thrower badAlloc = [] { throw std::bad_alloc(); };
    const Thrower outOfRange = [] { throw std::out_of_range("index"); };
    const Thrower fileError = [] {
        throw std::filesystem::filesystem_error("exists", std::make_error_code(std::errc::filename_too_long));
    };
    const Thrower conversion = [] { throw std::invalid_argument("stoll"); };
    const Thrower unknown = [] { throw 42; };
    struct Case {
        const char* line;
        bool onProbe; // else on the next wait
        Thrower thrower;
        std::function<void(Meter&)> command;
    };
    const std::vector<Case> cases{
        {"Error Trap : timCaptureInterval_Timer : CODE9  Subscript out of range", true, outOfRange,
         [](Meter& m) { m.cycle().timCaptureInterval_Timer(); }},
        {"Error Trap : timDoHLInterval_Timer : CODE7  Out of memory", true, badAlloc,
         [](Meter& m) { m.watch().timDoHLInterval_Timer(); }},
        {"Error Trap : MouseGesture : CODE75  Path/File access error", true, fileError,
         [](Meter& m) { m.runGesture(Gesture::CycleReset); }},
        {"Error Trap : cmdCapture_Click : CODE13  Type mismatch", false, conversion,
         [](Meter& m) { m.cycle().cmdCapture_Click(); }},
        {"Error Trap : menuPrtScr_Click : CODE1004  Application-defined or object-defined error", false, unknown,
         [](Meter& m) { m.menuPrtScr_Click(); }},
        {"Error Trap : cmdTempStop_Click : CODE7  Out of memory", false, badAlloc, [](Meter& m) {
             m.cycle().cmdTempStop_Click(1);
             m.cycle().cmdTempStop_Click(1); // the resume waits
         }},
    };
    for (const Case& k : cases) {
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
        EXPECT_NE(debugText().find(k.line), std::string::npos) << debugText();
        EXPECT_FALSE(meter().state().busy);
        EXPECT_TRUE(meter().state().controls.testButtonsEnabled);
    }
}

TEST_F(EngineCommandsTest, AStopOrACloseDuringAWaitEndsWhatWaited)
{
    using Step = std::function<void()>;
    const Step moneyHidden = [this] {
        settings.MoneyScan = true;
        show("10", "100", "");
    };
    const Step nothing = [] {};
    const Step runCycle = [this] { meter().cycle().runCycle(); };
    const Step suspendAndResume = [this] {
        meter().cycle().cmdTempStop_Click(3);
        meter().cycle().cmdTempStop_Click(3);
    };
    const Step levelUp = [this] {
        meter().watch().timDoHLInterval_Timer(); // where the level starts
        show("11", "100", "");
        meter().watch().timDoHLInterval_Timer();
    };
    struct Case {
        const char* name;
        std::int32_t waitMs;
        bool stop; // else close
        Step setup;
        Step command;
        int grabs;
        std::size_t shots;
    };
    const std::vector<Case> cases{
        {"money re-read, stop", 1500, true, moneyHidden, runCycle, 1, 0},
        {"money re-read, close", 1500, false, moneyHidden, runCycle, 1, 0},
        {"level-up shots, stop", 300, true, nothing, levelUp, 3, 1},
        {"level-up shots, close", 300, false, nothing, levelUp, 3, 1},
        {"resume, stop", 3000, true, nothing, suspendAndResume, 0, 0},
        {"resume, close", 3000, false, nothing, suspendAndResume, 0, 0},
        {"print screen, close", 10000, false, nothing, [this] { meter().menuPrtScr_Click(); }, 0, 0},
        {"test capture, close", 10000, false, nothing, [this] { meter().cycle().cmdCapture_Click(); }, 0, 0},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        std::filesystem::remove_all(temp.path() / "ss");
        restart();
        show("10", "100", "5");
        k.setup();
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
        std::size_t shots = 0;
        if (std::filesystem::exists(temp.path() / "ss"))
            for ([[maybe_unused]] const auto& shot : std::filesystem::directory_iterator(temp.path() / "ss"))
                ++shots;
        EXPECT_EQ(shots, k.shots);
        EXPECT_TRUE(m.state().labels.Start.Time.empty()) << "no reading shown after the wait";
        EXPECT_EQ(m.logBox().text().find("LvUP or Dead 検出"), std::string::npos);
        EXPECT_FALSE(m.state().controls.captureTimerEnabled);
    }
}

TEST_F(EngineCommandsTest, ACloseDuringTheStartUpWaitsEndsThemAndStartsNothingMore)
{
    struct Case {
        const char* name;
        std::int32_t waitMs;
        std::size_t opened;
    };
    const Case cases[] = {
        {"the first application's launch", 500, 1},
        {"the wait between the applications", 7000, 1},
        {"the second application's launch", 500, 2},
        {"the wait for the game", 15000, 2},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        restart();
        show("10", "100", "5");
        settings.StartDelay = 15;
        settings.StartUpDelay = 7;
        settings.StartUp = {{{true, "/apps/one"}, {true, "/apps/two"}}};
        machine.existingFiles = {"/apps/one", "/apps/two"};
        std::size_t skip = k.opened == 2 && k.waitMs == 500 ? 1 : 0;
        int waitsAfterClose = 0;
        machine.onWait = [&](std::int32_t ms) {
            if (meter().state().closing)
                ++waitsAfterClose;
            else if (ms == k.waitMs && skip-- == 0)
                meter().close();
        };
        test::FakeClock graphClock;
        meter().load(graphClock);
        EXPECT_EQ(machine.count("end waits"), 1u);
        EXPECT_EQ(machine.count("open /apps/"), k.opened);
        EXPECT_EQ(waitsAfterClose, 0);
        EXPECT_FALSE(meter().state().controls.captureTimerEnabled);
        meter().cycle().timCaptureInterval_Timer();
        EXPECT_EQ(machine.grabs, 0);
    }
}

TEST_F(EngineCommandsTest, StopEndsTheSessionEvenWhenItsSummaryFails)
{
    meter().menuRun_Click();
    meter().session().CurrentLv = 10;
    // The log box's window fails to show the summary.
    meter().logBox().setListener([](std::string_view) { throw std::bad_alloc(); });
    meter().menuStop_Click();
    EXPECT_FALSE(meter().session().running());
    EXPECT_TRUE(meter().state().controls.runEnabled);
    EXPECT_NE(debugText().find("Error Trap : menuStop_Click : CODE7  Out of memory"), std::string::npos);
}

TEST_F(EngineCommandsTest, ATrapThatCannotWriteItsLineStillHoldsTheError)
{
    DebugLog nowhere(temp.path() / "no" / "folder", machine.clock);
    EXPECT_NO_THROW(nowhere.writeErrorTrap("Main", ErrorNumber::Overflow));
    EXPECT_FALSE(trapErrors(nowhere, "Main", [] { throw std::overflow_error("x"); }));
    EXPECT_TRUE(trapErrors(nowhere, "Main", [] {}));
}

TEST_F(EngineCommandsTest, DebugModeShowsTheDebugAreaAndItsCommandsWork)
{
    show("10", "100", "5");
    meter().setDebugMode(true);
    EXPECT_TRUE(meter().state().DebugMode);
    EXPECT_EQ(machine.count("debug area"), 1u);
    EXPECT_NE(debugText().find("Change DebugMode ･･･ End "), std::string::npos);

    meter().cycle().cmdCapture_Click();
    EXPECT_EQ(machine.count("wait 10000"), 1u);
    EXPECT_EQ(machine.grabs, 1);
    EXPECT_GE(machine.count("caption 0 認識中…"), 1u) << "progress captions while tracing";
    EXPECT_EQ(std::count(machine.events.begin(), machine.events.end(), "caption 1 100"), 1);
    const std::string afterCapture = debugText();
    EXPECT_NE(afterCapture.find("Single Capture ･･･ End "), std::string::npos);
    EXPECT_NE(afterCapture.find(" 変換データ : "), std::string::npos) << "the recogniser's trace";

    meter().cycle().cmdRecognize_Click();
    EXPECT_EQ(machine.count("elapsed 0.000秒"), 1u);
    EXPECT_NE(debugText().find("Single Recognize(0.000) ･･･ End "), std::string::npos);
    EXPECT_EQ(meter().session().CurrentLv, 10);
    EXPECT_EQ(meter().session().CurrentExp, Currency::fromInt(100));

    machine.windows = {GameWindowState::Missing, GameWindowState::Front};
    meter().cycle().runCycle(); // no session to stop, but the trace says the game went
    EXPECT_NE(debugText().find("Lost MapleStory Then Capture Stop "), std::string::npos);

    meter().setDebugMode(false);
    const std::size_t captions = machine.count("caption 0 認識中…");
    meter().cycle().cmdRecognize_Click();
    EXPECT_EQ(machine.count("caption 0 認識中…"), captions) << "no trace with the switch off";
    EXPECT_EQ(machine.count("debug area"), 2u);
}

TEST_F(EngineCommandsTest, LevelWatchFollowsItsSettingsAndStartsAfreshWhenSwitchedOn)
{
    show("50", "1", "1");
    settings.DoHLCheckExec = true;
    settings.DoHLInterval = 250;
    meter().settingsChanged();
    EXPECT_TRUE(meter().state().controls.doHLTimerEnabled);
    EXPECT_EQ(meter().state().controls.doHLIntervalMs, 250);

    meter().menuRun_Click();
    meter().watch().timDoHLInterval_Timer(); // primes at 50
    EXPECT_EQ(machine.count("caption 0 50"), 1u) << "the check shows what it read";
    meter().runGesture(Gesture::WatchOff);
    show("51", "1", "1"); // a level-up while the watch was off
    meter().runGesture(Gesture::WatchOn);
    meter().watch().timDoHLInterval_Timer();
    EXPECT_EQ(meter().logBox().text().find("LvUP or Dead 検出"), std::string::npos) << "no burst for the jump";
    show("52", "1", "1");
    meter().watch().timDoHLInterval_Timer();
    EXPECT_NE(meter().logBox().text().find("LvUP or Dead 検出"), std::string::npos) << "the next rise is captured";

    settings.DoHLCheckExec = false;
    meter().settingsChanged();
    EXPECT_FALSE(meter().state().controls.doHLTimerEnabled);
}

TEST_F(EngineCommandsTest, CycleSkipHoldsTheCycleAndTheWatch)
{
    show("50", "1", "1");
    meter().menuRun_Click();
    machine.clock.advanceMs(20000);
    meter().state().cycleSkip = true;
    meter().cycle().timCaptureInterval_Timer();
    meter().watch().timDoHLInterval_Timer();
    EXPECT_EQ(machine.grabs, 0);
    meter().state().cycleSkip = false;
    meter().cycle().timCaptureInterval_Timer();
    EXPECT_EQ(machine.grabs, 1) << "the held cycle runs at the next tick";
}

TEST_F(EngineCommandsTest, TimeLeftAsksFromTheLatestReadingOfTheSession)
{
    const auto asked = [this](const std::string& now, int proposed) {
        return machine.count("ask あと何時間？ | 目標Lvを入力してください  (現在:" + now + ") | 1 200 " +
                             std::to_string(proposed) + ".000000 1");
    };
    machine.numbers = {121, 500, 121, 500, 121, 500};
    meter().menuRun_Click();
    meter().menuTimeLeft_Click(); // nothing read yet: no level, a proposal within the bounds
    EXPECT_EQ(asked("未認識", 1), 1u);

    cycle(100, "120", "0", "");
    cycle(460, "", "", ""); // a failed reading does not unknow the level
    meter().menuTimeLeft_Click();
    EXPECT_EQ(asked("120", 121), 1u);
    meter().menuStop_Click();
    meter().logBox().clear();
    meter().menuTimeLeft_Click(); // after the Stop the tools still know it
    EXPECT_EQ(asked("120", 121), 2u);
    EXPECT_NE(meter().logBox().text().find("Lv121まで、あと 29,716 Kexp、59.43時間です"), std::string::npos)
        << meter().logBox().text();

    meter().menuRun_Click();
    meter().menuTimeLeft_Click(); // a new session starts from nothing
    EXPECT_EQ(asked("未認識", 1), 2u);
}

} // namespace
} // namespace tvx
