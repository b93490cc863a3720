// tallivex: the desktop meter.
#include "Environment.h"
#include "FormMain.h"
#include "GameScreen.h"
#include "HomeFolder.h"
#include "QtPorts.h"
#include "QtPrompter.h"
#include "QtText.h"
#include "SystemClock.h"
#include "TextCodecFactory.h"

#include "config/ConfigFile.h"
#include "config/Settings.h"
#include "measurement/Meter.h"
#include "ports/GameWindowProbe.h"
#include "ports/Prompter.h"
#include "ports/ScreenSource.h"
#include "shell/DebugLog.h"
#include "shell/Errors.h"
#include "shell/StartupChecks.h"
#include "shell/Utf8Path.h"

#include <QApplication>
#include <QLockFile>
#include <QMessageBox>
#include <QStringList>

#include <optional>

namespace {

std::optional<std::filesystem::path> homeOverride(const QStringList& args)
{
    const qsizetype at = args.indexOf(QStringLiteral("--home"));
    if (at >= 0 && at + 1 < args.size())
        return tvx::utf8Path(args.at(at + 1).toStdString());
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

// The two refusals before anything is written: a second instance on the same home folder,
// and a run from inside the temporary folder.
bool refuseToStart(QLockFile& instance)
{
    const QString title = QStringLiteral("起動エラー");
    // A lock left behind by a run that was killed is no reason to refuse.
    if (!instance.tryLock(0) && !(instance.removeStaleLockFile() && instance.tryLock(0))) {
        QMessageBox::information(nullptr, title, QStringLiteral("既にプログラムは起動しています。"));
        return true;
    }
    const auto [tempLong, tempShort] = tvx::platform::temporaryFolder();
    if (tvx::IsTempFolder(tvx::pathUtf8(tvx::platform::programFolder()), tempLong, tempShort)) {
        QMessageBox::information(nullptr, title,
                                 QStringLiteral("テンポラリフォルダでは実行できません。\r\n"
                                                "Zip圧縮ファイルは適切なフォルダに解凍してから実行してください。"));
        return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const std::filesystem::path home = tvx::platform::homeFolder(homeOverride(QApplication::arguments()));
    QLockFile instance(tvx::ui::qtText(tvx::pathUtf8(home / "tallivex.lock")));
    if (refuseToStart(instance))
        return 1;
    tvx::platform::SystemClock clock;
    tvx::DebugLog log(home, clock);
    tvx::Settings settings = tvx::defaultSettings(tvx::pathUtf8(home));
    writeStartLines(log, tvx::programTitle(settings.SearchWindowName), home);

    tvx::ui::QtPrompter prompter;
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
    tvx::ui::QtSound sound;
    tvx::ui::QtShellLauncher shell;
    tvx::ui::QtImageEncoder encoder;
    NoGame noGame;
    const std::unique_ptr<tvx::platform::GameScreen> screen = tvx::platform::makeGameScreen();
    tvx::GameWindowProbe& probe = screen ? static_cast<tvx::GameWindowProbe&>(*screen) : noGame;
    tvx::ScreenSource& source = screen ? static_cast<tvx::ScreenSource&>(*screen) : noGame;
    tvx::MeterPorts ports{clock, waiter, probe, source, sound, shell, prompter, window, &encoder, codec.get()};
    tvx::Meter meter(settings, ports, log, static_cast<std::uint32_t>(clock.tickMs()));
    config.setSecurePixels([&meter] { meter.recognizer().SecurePixels(); });
    window.setDocumentFolder(tvx::platform::programFolder());
    window.setConfigFile(&config, {&source, &waiter, &clock});
    window.setEnvironmentSource(tvx::platform::gatherEnvironment);
    window.attach(meter);
    window.show();
    window.FormMain_Load();
    const int status = QApplication::exec();
    try {
        log.WriteDebugLog("End of the Program ");
        tvx::WriteOperatingInformation(tvx::platform::gatherEnvironment(), log);
    } catch (const tvx::RuntimeError&) {
    }
    return status;
}
