// Reading one frame: fill, binarise and recognise the three default regions of an
// in-memory 800x600 screen. Prints the median nanoseconds per frame over many batches.
#include "recognition/CaptureFile.h"
#include "recognition/GlyphPainter.h"
#include "recognition/ScreenRecognizer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

tvx::Frame makeScreen(const tvx::Settings& settings)
{
    tvx::Frame frame(800, 600);
    // A busy background so nothing is trivially uniform.
    std::uint32_t seed = 12345;
    for (auto& byte : frame.bytes()) {
        seed = seed * 1103515245u + 12345u;
        byte = static_cast<std::uint8_t>(seed >> 24);
    }
    const char* numbers[] = {"137", "12345678", "9876543210"};
    for (int r = 0; r < tvx::kRegionCount; ++r) {
        const auto& rect = settings.CaptureRegion[static_cast<std::size_t>(r)];
        const tvx::InkColors colours = tvx::defaultInkColors(r);
        tvx::paintRegionBackground(frame, rect, colours);
        const auto groups =
            tvx::numberColumns(settings.PatternStrings[static_cast<std::size_t>(r)], numbers[r], true);
        tvx::paintColumns(frame, rect, 2, groups, colours);
    }
    return frame;
}

} // namespace

int main(int argc, char** argv)
{
    const int batches = argc > 1 ? std::atoi(argv[1]) : 201;
    constexpr int kFramesPerBatch = 2000;
    const tvx::Settings settings = tvx::defaultSettings("");
    const tvx::CaptureBitmap bitmap = tvx::toCaptureBitmap(makeScreen(settings));
    tvx::ScreenRecognizer recognizer(settings);

    std::size_t check = 0;
    std::vector<double> perFrame;
    for (int b = 0; b < batches; ++b) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kFramesPerBatch; ++i) {
            for (int r = 0; r < tvx::kRegionCount; ++r) {
                recognizer.fill(r, bitmap);
                recognizer.binarize(r);
                check += recognizer.recognize(r).digits.size();
            }
        }
        const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
        perFrame.push_back(elapsed.count() / kFramesPerBatch);
    }
    if (check != static_cast<std::size_t>(batches) * kFramesPerBatch * (3 + 8 + 10)) {
        std::fprintf(stderr, "recognition gave unexpected digits\n");
        return 1;
    }
    std::nth_element(perFrame.begin(), perFrame.begin() + static_cast<long>(perFrame.size() / 2), perFrame.end());
    std::printf("read one 800x600 frame (3 regions): median %.0f ns per frame over %d batches of %d\n",
                perFrame[perFrame.size() / 2], batches, kFramesPerBatch);
    return 0;
}
