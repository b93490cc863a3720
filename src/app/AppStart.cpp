#include "AppStart.h"

#include "base/Errors.h"
#include "base/Utf8Path.h"
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

void writeStartLines(DebugLog& log, const std::string& title, const std::filesystem::path& home)
{
    try {
        log.WriteDebugLog("Starting Program  " + title, DebugLog::kNewLog);
        log.WriteDebugLog("Execute Folder : " + pathUtf8(home));
    } catch (const RuntimeError&) {
    }
}

void writeReadConfigLine(DebugLog& log)
{
    try {
        log.WriteDebugLog("Reading ConfigFile ･･･ End ");
    } catch (const RuntimeError&) {
    }
}

void writeEndLines(DebugLog& log, const EnvironmentFacts& facts)
{
    try {
        log.WriteDebugLog("End of the Program ");
        WriteOperatingInformation(facts, log);
    } catch (const RuntimeError&) {
    }
}

} // namespace tvx::app
