#include "shell/DebugLog.h"

#include "base/Utf8Path.h"

#include <fstream>

namespace tvx {

DebugLog::DebugLog(std::filesystem::path homeFolder, Clock& clock)
    : m_clock(clock)
{
    if (homeFolder.empty())
        return;
    m_path = homeFolder / "debug.txt";
    m_backupPath = homeFolder / "debugBackUp.txt";
}

void DebugLog::WriteDebugLog(std::string_view text, int mode)
{
    if (m_path.empty())
        return;
    std::error_code ec;
    const bool exists = std::filesystem::exists(m_path, ec);
    const bool fresh = !exists || mode == kNewLog;
    if (exists && mode == kNewLog) {
        std::filesystem::copy_file(m_path, m_backupPath, std::filesystem::copy_options::overwrite_existing, ec);
        if (ec)
            throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(m_backupPath));
    }
    std::ofstream out(m_path, std::ios::binary | (fresh ? std::ios::trunc : std::ios::app));
    if (!out)
        throw RuntimeError(ErrorNumber::PathNotFound, pathUtf8(m_path));
    out << formatTimestamp(m_clock.now()) << ' ' << text << "\r\n";
    out.close();
    if (!out)
        throw RuntimeError(ErrorNumber::DiskFull, pathUtf8(m_path));
}

void DebugLog::writeErrorTrap(std::string_view procedure, ErrorNumber number)
{
    WriteDebugLog(errorTrapLine(procedure, number));
}

} // namespace tvx
