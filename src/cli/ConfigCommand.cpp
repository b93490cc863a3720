#include "ConfigCommand.h"

#include "CliSettings.h"
#include "HomeFolder.h"
#include "Json.h"
#include "SystemClock.h"
#include "TextCodecFactory.h"

#include "config/ConfigFile.h"
#include "shell/DebugLog.h"
#include "base/Utf8Path.h"

#include <optional>
#include <ostream>

namespace tvx::cli {
namespace {

constexpr const char* kUsage =
    "usage: tallivex-cli config show|defaults|save [--home DIR] [--fullscreen|--window] [--yes|--no]\n";

std::string flag(bool value)
{
    return value ? "true" : "false";
}

template <typename T, typename Format>
std::string array(const T& items, Format format)
{
    std::string out = "[";
    for (const auto& item : items) {
        if (out.size() > 1)
            out += ',';
        out += format(item);
    }
    return out + "]";
}

std::string number(std::int32_t value)
{
    return std::to_string(value);
}

} // namespace

std::string settingsJson(const Settings& s)
{
    std::string out = "{";
    const auto field = [&out](const char* name, const std::string& value) {
        if (out.size() > 1)
            out += ',';
        out += jsonString(name) + ":" + value;
    };
    field("CaptureRegion", array(s.CaptureRegion, [](const CaptureRegionRect& r) {
              return "{\"StartX\":" + number(r.StartX) + ",\"StartY\":" + number(r.StartY) +
                     ",\"SizeX\":" + number(r.SizeX) + ",\"SizeY\":" + number(r.SizeY) + "}";
          }));
    field("AutoStart", flag(s.AutoStart));
    field("CaptureInterval", number(s.CaptureInterval));
    field("CaptureBeep", number(s.CaptureBeep));
    field("SaveFolder", jsonString(s.SaveFolder));
    field("SaveFile", jsonString(s.SaveFile));
    field("SaveCsv", flag(s.SaveCsv));
    field("SaveMonthly", flag(s.SaveMonthly));
    field("Lag", number(s.Lag));
    field("StartDelay", number(s.StartDelay));
    field("StartUp", array(s.StartUp, [](const StartUpEntry& e) {
              return "{\"Enabled\":" + flag(e.Enabled) + ",\"Path\":" + jsonString(e.Path) + "}";
          }));
    field("StartUpDelay", number(s.StartUpDelay));
    field("DoHLCheckExec", flag(s.DoHLCheckExec));
    field("DoHLInterval", number(s.DoHLInterval));
    field("SaveFormat", jsonString(s.SaveFormat));
    field("Gesture", flag(s.Gesture));
    field("GestureTime", number(s.GestureTime));
    field("MoneyScan", flag(s.MoneyScan));
    field("MoneyWait", number(s.MoneyWait));
    field("Graph", flag(s.Graph));
    field("GraphTimeScale", number(s.GraphTimeScale));
    field("GraphAveNum", number(s.GraphAveNum));
    field("BinaryThreshold", array(s.BinaryThreshold, number));
    field("BinaryMask", array(s.BinaryMask, number));
    field("ReferenceSize", array(s.ReferenceSize, [](const ReferenceCellSize& c) {
              return "{\"Width\":" + number(c.Width) + ",\"Height\":" + number(c.Height) + "}";
          }));
    field("PatternStrings", array(s.PatternStrings, [](const PatternSet& set) {
              return array(set, [](const std::string& p) { return jsonString(p); });
          }));
    field("Reading", array(s.Reading, [](const RegionReading& r) {
              return std::string("{\"Mode\":") + (r.Mode == ReadingMode::Shapes ? "\"shapes\"" : "\"exact\"") +
                     ",\"EndGap\":" + number(r.EndGap) + ",\"Tolerance\":" + number(r.Tolerance) +
                     ",\"Pitch\":" + number(r.Pitch) + ",\"Separator\":" + jsonString(r.Separator) +
                     ",\"Shapes\":" + jsonString(shapesText(r.Shapes)) + "}";
          }));
    field("ScreenCapture", number(static_cast<std::int32_t>(s.ScreenCapture)));
    field("SearchWindowName", jsonString(s.SearchWindowName));
    field("StallAlarm", flag(s.StallAlarm));
    field("StallMinutes", number(s.StallMinutes));
    field("NextLevelWindow", number(s.NextLevelWindow));
    field("CompactX", number(s.CompactX));
    field("CompactY", number(s.CompactY));
    field("CompactOpacity", number(s.CompactOpacity));
    field("CompactShown", flag(s.CompactShown));
    field("UiLanguage", jsonString(s.UiLanguage));
    return out + "}";
}

int runConfig(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    std::string action;
    std::optional<std::filesystem::path> home;
    CliAnswers answers;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--home" && i + 1 < args.size()) {
            home = utf8Path(args[++i]);
        } else if (action.empty() && (arg == "show" || arg == "defaults" || arg == "save")) {
            action = arg;
        } else if (!parseCliAnswer(arg, answers)) {
            err << "tallivex-cli config: unexpected argument " << arg << '\n' << kUsage;
            return 1;
        }
    }
    if (action.empty()) {
        err << kUsage;
        return 1;
    }

    const auto usable = cliHomeFolder(home, err);
    if (!usable)
        return 2;
    const std::filesystem::path& folder = *usable;
    bool failed = false;
    Settings settings = loadCliSettings(folder, answers, err, &failed);
    if (action != "show") {
        // Restore or save the settings just loaded, as the options dialog's buttons do.
        platform::SystemClock clock;
        DebugLog log(folder, clock);
        CliPrompter prompter(answers, err);
        const auto codec = platform::makeTextCodec();
        ConfigFile(settings, folder, prompter, *codec, &log)
            .run(action == "defaults" ? ConfigFile::Defaults : ConfigFile::Save);
        failed = failed || prompter.writeFailed();
    }
    out << settingsJson(settings) << '\n';
    return failed ? 2 : 0;
}

} // namespace tvx::cli
