// tallivex-practice.exe: a stand-in game window that shows the meter at work without the game.
#include "PracticeOptions.h"
#include "PracticeWindow.h"

#include "CommandLine.h"
#include "win32/Win32Text.h"

#include <windows.h>

#include <string>
#include <vector>

namespace {

// A window program has no console of its own: the text goes to the one it was started
// from, to a redirected stream, or else into a message box.
void tell(const std::string& text, bool error)
{
    const DWORD stream = error ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE;
    HANDLE out = GetStdHandle(stream);
    if ((out == nullptr || out == INVALID_HANDLE_VALUE) && AttachConsole(ATTACH_PARENT_PROCESS))
        out = GetStdHandle(stream);
    const std::wstring wide = tvx::platform::win32::wide(text);
    DWORD mode = 0;
    DWORD written = 0;
    if (out != nullptr && out != INVALID_HANDLE_VALUE) {
        if (GetConsoleMode(out, &mode) && WriteConsoleW(out, wide.c_str(), static_cast<DWORD>(wide.size()), &written, nullptr))
            return;
        if (WriteFile(out, text.data(), static_cast<DWORD>(text.size()), &written, nullptr))
            return;
    }
    MessageBoxW(nullptr, wide.c_str(), L"tallivex-practice", error ? MB_ICONERROR : MB_ICONINFORMATION);
}

} // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int show)
{
    std::vector<std::string> args = tvx::platform::commandLineUtf8(0, nullptr);
    if (!args.empty())
        args.erase(args.begin());

    tvx::practice::PracticeOptions options;
    std::string error;
    if (!tvx::practice::parsePracticeOptions(args, options, error)) {
        tell("tallivex-practice: " + error + "\n" + tvx::practice::kPracticeUsage, true);
        return 2;
    }
    if (options.help) {
        tell(tvx::practice::kPracticeUsage, false);
        return 0;
    }

    // A game draws in screen pixels; a scaled window would move the numbers off the regions.
    SetProcessDPIAware();
    tvx::practice::PracticeWindow window(options);
    if (!window.open(instance, show)) {
        tell("tallivex-practice: the window could not be created\n", true);
        return 1;
    }
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}
