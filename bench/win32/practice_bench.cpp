// One capture-and-read as the meter makes it, against the practice target: the three
// default regions grabbed through the Win32 GameScreen (the direct route), then filled,
// binarised and recognised. Starts tallivex-practice.exe at a known level, waits for its
// window, and prints the median milliseconds over many runs, split into capture and read.
//   tallivex_bench_practice PRACTICE.exe [RUNS (500)]
#include "GameScreen.h"
#include "config/Settings.h"
#include "recognition/ScreenRecognizer.h"
#include "win32/Win32Text.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace tvx;

constexpr std::int32_t kLevel = 137;

// The practice target in its own process, ended with the bench.
class Practice {
public:
    explicit Practice(const std::string& program)
    {
        std::wstring line = L"\"" + platform::win32::wide(program) + L"\" --level " + std::to_wstring(kLevel) +
                            L" --exp-per-second 1234 --money-per-second 567";
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        m_started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                                   &m_process) != FALSE;
    }
    ~Practice()
    {
        if (!m_started)
            return;
        TerminateProcess(m_process.hProcess, 0);
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
    Practice(const Practice&) = delete;
    Practice& operator=(const Practice&) = delete;

    // Its window in front, or null when it did not appear within 30 s.
    HWND window() const
    {
        for (int i = 0; m_started && i < 300; ++i) {
            if (HWND found = FindWindowW(nullptr, L"MapleStory"); found && IsWindowVisible(found)) {
                SetForegroundWindow(found);
                Sleep(500); // its first frame drawn
                return found;
            }
            Sleep(100);
        }
        return nullptr;
    }

private:
    PROCESS_INFORMATION m_process{};
    bool m_started = false;
};

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Grab and read once, timing both parts; false when the level or an amount was not read.
bool captureAndRead(platform::GameScreen& screen, ScreenRecognizer& recognizer, const Settings& settings,
                    double& grabMs, double& readMs)
{
    const auto start = Clock::now();
    const std::optional<CaptureBitmap> bitmap = screen.grab(settings.CaptureRegion);
    grabMs = msSince(start);
    if (!bitmap)
        return false;
    const auto reading = Clock::now();
    std::array<std::string, kRegionCount> digits;
    for (int r = 0; r < kRegionCount; ++r) {
        recognizer.fill(r, *bitmap);
        recognizer.binarize(r);
        digits[static_cast<std::size_t>(r)] = recognizer.recognize(r).digits;
    }
    readMs = msSince(reading);
    return levelFromText(digits[0]) == kLevel && amountFromText(digits[1]) >= Currency{} &&
           amountFromText(digits[2]) >= Currency{};
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: tallivex_bench_practice PRACTICE.exe [RUNS]\n");
        return 2;
    }
    const int runs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 500;
    // Screen pixels, as the meter and the target see them.
    SetProcessDPIAware();
    Practice practice(argv[1]);
    if (practice.window() == nullptr) {
        std::fprintf(stderr, "the practice target's window did not appear\n");
        return 1;
    }
    const auto screen = platform::makeGameScreen();
    const Settings settings = defaultSettings("");
    ScreenRecognizer recognizer(settings);
    std::vector<double> total;
    std::vector<double> grabs;
    std::vector<double> reads;
    for (int i = 0; i < runs; ++i) {
        double grabMs = 0;
        double readMs = 0;
        if (!captureAndRead(*screen, recognizer, settings, grabMs, readMs)) {
            std::fprintf(stderr, "run %d: the practice target's numbers were not read\n", i + 1);
            return 1;
        }
        total.push_back(grabMs + readMs);
        grabs.push_back(grabMs);
        reads.push_back(readMs);
    }
    std::printf("capture (3 regions, direct) + read of the practice target, %d runs, screen %dx%d:\n"
                "  median %.3f ms (capture %.3f ms, read %.3f ms), fastest %.3f ms, slowest %.3f ms\n",
                runs, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN), median(total), median(grabs),
                median(reads), *std::min_element(total.begin(), total.end()),
                *std::max_element(total.begin(), total.end()));
    return 0;
}
