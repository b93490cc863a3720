#include "base/Errors.h"

#include <filesystem>
#include <ios>
#include <new>

namespace tvx {

std::string_view errorDescription(ErrorNumber number)
{
    switch (number) {
    case ErrorNumber::InvalidProcedureCall: return "Invalid procedure call or argument";
    case ErrorNumber::Overflow: return "Overflow";
    case ErrorNumber::OutOfMemory: return "Out of memory";
    case ErrorNumber::SubscriptOutOfRange: return "Subscript out of range";
    case ErrorNumber::DivisionByZero: return "Division by zero";
    case ErrorNumber::TypeMismatch: return "Type mismatch";
    case ErrorNumber::BadFileName: return "Bad file name or number";
    case ErrorNumber::FileNotFound: return "File not found";
    case ErrorNumber::FileAlreadyOpen: return "File already open";
    case ErrorNumber::DiskFull: return "Disk full";
    case ErrorNumber::InputPastEndOfFile: return "Input past end of file";
    case ErrorNumber::PermissionDenied: return "Permission denied";
    case ErrorNumber::PathFileAccessError: return "Path/File access error";
    case ErrorNumber::PathNotFound: return "Path not found";
    case ErrorNumber::ApplicationDefined: break;
    }
    return "Application-defined or object-defined error";
}

RuntimeError::RuntimeError(ErrorNumber number)
    : std::runtime_error(std::string(errorDescription(number))), m_number(number)
{
}

RuntimeError::RuntimeError(ErrorNumber number, const std::string& detail)
    : std::runtime_error(std::string(errorDescription(number)) + ": " + detail), m_number(number)
{
}

ErrorNumber errorNumberOf(const std::exception& error) noexcept
{
    if (const auto* own = dynamic_cast<const RuntimeError*>(&error))
        return own->number();
    if (dynamic_cast<const std::bad_alloc*>(&error))
        return ErrorNumber::OutOfMemory;
    if (dynamic_cast<const std::filesystem::filesystem_error*>(&error) || dynamic_cast<const std::ios_base::failure*>(&error))
        return ErrorNumber::PathFileAccessError;
    if (dynamic_cast<const std::out_of_range*>(&error) || dynamic_cast<const std::length_error*>(&error))
        return ErrorNumber::SubscriptOutOfRange;
    if (dynamic_cast<const std::overflow_error*>(&error) || dynamic_cast<const std::range_error*>(&error))
        return ErrorNumber::Overflow;
    if (dynamic_cast<const std::invalid_argument*>(&error))
        return ErrorNumber::TypeMismatch;
    return ErrorNumber::ApplicationDefined;
}

std::string errorTrapLine(std::string_view procedure, ErrorNumber number)
{
    std::string line = "Error Trap : ";
    line += procedure;
    line += " : CODE";
    line += std::to_string(static_cast<int>(number));
    line += "  ";
    line += errorDescription(number);
    return line;
}

} // namespace tvx
