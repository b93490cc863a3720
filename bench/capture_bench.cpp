// One capture-and-read on this machine's screen: take the screen by a route, then fill,
// binarise and recognise the three default regions. Run it against the practice target
// (or the game) on the display in $DISPLAY; prints the median milliseconds per capture
// for each route and what was read, so a wrong reading cannot pass for a fast one.
#include "GameScreen.h"

#include "recognition/ScreenRecognizer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

struct Reading {
    double medianMs = 0;
    std::string text;
};

template <typename Take>
Reading measure(const tvx::Settings& settings, Take take, int runs)
{
    tvx::ScreenRecognizer recognizer(settings);
    std::vector<double> times;
    std::string text;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const std::optional<tvx::CaptureBitmap> image = take();
        text.clear();
        if (image) {
            for (int r = 0; r < tvx::kRegionCount; ++r) {
                recognizer.fill(r, *image);
                recognizer.binarize(r);
                text += recognizer.recognize(r).digits + (r + 1 < tvx::kRegionCount ? " / " : "");
            }
        } else {
            text = "no image";
        }
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], text};
}

} // namespace

int main()
{
    const auto screen = tvx::platform::makeGameScreen();
    if (!screen) {
        std::fprintf(stderr, "no screen to capture (is DISPLAY set?)\n");
        return 1;
    }
    const tvx::Settings settings = tvx::defaultSettings("");
    const int runs = 200;
    const Reading regions = measure(settings, [&] { return screen->grab(settings.CaptureRegion); }, runs);
    const Reading whole = measure(settings, [&] { return screen->grab({}); }, runs);
    std::printf("direct, capture regions only: %8.3f ms  read %s\n", regions.medianMs, regions.text.c_str());
    std::printf("direct, whole screen:         %8.3f ms  read %s\n", whole.medianMs, whole.text.c_str());
    if (screen->pressPrintScreen()) {
        const Reading key = measure(settings, [&] { screen->pressPrintScreen(); return screen->clipboardPicture(); }, 20);
        std::printf("Print Screen key + clipboard: %8.3f ms (without Lag)  read %s\n", key.medianMs, key.text.c_str());
    } else {
        std::printf("Print Screen key + clipboard: not offered by this platform\n");
    }
    return 0;
}
