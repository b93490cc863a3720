#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace tvx {

// Run-time error numbers, one table for the whole program, so that an error-trap line in
// the debug log means the same thing wherever it was written.
enum class ErrorNumber : int {
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    BadFileName = 52,
    FileNotFound = 53,
    FileAlreadyOpen = 55,
    DiskFull = 61,
    InputPastEndOfFile = 62,
    PermissionDenied = 70,
    PathFileAccessError = 75,
    PathNotFound = 76,
    ApplicationDefined = 1004,
};

std::string_view errorDescription(ErrorNumber number);

// A failure that a procedure's error trap catches and logs; it never crosses a trap.
class RuntimeError : public std::runtime_error {
public:
    explicit RuntimeError(ErrorNumber number);
    RuntimeError(ErrorNumber number, const std::string& detail);

    ErrorNumber number() const noexcept { return m_number; }

private:
    ErrorNumber m_number;
};

// The number a trap logs for anything thrown: a RuntimeError keeps its own, the standard
// library's failures map onto the nearest entry of the table.
ErrorNumber errorNumberOf(const std::exception& error) noexcept;

// "Error Trap : NAME : CODE" + number + two blanks + description.
std::string errorTrapLine(std::string_view procedure, ErrorNumber number);

} // namespace tvx
