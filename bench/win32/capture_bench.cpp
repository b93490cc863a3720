// One capture-and-read (capture, then fill, binarise and recognise the three default
// regions) by each route of the Win32 screen source, against an 800x600 "MapleStory"
// window that shows known numbers. Prints the mean and median milliseconds per capture.
//
// The Print Screen route is timed without the Lag wait. Where pressing the key puts
// nothing on the clipboard (wine), the clipboard is filled with a full-screen bitmap
// first and the route is press + clipboard read of that bitmap; the output says which.
#include "DesktopSupport.h"
#include "support/GameScreen.h"

#include "GameScreen.h"
#include "recognition/ScreenRecognizer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

using namespace tvx;

const std::array<std::string, kRegionCount> kNumbers{"137", "12345678", "9876543210"};

bool readsTheNumbers(ScreenRecognizer& recognizer, const std::optional<CaptureBitmap>& bitmap)
{
    if (!bitmap)
        return false;
    std::array<std::string, kRegionCount> digits;
    for (int r = 0; r < kRegionCount; ++r) {
        recognizer.fill(r, *bitmap);
        recognizer.binarize(r);
        digits[static_cast<std::size_t>(r)] = recognizer.recognize(r).digits;
    }
    return levelFromText(digits[0]) == 137 && amountFromText(digits[1]) == Currency::fromInt(12345678) &&
           amountFromText(digits[2]) == Currency::fromInt(9876543210);
}

// Times `capture` + read `runs` times; false when any read went wrong.
bool measure(const char* name, int runs, ScreenRecognizer& recognizer,
             const std::function<std::optional<CaptureBitmap>()>& capture)
{
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const bool ok = readsTheNumbers(recognizer, capture());
        const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
        if (!ok) {
            std::fprintf(stderr, "%s: the numbers were not read back\n", name);
            return false;
        }
        ms.push_back(elapsed.count());
    }
    double sum = 0;
    for (double v : ms)
        sum += v;
    std::sort(ms.begin(), ms.end());
    std::printf("%-58s mean %8.3f ms  median %8.3f ms  (%d runs)\n", name, sum / runs, ms[ms.size() / 2], runs);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 200;
    const Settings settings = defaultSettings("");
    const Frame picture = test::gameScreen(kNumbers, ScreenMode::FullScreen, 7, 800, 600);
    test::PaintedWindow game(L"MapleStory", picture);
    if (!game.bringToFront()) {
        std::fprintf(stderr, "could not show the game window\n");
        return 1;
    }
    test::pumpMessages(300);
    const auto screen = platform::makeGameScreen();
    ScreenRecognizer recognizer(settings);
    std::printf("screen %dx%d\n", GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));

    bool ok = measure("direct, regions only", runs, recognizer, [&] { return screen->grab(settings.CaptureRegion); });
    ok = measure("direct, whole screen", runs, recognizer, [&] { return screen->grab({}); }) && ok;

    test::setClipboard();
    screen->pressPrintScreen();
    const bool keyWorks = test::pumpUntil([] { return IsClipboardFormatAvailable(CF_BITMAP) != FALSE; }, 1500);
    if (!keyWorks) {
        // The same picture Print Screen would give, as a screen-compatible bitmap.
        const auto whole = screen->grab({});
        const Frame shot = whole ? toFrame(*whole) : Frame();
        HBITMAP bitmap = test::deviceBitmap(shot);
        if (bitmap == nullptr || !test::setClipboard(CF_BITMAP, bitmap)) {
            std::fprintf(stderr, "could not fill the clipboard\n");
            return 1;
        }
    }
    ok = measure(keyWorks ? "Print Screen: key + clipboard read (no Lag wait)"
                          : "Print Screen: key + read of a clipboard filled by us (*)",
                 runs, recognizer,
                 [&] {
                     if (keyWorks)
                         test::setClipboard();
                     screen->pressPrintScreen();
                     if (keyWorks) // wait for the system's copy, as the Lag wait would
                         test::pumpUntil([] { return IsClipboardFormatAvailable(CF_BITMAP) != FALSE; }, 1500);
                     return screen->clipboardPicture();
                 }) &&
         ok;
    if (!keyWorks)
        std::printf("(*) Print Screen put nothing on the clipboard here (wine)\n");
    test::setClipboard();
    return ok ? 0 : 1;
}
