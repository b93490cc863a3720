#pragma once

#include "ports/GameWindowProbe.h"
#include "ports/ImageEncoder.h"
#include "ports/MeterView.h"
#include "ports/Prompter.h"
#include "ports/ScreenSource.h"
#include "ports/ShellLauncher.h"
#include "ports/Sound.h"
#include "ports/TextCodec.h"
#include "ports/Waiter.h"
#include "support/FakeClock.h"

#include <algorithm>
#include <deque>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tvx::test {

// Every port of the engine, scripted: waits move the clock, queues script the rest (a window or screen
// queue's last entry stays); what the engine did is in `events`.
class FakeMachine : public Waiter, public GameWindowProbe, public ScreenSource, public Sound, public ShellLauncher,
                    public Prompter, public MeterView, public ImageEncoder {
public:
    FakeClock clock;
    std::deque<GameWindowState> windows{GameWindowState::Front};
    std::deque<std::optional<CaptureBitmap>> screens;
    // The Print Screen route: whether the key exists here, and the clipboard after each press.
    bool printScreenKey = false;
    std::deque<std::optional<CaptureBitmap>> clipboard;
    std::deque<double> numbers;
    std::vector<std::string> existingFiles;
    bool shellOpens = true; // false: the desktop has nothing to open a file with
    std::vector<std::string> events;
    std::function<void(std::int32_t)> onWait;
    // Run before each look at the game window and each grab: they may throw, or change the script.
    std::function<void()> onProbe;
    std::function<void()> onGrab;
    int grabs = 0;
    std::vector<std::size_t> grabbedRegions; // per grab; 0 is the whole screen
    // The whole screen is offered in bands of this many rows, as on X11 (0: not offered, as on Windows).
    std::int32_t bandRows = 7;

    void WaitMs(std::int32_t ms) override
    {
        events.push_back("wait " + std::to_string(ms));
        clock.advanceMs(static_cast<std::uint32_t>(ms < 1 ? 1 : ms));
        if (onWait)
            onWait(ms);
    }
    void endWaits() override { events.push_back("end waits"); }
    GameWindowState state(std::string_view) override
    {
        if (onProbe)
            onProbe();
        return next(windows);
    }
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect> wanted) override
    {
        return nextScreen(wanted.size());
    }
    bool grabRows(ScreenRows& sink) override
    {
        const std::optional<CaptureBitmap> screen = bandRows > 0 ? nextScreen(0) : std::nullopt;
        if (!screen)
            return false;
        const auto height = static_cast<std::int32_t>(screen->rows);
        sink.begin(screen->infoHeader.biWidth, height);
        // The bottom band first; the file keeps the bottom row first, so each band is a run of it.
        for (std::int32_t bottom = height; bottom > 0; bottom -= bandRows) {
            const std::int32_t top = std::max(0, bottom - bandRows);
            sink.rows(top, bottom - top,
                      screen->pixels.data() + static_cast<std::size_t>((height - bottom) * screen->stride));
        }
        return true;
    }
    bool pressPrintScreen() override
    {
        events.push_back("print screen key");
        return printScreenKey;
    }
    std::optional<CaptureBitmap> clipboardPicture() override
    {
        return clipboard.empty() ? std::nullopt : next(clipboard);
    }
    void systemBeep() override { events.push_back("beep"); }
    void beep(std::int32_t hz, std::int32_t ms) override
    {
        events.push_back("beep " + std::to_string(hz) + " " + std::to_string(ms));
    }
    bool fileExists(const std::string& path) override
    {
        return std::find(existingFiles.begin(), existingFiles.end(), path) != existingFiles.end();
    }
    bool open(const std::string& target) override
    {
        events.push_back("open " + target);
        return shellOpens;
    }
    void setBusyCursor(bool) override {}
    void message(const std::string& text, const std::string& title) override
    {
        events.push_back("message " + title + ": " + text);
    }
    bool askYesNo(const std::string&, const std::string&) override { return true; }
    bool askOkCancel(const std::string&, const std::string&) override { return true; }
    double askNumber(const std::string& a, const std::string& b, double proposed, const std::string& step,
                     const std::string& prompt, const std::string& title) override
    {
        events.push_back("ask " + title + " | " + prompt + " | " + a + " " + b + " " + std::to_string(proposed) + " " +
                         step);
        if (numbers.empty())
            return kCancelled;
        const double value = numbers.front();
        numbers.pop_front();
        return value;
    }
    void showNotice(const std::string& text, const std::string& title) override
    {
        events.push_back("notice " + title + ": " + text);
    }
    void hideNotice() override { events.push_back("notice hidden"); }
    void captureCaption(int region, const std::string& caption) override
    {
        events.push_back("caption " + std::to_string(region) + " " + caption);
    }
    void recognizeElapsed(const std::string& text) override { events.push_back("elapsed " + text); }
    void debugModeChanged() override { events.push_back("debug area"); }
    bool writePng(const Frame&, const std::filesystem::path& path) override { return touch(path); }
    bool writeJpeg(const Frame&, const std::filesystem::path& path, int quality) override
    {
        events.push_back("jpeg " + std::to_string(quality));
        return touch(path);
    }

    std::size_t count(const std::string& prefix) const
    {
        return static_cast<std::size_t>(std::count_if(events.begin(), events.end(),
                                                       [&](const std::string& e) { return e.starts_with(prefix); }));
    }

private:
    template <typename T>
    static T next(std::deque<T>& queue)
    {
        T value = queue.front();
        if (queue.size() > 1)
            queue.pop_front();
        return value;
    }
    std::optional<CaptureBitmap> nextScreen(std::size_t regions)
    {
        if (onGrab)
            onGrab();
        ++grabs;
        grabbedRegions.push_back(regions);
        return screens.empty() ? std::nullopt : next(screens);
    }
    static bool touch(const std::filesystem::path& path)
    {
        std::ofstream(path) << "image";
        return true;
    }
};

// CP932 stand-in: marks what it converted so a test can see which encoding was used.
class MarkingCodec : public TextCodec {
public:
    std::string toCp932(std::string_view utf8) override { return "[cp932]" + std::string(utf8); }
    std::optional<std::string> fromCp932(std::string_view bytes) override { return std::string(bytes); }
};

} // namespace tvx::test
