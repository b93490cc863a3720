#include "meter/Meter.h"
#include "base/Language.h"

#include "measurement/TimeLeft.h"
#include "ports/Clock.h"
#include "ports/MeterView.h"
#include "ports/Sound.h"
#include "ports/Waiter.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"

namespace tvx {

Meter::Meter(Settings& settings, MeterPorts ports, DebugLog& log, std::uint32_t randomSeed)
    : m_settings(settings), m_ports(ports), m_log(log), m_recognizer(settings),
      m_recordFile(settings, ports.codec), m_capture(settings, ports.screen, ports.waiter, log), m_launcher(ports.launcher, ports.waiter, ports.prompter, log),
      m_images(m_capture, ports.encoder, log),
      m_session(settings, m_ports, m_state, log, m_logBox, m_recordFile, m_launcher),
      m_cycle(settings, m_ports, m_state, log, m_recognizer, m_capture, m_session),
      m_watch(settings, m_ports, m_state, log, m_logBox, m_recognizer, m_cycle, m_session, m_images),
      m_rnd(randomSeed)
{
    m_session.setCycleRunner([this] { m_cycle.runCycle(); });
    m_session.setStopHook([this] { m_cycle.clearCarryOver(); });
}

void Meter::load(Clock& graphClock)
{
    trapErrors(m_log, "FormMain_Load", [&] {
        m_logBox.clear();
        m_session.DisplayResult(MeasurementSession::kReset);
        m_state.controls.doHLTimerEnabled = m_settings.DoHLCheckExec;
        m_state.controls.doHLIntervalMs = m_settings.DoHLInterval;
        if (m_settings.Graph) {
            m_state.graph = std::make_unique<clsGraphBuffer>(graphClock);
            m_state.graphView = GraphView{};
        }
        m_state.controls.runEnabled = true;
        m_state.controls.stopEnabled = false;
        m_state.controls.runCaption = N_("開始");
        m_ports.view.controlsChanged();
        if (m_settings.AutoStart) {
            m_watch.reset();
            m_session.ChangeLogging(MeasurementSession::kStartLogging);
            m_log.WriteDebugLog("Log AutoStart ･･･ ");
        }
    });
}

void Meter::menuRun_Click()
{
    trapErrors(m_log, "menuRun_Click", [this] {
        m_log.WriteDebugLog("Click : Run ");
        m_log.WriteDebugLog("Loging ManualStart ･･･ ");
        m_watch.reset();
        m_session.ChangeLogging(MeasurementSession::kStartLogging);
    });
}

void Meter::menuStop_Click()
{
    trapErrors(m_log, "menuStop_Click", [this] {
        m_log.WriteDebugLog("Click : Stop ");
        m_session.DisplayResult(MeasurementSession::kSummary);
    });
    // The session ends even when the summary could not be written.
    trapErrors(m_log, "menuStop_Click", [this] {
        m_session.ChangeLogging(MeasurementSession::kStopLogging);
        m_log.WriteDebugLog("Loging Stop ･･･ End ");
    });
}

void Meter::printScreen(const char* procedure)
{
    trapErrors(m_log, procedure, [this] {
        const auto folder = screenshotFolder(m_settings.SaveFolder);
        m_images.PrintScreen(folder / ("PrtScr" + formatFileStamp(m_ports.clock.now())), m_settings.SaveFormat);
    });
}

void Meter::menuPrtScr_Click()
{
    trapErrors(m_log, "menuPrtScr_Click", [this] {
        m_log.WriteDebugLog("Click : Print Screen ");
        m_ports.waiter.WaitMs(10000);
        if (m_state.closing)
            return;
        printScreen("menuPrtScr_Click");
        PlayCaptureBeep(m_ports.sound, m_settings.CaptureBeep);
        m_logBox.write(std::string(tr("プリントスクリーン実行")) + "\r\n");
        m_log.WriteDebugLog("Print Screen ･･･ End ");
    });
}

void Meter::mouseButtons(const std::vector<MouseButtonEvent>& batch)
{
    trapErrors(m_log, "MouseGesture", [&] {
        const Gesture gesture = m_gestures.feed(batch, m_ports.clock.tickMs(), m_settings.GestureTime);
        if (gesture != Gesture::None)
            runGesture(gesture);
    });
}

void Meter::followWatch(bool on)
{
    if (on && !m_state.controls.doHLTimerEnabled)
        m_watch.reset();
    m_state.controls.doHLTimerEnabled = on && !m_state.closing;
    m_state.controls.doHLIntervalMs = m_settings.DoHLInterval;
    m_ports.view.controlsChanged();
}

void Meter::runGesture(Gesture gesture)
{
    if (gesture == Gesture::None)
        return;
    trapErrors(m_log, "MouseGesture", [&] {
        // The feedback of a recognised gesture: the player's capture sound, since the game
        // has the screen.
        PlayCaptureBeep(m_ports.sound, m_settings.CaptureBeep);
        const std::string message = std::string(gestureMessage(gesture)) + "\r\n";
        // Said before the command, since a resume waits StartDelay and then reads.
        if (gesture != Gesture::PrintScreen)
            m_logBox.write(message);
        switch (gesture) {
        case Gesture::Suspend:
            if (!m_session.Suspended)
                m_session.ChangeSuspend(m_settings.StartDelay);
            break;
        case Gesture::Resume:
            if (m_session.Suspended)
                m_session.ChangeSuspend(m_settings.StartDelay);
            break;
        case Gesture::MoneyScanOn: m_settings.MoneyScan = true; break;
        case Gesture::MoneyScanOff: m_settings.MoneyScan = false; break;
        case Gesture::WatchOn:
        case Gesture::WatchOff:
            m_settings.DoHLCheckExec = gesture == Gesture::WatchOn;
            followWatch(m_settings.DoHLCheckExec);
            break;
        case Gesture::CycleReset:
            // The timer's own guard: the cycle marks itself busy for the level watch.
            if (m_session.running() && !m_state.busy) {
                m_state.busy = true;
                trapErrors(m_log, "MouseGesture", [this] { m_cycle.runCycle(); });
                m_state.busy = false;
            }
            break;
        case Gesture::PrintScreen:
            printScreen("PrintScreen");
            m_log.WriteDebugLog("OnLine Print Screen ･･･ End ");
            m_logBox.write(message);
            break;
        case Gesture::None: break;
        }
    });
}

void Meter::menuTimeLeft_Click()
{
    trapErrors(m_log, "menuTimeLeft_Click", [this] {
        tvx::menuTimeLeft_Click(m_session.latestLevel(), m_session.totalExp(), m_session.latestExpRate(), m_ports.prompter,
                                m_logBox, m_log);
    });
}

void Meter::menuRandomOne_Click()
{
    trapErrors(m_log, "menuRandomOne_Click",
               [this] { tvx::menuRandomOne_Click(m_ports.prompter, m_logBox, m_log, m_rnd); });
}

void Meter::menuRandomSome_Click()
{
    trapErrors(m_log, "menuRandomSome_Click",
               [this] { tvx::menuRandomSome_Click(m_ports.prompter, m_logBox, m_log, m_rnd); });
}

void Meter::settingsChanged()
{
    trapErrors(m_log, "cmdOption", [this] {
        followWatch(m_settings.DoHLCheckExec);
        // Switched on after a start without it: the graph starts from here. Switched off,
        // the buffer stays and keeps counting, so switching back shows the whole session.
        if (m_settings.Graph && !m_state.graph) {
            m_state.graph = std::make_unique<clsGraphBuffer>(m_ports.clock);
            m_state.graphView = GraphView{};
            m_ports.view.graphDataChanged();
        }
    });
}

void Meter::setDebugMode(bool on)
{
    trapErrors(m_log, "DebugMode", [&] {
        m_state.DebugMode = on;
        m_ports.view.debugModeChanged();
        m_log.WriteDebugLog("Change DebugMode ･･･ End ");
    });
}

void Meter::close()
{
    m_state.closing = true;
    m_state.controls.captureTimerEnabled = false;
    m_state.controls.doHLTimerEnabled = false;
    trapErrors(m_log, "Form_QueryUnload", [this] {
        m_log.WriteDebugLog("Closing Program ･･･ ");
        m_ports.view.controlsChanged();
        m_ports.waiter.endWaits();
        m_session.DisplayResult(MeasurementSession::kSummary);
    });
    m_state.graph.reset();
}

} // namespace tvx
