#pragma once

#include "config/Settings.h"
#include "ports/Prompter.h"
#include "ports/TextCodec.h"
#include "shell/DebugLog.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// The configuration file beside the program: 60 lines of values, each with a Japanese
// comment, in CP932 with CR LF so that older files and hand edits keep working.
class ConfigFile {
public:
    static constexpr int Defaults = 1; // restore the defaults and write them
    static constexpr int Load = 16;    // read, repairing or migrating where needed
    static constexpr int Save = 32;    // write the settings as they are
    // write the compact window's place, opacity and state into the settings as last loaded
    // or saved, so that option edits kept only until the next start stay unsaved
    static constexpr int SaveWindowPlace = 64;

    static constexpr std::string_view kFileName = "TV2MConfig.ini";
    static constexpr std::string_view kOldFileName = "TV2Config.ini";
    static constexpr std::string_view kBackupFileName = "TV2MConfigBack.ini";

    // securePixels resizes the capture buffers; it runs after every load and write.
    // log may be null (no debug log).
    ConfigFile(Settings& settings, std::filesystem::path programFolder, Prompter& prompter, TextCodec& codec,
               DebugLog* log = nullptr, std::function<void()> securePixels = {});

    // Runs one of the modes above; other values do nothing. Never throws: every failure
    // ends in a message, the debug log and, where the file is unusable, the defaults.
    // false when a save or reset could not be written (the player has been told).
    bool run(int mode);

    void setSecurePixels(std::function<void()> securePixels) { m_securePixels = std::move(securePixels); }
    // Resizes the capture buffers to the present regions through the owner's callback.
    void sizeBuffers();

    Settings& settings() const { return m_settings; }
    const std::filesystem::path& programFolder() const { return m_folder; }
    Prompter& prompter() const { return m_prompter; }
    DebugLog* log() const { return m_log; }
    // The debug-log lines of the settings the last load set to their nearest bound.
    const std::vector<std::string>& clampedSettings() const { return m_clamped; }

    std::filesystem::path path() const { return m_folder / kFileName; }
    std::filesystem::path oldPath() const { return m_folder / kOldFileName; }
    std::filesystem::path backupPath() const { return m_folder / kBackupFileName; }

private:
    void load();
    // The unreadable-file path: back-up where possible, message, defaults, new file.
    void replaceDamagedFile(ErrorNumber error, const std::string& detail);
    void restoreDefaults();
    // false when the file could not be written (the player has been told).
    bool write();
    bool write(const Settings& settings);
    void logLine(std::string_view text);
    void logError(std::string_view procedure, ErrorNumber number);
    void noteClamped(std::vector<std::string> lines);

    Settings& m_settings;
    std::filesystem::path m_folder;
    Prompter& m_prompter;
    TextCodec& m_codec;
    DebugLog* m_log;
    std::function<void()> m_securePixels;
    std::vector<std::string> m_clamped;
    std::optional<Settings> m_onDisk; // what the file holds, as far as this object knows
};

// N(x): the text right-aligned in six bytes of CP932 with a blank either side; a longer
// text widens the field.
std::string padField(std::string_view text);

// The whole file as UTF-8, title line first, every line ended by CR LF.
std::string configFileText(const Settings& settings);

// The full-screen/window question and its confirmation; Cancel turns the first answer round.
ScreenMode askScreenMode(Prompter& prompter, const std::string& searchWindowName);

} // namespace tvx
