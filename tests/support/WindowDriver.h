#pragma once

#include "ports/Prompter.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tvx::test {

// A player's step while a window runs its own modal loop: true once done, false to be
// tried again on the next tick (what it waits for is not there yet).
using PlayerStep = std::function<bool()>;

// A window of the program as a player meets it, the same for the Qt and the Win32 front
// end: its controls by their names, clicks, keys, texts and its place on the screen.
class WindowDriver {
public:
    enum class Key { Enter, Escape };
    struct Box {
        int left = 0;
        int top = 0;
        int width = 0;
        int height = 0;
        int centreX() const { return left + width / 2; }
        int centreY() const { return top + height / 2; }
        bool contains(const Box& inner) const
        {
            return inner.left >= left && inner.top >= top && inner.left + inner.width <= left + width &&
                   inner.top + inner.height <= top + height;
        }
    };

    virtual ~WindowDriver() = default;

    virtual bool isOpen() = 0;
    virtual std::string title() = 0;
    virtual bool has(const std::string& control) = 0;
    virtual std::string text(const std::string& control) = 0;
    virtual bool enabled(const std::string& control) = 0;
    virtual bool focused(const std::string& control) = 0;
    virtual void focus(const std::string& control) = 0;
    // Queued as a player's click is, so a message box it opens does not hold up the step.
    virtual void click(const std::string& control) = 0;
    // Character by character, through the control's key filter.
    virtual void type(const std::string& control, const std::string& text) = 0;
    // The whole text at once, past the key filter (a paste).
    virtual void setText(const std::string& control, const std::string& text) = 0;
    // To the control with the focus, queued like a click.
    virtual void press(Key key) = 0;
    // The window's frame on the screen.
    virtual Box frame() = 0;
    // The close box.
    virtual void close() = 0;
};

// The front end's prompter asking from a visible owner window, with the message boxes
// and the number dialog it opens.
class PromptHost {
public:
    enum class Button { Ok, Cancel, Yes, No };

    virtual ~PromptHost() = default;

    virtual Prompter& prompter() = 0;
    // Runs `question` (which opens a modal window) while the player's steps run; every
    // step must have run before it returns.
    virtual void play(std::deque<PlayerStep> steps, const std::function<void()>& question) = 0;
    // The number dialog while it is open.
    virtual WindowDriver& numberDialog() = 0;
    virtual WindowDriver::Box owner() = 0;
    // The open message box with this title, answered with `button`: its text, lines
    // joined by "\n". Nothing while no such box is open.
    virtual std::optional<std::string> answerBox(const std::string& title, Button button) = 0;
};

// Defined once by each front end's driver.
std::unique_ptr<PromptHost> makePromptHost();

} // namespace tvx::test

namespace tvx {
class DebugLog;
class Meter;
struct Settings;
enum class GraphLabel : std::uint8_t;
} // namespace tvx

namespace tvx::test {

class FakeMachine;

// The main window of a front end with its engine over the fake machine.
class MainWindowHost {
public:
    virtual ~MainWindowHost() = default;

    virtual Meter& meter() = 0;
    // The engine's part of the load: empty account, timers, auto start.
    virtual void load() = 0;
    virtual std::string title() = 0;
    // A label or button of the account by name ("lblStartLv", "cmdTempStop").
    virtual std::string text(const std::string& control) = 0;
    // Menu items by name ("menuRun").
    virtual std::string menuText(const std::string& item) = 0;
    virtual bool menuEnabled(const std::string& item) = 0;
    virtual void choose(const std::string& item) = 0;
    // The log box's lines, each ended by "\n"; once the window is gone, the engine's.
    virtual std::string logBox() = 0;
    virtual void clickGraphLabel(GraphLabel label) = 0;
    // The close box; the window is gone afterwards.
    virtual void close() = 0;
};

std::unique_ptr<MainWindowHost> makeMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine);

} // namespace tvx::test
