#pragma once

#include "graph/GraphView.h"
#include "graph/clsGraphBuffer.h"
#include "base/Currency.h"
#include "base/DateTime.h"
#include "base/Language.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tvx {

// Texts of the main window's result labels, one row each for start, end and increase.
struct ResultRow {
    std::string Time;
    std::string Lv;
    std::string Exp;
    std::string ExpPS;
    std::string Money;
};

struct ResultLabels {
    ResultRow Start; // lblStartTime, lblStartLv, ...
    ResultRow End;   // lblEndTime, ...
    ResultRow Elapse; // lblElapseTime, ...
};

// Enabled states and captions of the controls the engine drives.
struct MeterControls {
    bool runEnabled = false;  // menuRun
    bool stopEnabled = false; // menuStop
    std::string_view runCaption = N_("開始"); // Japanese; shown through tr()
    bool captureTimerEnabled = false; // timCaptureInterval
    bool doHLTimerEnabled = false;    // timDoHLInterval
    std::int32_t doHLIntervalMs = 1000; // its period
    bool tempStopRed = false;         // cmdTempStop's back colour
    bool testButtonsEnabled = true;   // cmdCapture, cmdRecognize
};

// Flags and records shared across the engine; all on the user-interface thread.
struct MeterState {
    bool closing = false;
    bool DebugMode = false;
    bool busy = false;       // pixels and readings are being replaced
    bool cycleSkip = false;  // other screen work must not be disturbed
    // From the command line, for demonstrations: seconds between captures instead of
    // CaptureInterval minutes; 0 when not given.
    std::int32_t intervalSecondsOverride = 0;
    MeterControls controls;
    ResultLabels labels;
    std::unique_ptr<clsGraphBuffer> graph; // while Graph is on
    GraphView graphView;
};

} // namespace tvx
