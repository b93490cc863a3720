#pragma once

#include <functional>

namespace tvx {

class DebugLog;
class Meter;
class MouseButtonSource;
class Prompter;

// The gesture listener (FormDirectX): owns the background mouse-button source while
// gestures are on and hands every batch of button events to the meter. A front end whose
// source needs polling watches the source's descriptor while it is loaded.
class GestureListener {
public:
    GestureListener(Meter& meter, MouseButtonSource& source, DebugLog& log, Prompter& prompter);
    ~GestureListener();
    GestureListener(const GestureListener&) = delete;
    GestureListener& operator=(const GestureListener&) = delete;

    // False when the mouse could not be opened; the player has been told.
    bool Form_Load();
    void Form_Unload();
    bool loaded() const { return m_loaded; }

    // Loads or unloads to follow the Gesture setting; a mouse that cannot be opened turns
    // the setting off.
    void followSetting();

    // Told after a load (true) and before an unload (false), for a front end that polls.
    void setLoadedChanged(std::function<void(bool)> changed) { m_loadedChanged = std::move(changed); }
    MouseButtonSource& source() { return m_source; }

private:
    Meter& m_meter;
    MouseButtonSource& m_source;
    DebugLog& m_log;
    Prompter& m_prompter;
    std::function<void(bool)> m_loadedChanged;
    bool m_loaded = false;
};

} // namespace tvx
