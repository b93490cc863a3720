// tallivex.exe: the desktop meter on the Win32 API.
#include "AppStart.h"
#include "CommandLine.h"
#include "Environment.h"
#include "base/Language.h"
#include "FormMain.h"
#include "GameScreen.h"
#include "HomeFolder.h"
#include "Memory.h"
#include "MouseButtons.h"
#include "StartGuard.h"
#include "SystemClock.h"
#include "TextCodecFactory.h"
#include "Win32Prompter.h"
#include "Win32Ui.h"
#include "Win32Waiter.h"
#include "win32/Win32Ports.h"

#include "config/ConfigFile.h"
#include "config/Settings.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "base/Utf8Path.h"

#include <windows.h>
#include <commctrl.h>

#include <cstdlib>

namespace {

void initCommonControls()
{
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
}

int runMessageLoop()
{
    MSG message;
    BOOL got = 0;
    while ((got = GetMessageW(&message, nullptr, 0, 0)) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return got == 0 ? static_cast<int>(message.wParam) : 1;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int show)
{
    namespace platform = tvx::platform;
    platform::returnLargeBlocksToSystem();
    initCommonControls();
    const tvx::app::AppOptions options = tvx::app::parseAppOptions(platform::commandLineUtf8(__argc, __argv));
    if (options.bad) {
        MessageBoxW(nullptr, tvx::win32ui::wide(tvx::app::kUsage).c_str(), L"Tallivex", MB_OK | MB_ICONWARNING);
        return 2;
    }
    const std::filesystem::path home = platform::homeFolder(options.home);
    tvx::win32ui::Win32Prompter prompter;
    tvx::setLanguage(tvx::languageOfLocale(platform::systemLocale())); // until the configuration is read
    const auto instance = tvx::app::guardStart(home, platform::programFolder(), platform::temporaryFolder(), prompter);
    if (!instance)
        return 1;
    platform::SystemClock clock;
    tvx::DebugLog log(home, clock);
    tvx::Settings settings = tvx::defaultSettings(tvx::pathUtf8(home));
    const std::unique_ptr<tvx::TextCodec> codec = platform::makeTextCodec();
    tvx::ConfigFile config(settings, home, prompter, *codec, &log);
    tvx::app::startUp(log, tvx::programTitle(settings.SearchWindowName), platform::programFolder(),
                      {platform::requiredLibraries(), platform::canLoadLibrary}, prompter, config,
                      platform::systemLocale());

    tvx::win32ui::FormMain window(tvx::programTitle(settings.SearchWindowName), log, home);
    prompter.setOwner(window.handle());
    tvx::win32ui::Win32Waiter waiter;
    const auto sound = platform::makeWin32Sound();
    const auto shell = platform::makeWin32ShellLauncher();
    const auto encoder = platform::makeGdiplusImageEncoder();
    tvx::app::NoGame noGame;
    const std::unique_ptr<platform::GameScreen> screen = platform::makeGameScreen();
    tvx::GameWindowProbe& probe = screen ? static_cast<tvx::GameWindowProbe&>(*screen) : noGame;
    tvx::ScreenSource& source = screen ? static_cast<tvx::ScreenSource&>(*screen) : noGame;
    tvx::MeterPorts ports{clock, waiter, probe, source, *sound, *shell, prompter, window, encoder.get(), codec.get()};
    tvx::Meter meter(settings, ports, log, static_cast<std::uint32_t>(clock.tickMs()));
    config.setSecurePixels([&meter] { meter.recognizer().SecurePixels(); });
    meter.capture().setCaptureFile(home / "Capture.bmp");
    const std::unique_ptr<tvx::MouseButtonSource> mouse = platform::makeMouseButtonSource();
    window.setDocumentFolder(platform::documentFolder());
    window.setOptionsContext({&config, nullptr, &source, &waiter, &clock, &prompter, &meter.state().cycleSkip, {}, {}});
    window.setEnvironmentSource(platform::gatherEnvironment);
    window.setGestureSource(mouse.get(), &prompter);
    window.attach(meter);
    if (options.intervalSeconds)
        window.setIntervalSeconds(*options.intervalSeconds);
    ShowWindow(window.handle(), show);
    UpdateWindow(window.handle());
    window.FormMain_Load();
    // A close during the load (its waits keep messages flowing) leaves no window to wait for.
    const int status = window.handle() != nullptr ? runMessageLoop() : 0;
    tvx::app::unload(log, platform::gatherEnvironment(), waiter);
    return status;
}
