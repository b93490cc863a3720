#include "graph/StepTrap.h"

#include "shell/DebugLog.h"

namespace tvx {

void StepTrap::report(DebugLog* log, std::string_view procedure)
{
    if (!m_error)
        return;
    const ErrorNumber number = *m_error;
    m_error.reset();
    if (log == nullptr)
        return;
    try {
        log->writeErrorTrap(procedure, number);
    } catch (const RuntimeError&) {
    }
}

} // namespace tvx
