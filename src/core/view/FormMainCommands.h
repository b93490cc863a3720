#pragma once

#include "base/Language.h"
#include "shell/EnvironmentReport.h"
#include "view/MainMenu.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace tvx {

class DebugLog;
class Meter;
struct Settings;

// What a menu command leaves for the window to do after the engine's part.
enum class WindowAction : std::uint8_t { None, Close, ShowOptions, ShowVersion, ToggleCompact, ShowHistory };

// In Japanese, shown through tr().
inline constexpr std::string_view kVersionCaption = N_("バージョン情報");
// The log box's last line.
inline constexpr std::string_view kClosingText = N_("終了しています・・・");

// After the options window: puts the language of the settings in effect. True when the
// main window, whose texts are in `shown`, must set them again.
bool followLanguageSetting(const Settings& settings, Language shown);

// Where a help document is for a language: the translation in the folder's language
// subfolder ("en/ReadMeM.txt"), or the Japanese file beside them when there is none.
std::filesystem::path helpDocumentPath(const std::filesystem::path& folder, std::string_view document,
                                       Language language);

// The main window's commands, the same for every front end: each menu command writes its
// log line and does the engine's part; the window then opens or closes what it says.
// Errors are trapped here under the command's name, so none reaches an event loop.
class FormMainCommands {
public:
    FormMainCommands(Meter& meter, DebugLog& log, std::filesystem::path programFolder);

    // Where the help documents are (the program's folder unless told otherwise).
    void setDocumentFolder(std::filesystem::path folder) { m_documentFolder = std::move(folder); }
    void setEnvironmentSource(std::function<EnvironmentFacts()> source) { m_environment = std::move(source); }

    WindowAction run(MenuCommand command);

    // The version window: the program and its target on the first line, the version on
    // the second (the window's own caption already says what the window is).
    static std::string versionHeading(std::string_view searchWindowName);
    static std::string versionLine();

    // The engine's part of closing the window, then the last line of the log box.
    void closing();

    // How often the capture timer asks whether the next reading is due: every 10 s, or
    // often enough for an interval given in seconds.
    static std::int32_t captureTimerMs(std::int32_t intervalSeconds);

private:
    WindowAction dispatch(MenuCommand command);
    void runDocument(std::string_view logLine, std::string_view document);
    void menuPatternSave_Click();
    void menuOperatingInfo_Click();

    Meter& m_meter;
    DebugLog& m_log;
    std::filesystem::path m_programFolder;
    std::filesystem::path m_documentFolder;
    std::function<EnvironmentFacts()> m_environment;
};

} // namespace tvx
