#include "StartGuard.h"

#include "base/Language.h"
#include "ports/Prompter.h"
#include "shell/StartupChecks.h"
#include "base/Utf8Path.h"

namespace tvx::app {

std::unique_ptr<platform::SingleInstance> guardStart(const std::filesystem::path& home,
                                                     const std::filesystem::path& programFolder,
                                                     const std::pair<std::string, std::string>& temporaryFolder,
                                                     Prompter& prompter)
{
    // Before the configuration is read: in the system's language.
    const std::string title = tr("起動エラー");
    auto instance = platform::acquireSingleInstance(home);
    if (!instance) {
        prompter.message(tr("既にプログラムは起動しています。"), title);
        return nullptr;
    }
    if (IsTempFolder(pathUtf8(programFolder), temporaryFolder.first, temporaryFolder.second)) {
        prompter.message(crlf(tr("テンポラリフォルダでは実行できません。\n"
                                 "Zip圧縮ファイルは適切なフォルダに解凍してから実行してください。")),
                         title);
        return nullptr;
    }
    return instance;
}

} // namespace tvx::app
