// tallivex: the desktop meter.
#include "CommandLine.h"
#include "Environment.h"
#include "Fonts.h"
#include "FormMain.h"
#include "GameScreen.h"
#include "HomeFolder.h"
#include "MouseButtons.h"
#include "QtPorts.h"
#include "QtPrompter.h"
#include "QtText.h"
#include "StartGuard.h"
#include "SoundFactory.h"
#include "SystemClock.h"
#include "Termination.h"
#include "TextCodecFactory.h"

#include "config/ConfigFile.h"
#include "config/Settings.h"
#include "meter/Meter.h"
#include "ports/GameWindowProbe.h"
#include "ports/Prompter.h"
#include "ports/ScreenSource.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"
#include "base/Utf8Path.h"

#include <QApplication>
#include <QSocketNotifier>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

// The value after an option, or nullopt when the option is not given; an option without
// its value gives "".
std::optional<std::string> optionValue(const Arguments& args, std::string_view option)
{
    const auto at = std::find(args.begin(), args.end(), option);
    if (at == args.end())
        return std::nullopt;
    return at + 1 == args.end() ? std::string() : *(at + 1);
}

std::optional<std::filesystem::path> homeOverride(const Arguments& args)
{
    const auto value = optionValue(args, "--home");
    if (value && !value->empty())
        return tvx::utf8Path(*value);
    return std::nullopt;
}

// Without a screen to talk to, the game is never found and nothing is captured.
class NoGame final : public tvx::GameWindowProbe, public tvx::ScreenSource {
public:
    tvx::GameWindowState state(std::string_view) override { return tvx::GameWindowState::Missing; }
    std::optional<tvx::CaptureBitmap> grab(std::span<const tvx::CaptureRegionRect>) override { return std::nullopt; }
};

void writeStartLines(tvx::DebugLog& log, const std::string& title, const std::filesystem::path& home)
{
    try {
        log.WriteDebugLog("Starting Program  " + title, tvx::DebugLog::kNewLog);
        log.WriteDebugLog("Execute Folder : " + tvx::pathUtf8(home));
    } catch (const tvx::RuntimeError&) {
        // A read-only home folder must not keep the meter from running.
    }
}

// --interval SECONDS: captures that often instead of every CaptureInterval minutes, so a
// newcomer sees the meter at work against the practice target within a minute.
std::optional<std::int32_t> intervalOption(const Arguments& args, bool& bad)
{
    const auto value = optionValue(args, "--interval");
    if (!value)
        return std::nullopt;
    int seconds = 0;
    const char* end = value->data() + value->size();
    const auto [stop, error] = std::from_chars(value->data(), end, seconds);
    bad = error != std::errc() || stop != end || seconds < 1 || seconds > 86400;
    return bad ? std::nullopt : std::optional<std::int32_t>(seconds);
}

} // namespace

int main(int argc, char** argv)
{
    const Arguments args = tvx::platform::commandLineUtf8(argc, argv);
    QApplication app(argc, argv);
    tvx::ui::shareJapaneseFace();
    bool badInterval = false;
    const auto interval = intervalOption(args, badInterval);
    if (badInterval) {
        std::fprintf(stderr, "usage: tallivex [--home DIR] [--interval SECONDS (1..86400)]\n");
        return 2;
    }
    const std::filesystem::path home = tvx::platform::homeFolder(homeOverride(args));
    tvx::ui::QtPrompter prompter;
    const auto instance =
        tvx::app::guardStart(home, tvx::platform::programFolder(), tvx::platform::temporaryFolder(), prompter);
    if (!instance)
        return 1;
    tvx::platform::SystemClock clock;
    tvx::DebugLog log(home, clock);
    tvx::Settings settings = tvx::defaultSettings(tvx::pathUtf8(home));
    writeStartLines(log, tvx::programTitle(settings.SearchWindowName), home);

    tvx::CheckSystemFiles(tvx::platform::requiredLibraries(), tvx::platform::canLoadLibrary, prompter, log);
    const std::unique_ptr<tvx::TextCodec> codec = tvx::platform::makeTextCodec();
    tvx::ConfigFile config(settings, home, prompter, *codec, &log);
    config.run(tvx::ConfigFile::Load);
    try {
        log.WriteDebugLog("Reading ConfigFile ･･･ End ");
    } catch (const tvx::RuntimeError&) {
    }

    tvx::ui::FormMain window(tvx::programTitle(settings.SearchWindowName), log, home);
    tvx::ui::QtWaiter waiter;
    const std::unique_ptr<tvx::Sound> sound = tvx::platform::makeSound();
    tvx::ui::QtShellLauncher shell;
    tvx::ui::QtImageEncoder encoder;
    NoGame noGame;
    const std::unique_ptr<tvx::platform::GameScreen> screen = tvx::platform::makeGameScreen();
    tvx::GameWindowProbe& probe = screen ? static_cast<tvx::GameWindowProbe&>(*screen) : noGame;
    tvx::ScreenSource& source = screen ? static_cast<tvx::ScreenSource&>(*screen) : noGame;
    tvx::MeterPorts ports{clock, waiter, probe, source, *sound, shell, prompter, window, &encoder, codec.get()};
    tvx::Meter meter(settings, ports, log, static_cast<std::uint32_t>(clock.tickMs()));
    config.setSecurePixels([&meter] { meter.recognizer().SecurePixels(); });
    meter.capture().setCaptureFile(home / "Capture.bmp");
    const std::unique_ptr<tvx::MouseButtonSource> mouse = tvx::platform::makeMouseButtonSource();
    window.setDocumentFolder(tvx::platform::programFolder());
    window.setConfigFile(&config, {&source, &waiter, &clock, &meter.state().cycleSkip});
    window.setEnvironmentSource(tvx::platform::gatherEnvironment);
    window.attach(meter);
    window.setGestureSource(mouse.get(), &prompter);
    if (interval)
        window.setIntervalSeconds(*interval);
    // Asked to end by the system: close as the close button does, summary and all.
    std::unique_ptr<QSocketNotifier> termination;
    if (const int descriptor = tvx::platform::terminationDescriptor(); descriptor >= 0) {
        termination = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
        QObject::connect(termination.get(), &QSocketNotifier::activated, &window, [&window] {
            tvx::platform::acknowledgeTermination();
            window.close();
        });
    }
    window.show();
    window.FormMain_Load();
    // A close during the load (its waits keep events flowing) leaves no window to wait for.
    const int status = window.isVisible() ? QApplication::exec() : 0;
    try {
        log.WriteDebugLog("End of the Program ");
        tvx::WriteOperatingInformation(tvx::platform::gatherEnvironment(), log);
    } catch (const tvx::RuntimeError&) {
    }
    return status;
}
