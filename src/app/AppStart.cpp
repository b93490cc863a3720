#include "AppStart.h"

#include "base/Errors.h"
#include "base/Language.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "config/Settings.h"
#include "ports/Waiter.h"
#include "shell/DebugLog.h"

#include <charconv>

namespace tvx::app {

AppOptions parseAppOptions(const std::vector<std::string>& arguments)
{
    AppOptions options;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const bool last = i + 1 >= arguments.size();
        if (arguments[i] == "--home" && !last) {
            options.home = utf8Path(arguments[++i]);
        } else if (arguments[i] == "--interval") {
            std::int32_t seconds = 0;
            const std::string value = last ? std::string() : arguments[++i];
            const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), seconds);
            if (value.empty() || error != std::errc() || end != value.data() + value.size() || seconds < 1 ||
                seconds > 86400) {
                options.bad = true;
                options.intervalSeconds.reset();
            } else {
                options.intervalSeconds = seconds;
            }
        }
    }
    return options;
}

namespace {

void writeQuietly(DebugLog& log, const std::string& text, int mode = DebugLog::kAppend)
{
    try {
        log.WriteDebugLog(text, mode);
    } catch (const RuntimeError&) {
    }
}

} // namespace

void startUp(DebugLog& log, const std::string& title, const std::filesystem::path& programFolder,
             const LibraryCheck& check, Prompter& prompter, ConfigFile& config, std::string_view systemLocale)
{
    setLanguage(languageOfLocale(systemLocale));
    writeQuietly(log, "Starting Program  " + title, DebugLog::kNewLog);
    writeQuietly(log, "Execute Folder : " + pathUtf8(programFolder));
    CheckSystemFiles(check.libraries, check.canLoad, prompter, log);
    config.run(ConfigFile::Load);
    applyLanguage(config.settings(), systemLocale);
    writeQuietly(log, "Reading ConfigFile ･･･ End ");
}

void unload(DebugLog& log, const EnvironmentFacts& facts, Waiter& waiter)
{
    writeQuietly(log, "End of the Program ");
    try {
        WriteOperatingInformation(facts, log);
    } catch (const RuntimeError&) {
    }
    waiter.WaitMs(500);
}

} // namespace tvx::app
