// tallivex: the desktop meter.
#include "AppStart.h"
#include "CommandLine.h"
#include "Environment.h"
#include "base/Language.h"
#include "Fonts.h"
#include "FormMain.h"
#include "GameScreen.h"
#include "HomeFolder.h"
#include "Memory.h"
#include "MouseButtons.h"
#include "QtPorts.h"
#include "QtLanguage.h"
#include "QtPrompter.h"
#include "QtText.h"
#include "SoundFactory.h"
#include "StartGuard.h"
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

#include <cstdio>

int main(int argc, char** argv)
{
    tvx::platform::returnLargeBlocksToSystem();
    QApplication app(argc, argv);
    tvx::ui::shareJapaneseFace();
    const tvx::app::AppOptions options = tvx::app::parseAppOptions(tvx::platform::commandLineUtf8(argc, argv));
    if (options.bad) {
        std::fprintf(stderr, "%s\n", tvx::app::kUsage.data());
        return 2;
    }
    const std::filesystem::path home = tvx::platform::homeFolder(options.home);
    tvx::ui::QtPrompter prompter;
    tvx::setLanguage(tvx::languageOfLocale(tvx::platform::systemLocale())); // until the configuration is read
    const auto instance =
        tvx::app::guardStart(home, tvx::platform::programFolder(), tvx::platform::temporaryFolder(), prompter);
    if (!instance)
        return 1;
    tvx::platform::SystemClock clock;
    tvx::DebugLog log(home, clock);
    tvx::Settings settings = tvx::defaultSettings(tvx::pathUtf8(home));
    const std::unique_ptr<tvx::TextCodec> codec = tvx::platform::makeTextCodec();
    tvx::ConfigFile config(settings, home, prompter, *codec, &log);
    tvx::app::startUp(log, tvx::programTitle(settings.SearchWindowName), tvx::platform::programFolder(),
                      {tvx::platform::requiredLibraries(), tvx::platform::canLoadLibrary}, prompter, config,
                      tvx::platform::systemLocale());
    tvx::ui::followQtLanguage();

    tvx::ui::FormMain window(tvx::programTitle(settings.SearchWindowName), log, home);
    tvx::ui::QtWaiter waiter;
    const std::unique_ptr<tvx::Sound> sound = tvx::platform::makeSound();
    tvx::ui::QtShellLauncher shell;
    tvx::ui::QtImageEncoder encoder;
    tvx::app::NoGame noGame;
    const std::unique_ptr<tvx::platform::GameScreen> screen = tvx::platform::makeGameScreen();
    tvx::GameWindowProbe& probe = screen ? static_cast<tvx::GameWindowProbe&>(*screen) : noGame;
    tvx::ScreenSource& source = screen ? static_cast<tvx::ScreenSource&>(*screen) : noGame;
    tvx::MeterPorts ports{clock, waiter, probe, source, *sound, shell, prompter, window, &encoder, codec.get()};
    tvx::Meter meter(settings, ports, log, static_cast<std::uint32_t>(clock.tickMs()));
    config.setSecurePixels([&meter] { meter.recognizer().SecurePixels(); });
    meter.capture().setCaptureFile(home / "Capture.bmp");
    const std::unique_ptr<tvx::MouseButtonSource> mouse = tvx::platform::makeMouseButtonSource();
    window.setDocumentFolder(tvx::platform::documentFolder());
    window.setConfigFile(&config, {&source, &waiter, &clock, &meter.state().cycleSkip});
    window.setEnvironmentSource(tvx::platform::gatherEnvironment);
    window.attach(meter);
    window.setGestureSource(mouse.get(), &prompter);
    if (options.intervalSeconds)
        window.setIntervalSeconds(*options.intervalSeconds);
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
    tvx::app::unload(log, tvx::platform::gatherEnvironment(), waiter);
    return status;
}
