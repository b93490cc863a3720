#include "shell/Launcher.h"

#include "base/Language.h"

#include "ports/Prompter.h"
#include "ports/ShellLauncher.h"
#include "ports/Waiter.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"

namespace tvx {

std::string fileNamePart(const std::string& path)
{
    const std::size_t slash = path.find_last_of("\\/");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

void Launcher::RunFile(const std::string& path, std::int32_t waitMs)
{
    run(path, waitMs, false);
}

void Launcher::RunUrl(const std::string& url, std::int32_t waitMs)
{
    run(url, waitMs, true);
}

void Launcher::run(const std::string& target, std::int32_t waitMs, bool isUrl)
{
    const bool found = isUrl ? !target.empty() : m_shell.fileExists(target);
    if (!found) {
        m_prompter.message(isUrl ? trFormat("%1サイトが見つかりません。", {fileNamePart(target)})
                                 : trFormat("%1ファイルが見つかりません。", {fileNamePart(target)}),
                           tr("実行エラー"));
        // The same line for addresses, on purpose.
        m_log.WriteDebugLog("Execution File Not Find  " + target);
        return;
    }
    m_log.WriteDebugLog((isUrl ? "Execution Url Start ･･･  " : "Execution File Start ･･･  ") + target);
    m_shell.setBusyCursor(true);
    const bool opened = m_shell.open(target);
    if (opened)
        m_waiter.WaitMs(waitMs);
    m_shell.setBusyCursor(false);
    if (!opened) {
        // Found, but nothing on this desktop opens it: say so rather than pretend it ran.
        m_log.writeErrorTrap(isUrl ? "RunUrl" : "RunFile", ErrorNumber::PathFileAccessError);
        m_prompter.message(trFormat("%1を開くプログラムが見つかりません。", {fileNamePart(target)}), tr("実行エラー"));
        return;
    }
    m_log.WriteDebugLog(isUrl ? "Execution Url Finish " : "Execution File Finish ");
}

} // namespace tvx
