// What the live figures cost a reading: an eight-hour session read every 10 s (2,881
// readings, a level-up now and then, money on every other reading) through LiveTracker,
// and the history row written after each reading into a history of 1,000 earlier rows.
// Prints the time per reading (median of the runs; with the file, also the CPU time), the readings the tracker keeps at the
// end and what they take in memory.
// Usage: tallivex_bench_live [RUNS]
#include "measurement/ExpTable.h"
#include "measurement/LiveFigures.h"
#include "measurement/SessionHistory.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kReadings = 8 * 360 + 1;

double microsecondsPerReading(Clock::duration spent)
{
    return std::chrono::duration<double, std::micro>(spent).count() / kReadings;
}

double cpuMicrosecondsPerReading(std::clock_t spent)
{
    return 1e6 * static_cast<double>(spent) / CLOCKS_PER_SEC / kReadings;
}

// One session through the tracker; returns the readings kept at its end.
std::size_t session(double& perReading, double& cpuPerReading, const std::filesystem::path* history)
{
    tvx::LiveTracker live;
    tvx::HistoryWriter writer;
    live.start(0);
    std::int32_t level = 150;
    std::int64_t exp = 0;
    std::int64_t money = 1'000'000;
    const auto start = Clock::now();
    const std::clock_t cpuStart = std::clock();
    for (int i = 0; i < kReadings; ++i) {
        exp += 250'000;
        const std::int64_t span = (tvx::ExpTable(level + 1) - tvx::ExpTable(level)).wholePart();
        if (exp >= span)
            exp -= span, ++level;
        money += 1'000;
        const auto tick = static_cast<std::uint32_t>(i) * 10'000;
        const tvx::LocalDateTime now = tvx::addSeconds({2025, 6, 1, 12, 0, 0}, i * 10);
        live.validReading(tick, now, {level, exp, i % 2 == 0 ? std::optional(money) : std::nullopt}, false,
                          tvx::Window30);
        live.checkStall(tick, 15);
        if (history)
            writer.save(*history, *live.row());
    }
    perReading = microsecondsPerReading(Clock::now() - start);
    cpuPerReading = cpuMicrosecondsPerReading(std::clock() - cpuStart);
    if (live.figures().rates[tvx::Window60].exp.value_or(0) <= 0)
        std::abort(); // the figures must have been worked out
    return live.keptReadings();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const auto folder = std::filesystem::temp_directory_path() / "tallivex_bench_live";
    std::filesystem::remove_all(folder);
    const auto history = tvx::historyFilePath(folder);
    tvx::HistoryRow row;
    for (int i = 0; i < 1000; ++i) {
        row.start = row.end = tvx::addSeconds({2020, 1, 1, 0, 0, 0}, i * 86'400);
        tvx::saveHistoryRow(history, row);
    }
    const auto withRows = std::filesystem::file_size(history);

    std::vector<double> figures, written, writtenCpu;
    std::size_t kept = 0;
    for (int run = 0; run < runs; ++run) {
        double t = 0;
        double cpu = 0;
        kept = session(t, cpu, nullptr);
        figures.push_back(t);
        session(t, cpu, &history);
        written.push_back(t);
        writtenCpu.push_back(cpu);
    }
    std::filesystem::remove_all(folder);
    std::printf("live figures: %.3f us per reading (%d readings of an 8-hour session)\n", median(figures), kReadings);
    std::printf("with the history row written (history of 1,000 rows, %ju bytes): %.1f us per reading, of which"
                " %.1f us CPU\n",
                static_cast<std::uintmax_t>(withRows), median(written), median(writtenCpu));
    std::printf("readings kept at the end: %zu (about %zu bytes)\n", kept, kept * 24);
    return 0;
}
