#pragma once

#include "config/Settings.h"
#include "graph/GraphView.h"
#include "graph/clsGraphBuffer.h"
#include "meter/MeterState.h"
#include "shell/DebugLog.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <string>

namespace tvx::test {

// What a graph frame is given, the toolkit-free view and a window's frame alike: a buffer, settings that scan money,
// a running meter's menus and a debug log to read back.
struct GraphFrameParts {
    GraphFrameParts()
    {
        settings.MoneyScan = true;
        controls.runEnabled = true;
    }

    template <class Frame>
    void giveTo(Frame& frame)
    {
        frame.setGraphBuffer(&buffer);
        frame.setGraphView(graphView);
        frame.setSettings(settings);
        frame.setMeterControls(&controls);
        frame.setDebugLog(&log);
    }

    std::string logText() const { return readAll(log.path()); }

    FakeClock clock;
    TempFolder home;
    DebugLog log{home.path(), clock};
    clsGraphBuffer buffer{clock};
    Settings settings;
    GraphView graphView;
    MeterControls controls;
};

} // namespace tvx::test
