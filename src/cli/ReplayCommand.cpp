#include "ReplayCommand.h"

#include "CliImage.h"
#include "CliSettings.h"
#include "SystemClock.h"
#include "TextCodecFactory.h"
#include "LiveJson.h"

#include "meter/Meter.h"
#include "ports/Clock.h"
#include "ports/GameWindowProbe.h"
#include "ports/MeterView.h"
#include "ports/Prompter.h"
#include "ports/ScreenSource.h"
#include "ports/ShellLauncher.h"
#include "ports/Sound.h"
#include "ports/Waiter.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"
#include "base/Utf8Path.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <optional>
#include <ostream>

namespace tvx::cli {
namespace {

constexpr const char* kUsage =
    "usage: tallivex-cli replay FRAMES_DIR --save-folder DIR [--start \"YYYY-MM-DD hh:mm\"] [--csv]\n"
    "                           [--per-session] [--money-scan] [--window-mode] [--home DIR] [--live FILE]\n";

struct Options {
    std::string framesDir;
    std::string saveFolder;
    std::string home;
    std::string live;
    std::optional<LocalDateTime> start;
    bool csv = false;
    bool perSession = false;
    bool moneyScan = false;
    bool windowMode = false;
};

std::optional<LocalDateTime> parseStart(const std::string& text)
{
    LocalDateTime t;
    char tail = 0;
    const int fields = std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d%c", &t.year, &t.month, &t.day, &t.hour,
                                   &t.minute, &t.second, &tail);
    if (fields < 5 || fields > 6 || t.month < 1 || t.month > 12 || t.day < 1 || t.day > 31 || t.hour < 0 ||
        t.hour > 23 || t.minute < 0 || t.minute > 59 || t.second < 0 || t.second > 59)
        return std::nullopt;
    if (fields == 5)
        t.second = 0;
    // Rejects days the month does not have (2023-02-30).
    if (addSeconds(t, 0) != t)
        return std::nullopt;
    return t;
}

bool parseOptions(const std::vector<std::string>& args, Options& options, std::ostream& err)
{
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        auto value = [&]() -> std::optional<std::string> {
            if (i + 1 >= args.size())
                return std::nullopt;
            return args[++i];
        };
        if (arg == "--save-folder" || arg == "--start" || arg == "--home" || arg == "--live") {
            const auto text = value();
            if (!text) {
                err << "tallivex-cli replay: " << arg << " needs a value\n";
                return false;
            }
            if (arg == "--save-folder") {
                options.saveFolder = *text;
            } else if (arg == "--home") {
                options.home = *text;
            } else if (arg == "--live") {
                options.live = *text;
            } else if (!(options.start = parseStart(*text))) {
                err << "tallivex-cli replay: --start wants \"YYYY-MM-DD hh:mm\", not \"" << *text << "\"\n";
                return false;
            }
        } else if (arg == "--csv") {
            options.csv = true;
        } else if (arg == "--per-session") {
            options.perSession = true;
        } else if (arg == "--money-scan") {
            options.moneyScan = true;
        } else if (arg == "--window-mode") {
            options.windowMode = true;
        } else if (arg.starts_with("--")) {
            err << "tallivex-cli replay: unknown option " << arg << '\n';
            return false;
        } else if (options.framesDir.empty()) {
            options.framesDir = arg;
        } else {
            err << "tallivex-cli replay: more than one frames folder\n";
            return false;
        }
    }
    if (options.framesDir.empty() || options.saveFolder.empty()) {
        err << kUsage;
        return false;
    }
    return true;
}

// The images by their second: "0.bmp", "360.bmp", "0725.bmp".
std::optional<std::map<std::int64_t, std::filesystem::path>> listFrames(const std::string& folder, std::ostream& err)
{
    std::error_code error;
    std::filesystem::directory_iterator it(utf8Path(folder), error);
    if (error) {
        err << "tallivex-cli replay: cannot read the folder " << folder << '\n';
        return std::nullopt;
    }
    std::map<std::int64_t, std::filesystem::path> frames;
    for (; it != std::filesystem::directory_iterator(); it.increment(error)) {
        const std::string name = pathUtf8(it->path().filename());
        const std::size_t dot = name.find('.');
        std::string extension = dot == std::string::npos ? "" : name.substr(dot);
        std::transform(extension.begin(), extension.end(), extension.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        const std::string stem = name.substr(0, dot);
        if (extension != ".bmp" || stem.empty() || stem.size() > 9 ||
            !std::all_of(stem.begin(), stem.end(), [](unsigned char c) { return std::isdigit(c); }))
            continue;
        const std::int64_t second = std::stoll(stem);
        if (!frames.emplace(second, it->path()).second) {
            err << "tallivex-cli replay: two images for second " << second << '\n';
            return std::nullopt;
        }
    }
    if (error) {
        err << "tallivex-cli replay: cannot read the folder " << folder << '\n';
        return std::nullopt;
    }
    if (frames.empty()) {
        err << "tallivex-cli replay: no images named by seconds (0.bmp, 360.bmp, ...) in " << folder << '\n';
        return std::nullopt;
    }
    return frames;
}

// The session's clock: the start plus the seconds of the image being read.
class ReplayClock final : public Clock {
public:
    explicit ReplayClock(LocalDateTime start) : m_start(start) {}
    void setSeconds(std::int64_t seconds) { m_seconds = seconds; }
    LocalDateTime now() override { return addSeconds(m_start, m_seconds); }
    std::uint32_t tickMs() override { return static_cast<std::uint32_t>(m_seconds * 1000); }

private:
    LocalDateTime m_start;
    std::int64_t m_seconds = 0;
};

// The game is always there and in front, and every capture gives the current image.
class ReplayScreen final : public ScreenSource, public GameWindowProbe {
public:
    // Reads the next image into the one buffer kept for all of them; false (and a line on
    // err) when it cannot be used, and the meter then sees a failed capture.
    bool show(const std::filesystem::path& path, std::ostream& err)
    {
        m_loaded = loadCliImage(path, m_image, err);
        return m_loaded;
    }
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect>) override
    {
        return m_loaded ? std::optional(m_image) : std::nullopt;
    }
    GameWindowState state(std::string_view) override { return GameWindowState::Front; }

private:
    CaptureBitmap m_image;
    bool m_loaded = false;
};

