// Reading screen images from files, as the CLI does: writes a folder of 800x600 24-bit BMP
// screens with known numbers, then times (median of several runs)
//   - loading one file (LoadCaptureBitmap alone),
//   - `recognize` over the whole folder (files per second),
//   - `replay` over the same images named as a session's seconds (frames per second).
// The outputs are checked, so a wrong reading cannot pass for a fast one.
// Usage: tallivex_bench_files [FILES] [RUNS]
#include "RecognizeCommand.h"
#include "ReplayCommand.h"

#include "recognition/CaptureFile.h"
#include "recognition/GlyphPainter.h"
#include "base/Utf8Path.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Numbers {
    std::string level, exp, money;
};

Numbers numbersOf(int i)
{
    return {"137", std::to_string(1'000'000 + 1'000 * i), std::to_string(50'000'000 + 700 * i)};
}

void writeScreens(const fs::path& folder, int count, const std::function<std::string(int)>& name)
{
    const tvx::Settings settings = tvx::defaultSettings("");
    tvx::Frame frame(800, 600);
    std::mt19937 noise(7);
    for (auto& byte : frame.bytes())
        byte = static_cast<std::uint8_t>(noise());
    for (int i = 0; i < count; ++i) {
        const Numbers n = numbersOf(i);
        tvx::paintStatusNumbers(frame, settings, {n.level, n.exp, n.money});
        if (!tvx::writeBitmap24(folder / name(i), frame)) {
            std::fprintf(stderr, "cannot write %s\n", tvx::pathUtf8(folder / name(i)).c_str());
            std::exit(1);
        }
    }
}

double medianMs(int runs, const std::function<void()>& run)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        run();
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

[[noreturn]] void fail(const std::string& what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

} // namespace

int main(int argc, char** argv)
{
    const int count = argc > 1 ? std::max(1, std::atoi(argv[1])) : 300;
    const int runs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 15;
    const fs::path root = fs::temp_directory_path() / ("tallivex-bench-files-" + std::to_string(getpid()));
    const fs::path shots = root / "shots";
    const fs::path frames = root / "frames";
    fs::create_directories(shots);
    fs::create_directories(frames);
    writeScreens(shots, count, [](int i) { return "shot" + std::to_string(i) + ".bmp"; });
    writeScreens(frames, count, [](int i) { return std::to_string(360 * i) + ".bmp"; });

    std::vector<std::string> images;
    for (int i = 0; i < count; ++i)
        images.push_back(tvx::pathUtf8(shots / ("shot" + std::to_string(i) + ".bmp")));

    tvx::CaptureBitmap bitmap;
    const double loadMs = medianMs(runs, [&] {
        for (const std::string& image : images)
            if (tvx::LoadCaptureBitmap(image, bitmap) != tvx::CaptureLoadResult::Read)
                fail(image + ": not read");
    });

    std::string lastOutput;
    const double recognizeMs = medianMs(runs, [&] {
        std::ostringstream out, err;
        if (tvx::cli::runRecognize(images, out, err) != 0)
            fail("recognize failed: " + err.str());
        lastOutput = out.str();
    });
    const Numbers last = numbersOf(count - 1);
    const std::string expected = "\"level\":" + last.level + ",\"exp\":" + last.exp + ",\"money\":" + last.money + "}";
    if (lastOutput.size() < expected.size() + 1 ||
        lastOutput.compare(lastOutput.size() - expected.size() - 1, expected.size(), expected) != 0)
        fail("recognize read something else: " + lastOutput.substr(lastOutput.size() > 200 ? lastOutput.size() - 200 : 0));

    int replayRun = 0;
    const double replayMs = medianMs(runs, [&] {
        const fs::path saveFolder = root / ("records" + std::to_string(replayRun++));
        std::ostringstream out, err;
        const int status = tvx::cli::runReplay({tvx::pathUtf8(frames), "--save-folder", tvx::pathUtf8(saveFolder), "--start",
                                                "2024-01-01 00:00", "--csv", "--per-session"},
                                               out, err);
        const std::string log = out.str();
        if (status != 0 || std::count(log.begin(), log.end(), '\n') < count)
            fail("replay failed: " + err.str());
    });
    fs::remove_all(root);

    auto perFile = [count](double ms) { return 1000.0 * ms / count; };
    std::printf("%d files of 800x600, median of %d runs\n", count, runs);
    std::printf("load one file:         %8.1f us per file\n", perFile(loadMs));
    std::printf("recognize over folder: %8.1f us per file  (%.0f files per second)\n", perFile(recognizeMs),
                count * 1000.0 / recognizeMs);
    std::printf("replay over folder:    %8.1f us per frame (%.0f frames per second)\n", perFile(replayMs),
                count * 1000.0 / replayMs);
    return 0;
}
