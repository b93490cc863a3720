// The Windows side of the end-to-end run under Wine (the script beside it starts the programs and moves
// the mouse): a fresh home for the meter, its window moved beside the game, the verdict on its records.
#include "CommandLine.h"
#include "base/Utf8Path.h"
#include "support/EndToEnd.h"
#include "win32/Win32Handles.h"
#include "win32/Win32Text.h"

#include <windows.h>

#include <cstdio>

namespace {

std::wstring programOf(HWND window)
{
    DWORD id = 0;
    GetWindowThreadProcessId(window, &id);
    const tvx::platform::win32::KernelHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
    wchar_t path[MAX_PATH] = {};
    DWORD size = MAX_PATH;
    if (!process || !QueryFullProcessImageNameW(process.get(), 0, path, &size))
        return {};
    const std::wstring full(path, size);
    return full.substr(full.find_last_of(L"\\/") + 1);
}

// Moves the program's visible top-level windows to x,y, as a player places the meter
// beside the game; fails when it has none.
int place(const std::string& program, const std::string& x, const std::string& y)
{
    int moved = 0;
    for (HWND window = FindWindowExW(nullptr, nullptr, nullptr, nullptr); window != nullptr;
         window = FindWindowExW(nullptr, window, nullptr, nullptr))
        if (IsWindowVisible(window) && GetWindow(window, GW_OWNER) == nullptr &&
            lstrcmpiW(programOf(window).c_str(), tvx::platform::win32::wide(program).c_str()) == 0) {
            SetWindowPos(window, nullptr, std::stoi(x), std::stoi(y), 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            ++moved;
        }
    return moved > 0 ? 0 : 1;
}

int check(const std::string& home, const std::string& stateFile, const std::string& minimum)
{
    const auto records = tvx::test::recordLines(tvx::utf8Path(home) / "save");
    const auto faults = tvx::test::recordFaults(records, tvx::test::drawnTotals(tvx::utf8Path(stateFile)));
    for (const auto& record : records)
        std::printf("record: %s\n", record.c_str());
    for (const auto& fault : faults)
        std::printf("FAULT: %s\n", fault.c_str());
    if (records.size() < std::stoul(minimum)) {
        std::printf("FAULT: %zu records, %s expected\n", records.size(), minimum.c_str());
        return 1;
    }
    return faults.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const auto args = tvx::platform::commandLineUtf8(argc, argv);
    if (args.size() == 3 && args[1] == "prepare") {
        tvx::test::writeSessionSettings(tvx::utf8Path(args[2]), tvx::utf8Path(args[2]) / "save");
        return 0;
    }
    if (args.size() == 5 && args[1] == "place")
        return place(args[2], args[3], args[4]);
    if (args.size() == 5 && args[1] == "check")
        return check(args[2], args[3], args[4]);
    std::fputs("usage: tallivex_e2e_support prepare HOME | place PROGRAM.exe X Y | check HOME STATE MINIMUM\n", stderr);
    return 2;
}
