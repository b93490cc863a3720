#pragma once

#include "config/Settings.h"
#include "meter/MeterPorts.h"
#include "meter/MeterState.h"
#include "recognition/CaptureFile.h"

#include <cstdint>
#include <array>
#include <optional>
#include <string>

namespace tvx {

class DebugLog;
class MeasurementSession;
class ScreenCapture;
class ScreenRecognizer;
class Sound;

// The capture beep chosen by CaptureBeep: 0 silent, 1 the system beep, 2..5 a tone.
void PlayCaptureBeep(Sound& sound, std::int32_t choice);

// The periodic reading: at each capture time it checks the game window, captures the
// screen once, reads the three regions (money again when it was missed and money
// scanning is on) and hands the reading to the session.
class RecognitionCycle {
public:
    static constexpr std::int32_t kRetrySeconds = 15;
    static constexpr std::int32_t kMissesPerZeroPoint = 481;

    RecognitionCycle(const Settings& settings, MeterPorts& ports, MeterState& state, DebugLog& log,
                     ScreenRecognizer& recognizer, ScreenCapture& capture, MeasurementSession& session);

    // timCaptureInterval: runs a cycle once the next capture time has come.
    void timCaptureInterval_Timer();
    // One cycle, whatever the time.
    void runCycle();

    void cmdCapture_Click();
    void cmdRecognize_Click();
    // Toggles the suspension; resuming waits resumeDelaySeconds before the next cycle.
    void cmdTempStop_Click(std::int32_t resumeDelaySeconds);

    // One capture for region 0..2, or all three for -1: 0 done, -1 no image, -2 the
    // image did not hold the regions.
    int GetPictForClip(int region);

    // Clears what a session leaves behind in the cycle.
    void clearCarryOver();

    bool noticeShown() const { return m_noticeShown; }
    std::int32_t missCount() const { return m_missCount; }
    // The last reading's whole screen (read back from the capture file that keeps it).
    std::optional<CaptureBitmap> lastCapture() const;

private:
    void retryLater();
    void countMiss();
    void readRegions();
    void recognizeInto(int region);
    // Tells the debug log which templates a region lacks when that failed its reading.
    void noteUntaught(int region, const std::string& untaught);
    // The money re-read; false when the game left the front and the cycle must retry.
    bool rereadMoney(std::uint64_t session);
    // The session a cycle began in still runs and the program is not closing.
    bool stillWanted(std::uint64_t session) const;
    void securePixels();
    void setTestButtons(bool enabled);
    void hideNotice();
    bool gameInFront();
    // The reading goes to the session, and the result labels follow it.
    void handOver();

    const Settings& m_settings;
    MeterPorts& m_ports;
    MeterState& m_state;
    DebugLog& m_log;
    ScreenRecognizer& m_recognizer;
    ScreenCapture& m_capture;
    MeasurementSession& m_session;
    bool m_noticeShown = false;
    std::int32_t m_missCount = 0;
    std::array<std::string, kRegionCount> m_untaught;
};

} // namespace tvx
