#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tvx {

class DebugLog;
class Prompter;
class ShellLauncher;
class Waiter;

// Opens files and web addresses with the shell, waiting a while (events keep flowing)
// so a launched program can come up before the next one.
class Launcher {
public:
    Launcher(ShellLauncher& shell, Waiter& waiter, Prompter& prompter, DebugLog& log)
        : m_shell(shell), m_waiter(waiter), m_prompter(prompter), m_log(log) {}

    void RunFile(const std::string& path, std::int32_t waitMs);
    void RunUrl(const std::string& url, std::int32_t waitMs);

private:
    void run(const std::string& target, std::int32_t waitMs, bool isUrl);

    ShellLauncher& m_shell;
    Waiter& m_waiter;
    Prompter& m_prompter;
    DebugLog& m_log;
};

// The file-name part of a path: what follows the last "\" or "/".
std::string fileNamePart(const std::string& path);

} // namespace tvx
