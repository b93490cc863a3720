#include "view/FormMainCommands.h"

#include "base/Errors.h"
#include "base/Utf8Path.h"
#include "config/Settings.h"
#include "meter/Meter.h"
#include "recognition/CaptureFile.h"
#include "shell/DebugLog.h"

#include <algorithm>
#include <system_error>

namespace tvx {

bool followLanguageSetting(const Settings& settings, Language shown)
{
    if (const auto language = languageFromCode(settings.UiLanguage))
        setLanguage(*language);
    return currentLanguage() != shown;
}

std::filesystem::path helpDocumentPath(const std::filesystem::path& folder, std::string_view document,
                                       Language language)
{
    std::filesystem::path japanese = folder / utf8Path(document);
    if (language == Language::Japanese)
        return japanese;
    std::filesystem::path translated = folder / languageCode(language) / utf8Path(document);
    std::error_code error;
    return std::filesystem::is_regular_file(translated, error) ? translated : japanese;
}

FormMainCommands::FormMainCommands(Meter& meter, DebugLog& log, std::filesystem::path programFolder)
    : m_meter(meter), m_log(log), m_programFolder(std::move(programFolder))
{
}

WindowAction FormMainCommands::run(MenuCommand command)
{
    WindowAction action = WindowAction::None;
    trapErrors(m_log, menuItem(command).name, [&] { action = dispatch(command); });
    return action;
}

WindowAction FormMainCommands::dispatch(MenuCommand command)
{
    switch (command) {
    case MenuCommand::PatternSave: menuPatternSave_Click(); break;
    case MenuCommand::End: m_log.WriteDebugLog("Click : END "); return WindowAction::Close;
    case MenuCommand::Option: m_log.WriteDebugLog("Click : Option "); return WindowAction::ShowOptions;
    case MenuCommand::Run: m_meter.menuRun_Click(); break;
    case MenuCommand::Stop: m_meter.menuStop_Click(); break;
    case MenuCommand::TimeLeft: m_meter.menuTimeLeft_Click(); break;
    case MenuCommand::RandomOne: m_meter.menuRandomOne_Click(); break;
    case MenuCommand::RandomSome: m_meter.menuRandomSome_Click(); break;
    case MenuCommand::PrtScr: m_meter.menuPrtScr_Click(); break;
    case MenuCommand::Compact: m_log.WriteDebugLog("Click : Compact Window "); return WindowAction::ToggleCompact;
    case MenuCommand::History: m_log.WriteDebugLog("Click : Session History "); return WindowAction::ShowHistory;
    case MenuCommand::Quick: runDocument("Click : Show Quick Reference ", "とりあえず始めよう.mht"); break;
    case MenuCommand::HowToUse: runDocument("Click : Show How To Use ", "使用方法M.mht"); break;
    case MenuCommand::ReadMe: runDocument("Click : Show Read Me ", "ReadMeM.txt"); break;
    case MenuCommand::OperatingInfo: menuOperatingInfo_Click(); break;
    case MenuCommand::Version: m_log.WriteDebugLog("Click : VersionInformation "); return WindowAction::ShowVersion;
    }
    return WindowAction::None;
}

void FormMainCommands::runDocument(std::string_view logLine, std::string_view document)
{
    m_log.WriteDebugLog(logLine);
    const auto& folder = m_documentFolder.empty() ? m_programFolder : m_documentFolder;
    m_meter.launcher().RunFile(pathUtf8(helpDocumentPath(folder, document, currentLanguage())), 500);
}

void FormMainCommands::menuPatternSave_Click()
{
    m_log.WriteDebugLog("Click : Pattern Save ");
    const auto& capture = m_meter.cycle().lastCapture();
    if (capture) {
        const std::string name = "Capture" + formatPatternStamp(m_meter.clock().now()) + ".bmp";
        writeBitmap24(m_programFolder / name, *capture);
    } else {
        m_meter.logBox().write(std::string(tr("まだキャプチャしていません")) + "\r\n");
    }
    m_log.WriteDebugLog("Pattern Save ･･･ End ");
}

void FormMainCommands::menuOperatingInfo_Click()
{
    m_log.WriteDebugLog("Click : Operating Information ");
    if (m_environment)
        m_meter.logBox().write("\r\n" + ReportEnvironment(m_environment(), true));
}

std::string FormMainCommands::versionLine()
{
    return trFormat("バージョン %1", {kVersionText});
}

std::string FormMainCommands::versionHeading(std::string_view searchWindowName)
{
    return programName(searchWindowName);
}

void FormMainCommands::closing()
{
    m_meter.close(); // traps its own errors
    m_meter.logBox().write("\r\n        " + std::string(tr(kClosingText)) + "\r\n");
}

std::int32_t FormMainCommands::captureTimerMs(std::int32_t intervalSeconds)
{
    if (intervalSeconds <= 0)
        return 10000;
    return std::min<std::int32_t>(10000, intervalSeconds * 1000 / 2 + 1);
}

} // namespace tvx
