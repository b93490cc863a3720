// Learning the three regions from screens: five 800x600 screens in the built-in glyphs,
// each given to fresh learners in turn. Prints the median milliseconds per screen (three
// regions each) over many runs.
#include "recognition/CaptureFile.h"
#include "recognition/GlyphPainter.h"
#include "recognition/TemplateLearner.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using Numbers = std::array<std::string, tvx::kRegionCount>;

tvx::CaptureBitmap makeScreen(const tvx::Settings& settings, const Numbers& numbers)
{
    tvx::Frame frame(800, 600);
    tvx::paintStatusNumbers(frame, settings, numbers);
    return tvx::toCaptureBitmap(frame);
}

} // namespace

int main(int argc, char** argv)
{
    const int runs = argc > 1 ? std::atoi(argv[1]) : 21;
    const tvx::Settings settings = tvx::defaultSettings("");
    const std::vector<Numbers> numbers{{"58", "1234567", "9021034"},
                                       {"147", "8890123", "5006400"},
                                       {"203", "4455667", "77318"},
                                       {"96", "9087654", "1234589"},
                                       {"110", "3141592", "2718281"}};
    std::vector<tvx::CaptureBitmap> screens;
    for (const Numbers& n : numbers)
        screens.push_back(makeScreen(settings, n));

    std::vector<double> perScreen;
    std::size_t accepted = 0;
    for (int run = 0; run < runs; ++run) {
        std::array<tvx::TemplateLearner, tvx::kRegionCount> learners{tvx::TemplateLearner(settings, 0),
                                                                     tvx::TemplateLearner(settings, 1),
                                                                     tvx::TemplateLearner(settings, 2)};
        const auto start = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < screens.size(); ++i)
            for (int r = 0; r < tvx::kRegionCount; ++r)
                accepted += learners[static_cast<std::size_t>(r)].add(screens[i], numbers[i][static_cast<std::size_t>(r)]).accepted();
        const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
        perScreen.push_back(elapsed.count() / static_cast<double>(screens.size()));
    }
    if (accepted != static_cast<std::size_t>(runs) * screens.size() * tvx::kRegionCount) {
        std::fprintf(stderr, "a screen was refused\n");
        return 1;
    }
    std::nth_element(perScreen.begin(), perScreen.begin() + static_cast<std::ptrdiff_t>(perScreen.size() / 2), perScreen.end());
    std::printf("learning, three regions: median %.2f ms per screen over %d runs of %zu screens\n",
                perScreen[perScreen.size() / 2], runs, screens.size());
    return 0;
}
