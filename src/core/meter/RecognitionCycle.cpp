#include "meter/RecognitionCycle.h"
#include "base/Language.h"

#include "measurement/MeasurementSession.h"
#include "ports/Clock.h"
#include "ports/GameWindowProbe.h"
#include "ports/MeterView.h"
#include "ports/ScreenSource.h"
#include "ports/Sound.h"
#include "ports/Waiter.h"
#include "meter/ScreenCapture.h"
#include "recognition/ScreenRecognizer.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"

#include <array>
#include <cstdio>
#include <string_view>
#include <vector>

namespace tvx {

namespace {

constexpr std::array<std::string_view, kRegionCount> kRegionLogNames{"Lv", "Exp", "Money"};

// Passes the recogniser's progress captions on to the window.
class ViewCaptions final : public CaptionSink {
public:
    explicit ViewCaptions(MeterView& view) : m_view(view) {}
    void setCaption(int region, std::string_view caption) override { m_view.captureCaption(region, std::string(caption)); }

private:
    MeterView& m_view;
};

} // namespace

void PlayCaptureBeep(Sound& sound, std::int32_t choice)
{
    switch (choice) {
    case 1: sound.systemBeep(); break;
    case 2: sound.beep(500, 75); break;
    case 3: sound.beep(2000, 75); break;
    case 4: sound.beep(500, 200); break;
    case 5: sound.beep(2000, 200); break;
    default: break;
    }
}

RecognitionCycle::RecognitionCycle(const Settings& settings, MeterPorts& ports, MeterState& state, DebugLog& log,
                                   ScreenRecognizer& recognizer, ScreenCapture& capture, MeasurementSession& session)
    : m_settings(settings), m_ports(ports), m_state(state), m_log(log), m_recognizer(recognizer), m_capture(capture),
      m_session(session)
{
}

void RecognitionCycle::timCaptureInterval_Timer()
{
    // A stall is noticed between readings too: the game may be gone for good.
    m_session.checkStall();
    if (m_ports.clock.now() < m_session.NextCaptureTime)
        return;
    if (!m_session.running()) {
        m_state.controls.captureTimerEnabled = false;
        m_ports.view.controlsChanged();
        return;
    }
    m_state.busy = true;
    // A text too long for its number, for one, ends this cycle and no more.
    trapErrors(m_log, "timCaptureInterval_Timer", [this] { runCycle(); });
    m_state.busy = false;
}

bool RecognitionCycle::gameInFront()
{
    return m_ports.probe.state(m_settings.SearchWindowName) == GameWindowState::Front;
}

void RecognitionCycle::retryLater()
{
    m_session.NextCaptureTime = addSeconds(m_ports.clock.now(), kRetrySeconds);
}

void RecognitionCycle::countMiss()
{
    if (!m_settings.Graph)
        return;
    if (++m_missCount < kMissesPerZeroPoint)
        return;
    m_missCount = 0;
    if (m_state.graph) {
        m_state.graph->AddGraphData(Currency{}, Currency{}, m_settings.GraphAveNum, m_settings.GraphTimeScale);
        m_ports.view.graphDataChanged();
    }
}

bool RecognitionCycle::stillWanted(std::uint64_t session) const
{
    return !m_state.closing && m_session.running() && m_session.sessionNumber() == session;
}

void RecognitionCycle::runCycle()
{
    // A tick or a gesture that comes while the program closes reads nothing.
    if (m_state.cycleSkip || m_state.closing)
        return;
    const std::uint64_t session = m_session.sessionNumber();
    const std::int64_t intervalSeconds = m_state.intervalSecondsOverride > 0 ? m_state.intervalSecondsOverride
                                                                              : std::int64_t{m_settings.CaptureInterval} * 60;
    m_session.NextCaptureTime = addSeconds(m_ports.clock.now(), intervalSeconds);
    const GameWindowState game = m_ports.probe.state(m_settings.SearchWindowName);
    if (game == GameWindowState::Missing) {
        if (!m_noticeShown) {
            m_ports.view.showNotice(trFormat("%1が起動していません", {m_settings.SearchWindowName}), tr("エラー"));
            m_noticeShown = true;
        }
        if (!m_session.running() && m_state.DebugMode)
            m_log.WriteDebugLog("Lost " + m_settings.SearchWindowName + " Then Capture Stop ");
        return;
    }
    hideNotice();
    if (game != GameWindowState::Front) {
        retryLater();
        countMiss();
        return;
    }
    m_missCount = 0;
    readRegions();
    const bool moneyMissed = m_session.CurrentMoney < Currency{};
    if (moneyMissed && m_settings.MoneyScan && m_session.CurrentExp >= Currency{} && m_session.CurrentLv > 0) {
        if (!rereadMoney(session)) {
            retryLater();
            return;
        }
        // A stop, a close or a new session during the waits: this reading belongs to none.
        if (!stillWanted(session))
            return;
    }
    handOver();
}

void RecognitionCycle::handOver()
{
    // Only a running session evaluates; a test capture without one only shows what it read.
    if (!m_session.running())
        return;
    if (m_session.evaluateReading())
        m_session.DisplayResult(MeasurementSession::kUpdate);
}

void RecognitionCycle::readRegions()
{
    m_state.busy = true;
    GetPictForClip(-1);
    for (int region = 0; region < kRegionCount; ++region)
        m_recognizer.binarize(region);
    for (int region = 0; region < kRegionCount; ++region)
        recognizeInto(region);
    m_state.busy = false;
}

bool RecognitionCycle::rereadMoney(std::uint64_t session)
{
    PlayCaptureBeep(m_ports.sound, m_settings.CaptureBeep);
    m_ports.waiter.WaitMs(m_settings.MoneyWait);
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (attempt == 1)
            m_ports.waiter.WaitMs(1000);
        if (!stillWanted(session))
            return true;
        if (!gameInFront())
            return false;
        m_state.busy = true;
        GetPictForClip(RegionMoney);
        m_recognizer.binarize(RegionMoney);
        recognizeInto(RegionMoney);
        m_state.busy = false;
        if (m_session.CurrentMoney >= Currency{})
            break;
    }
    return true;
}

