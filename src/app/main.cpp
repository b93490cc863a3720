// tallivex: the desktop meter.
#include "FormMain.h"
#include "HomeFolder.h"
#include "SystemClock.h"

#include "config/Settings.h"
#include "shell/DebugLog.h"

#include <QApplication>
#include <QStringList>

#include <optional>

namespace {

std::optional<std::filesystem::path> homeOverride(const QStringList& args)
{
    const qsizetype at = args.indexOf(QStringLiteral("--home"));
    if (at >= 0 && at + 1 < args.size())
        return std::filesystem::path(args.at(at + 1).toStdString());
    return std::nullopt;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const std::filesystem::path home = tvx::platform::homeFolder(homeOverride(QApplication::arguments()));
    tvx::platform::SystemClock clock;
    tvx::DebugLog log(home, clock);
    const tvx::Settings settings = tvx::defaultSettings(home.string());
    const std::string title = tvx::programTitle(settings.SearchWindowName);
    try {
        log.WriteDebugLog("Starting Program  " + title, tvx::DebugLog::kNewLog);
    } catch (const tvx::RuntimeError&) {
        // A read-only home folder must not keep the meter from running.
    }
    tvx::ui::FormMain window(title);
    window.show();
    return QApplication::exec();
}
