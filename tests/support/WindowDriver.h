#pragma once

#include "ports/Prompter.h"
#include "recognition/CaptureFile.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tvx {
class Clock;
class ConfigFile;
class DebugLog;
class Meter;
class ScreenSource;
class Waiter;
struct Settings;
enum class GraphLabel : std::uint8_t;
} // namespace tvx

namespace tvx::test {

class FakeMachine;

// A player's step while a window runs its own modal loop: true once done, false to be
// tried again on the next tick (what it waits for is not there yet).
using PlayerStep = std::function<bool()>;

// A step that is done at once.
inline PlayerStep act(std::function<void()> action)
{
    return [action = std::move(action)] {
        action();
        return true;
    };
}

// A window of the program as a player meets it, the same for the Qt and the Win32 front
// end: its controls by their names, clicks, keys, texts and what the screen shows of it.
class WindowDriver {
public:
    enum class Key { Enter, Escape, Right };
    struct Point { int x = 0; int y = 0; };
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
    virtual std::string text(const std::string& control) = 0;
    virtual bool enabled(const std::string& control) = 0;
    virtual bool focused(const std::string& control) = 0;
    virtual void focus(const std::string& control) = 0;
    // Queued as a player's click is, so a window it opens does not hold up the step.
    virtual void click(const std::string& control) = 0;
    // Handled before the call returns: for a button that opens no window.
    virtual void clickNow(const std::string& control) = 0;
    // Character by character, through the control's key filter ("\b" erases).
    virtual void type(const std::string& control, const std::string& text) = 0;
    // The whole text at once, past the key filter (a paste).
    virtual void setText(const std::string& control, const std::string& text) = 0;
    // To the control with the focus, queued like a click.
    virtual void press(Key key) = 0;
    // To a control, handled before the call returns.
    virtual void key(const std::string& control, Key key) = 0;
    // An item of a list, or a page of tabs.
    virtual void choose(const std::string& control, int index) = 0;
    // A glyph view's columns (a template, a region's binarised columns), and a click on
    // one of its pixels.
    virtual std::vector<std::uint16_t> glyph(const std::string& control) = 0;
    virtual void clickCell(const std::string& control, int column, int row) = 0;
    // A press at `from`, a move halfway and a release at `to`, in the control's own
    // pixels as if it were not scrolled.
    virtual void drag(const std::string& control, Point from, Point to) = 0;
    // What the screen shows of a control, or of the whole window for "".
    virtual Frame picture(const std::string& control) = 0;
    // The window's frame on the screen.
    virtual Box frame() = 0;
    // The close box.
    virtual void close() = 0;
    // Whether a label's or a button's text fits it as the window draws it.
    virtual bool fits(const std::string& control) = 0;
    // The texts of the shown labels, buttons, check boxes, group titles, tabs and list items
    // that do not fit their control as the window draws them.
    virtual std::vector<std::string> clipped() = 0;

    // With TALLIVEX_SHOT_DIR set, the window's picture as NAME.bmp there (for the README).
    void shoot(const std::string& name)
    {
        if (const char* folder = std::getenv("TALLIVEX_SHOT_DIR"))
            writeBitmap24(std::filesystem::path(folder) / (name + ".bmp"), picture(""));
    }
};

// What a window may use besides its settings; without a screen and a waiter its capture
// buttons are disabled.
struct WindowServices {
    ScreenSource* screen = nullptr;
    Waiter* waiter = nullptr;
    Clock* clock = nullptr;
    bool* cycleSkip = nullptr; // held while a capture waits
    DebugLog* log = nullptr;
    std::function<void()> settingsChanged;
};

// The windows a front end opens modally over a visible owner window: the prompter's
// message boxes and number dialog, the options window and the calibration window.
class Desktop {
public:
    enum class Button { Ok, Cancel, Yes, No };

    virtual ~Desktop() = default;

