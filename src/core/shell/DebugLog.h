#pragma once

#include "ports/Clock.h"
#include "base/Errors.h"

#include <filesystem>
#include <string_view>

namespace tvx {

// The debug log beside the program: "debug.txt", one time-stamped line per call, opened and
// closed for each line so no handle stays open. A new run keeps the previous run's log as
// "debugBackUp.txt", one generation deep.
class DebugLog {
public:
    static constexpr int kNewLog = 1;
    static constexpr int kAppend = 0;

    // An empty folder gives a log that writes nothing (headless runs without a home).
    DebugLog(std::filesystem::path homeFolder, Clock& clock);

    // mode 1 starts a new log (backing up the old one); any other mode appends.
    // File errors throw RuntimeError for the caller's trap.
    void WriteDebugLog(std::string_view text, int mode = kAppend);

    // Writes the error-trap line of a procedure ("Error Trap : NAME : CODE9  ..."). A log
    // that cannot be written loses the line: a trap never throws.
    void writeErrorTrap(std::string_view procedure, ErrorNumber number) noexcept;

    const std::filesystem::path& path() const { return m_path; }
    const std::filesystem::path& backupPath() const { return m_backupPath; }

private:
    std::filesystem::path m_path;
    std::filesystem::path m_backupPath;
    Clock& m_clock;
};

// The error trap of an entry point (a timer tick, a command, a gesture): runs `body`, and
// whatever it throws becomes the procedure's error-trap line and goes no further. False
// when something was trapped.
template <typename Body>
bool trapErrors(DebugLog& log, std::string_view procedure, Body&& body) noexcept
{
    try {
        body();
        return true;
    } catch (const std::exception& error) {
        log.writeErrorTrap(procedure, errorNumberOf(error));
    } catch (...) {
        log.writeErrorTrap(procedure, ErrorNumber::ApplicationDefined);
    }
    return false;
}

} // namespace tvx