// Nothing waits, sounds, launches or asks in a replay; what the meter would tell the player
// in a message box goes to the error stream, one line each.
class Headless final : public Waiter, public Sound, public ShellLauncher, public Prompter, public MeterView {
public:
    explicit Headless(std::ostream& err) : m_err(err) {}
    bool toldAnything() const { return m_told; }
    void WaitMs(std::int32_t) override {}
    void systemBeep() override {}
    void beep(std::int32_t, std::int32_t) override {}
    bool fileExists(const std::string&) override { return false; }
    bool open(const std::string&) override { return false; }
    void setBusyCursor(bool) override {}
    void message(const std::string& text, const std::string& title) override
    {
        m_err << "tallivex-cli replay: " << title << ": ";
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
                m_err << ' ', ++i;
            else
                m_err << text[i];
        }
        m_err << '\n';
        m_told = true;
    }
    bool askYesNo(const std::string&, const std::string&) override { return true; }
    bool askOkCancel(const std::string&, const std::string&) override { return true; }
    double askNumber(const std::string&, const std::string&, double, const std::string&, const std::string&,
                     const std::string&) override
    {
        return kCancelled;
    }

private:
    std::ostream& m_err;
    bool m_told = false;
};

// The frame's reading for its live line: what was read when the frame was read at all.
LiveLineReading liveLineOf(std::int64_t second, const MeasurementSession& session, std::uint64_t readingsBefore)
{
    LiveLineReading reading;
    reading.second = second;
    const LiveFigures& figures = session.live().figures();
    if (figures.readings == readingsBefore)
        return reading;
    reading.valid = figures.latestValid;
    reading.level = reading.valid ? figures.level : session.CurrentLv;
    reading.exp = reading.valid ? figures.exp : session.CurrentExp.wholePart();
    return reading;
}

} // namespace

int runReplay(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    Options options;
    if (!parseOptions(args, options, err))
        return 1;
    const auto frames = listFrames(options.framesDir, err);
    if (!frames)
        return 1;

    platform::SystemClock systemClock;
    ReplayClock clock(options.start.value_or(systemClock.now()));
    ReplayScreen screen;
    Headless headless(err);
    // A home's configuration, or the defaults of the screen mode.
    std::optional<std::filesystem::path> home;
    if (!options.home.empty() && !(home = cliHomeFolder(utf8Path(options.home), err)))
        return 2;
    Settings settings = home ? loadCliSettings(*home, CliAnswers{}, err)
                             : defaultSettings(options.saveFolder, options.windowMode ? ScreenMode::Window : ScreenMode::FullScreen);
    settings.SaveFolder = options.saveFolder;
    settings.SaveCsv = options.csv;
    settings.SaveMonthly = !options.perSession;
    settings.MoneyScan = options.moneyScan;
    DebugLog log(home.value_or(std::filesystem::path()), clock);
    const std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    MeterPorts ports{clock, headless, screen, screen, headless, headless, headless, headless, nullptr, codec.get()};
    Meter meter(settings, ports, log);
    meter.logBox().setListener([&out](std::string_view added) { out << added; });

    std::ofstream live;
    if (!options.live.empty()) {
        live.open(utf8Path(options.live), std::ios::binary | std::ios::trunc);
        if (!live) {
            err << "tallivex-cli replay: cannot write " << options.live << '\n';
            return 2;
        }
    }
    MeasurementSession& session = meter.session();
    int status = 0;
    try {
        session.ChangeLogging(MeasurementSession::kStartLogging);
        for (const auto& [second, path] : *frames) {
            clock.setSeconds(second);
            if (!screen.show(path, err))
                status = 2;
            const std::uint64_t readings = session.live().figures().readings;
            try {
                meter.cycle().runCycle();
            } catch (const RuntimeError& error) {
                // As the capture timer would: the cycle is lost, the session goes on.
                err << pathUtf8(path) << ": " << errorTrapLine("timCaptureInterval_Timer", error.number()) << '\n';
                status = 2;
            }
            // What the desktop's timer does between readings.
            session.checkStall();
            if (live.is_open())
                live << liveJsonLine(liveLineOf(second, session, readings), session.live().figures()) << '\n';
        }
        meter.session().DisplayResult(MeasurementSession::kSummary);
        meter.session().ChangeLogging(MeasurementSession::kStopLogging);
    } catch (const RuntimeError& error) {
        err << "tallivex-cli replay: " << error.what() << '\n';
        return 2;
    }
    out.flush();
    if (live.is_open()) {
        live.close();
        if (!live) {
            err << "tallivex-cli replay: cannot write " << options.live << '\n';
            return 2;
        }
    }
    return headless.toldAnything() ? 2 : status;
}

} // namespace tvx::cli
