#include "CliSettings.h"

#include "SystemClock.h"
#include "TextCodecFactory.h"

#include "config/ConfigFile.h"
#include "shell/DebugLog.h"
#include "base/Utf8Path.h"

#include <ostream>

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
    ConfigFile(settings, homeDir, prompter, *codec, &log).run(ConfigFile::Load);
    if (writeFailed)
        *writeFailed = prompter.writeFailed();
    return settings;
}

} // namespace tvx::cli
