#pragma once

#include "recognition/CaptureFile.h"

#include <string>

namespace tvx {

// Port: what the engine tells the main window. Every call has a do-nothing default, so a
// headless user overrides only what it shows.
class MeterView {
public:
    virtual ~MeterView() = default;
    // The game-not-running notice window.
    virtual void showNotice(const std::string& /*text*/, const std::string& /*title*/) {}
    virtual void hideNotice() {}
    // Result labels, menus, timers or buttons changed: show MeterState again.
    virtual void resultsChanged() {}
    virtual void controlsChanged() {}
    // The graph's data (and, for the frame, its axes) must be drawn again.
    virtual void graphDataChanged() {}
    virtual void graphFrameChanged() {}
    // A fresh capture, for the preview pictures.
    virtual void captureTaken(const CaptureBitmap& /*screen*/) {}
    // A recogniser caption of lblCapture(region).
    virtual void captureCaption(int /*region*/, const std::string& /*caption*/) {}
    // The elapsed-time label of the test recognition.
    virtual void recognizeElapsed(const std::string& /*text*/) {}
    // The live figures or the state of the readings changed.
    virtual void liveChanged() {}
    // The main window's reset at the end of a session.
    virtual void sessionReset() {}
    // DebugMode was switched: the debug area shows or hides.
    virtual void debugModeChanged() {}
};

} // namespace tvx
