#pragma once

#include "config/Settings.h"
#include "base/Currency.h"
#include "base/Language.h"
#include "measurement/LiveFigures.h"
#include "measurement/SessionHistory.h"
#include "meter/MeterPorts.h"
#include "meter/MeterState.h"
#include "base/DateTime.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tvx {

class DebugLog;
class Launcher;
class LogBox;
class RecordFile;

// The log box's column header, also written after a change of character (in Japanese:
// shown through tr()).
inline constexpr std::string_view kLogHeader =
    N_(" 月日 時刻    Lv     獲得Exp       獲得メル  経過   Exp時給   時給 (k/h)");

// A value of one measurement series: now, at the base, and the gain between them.
struct RateRecord {
    Currency current;
    Currency base;
    Currency gain;
};

// Seconds of the millisecond tick: now, at the base, and between them.
struct TimeRecord {
    std::int32_t present = 0;
    std::int32_t base = 0;
    std::int32_t elapsed = 0;
};

// One measurement session from Run to Stop: the bases, the evaluation of every reading,
// the records with their gains and hourly rates, and the result labels.
class MeasurementSession {
public:
    static constexpr int kStartLogging = 4096;
    static constexpr int kStopLogging = 8192;
    static constexpr int kUpdate = 0;
    static constexpr int kReset = 1;
    static constexpr int kStartRow = 512;
    static constexpr int kSummary = 1024;

    MeasurementSession(const Settings& settings, MeterPorts& ports, MeterState& state, DebugLog& log,
                       LogBox& logBox, RecordFile& recordFile, Launcher& launcher);

    // What ChangeSuspend runs when it resumes, and what a stop clears in the cycle.
    void setCycleRunner(std::function<void()> runCycle) { m_runCycle = std::move(runCycle); }
    void setStopHook(std::function<void()> onStop) { m_onStop = std::move(onStop); }

    void ChangeLogging(int mode);
    void ChangeSuspend(std::int32_t delaySeconds);
    void DisplayResult(int mode);
    // Evaluates CurrentLv, CurrentExp and CurrentMoney as the cycle stored them. False for
    // a failed reading, which leaves bases, records and labels as they were.
    bool evaluateReading();
    // Brings the stall watch up to now; a stall that begins sounds the alarm when it is on.
    void checkStall();
    const LiveTracker& live() const { return m_live; }

    bool running() const { return !SessionStamp.empty(); }
    // Counts the sessions started; a cycle that waited compares it with the one it began in.
    std::uint64_t sessionNumber() const { return m_sessionNumber; }
    // A reading that did not fail: level and experience both read.
    bool readingValid() const { return CurrentLv >= 0 && CurrentExp.raw() >= 0; }
    // The experience rate of the latest record (0 before the first).
    Currency latestExpRate() const { return m_latestExpRate; }
    // The level and total experience of the latest reading that did not fail, kept after a
    // Stop for the tools; -1 and 0 before the session's first.
    std::int32_t latestLevel() const { return m_level; }
    Currency totalExp() const { return m_exp.current; }

    std::string SessionStamp;
    LocalDateTime NextCaptureTime;
    bool Suspended = false;
    std::int32_t CurrentLv = -1;
    Currency CurrentExp = Currency::fromInt(-1);
    Currency CurrentMoney = Currency::fromInt(-1);

private:
    std::int32_t presentSeconds();
    void reportFailure();
    void detectCharacterChange();
    void setBases(std::int32_t present, bool moneyRead);
    void makeRecord();
    std::string screenLine(const std::string& stamp, Currency minutesE, Currency rateE, Currency rateM) const;
    std::string fileLine(const std::string& stamp, Currency minutesE, Currency rateE, Currency minutesM,
                         Currency rateM) const;
    // The record file's line; a file that cannot be written is logged, told once, and the
    // session goes on.
    void writeRecord(std::string_view line, int mode);
    bool moneyBased() const { return m_moneyTime.base != 0; }
    void clearReading();
    void addZeroPoint();
    void addGraphPoint(Currency rateE, Currency rateM);
    std::string summaryText() const;
    void showStartRow();
    void showUpdate();
    void resetResults();
    std::optional<double> levelPercent() const;
    void controlsChanged();
    void followLive(bool characterChanged);
    void saveHistory();
    void liveChanged();

    const Settings& m_settings;
    MeterPorts& m_ports;
    MeterState& m_state;
    DebugLog& m_log;
    LogBox& m_logBox;
    RecordFile& m_recordFile;
    Launcher& m_launcher;
    std::function<void()> m_runCycle;
    std::function<void()> m_onStop;

    std::int32_t m_level = -1;
    std::int32_t m_previousLevel = 0;
    RateRecord m_exp;
    RateRecord m_money;
    TimeRecord m_expTime;
    TimeRecord m_moneyTime;
    Currency m_latestExpRate;
    std::uint64_t m_sessionNumber = 0;
    bool m_toldRecordFailure = false;
    bool m_toldHistoryFailure = false;
    LiveTracker m_live;
    HistoryWriter m_history;

    // What the start row shows, for the end and increase rows.
    LocalDateTime m_startTime;
    std::int32_t m_startLv = -1;
    Currency m_startTotal;
    std::optional<double> m_startPercent;
    std::optional<double> m_endPercent;
    std::array<Currency, 2> m_moneyPair{Currency::fromInt(-1), Currency::fromInt(-1)};
};

// The log box's words for a stall that begins.
std::string stallText(Stall stall, std::int32_t minutes);

// Failed values named for the log box and the debug log ("全部 NG", "Lv NG", ...); empty
// when nothing failed.
std::string failureText(std::int32_t level, Currency exp, Currency money);

// Elapsed minutes shown: seconds / 6 truncated toward zero, then / 10.
Currency elapsedMinutes(std::int32_t seconds);
// Int(gain / seconds * 3.6) in thousands per hour; 0 for no elapsed time.
Currency hourlyRate(Currency gain, std::int32_t seconds);

} // namespace tvx
