#pragma once

#include "base/Errors.h"

#include <new>
#include <optional>
#include <string_view>

namespace tvx {

class DebugLog;

// The layout and drawing procedures go on past a failing step: each step that throws is
// skipped, and the error is kept for one "Error Trap" line at the end. Like the platform's
// error object, a later failure replaces an earlier one.
class StepTrap {
public:
    template <typename Step>
    bool run(Step&& step)
    {
        try {
            step();
            return true;
        } catch (const RuntimeError& e) {
            m_error = e.number();
        } catch (const std::bad_alloc&) {
            m_error = ErrorNumber::OutOfMemory;
        }
        return false;
    }

    void fail(ErrorNumber number) { m_error = number; }
    const std::optional<ErrorNumber>& error() const { return m_error; }

    // Writes the procedure's error-trap line when a step failed, then forgets the error.
    // The log is the last resort, so a failure to write it is dropped.
    void report(DebugLog* log, std::string_view procedure);

private:
    std::optional<ErrorNumber> m_error;
};

} // namespace tvx
