// Reading one frame: fill, binarise and recognise the three regions of an in-memory 800x600
// screen, once in the default glyphs (exact templates) and once in glyphs drawn twice as
// large and learnt as shapes. Prints the median nanoseconds per frame over many batches.
#include "recognition/CaptureFile.h"
#include "recognition/GlyphPainter.h"
#include "recognition/RegionLearner.h"
#include "recognition/ScreenRecognizer.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using Numbers = std::array<std::string, tvx::kRegionCount>;

tvx::Frame busyScreen()
{
    tvx::Frame frame(800, 600);
    // A busy background so nothing is trivially uniform.
    std::uint32_t seed = 12345;
    for (auto& byte : frame.bytes()) {
        seed = seed * 1103515245u + 12345u;
        byte = static_cast<std::uint8_t>(seed >> 24);
    }
    return frame;
}

tvx::Frame exactScreen(const tvx::Settings& settings, const Numbers& numbers)
{
    tvx::Frame frame = busyScreen();
    for (int r = 0; r < tvx::kRegionCount; ++r) {
        const auto& rect = settings.CaptureRegion[static_cast<std::size_t>(r)];
        const tvx::InkColors colours = tvx::defaultInkColors(r);
        tvx::paintRegionBackground(frame, rect, colours);
        const auto groups =
            tvx::numberColumns(settings.PatternStrings[static_cast<std::size_t>(r)], numbers[static_cast<std::size_t>(r)], true);
        tvx::paintColumns(frame, rect, 2, groups, colours);
    }
    return frame;
}

// The experience glyphs at twice their size, white on black, in every region.
tvx::Frame doubledScreen(const tvx::Settings& settings, const Numbers& numbers)
{
    const tvx::Settings plain = tvx::defaultSettings("");
    tvx::Frame frame = busyScreen();
    for (int r = 0; r < tvx::kRegionCount; ++r) {
        const auto& rect = settings.CaptureRegion[static_cast<std::size_t>(r)];
        const std::string groups =
            tvx::numberColumns(plain.PatternStrings[tvx::RegionExp], numbers[static_cast<std::size_t>(r)], true);
        for (std::int32_t y = 0; y < rect.SizeY; ++y)
            for (std::int32_t x = 0; x < rect.SizeX; ++x) {
                const std::size_t column = static_cast<std::size_t>(x / 2) - 1;
                bool ink = false;
                if (x >= 2 && 4 * column + 4 <= groups.size()) {
                    const unsigned mask = static_cast<unsigned>(std::stoul(groups.substr(4 * column, 4), nullptr, 16));
                    ink = (mask >> (y / 2)) & 1;
                }
                const std::uint8_t level = ink ? 250 : 10;
                frame.setPixel(rect.StartX + x, rect.StartY + y, level, level, level);
            }
    }
    return frame;
}

tvx::Settings shapeSettings()
{
    tvx::Settings settings = tvx::defaultSettings("");
    for (auto& rect : settings.CaptureRegion) {
        rect.SizeX = 2 * rect.SizeX + 4;
        rect.SizeY = 20;
    }
    for (int r = 0; r < tvx::kRegionCount; ++r) {
        settings.BinaryThreshold[static_cast<std::size_t>(r)] = 128;
        settings.BinaryMask[static_cast<std::size_t>(r)] = -1;
        tvx::RegionLearner learner(settings, r);
        for (const char* number : {"1234567", "8901", "345"}) {
            Numbers numbers{number, number, number};
            if (!learner.add(tvx::toCaptureBitmap(doubledScreen(settings, numbers)), number).accepted())
                std::fprintf(stderr, "region %d: %s not learnt\n", r, number);
        }
        learner.applyTo(settings);
    }
    return settings;
}

// Median nanoseconds per frame, or a negative number when a region read wrong.
double measure(const tvx::Settings& settings, const tvx::CaptureBitmap& bitmap, const Numbers& numbers, int batches,
               int framesPerBatch)
{
    tvx::ScreenRecognizer recognizer(settings);
    std::size_t expected = 0;
    for (const std::string& number : numbers)
        expected += number.size();
    std::size_t check = 0;
    std::vector<double> perFrame;
    for (int b = 0; b < batches; ++b) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < framesPerBatch; ++i) {
            for (int r = 0; r < tvx::kRegionCount; ++r) {
                recognizer.fill(r, bitmap);
                recognizer.binarize(r);
                check += recognizer.recognize(r).digits.size();
            }
        }
        const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
        perFrame.push_back(elapsed.count() / framesPerBatch);
    }
    for (int r = 0; r < tvx::kRegionCount; ++r) {
        recognizer.fill(r, bitmap);
        recognizer.binarize(r);
        if (recognizer.recognize(r).digits != numbers[static_cast<std::size_t>(r)])
            return -1;
    }
    if (check != static_cast<std::size_t>(batches) * static_cast<std::size_t>(framesPerBatch) * expected)
        return -1;
    std::nth_element(perFrame.begin(), perFrame.begin() + static_cast<long>(perFrame.size() / 2), perFrame.end());
    return perFrame[perFrame.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    const int batches = argc > 1 ? std::atoi(argv[1]) : 201;
    const tvx::Settings exact = tvx::defaultSettings("");
    const Numbers exactNumbers{"137", "12345678", "9876543210"};
    const double exactNs =
        measure(exact, tvx::toCaptureBitmap(exactScreen(exact, exactNumbers)), exactNumbers, batches, 2000);
    const tvx::Settings shapes = shapeSettings();
    const Numbers shapeNumbers{"137", "1234567", "987654"};
    const int shapeBatches = std::max(1, batches / 10);
    const double shapeNs =
        measure(shapes, tvx::toCaptureBitmap(doubledScreen(shapes, shapeNumbers)), shapeNumbers, shapeBatches, 20);
    if (exactNs < 0 || shapeNs < 0) {
        std::fprintf(stderr, "recognition gave unexpected digits\n");
        return 1;
    }
    std::printf("read one 800x600 frame (3 regions), exact templates: median %.0f ns per frame over %d batches of 2000\n",
                exactNs, batches);
    std::printf("read one 800x600 frame (3 regions, 20 rows, touching digits), shapes: median %.0f ns per frame over %d "
                "batches of 20\n",
                shapeNs, shapeBatches);
    return 0;
}
