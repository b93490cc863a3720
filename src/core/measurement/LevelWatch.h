#pragma once

#include "config/Settings.h"
#include "base/Currency.h"
#include "meter/MeterPorts.h"
#include "meter/MeterState.h"

namespace tvx {

class DebugLog;
class LogBox;
class MeasurementSession;
class RecognitionCycle;
class ScreenImages;
class ScreenRecognizer;

// The level watch behind timDoHLInterval: it reads only the level and, when the reading
// rises while the watch is armed, takes a burst of four screenshots (a level-up, or the
// return from a death).
class LevelWatch {
public:
    LevelWatch(const Settings& settings, MeterPorts& ports, MeterState& state, DebugLog& log, LogBox& logBox,
               ScreenRecognizer& recognizer, RecognitionCycle& cycle, MeasurementSession& session,
               ScreenImages& images);

    // The timer: checks only while a session runs and no capture is in progress.
    void timDoHLInterval_Timer();
    void CheckLevelChange();
    void CaptureLevelChange();
    // Session start: the first reading only sets Previous, later rises are captured.
    void reset();

    Currency Current;
    Currency Previous;
    Currency Change;
    Currency Armed;
    Currency DoHLReading = Currency::fromInt(-1);

private:
    void burst();

    const Settings& m_settings;
    MeterPorts& m_ports;
    MeterState& m_state;
    DebugLog& m_log;
    LogBox& m_logBox;
    ScreenRecognizer& m_recognizer;
    RecognitionCycle& m_cycle;
    MeasurementSession& m_session;
    ScreenImages& m_images;
    bool m_primed = false;
};

} // namespace tvx
