#include "measurement/LevelWatch.h"
#include "base/Language.h"

#include "measurement/MeasurementSession.h"
#include "ports/Clock.h"
#include "ports/GameWindowProbe.h"
#include "ports/MeterView.h"
#include "ports/Waiter.h"
#include "meter/RecognitionCycle.h"
#include "meter/ScreenImages.h"
#include "recognition/ScreenRecognizer.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"
#include "shell/LogBox.h"

namespace tvx {

LevelWatch::LevelWatch(const Settings& settings, MeterPorts& ports, MeterState& state, DebugLog& log, LogBox& logBox,
                       ScreenRecognizer& recognizer, RecognitionCycle& cycle, MeasurementSession& session,
                       ScreenImages& images)
    : m_settings(settings), m_ports(ports), m_state(state), m_log(log), m_logBox(logBox), m_recognizer(recognizer),
      m_cycle(cycle), m_session(session), m_images(images)
{
}

void LevelWatch::reset()
{
    Current = Previous = Change = Armed = Currency{};
    DoHLReading = Currency::fromInt(-1);
    m_primed = false;
}

void LevelWatch::timDoHLInterval_Timer()
{
    if (!m_session.running() || m_state.busy || m_state.cycleSkip)
        return;
    trapErrors(m_log, "timDoHLInterval_Timer", [this] { CheckLevelChange(); });
}

void LevelWatch::CheckLevelChange()
{
    if (m_state.closing)
        return;
    if (m_ports.probe.state(m_settings.SearchWindowName) != GameWindowState::Front)
        return;
    m_cycle.GetPictForClip(RegionLevel);
    m_recognizer.binarize(RegionLevel);
    const RecognitionResult result = m_recognizer.recognize(RegionLevel);
    m_ports.view.captureCaption(RegionLevel, std::string(tr(result.caption)));
    DoHLReading = amountFromText(result.digits);
    CaptureLevelChange();
}

void LevelWatch::CaptureLevelChange()
{
    if (DoHLReading < Currency{})
        return;
    Current = DoHLReading;
    if (Current == Previous)
        return;
    Change = Current - Previous;
    Previous = Current;
    if (!m_primed) {
        // The session's first reading is where the level starts, not a rise.
        m_primed = true;
        Armed = Currency::fromInt(1);
        return;
    }
    if (Change < Currency{}) {
        Armed = Change;
        return;
    }
    if (Armed != Currency{})
        burst();
}

void LevelWatch::burst()
{
    const std::uint64_t session = m_session.sessionNumber();
    PlayCaptureBeep(m_ports.sound, m_settings.CaptureBeep);
    const std::filesystem::path folder = screenshotFolder(m_settings.SaveFolder);
    const std::string base = "LvUP" + formatFileStamp(m_ports.clock.now());
    const char* suffixes[] = {"_a", "_b", "_c", "_d"};
    for (int shot = 0; shot < 4; ++shot) {
        if (shot > 0) {
            m_ports.waiter.WaitMs(300);
            // A stop or a close during the burst ends it: no shot and no label after them.
            if (m_state.closing || !m_session.running() || m_session.sessionNumber() != session)
                return;
        }
        m_images.PrintScreen(folder / (base + suffixes[shot]), m_settings.SaveFormat);
    }
    m_logBox.write(trFormat("%1  LvUP or Dead 検出 ", {formatMonthDayTime(m_ports.clock.now())}) + "\r\n");
    m_session.DisplayResult(MeasurementSession::kUpdate);
    m_log.WriteDebugLog("DEAD OR HAPPY LIVE Print Screen ･･･ End ");
}

} // namespace tvx
