#include "measurement/MeasurementSession.h"

#include "measurement/ExpTable.h"
#include "measurement/RecordFile.h"
#include "measurement/RecordFormat.h"
#include "measurement/SessionHistory.h"
#include "meter/RecognitionCycle.h"
#include "ports/Clock.h"
#include "ports/MeterView.h"
#include "ports/Waiter.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"
#include "shell/Launcher.h"
#include "shell/LogBox.h"
#include "base/Utf8Path.h"
#include "ports/Prompter.h"
#include "base/Language.h"

#include <cmath>
#include <cstdio>

namespace tvx {

namespace {

constexpr std::string_view kLineBreak = "\r\n";
const Currency kMinusOne = Currency::fromInt(-1);

std::string percentText(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", value);
    // No "-0.00％" for a loss too small to show.
    return trFormat("%1％", {std::string_view(text) == "-0.00" ? "0.00" : text});
}

std::string wholeText(std::int64_t value)
{
    return std::to_string(value);
}

} // namespace

std::string failureText(std::int32_t level, Currency exp, Currency money)
{
    const bool lv = level < 0;
    const bool ex = exp.raw() < 0;
    const bool mo = money.raw() < 0;
    if (lv && ex && mo)
        return N_("全部 NG");
    if (ex && mo)
        return N_("ExpとMoney NG");
    if (lv && mo)
        return N_("LvとMoney NG");
    if (mo && !lv && !ex)
        return N_("Money NG");
    if (lv && ex)
        return N_("LvとExp NG");
    if (ex)
        return N_("Exp NG");
    if (lv)
        return N_("Lv NG");
    return "";
}

Currency elapsedMinutes(std::int32_t seconds)
{
    return Currency::fromDouble(static_cast<double>(seconds / 6) / 10.0);
}

Currency hourlyRate(Currency gain, std::int32_t seconds)
{
    if (seconds == 0)
        return Currency{};
    return Currency::intOf(gain.toDouble() / seconds * 3.6);
}

MeasurementSession::MeasurementSession(const Settings& settings, MeterPorts& ports, MeterState& state,
                                       DebugLog& log, LogBox& logBox, RecordFile& recordFile, Launcher& launcher)
    : m_settings(settings), m_ports(ports), m_state(state), m_log(log), m_logBox(logBox), m_recordFile(recordFile),
      m_launcher(launcher)
{
}

void MeasurementSession::liveChanged()
{
    m_ports.view.liveChanged();
}

void MeasurementSession::controlsChanged()
{
    m_ports.view.controlsChanged();
}

void MeasurementSession::ChangeLogging(int mode)
{
    if (mode == kStartLogging) {
        m_state.controls.runEnabled = false;
        m_state.controls.stopEnabled = true;
        m_state.controls.runCaption = N_("ロギング");
        controlsChanged();
        const auto& apps = m_settings.StartUp;
        if (apps[0].Enabled)
            m_launcher.RunFile(apps[0].Path, 500);
        if (apps[1].Enabled && !m_state.closing) {
            if (apps[0].Enabled)
                m_ports.waiter.WaitMs(m_settings.StartUpDelay * 1000);
            if (!m_state.closing)
                m_launcher.RunFile(apps[1].Path, 500);
        }
        // Every launch waits; a close meanwhile starts no session.
        if (m_state.closing)
            return;
        m_state.controls.captureTimerEnabled = true;
        controlsChanged();
        const LocalDateTime now = m_ports.clock.now();
        NextCaptureTime = addSeconds(now, 15);
        SessionStamp = formatSessionStamp(now);
        ++m_sessionNumber;
        m_toldRecordFailure = false;
        m_toldHistoryFailure = false;
        m_live.start(m_ports.clock.tickMs());
        if (Suspended)
            m_live.suspend(m_ports.clock.tickMs());
        liveChanged();
        // Nothing of an earlier session shows in this one's labels, summary or tools.
        clearReading();
        m_level = -1;
        m_exp = {};
        m_latestExpRate = Currency{};
        DisplayResult(kReset);
        m_logBox.write(std::string(tr(kLogHeader)) + std::string(kLineBreak));
        m_ports.waiter.WaitMs(m_settings.StartDelay * 1000);
    } else if (mode == kStopLogging) {
        m_state.busy = false;
        m_ports.view.sessionReset();
        m_state.controls.runEnabled = true;
        m_state.controls.stopEnabled = false;
        m_state.controls.runCaption = N_("開始");
        m_state.controls.captureTimerEnabled = false;
        SessionStamp.clear();
        // The next session starts from fresh bases; the latest reading stays for the tools.
        m_previousLevel = 0;
        m_exp = {m_exp.current, {}, {}};
        m_money = {};
        m_expTime = {};
        m_moneyTime = {};
        if (m_onStop)
            m_onStop();
        controlsChanged();
        liveChanged();
    }
}

void MeasurementSession::ChangeSuspend(std::int32_t delaySeconds)
{
    try {
        if (Suspended) {
            m_state.controls.tempStopRed = false;
            Suspended = false;
            m_live.resume(m_ports.clock.tickMs());
            liveChanged();
            m_log.WriteDebugLog("Suspend Mode Off ");
            if (running()) {
                m_state.controls.captureTimerEnabled = true;
                controlsChanged();
                m_ports.waiter.WaitMs(delaySeconds * 1000);
                // A stop, a close or another suspend may have come during the wait.
                if (running() && !m_state.closing && !Suspended && m_runCycle)
                    m_runCycle();
            } else {
                controlsChanged();
            }
            return;
        }
        if (m_state.controls.captureTimerEnabled) {
            Suspended = true;
            m_state.controls.captureTimerEnabled = false;
            m_state.controls.tempStopRed = true;
            controlsChanged();
        }
        m_live.suspend(m_ports.clock.tickMs());
        liveChanged();
        m_log.WriteDebugLog("Suspend Mode On ");
    } catch (const RuntimeError& error) {
        m_log.writeErrorTrap("ChangeSuspend", error.number());
    }
}

std::int32_t MeasurementSession::presentSeconds()
{
    // Rounded to a whole second, half to even.
    const std::uint32_t tick = m_ports.clock.tickMs();
    std::uint32_t seconds = tick / 1000;
    const std::uint32_t rest = tick % 1000;
    if (rest > 500 || (rest == 500 && seconds % 2 == 1))
        ++seconds;
    return static_cast<std::int32_t>(seconds);
}

void MeasurementSession::reportFailure()
{
    const std::string text = failureText(CurrentLv, CurrentExp, CurrentMoney);
    m_logBox.write(trFormat("%1  認識失敗  %2", {formatMonthDayTime(m_ports.clock.now()), tr(text)}) +
                   std::string(kLineBreak));
    m_log.WriteDebugLog("ImageRecognition misstep :" + text);
}

void MeasurementSession::clearReading()
{
    CurrentLv = -1;
    CurrentExp = kMinusOne;
    CurrentMoney = kMinusOne;
}

bool MeasurementSession::evaluateReading()
{
    if (!readingValid()) {
        reportFailure();
        m_live.failedReading();
        checkStall();
        liveChanged();
        return false;
    }
    const std::int32_t present = presentSeconds();
    m_expTime.present = present;
    m_exp.current = ExpTable(CurrentLv, CurrentExp);
    m_level = CurrentLv;
    const bool moneyRead = CurrentMoney > kMinusOne;
    if (moneyRead) {
        m_money.current = CurrentMoney;
        m_moneyTime.present = present;
    }
    const std::int32_t levelDifference = m_level - m_previousLevel;
    const bool characterChanged = m_previousLevel != 0 && (levelDifference < 0 || levelDifference >= 4);
    followLive(characterChanged);
    if (characterChanged) {
        detectCharacterChange();
        return true;
    }
    if (moneyRead && m_moneyTime.base == 0) {
        m_money.base = m_money.current;
        m_moneyTime.base = present;
    }
    if (m_expTime.base == 0) {
        setBases(present, moneyRead);
        return true;
    }
    m_previousLevel = m_level;
    const bool expMoved = m_exp.current != m_exp.base;
    const bool moneyMoved = m_money.current != m_money.base;
    if (moneyRead && !expMoved && !moneyMoved) {
        m_expTime.base = present;
        m_moneyTime.base = present;
        CurrentMoney = kMinusOne;
        addZeroPoint();
    } else if (!moneyRead && !expMoved) {
        m_expTime.base = present;
        addZeroPoint();
    } else {
        if (moneyRead && !moneyMoved)
            m_moneyTime.base = present;
        else if (moneyRead && !expMoved)
            m_expTime.base = present;
        makeRecord();
    }
    return true;
}

void MeasurementSession::followLive(bool characterChanged)
{
    LiveReading reading{CurrentLv, CurrentExp.wholePart(), std::nullopt};
    if (CurrentMoney >= Currency{})
        reading.money = CurrentMoney.wholePart();
    m_live.validReading(m_ports.clock.tickMs(), m_ports.clock.now(), reading, characterChanged,
                        rateWindowOfMinutes(m_settings.NextLevelWindow));
    saveHistory();
    checkStall();
    liveChanged();
}

void MeasurementSession::saveHistory()
{
    if (!m_live.row())
        return;
    const std::filesystem::path path = historyFilePath(m_settings);
    if (trapErrors(m_log, "SaveHistoryRow", [&] { m_history.save(path, *m_live.row()); }))
        return;
    if (m_toldHistoryFailure)
        return;
    m_toldHistoryFailure = true;
    m_ports.prompter.message(crlf(trFormat("セッション履歴のファイルを読み書きできません。\n%1\n"
                                           "このファイルには手を付けずに、計測はこのまま続けます。",
                                           {pathUtf8(path)})),
                             tr("エラー"));
}

void MeasurementSession::checkStall()
{
    if (!running() || Suspended)
        return;
    const Stall before = m_live.figures().stall;
    const Stall begun = m_live.checkStall(m_ports.clock.tickMs(), m_settings.StallMinutes);
    if (begun != Stall::None) {
        saveHistory();
        m_log.WriteDebugLog(begun == Stall::NoReading ? "Stall : No Reading " : "Stall : No Gain ");
        if (m_settings.StallAlarm) {
            PlayCaptureBeep(m_ports.sound, m_settings.CaptureBeep);
            m_logBox.write(trFormat("%1  停滞  %2", {formatMonthDayTime(m_ports.clock.now()),
                                                    stallText(begun, m_settings.StallMinutes)}) +
                           std::string(kLineBreak));
        }
    }
    if (m_live.figures().stall != before)
        liveChanged();
}

std::string stallText(Stall stall, std::int32_t minutes)
{
    const std::string span = std::to_string(minutes);
    return stall == Stall::NoReading ? trFormat("%1分間読み取れていません", {span})
                                     : trFormat("%1分間経験値が増えていません", {span});
}

void MeasurementSession::detectCharacterChange()
{
    DisplayResult(kSummary);
    m_logBox.write(std::string(kLineBreak) + tr("キャラクタチェンジ検出") + std::string(kLineBreak) +
                   std::string(tr(kLogHeader)) + std::string(kLineBreak));
    m_exp.base = m_exp.current;
    m_money.base = m_money.current;
    m_previousLevel = 0;
    m_expTime.base = 0;
    m_moneyTime.base = 0;
    m_log.WriteDebugLog("Detect Character Change ");
    if (m_settings.Graph && m_state.graph) {
        for (std::int32_t i = 1; i < m_settings.GraphAveNum; ++i)
            m_state.graph->AddGraphData(Currency{}, Currency{}, m_settings.GraphAveNum, m_settings.GraphTimeScale);
        m_state.graphView = GraphView{};
        m_ports.view.graphDataChanged();
    }
    DisplayResult(kStartRow);
}

void MeasurementSession::setBases(std::int32_t present, bool moneyRead)
{
    m_exp.base = m_exp.current;
    m_expTime.base = present;
    // Money that was not read is no base: its time starts at its first reading.
    if (moneyRead) {
        m_money.base = m_money.current;
        m_moneyTime.base = present;
    }
    m_previousLevel = m_level;
    writeRecord("", RecordFile::kStart);
    m_logBox.write(std::string(kLineBreak) + FormatField(std::int64_t{m_level}, 6, 1, 0, false) +
                   FormatField(m_exp.current, 13, 1, 0, false) +
                   (moneyBased() ? FormatField(m_money.current, 14, 1, 0, false) : std::string()) +
                   std::string(kLineBreak));
    DisplayResult(kStartRow);
    m_log.WriteDebugLog("Fast ImageRecognition ");
}

void MeasurementSession::makeRecord()
{
    // Money never read since the bases were set has no gain, no time and no rate.
    const bool money = moneyBased();
    m_exp.gain = m_exp.current - m_exp.base;
    m_money.gain = money ? m_money.current - m_money.base : Currency{};
    m_expTime.elapsed = m_expTime.present - m_expTime.base;
    m_moneyTime.elapsed = money ? m_moneyTime.present - m_moneyTime.base : 0;
    const Currency minutesE = elapsedMinutes(m_expTime.elapsed);
    const Currency minutesM = elapsedMinutes(m_moneyTime.elapsed);
    const Currency rateE = hourlyRate(m_exp.gain, m_expTime.elapsed);
    const Currency rateM = hourlyRate(m_money.gain, m_moneyTime.elapsed);
    m_latestExpRate = rateE;

    const std::string stamp = formatMonthDayTime(m_ports.clock.now());
    m_logBox.write(screenLine(stamp, minutesE, rateE, rateM) + std::string(kLineBreak));
    writeRecord(fileLine(stamp, minutesE, rateE, minutesM, rateM), RecordFile::kAppend);

    // No money rate to give: the graph leaves a gap.
    addGraphPoint(rateE, m_moneyTime.elapsed == 0 ? kMinusOne : rateM);
    m_exp.base = m_exp.current;
    m_expTime.base = m_expTime.present;
    if (money) {
        m_money.base = m_money.current;
        m_moneyTime.base = m_moneyTime.present;
    }
}

std::string MeasurementSession::screenLine(const std::string& stamp, Currency minutesE, Currency rateE,
                                           Currency rateM) const
{
    std::string line = stamp + FormatField(std::int64_t{m_level}, 6, 1, 0, false) + FormatField(m_exp.gain, 13, 1, 0, false);
    if (!m_settings.MoneyScan)
        return line + FormatField(minutesE, 6, 1, 1, true) + FormatField(rateE, 10, 1, 0, false);
    line += (moneyBased() ? FormatField(m_money.gain, 14, 1, 0, false) : FormatField(std::string(), 14, 1, 0, false)) +
            FormatField(minutesE, 6, 1, 1, true) + FormatField(rateE, 10, 1, 0, false);
    if (m_moneyTime.elapsed != 0)
        return line + FormatField(rateM, 12, 1, 0, false);
    return line + (CurrentMoney < Currency{} ? "     " + std::string(tr("未認識")) + " " : "            ");
}

std::string MeasurementSession::fileLine(const std::string& stamp, Currency minutesE, Currency rateE, Currency minutesM,
                                         Currency rateM) const
{
    const bool plain = m_settings.SaveCsv;
    const bool money = moneyBased();
    const auto moneyField = [&](Currency value, std::int32_t width, std::int32_t decimals) {
        return money ? FormatField(value, width, 1, decimals, plain) : FormatField(std::string(), width, 1, 0, plain);
    };
    const std::string separator = plain ? " ," : "  ";
    return stamp + separator + FormatField(std::int64_t{m_level}, 6, 1, 0, plain) + separator +
           FormatField(m_exp.current, 14, 1, 0, plain) + separator + moneyField(m_money.current, 15, 0) + separator +
           FormatField(m_exp.gain, 15, 1, 0, plain) + separator + moneyField(m_money.gain, 17, 0) + separator +
           FormatField(minutesE, 12, 1, 1, plain) + separator + FormatField(rateE, 13, 1, 0, plain) + separator +
           moneyField(minutesM, 13, 1) + separator + moneyField(rateM, 14, 0);
}

void MeasurementSession::writeRecord(std::string_view line, int mode)
{
    if (trapErrors(m_log, "WriteRecordLine", [&] { m_recordFile.WriteRecordLine(SessionStamp, line, mode); }))
        return;
    if (m_toldRecordFailure)
        return;
    m_toldRecordFailure = true;
    std::string path;
    trapErrors(m_log, "WriteRecordLine", [&] { path = pathUtf8(recordFilePath(m_settings, SessionStamp)); });
    m_ports.prompter.message(crlf(trFormat("時給記録ファイルに書き込めません。\n%1\n"
                                           "保存場所を確かめてください。計測はこのまま続けます。",
                                           {path})),
                             tr("エラー"));
}

void MeasurementSession::addZeroPoint()
{
    if (!m_settings.Graph || !m_state.graph)
        return;
    m_state.graph->AddGraphData(Currency{}, Currency{}, m_settings.GraphAveNum, m_settings.GraphTimeScale);
    m_state.graphView.timeShift = 0;
    m_ports.view.graphDataChanged();
}

void MeasurementSession::addGraphPoint(Currency rateE, Currency rateM)
{
    if (!m_settings.Graph || !m_state.graph)
        return;
    m_state.graph->AddGraphData(rateE, rateM, m_settings.GraphAveNum, m_settings.GraphTimeScale);
    m_state.graphView = GraphView{};
    m_ports.view.graphDataChanged();
}

std::optional<double> MeasurementSession::levelPercent() const
{
    if (CurrentExp.raw() < 0 || CurrentLv < 0)
        return std::nullopt;
    const Currency divisor = ExpTable(CurrentLv + 1) - ExpTable(CurrentLv);
    if (divisor.raw() == 0)
        return std::nullopt;
    return 100.0 * CurrentExp.toDouble() / divisor.toDouble();
}

void MeasurementSession::DisplayResult(int mode)
{
    try {
        switch (mode) {
        case kReset:
            resetResults();
            break;
        case kStartRow:
            showStartRow();
            break;
        case kSummary:
            if (!running())
                return;
            m_logBox.write(summaryText());
            m_log.WriteDebugLog("Measure Result Data Display Complete ");
            return;
        default:
            // A failed reading is never shown, not as a start and not as a gain.
            if (!readingValid())
                return;
            if (m_state.labels.Start.Time.empty()) {
                showStartRow();
                break;
            }
            showUpdate();
            if (m_state.DebugMode)
                m_log.WriteDebugLog("Useally Measure Data Display Complete ");
            break;
        }
        m_ports.view.resultsChanged();
    } catch (const RuntimeError& error) {
        m_log.writeErrorTrap("DisplayResult", error.number());
    }
}

void MeasurementSession::resetResults()
{
    for (ResultRow* row : {&m_state.labels.Start, &m_state.labels.End, &m_state.labels.Elapse})
        *row = ResultRow{"", "-1", "-1", trFormat("%1％", {"0.00"}), "-1"};
    m_moneyPair = {kMinusOne, kMinusOne};
    m_startLv = -1;
    m_startTotal = Currency{};
    m_startPercent.reset();
    m_endPercent.reset();
}

void MeasurementSession::showStartRow()
{
    ResultRow& row = m_state.labels.Start;
    m_startTime = m_ports.clock.now();
    row.Time = FormatNow(m_startTime);
    row.Lv = wholeText(CurrentLv);
    row.Exp = CurrentExp.toString();
    m_startLv = CurrentLv;
    m_startTotal = ExpTable(CurrentLv, CurrentExp);
    m_startPercent = levelPercent();
    if (m_startPercent)
        row.ExpPS = percentText(*m_startPercent);
    if (CurrentMoney >= Currency{} && m_settings.MoneyScan) {
        m_moneyPair[0] = CurrentMoney;
        row.Money = CurrentMoney.toString();
    }
}

void MeasurementSession::showUpdate()
{
    ResultLabels& labels = m_state.labels;
    const LocalDateTime now = m_ports.clock.now();
    labels.End.Time = FormatNow(now);
    labels.Elapse.Time = FormatDuration(m_startTime, now);
    labels.End.Lv = wholeText(CurrentLv);
    labels.End.Exp = CurrentExp.toString();
    m_endPercent = levelPercent();
    if (m_endPercent)
        labels.End.ExpPS = percentText(*m_endPercent);
    if (CurrentMoney >= Currency{} && m_settings.MoneyScan) {
        m_moneyPair[1] = CurrentMoney;
        labels.End.Money = CurrentMoney.toString();
    }
    labels.Elapse.Lv = wholeText(std::int64_t{CurrentLv} - m_startLv);
    labels.Elapse.Exp = (ExpTable(CurrentLv, CurrentExp) - m_startTotal).toString();
    if (m_startPercent && m_endPercent)
        labels.Elapse.ExpPS = percentText(*m_endPercent - *m_startPercent);
    if (m_moneyPair[0] >= Currency{} && m_moneyPair[1] >= Currency{})
        labels.Elapse.Money = (m_moneyPair[1] - m_moneyPair[0]).toString();
}

std::string MeasurementSession::summaryText() const
{
    const ResultLabels& labels = m_state.labels;
    auto row = [](std::string_view caption, const ResultRow& r) {
        return "    " + std::string(caption) + "  Lv:" + FormatField(r.Lv, 5, 1, 0, false) + "   Exp:" +
               FormatField(r.Exp, 14, 1, 0, false) + FormatField(r.ExpPS, 11, 1, 0, false) + "  " + tr("ﾒﾙ") + ":" +
               FormatField(r.Money, 17, 1, 0, false) + "\r\n";
    };
    return trFormat(" 経過: %1  ～  %2  ＝  %3", {labels.Start.Time, labels.End.Time, labels.Elapse.Time}) + "\r\n" +
           row(tr("開始"), labels.Start) + row(tr("終了"), labels.End) + row(tr("増加"), labels.Elapse) + "\r\n";
}

} // namespace tvx
