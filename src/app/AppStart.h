#pragma once

#include "ports/GameWindowProbe.h"
#include "ports/ScreenSource.h"
#include "shell/EnvironmentReport.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {
class ConfigFile;
class DebugLog;
class Prompter;
class Waiter;
} // namespace tvx

namespace tvx::app {

// The desktop program's options: --home DIR and --interval SECONDS (1..86400).
struct AppOptions {
    std::optional<std::filesystem::path> home;
    std::optional<std::int32_t> intervalSeconds;
    bool bad = false; // an interval that is missing, not a number or out of range
};

inline constexpr std::string_view kUsage = "usage: tallivex [--home DIR] [--interval SECONDS (1..86400)]";

// Arguments in UTF-8, the program name first.
AppOptions parseAppOptions(const std::vector<std::string>& arguments);

// Everything before the main window, in order: the first lines of the debug log (a
// read-only home folder must not stop the meter), the library check, the configuration.
struct LibraryCheck {
    std::vector<RequiredLibrary> libraries;
    std::function<bool(const std::string&)> canLoad;
};
// The windows speak the system's language until the configuration names one; without a
// locale, Japanese.
void startUp(DebugLog& log, const std::string& title, const std::filesystem::path& programFolder,
             const LibraryCheck& check, Prompter& prompter, ConfigFile& config, std::string_view systemLocale = {});
// After the main window: the last lines (the end and the operating information), then
// half a second in which the system's events still run.
void unload(DebugLog& log, const EnvironmentFacts& facts, Waiter& waiter);

// Without a screen to talk to, the game is never found and nothing is captured.
class NoGame final : public GameWindowProbe, public ScreenSource {
public:
    GameWindowState state(std::string_view) override { return GameWindowState::Missing; }
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect>) override { return std::nullopt; }
};

} // namespace tvx::app