void RecognitionCycle::recognizeInto(int region)
{
    ViewCaptions captions(m_ports.view);
    const RecognitionResult result =
        m_recognizer.recognize(region, m_state.DebugMode, m_state.DebugMode ? &captions : nullptr);
    m_ports.view.captureCaption(region, std::string(tr(result.caption)));
    noteUntaught(region, result.untaught);
    if (m_state.DebugMode && !result.trace.empty())
        m_log.WriteDebugLog(joinTrace(result.trace));
    if (region == RegionLevel)
        m_session.CurrentLv = levelFromText(result.digits);
    else if (region == RegionExp)
        m_session.CurrentExp = amountFromText(result.digits);
    else
        m_session.CurrentMoney = amountFromText(result.digits);
}

void RecognitionCycle::noteUntaught(int region, const std::string& untaught)
{
    // Once per change: the level watch reads every second.
    std::string& last = m_untaught.at(static_cast<std::size_t>(region));
    if (untaught == last)
        return;
    last = untaught;
    if (!untaught.empty())
        m_log.WriteDebugLog("Recognize Untaught : " + std::string(kRegionLogNames[static_cast<std::size_t>(region)]) +
                            " : templates " + untaught + " ");
}

int RecognitionCycle::GetPictForClip(int region)
{
    // A whole reading takes the whole screen, once a cycle: it is the picture the pattern
    // save and the options window show. The level watch and the money re-read take only
    // their region, and leave that picture alone.
    std::optional<CaptureBitmap> screen;
    ScreenCapture::Result taken = ScreenCapture::Result::NoPicture;
    const bool captured = trapErrors(m_log, "GetPictForClip", [&] {
        if (region < 0)
            taken = m_capture.takeReading(m_settings.CaptureRegion, screen);
        else
            taken = m_capture.take(std::span(&m_settings.CaptureRegion[static_cast<std::size_t>(region)], 1), screen);
    });
    if (!captured) {
        securePixels();
        return -1;
    }
    if (taken == ScreenCapture::Result::FileUnreadable) {
        m_log.WriteDebugLog("CaptureFile Load Misstake ");
        securePixels();
        return -2;
    }
    if (taken != ScreenCapture::Result::Taken || !screen) {
        m_log.WriteDebugLog("PrintScreen MissTake ");
        securePixels();
        return -1;
    }
    m_ports.view.captureTaken(*screen);
    const bool filled = trapErrors(m_log, "GetPictForClip2", [&] {
        for (int r = 0; r < kRegionCount; ++r)
            if (region < 0 || region == r)
                m_recognizer.fill(r, *screen);
    });
    if (!filled) {
        securePixels();
        return -2;
    }
    return 0;
}

std::optional<CaptureBitmap> RecognitionCycle::lastCapture() const
{
    return m_capture.kept();
}

void RecognitionCycle::securePixels()
{
    trapErrors(m_log, "SecurePixels", [this] { m_recognizer.SecurePixels(); });
}

void RecognitionCycle::setTestButtons(bool enabled)
{
    m_state.controls.testButtonsEnabled = enabled;
    m_ports.view.controlsChanged();
}

void RecognitionCycle::cmdCapture_Click()
{
    trapErrors(m_log, "cmdCapture_Click", [this] {
        m_log.WriteDebugLog("Click : Test Capture ");
        setTestButtons(false);
        m_ports.waiter.WaitMs(10000);
        if (!m_state.closing)
            runCycle();
    });
    m_state.busy = false;
    setTestButtons(true);
    trapErrors(m_log, "cmdCapture_Click", [this] { m_log.WriteDebugLog("Single Capture ･･･ End "); });
}

void RecognitionCycle::cmdRecognize_Click()
{
    const std::uint32_t start = m_ports.clock.tickMs();
    trapErrors(m_log, "cmdRecognize_Click", [this] {
        m_log.WriteDebugLog("Click : Test Recognize ");
        setTestButtons(false);
        for (int region = 0; region < kRegionCount; ++region)
            m_recognizer.binarize(region);
        for (int region = 0; region < kRegionCount; ++region)
            recognizeInto(region);
    });
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.3f", (m_ports.clock.tickMs() - start) / 1000.0);
    m_ports.view.recognizeElapsed(trFormat("%1秒", {seconds}));
    setTestButtons(true);
    trapErrors(m_log, "cmdRecognize_Click",
               [&] { m_log.WriteDebugLog("Single Recognize(" + std::string(seconds) + ") ･･･ End "); });
}

void RecognitionCycle::cmdTempStop_Click(std::int32_t resumeDelaySeconds)
{
    trapErrors(m_log, "cmdTempStop_Click", [&] {
        m_log.WriteDebugLog("Click : Temporarily Stop ");
        m_session.ChangeSuspend(resumeDelaySeconds);
        hideNotice();
        if (m_settings.Graph)
            m_ports.view.graphFrameChanged();
    });
}

void RecognitionCycle::hideNotice()
{
    if (!m_noticeShown)
        return;
    m_ports.view.hideNotice();
    m_noticeShown = false;
}

void RecognitionCycle::clearCarryOver()
{
    m_missCount = 0;
    m_state.busy = false;
    // The next session tells again that the game is not running.
    hideNotice();
}

} // namespace tvx
