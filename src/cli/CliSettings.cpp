#include "CliSettings.h"

#include "SystemClock.h"
#include "TextCodecFactory.h"

#include "HomeFolder.h"

#include "config/ConfigFile.h"
#include "shell/DebugLog.h"
#include "base/Utf8Path.h"

#include <ostream>
#include <system_error>

namespace tvx::cli {
namespace {

// Multi-line texts on one line of the terminal.
std::string oneLine(std::string text)
{
    for (std::size_t at; (at = text.find("\r\n")) != std::string::npos;)
        text.replace(at, 2, " / ");
    return text;
}

} // namespace

bool parseCliAnswer(const std::string& arg, CliAnswers& answers)
{
    if (arg == "--yes")
        answers.yes = true;
    else if (arg == "--no")
        answers.yes = false;
    else if (arg == "--fullscreen")
        answers.screen = ScreenMode::FullScreen;
    else if (arg == "--window")
        answers.screen = ScreenMode::Window;
    else
        return false;
    return true;
}

void CliPrompter::message(const std::string& text, const std::string& title)
{
    if (title == "設定ファイル書き込み")
        m_writeFailed = true;
    m_err << "[" << title << "] " << oneLine(text) << '\n';
}

bool CliPrompter::askYesNo(const std::string& text, const std::string& title)
{
    // The screen question: "Yes" is full screen.
    const bool answer = title == "検査領域追従選択" ? m_answers.screen == ScreenMode::FullScreen : m_answers.yes;
    m_err << "[" << title << "] " << oneLine(text) << " -> " << (answer ? "はい" : "いいえ") << '\n';
    return answer;
}

bool CliPrompter::askOkCancel(const std::string& text, const std::string& title)
{
    m_err << "[" << title << "] " << oneLine(text) << " -> OK\n";
    return true;
}

double CliPrompter::askNumber(const std::string&, const std::string&, double, const std::string&,
                              const std::string& prompt, const std::string& title)
{
    m_err << "[" << title << "] " << prompt << " -> cancelled\n";
    return kCancelled;
}

Settings loadCliSettings(const std::filesystem::path& homeDir, const CliAnswers& answers, std::ostream& err,
                         bool* writeFailed)
{
    Settings settings;
    settings.SaveFolder = pathUtf8(homeDir);
    platform::SystemClock clock;
    DebugLog log(homeDir, clock);
    CliPrompter prompter(answers, err);
    const auto codec = platform::makeTextCodec();
    ConfigFile file(settings, homeDir, prompter, *codec, &log);
    file.run(ConfigFile::Load);
    // The program only logs these; a command's user would otherwise not see why a reading changed.
    for (const std::string& line : file.clampedSettings())
        err << "[" << ConfigFile::kFileName << "] " << line << '\n';
    if (writeFailed)
        *writeFailed = prompter.writeFailed();
    return settings;
}

std::optional<std::filesystem::path> cliHomeFolder(const std::optional<std::filesystem::path>& home, std::ostream& err)
{
    const std::filesystem::path folder = platform::homeFolder(home);
    std::error_code ec;
    if (std::filesystem::is_directory(folder, ec))
        return folder;
    err << "tallivex-cli: the home folder " << pathUtf8(folder) << " is not a folder and cannot be made one\n";
    return std::nullopt;
}

} // namespace tvx::cli
