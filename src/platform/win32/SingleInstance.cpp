#include "SingleInstance.h"

#include "Win32Handles.h"

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace tvx::platform {

namespace {

// Windows paths ignore case, so "C:\Game" and "c:\game" are one home.
std::wstring mutexName(const std::filesystem::path& home)
{
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(home, error);
    if (error)
        absolute = home;
    std::wstring text = absolute.lexically_normal().wstring();
    while (text.size() > 3 && (text.back() == L'\\' || text.back() == L'/'))
        text.pop_back();
    if (!text.empty())
        CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    std::uint64_t hash = 14695981039346656037ull; // FNV-1a over the UTF-16 units
    for (wchar_t unit : text) {
        hash ^= static_cast<std::uint16_t>(unit);
        hash *= 1099511628211ull;
    }
    wchar_t hex[17];
    std::swprintf(hex, 17, L"%016llx", static_cast<unsigned long long>(hash));
    return std::wstring(L"Local\\Tallivex-") + hex;
}

// The system frees the mutex with the last handle, also when the process is killed.
class NamedMutexInstance final : public SingleInstance {
public:
    explicit NamedMutexInstance(win32::KernelHandle mutex) : m_mutex(std::move(mutex)) {}

private:
    win32::KernelHandle m_mutex;
};

} // namespace

std::unique_ptr<SingleInstance> acquireSingleInstance(const std::filesystem::path& home)
{
    win32::KernelHandle mutex(CreateMutexW(nullptr, FALSE, mutexName(home).c_str()));
    if (!mutex || GetLastError() == ERROR_ALREADY_EXISTS)
        return nullptr;
    return std::make_unique<NamedMutexInstance>(std::move(mutex));
}

} // namespace tvx::platform
