#include "Win32Ports.h"

#include "Win32Text.h"

#include <windows.h>
#include <shellapi.h>

namespace tvx::platform {

namespace {

class Win32ShellLauncher final : public ShellLauncher {
public:
    bool fileExists(const std::string& path) override
    {
        return !path.empty() && GetFileAttributesW(win32::wide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    bool open(const std::string& fileOrUrl) override
    {
        if (fileOrUrl.empty())
            return false;
        const HINSTANCE result =
            ShellExecuteW(nullptr, L"open", win32::wide(fileOrUrl).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
        // Values above 32 mean success; the rest are error codes.
        return reinterpret_cast<INT_PTR>(result) > 32;
    }

    void setBusyCursor(bool busy) override { SetCursor(LoadCursorA(nullptr, busy ? IDC_WAIT : IDC_ARROW)); }
};

} // namespace

std::unique_ptr<ShellLauncher> makeWin32ShellLauncher()
{
    return std::make_unique<Win32ShellLauncher>();
}

} // namespace tvx::platform