    virtual Prompter& prompter() = 0;
    // Runs `modal` (which opens a window) while the player's steps run; every step must
    // have run before it returns.
    virtual void play(std::deque<PlayerStep> steps, const std::function<void()>& modal) = 0;
    virtual WindowDriver& numberDialog() = 0;
    virtual WindowDriver& options() = 0;
    virtual WindowDriver& calibration() = 0;
    virtual WindowDriver::Box owner() = 0;
    // The open message box with this title, answered with `button`: its text, lines
    // joined by "\n". Nothing while no such box is open.
    virtual std::optional<std::string> answerBox(const std::string& title, Button button) = 0;
    virtual void showOptions(ConfigFile& config, const CaptureBitmap* lastCapture, const WindowServices& services) = 0;
    // True when the player applied what was learnt.
    virtual bool showCalibration(Settings& settings, const CaptureBitmap* screen, const WindowServices& services) = 0;

    // A step: the box with this title answered, its text kept.
    PlayerStep answer(const std::string& title, Button button, std::string* text = nullptr)
    {
        return [this, title, button, text] {
            const std::optional<std::string> shown = answerBox(title, button);
            if (shown && text)
                *text = *shown;
            return shown.has_value();
        };
    }
};

// Defined once by each front end's driver.
std::unique_ptr<Desktop> makeDesktop();

// The main window of a front end with its engine over the fake machine, and the windows
// it opens: the version window and its joke popup, the compact and the history window.
class MainWindowHost {
public:
    virtual ~MainWindowHost() = default;

    virtual Meter& meter() = 0;
    // Runs `modal` (a menu item that opens a window) while the player's steps run.
    virtual void play(std::deque<PlayerStep> steps, const std::function<void()>& modal) = 0;
    // The account's labels and buttons by name ("lblStartLv", "cmdTempStop").
    virtual WindowDriver& window() = 0;
    virtual WindowDriver& version() = 0;
    virtual WindowDriver& joke() = 0;
    virtual WindowDriver& compact() = 0;
    virtual WindowDriver& history() = 0;
    // The engine's part of the load: empty account, timers, auto start.
    virtual void load() = 0;
    // What the window does after the options window changed the language.
    virtual void retranslate() = 0;
    // Menu items by name ("menuRun").
    virtual std::string menuText(const std::string& item) = 0;
    virtual bool menuEnabled(const std::string& item) = 0;
    virtual void choose(const std::string& item) = 0;
    // The log box's lines, each ended by "\n"; once the window is gone, the engine's.
    virtual std::string logBox() = 0;
    virtual void clickGraphLabel(GraphLabel label) = 0;
    virtual WindowDriver::Box screen() = 0;
    // The close box; the window is gone afterwards.
    virtual void close() = 0;

    // The compact window's texts as drawn (state, level, then caption and value of each
    // line), whether they are all whole, whether it stays over the game without taking the
    // focus, its opacity in percent, and the colour of its state mark where the front end
    // keeps it apart from the painting.
    struct CompactShown {
        std::vector<std::string> texts;
        bool whole = false;
        bool overGame = false;
        int opacity = 0;
        std::optional<std::uint32_t> stateColour;
    };
    virtual CompactShown compactShown() = 0;
    // The player drags it by this much, or chooses an opacity from its menu (0: closes it by
    // its own close button).
    virtual void dragCompact(int dx, int dy) = 0;
    virtual void compactMenu(int opacity) = 0;

    // The history window's pages, each a table with its header row first, and whether every
    // column is wide enough for its texts.
    virtual std::vector<std::vector<std::vector<std::string>>> historyPages(bool* columnsWhole) = 0;
    // Exports where the player chooses; the name proposed to the player, where the front end proposes one.
    virtual std::optional<std::string> exportHistory(const std::filesystem::path& to) = 0;
};

std::unique_ptr<MainWindowHost> makeMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine);

} // namespace tvx::test
