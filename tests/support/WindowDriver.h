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

// A player's step while a window runs its own loop: false to be tried again on the next tick.
using PlayerStep = std::function<bool()>;

// Runs `modal` (which opens a window) while the steps run; all of them must have run by its end.
void play(std::deque<PlayerStep> steps, const std::function<void()>& modal);

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
        bool contains(Point p) const { return p.x >= left && p.y >= top && p.x < left + width && p.y < top + height; }
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
    // A glyph view's columns, and a click on one of its pixels.
    virtual std::vector<std::uint16_t> glyph(const std::string& control) = 0;
    virtual void clickCell(const std::string& control, int column, int row) = 0;
    // A press, a move halfway and a release, in the control's pixels as if it were not scrolled.
    virtual void drag(const std::string& control, Point from, Point to) = 0;
    // What the screen shows of a control, or of the whole window for "".
    virtual Frame picture(const std::string& control) = 0;
    virtual Box frame() = 0;
    virtual void close() = 0;
    // The texts of the shown controls (list items and tabs too) that do not fit them as drawn: of one
    // control, or of all for "".
    virtual std::vector<std::string> clipped(const std::string& control = {}) = 0;
    bool fits(const std::string& control) { return clipped(control).empty(); }

    // With TALLIVEX_SHOT_DIR set, the window's picture as NAME.bmp there (for the README).
    void shoot(const std::string& name)
    {
        if (const char* folder = std::getenv("TALLIVEX_SHOT_DIR"))
            writeBitmap24(std::filesystem::path(folder) / (name + ".bmp"), picture(""));
    }
};

// Without a screen and a waiter a window's capture buttons are disabled.
struct WindowServices {
    ScreenSource* screen = nullptr;
    Waiter* waiter = nullptr;
    Clock* clock = nullptr;
    bool* cycleSkip = nullptr; // held while a capture waits
    DebugLog* log = nullptr;
    std::function<void()> settingsChanged;
};

// The windows a front end opens modally over a visible owner window.
class Desktop {
public:
    enum class Button { Ok, Cancel, Yes, No };

    virtual ~Desktop() = default;

    virtual Prompter& prompter() = 0;
    virtual WindowDriver& numberDialog() = 0;
    virtual WindowDriver& options() = 0;
    virtual WindowDriver& calibration() = 0;
    virtual WindowDriver::Box owner() = 0;
    // The open message box with this title, answered with `button`: its text, lines joined by "\n".
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

std::unique_ptr<Desktop> makeDesktop();

// The main window of a front end with its engine over the fake machine, and what it opens.
class MainWindowHost {
public:
    virtual ~MainWindowHost() = default;

    virtual Meter& meter() = 0;
    // The account's labels and buttons by name ("lblStartLv", "cmdTempStop").
    virtual WindowDriver& window() = 0;
    virtual WindowDriver& version() = 0;
    virtual WindowDriver& joke() = 0;
    virtual WindowDriver& compact() = 0;
    virtual WindowDriver& history() = 0;
    virtual void load() = 0;
    // What the window does after the options window changed the language.
    virtual void retranslate() = 0;
    // Menu items by name ("menuRun").
    virtual std::string menuText(const std::string& item) = 0;
    virtual bool menuEnabled(const std::string& item) = 0;
    virtual void choose(const std::string& item) = 0;
    // Each line ended by "\n"; once the window is gone, the engine's.
    virtual std::string logBox() = 0;
    virtual void clickGraphLabel(GraphLabel label) = 0;
    virtual WindowDriver::Box screen() = 0;
    virtual void close() = 0;

    // The compact window's texts as drawn (state, level, then caption and value of each line)
    // and whether it stays over the game without taking the focus.
    struct CompactShown {
        std::vector<std::string> texts;
        bool whole = false;
        bool overGame = false;
        int opacity = 0;
    };
    virtual CompactShown compactShown() = 0;
    virtual void dragCompact(int dx, int dy) = 0;
    // An opacity from its menu; 0 is its own close button.
    virtual void compactMenu(int opacity) = 0;

    // Each page's table, its header row first, and whether every column is wide enough.
    virtual std::vector<std::vector<std::vector<std::string>>> historyPages(bool* columnsWhole) = 0;
    // The name proposed to the player, where the front end proposes one.
    virtual std::optional<std::string> exportHistory(const std::filesystem::path& to) = 0;
};

std::unique_ptr<MainWindowHost> makeMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine);

} // namespace tvx::test
