#pragma once

#include "view/OptionsEditor.h"

#include <windows.h>

#include <functional>
#include <string_view>

namespace tvx {
class Clock;
class ConfigFile;
class Prompter;
class ScreenSource;
class Waiter;
struct CaptureBitmap;
} // namespace tvx

namespace tvx::win32ui {

// What the options window works with. The pattern capture needs screen, waiter and clock;
// without all three its button is disabled.
struct OptionsContext {
    ConfigFile* config = nullptr;
    const CaptureBitmap* lastCapture = nullptr;
    ScreenSource* screen = nullptr;
    Waiter* waiter = nullptr;
    Clock* clock = nullptr;
    Prompter* prompter = nullptr;
    // Set while the pattern capture runs, so that no reading disturbs it; may be null.
    bool* cycleSkip = nullptr;
    // The running meter's debug mode; without it the switch is disabled.
    DebugSwitch debugSwitch;
    // A load, reset or edit changed settings that others show (the target name, the graph).
    std::function<void()> settingsChanged;
};

// The options window, modal over owner; returns when the player closes it. Closing with
// unsaved edits asks whether to save them first.
void ShowFormOption(HWND owner, const OptionsContext& context);

// The identifier of a control of the options window by its name ("cmdCaptureInterval",
// "chkGraph", "picPattern5", ...); 0 for an unknown name.
int optionControlId(std::string_view name);

} // namespace tvx::win32ui
