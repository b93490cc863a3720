#pragma once

#include "config/Settings.h"
#include "measurement/LevelWatch.h"
#include "measurement/MeasurementSession.h"
#include "meter/MeterPorts.h"
#include "meter/MeterState.h"
#include "measurement/RandomTools.h"
#include "measurement/RecordFile.h"
#include "meter/GestureMatcher.h"
#include "meter/RecognitionCycle.h"
#include "meter/ScreenCapture.h"
#include "meter/ScreenImages.h"
#include "recognition/ScreenRecognizer.h"
#include "shell/Launcher.h"
#include "shell/LogBox.h"

namespace tvx {

class DebugLog;

// The meter without its windows: the session, the recognition cycle, the level watch and
// the commands of the main window, over one settings record and the machine's ports.
// The main window and tallivex-cli each drive one. Every public command is an entry point
// with its own error trap: nothing it calls throws past it into a window's event loop.
class Meter {
public:
    Meter(Settings& settings, MeterPorts ports, DebugLog& log, std::uint32_t randomSeed = 1);

    // The engine's part of the main window's load: an empty account, a fresh graph
    // buffer when Graph is on, the menus, and a session when AutoStart is on.
    void load(Clock& graphClock);

    void menuRun_Click();
    void menuStop_Click();
    void menuPrtScr_Click();
    void menuTimeLeft_Click();
    void menuRandomOne_Click();
    void menuRandomSome_Click();
    // A batch of background mouse-button events; runs the command of a finished gesture.
    void mouseButtons(const std::vector<MouseButtonEvent>& batch);
    void runGesture(Gesture gesture);
    // The engine's part of closing: flag, timers off, the summary, and every wait in
    // progress ends at once.
    void close();
    // The options changed settings the engine follows while it runs: the level watch and
    // its period.
    void settingsChanged();
    // Shows or hides the debug area and its trace.
    void setDebugMode(bool on);

    Settings& settings() { return m_settings; }
    Clock& clock() { return m_ports.clock; }
    Waiter& waiter() { return m_ports.waiter; }
    MeterState& state() { return m_state; }
    LogBox& logBox() { return m_logBox; }
    ScreenRecognizer& recognizer() { return m_recognizer; }
    MeasurementSession& session() { return m_session; }
    RecognitionCycle& cycle() { return m_cycle; }
    LevelWatch& watch() { return m_watch; }
    ScreenImages& images() { return m_images; }
    Launcher& launcher() { return m_launcher; }
    ScreenCapture& capture() { return m_capture; }

private:
    // Switches the level watch; switched on, it starts again from the next reading, so a
    // level change while it was off is not taken for a rise.
    void followWatch(bool on);
    void printScreen(const char* procedure);

    Settings& m_settings;
    MeterPorts m_ports;
    DebugLog& m_log;
    MeterState m_state;
    LogBox m_logBox;
    ScreenRecognizer m_recognizer;
    RecordFile m_recordFile;
    ScreenCapture m_capture;
    Launcher m_launcher;
    ScreenImages m_images;
    MeasurementSession m_session;
    RecognitionCycle m_cycle;
    LevelWatch m_watch;
    Rnd m_rnd;
    GestureMatcher m_gestures;
};

} // namespace tvx
