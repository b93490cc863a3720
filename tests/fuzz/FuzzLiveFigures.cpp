// A history text parses (and writes back to the same rows) or raises RuntimeError; any run of
// readings, suspensions and stall checks keeps the tracker's rates finite, its readings bounded.
#include "FuzzSupport.h"
#include "measurement/LiveFigures.h"
#include "measurement/SessionHistory.h"

#include <cmath>

namespace {

void history(FuzzedDataProvider& input)
{
    const std::string text = input.ConsumeRemainingBytesAsString();
    std::vector<tvx::HistoryRow> rows;
    try {
        rows = tvx::parseHistory(text);
    } catch (const tvx::RuntimeError&) {
        return;
    }
    std::string again(tvx::kHistoryHeader);
    for (const auto& row : rows)
        again += "\r\n" + tvx::historyLine(row);
    if (tvx::parseHistory(again) != rows)
        std::abort();
}

void tracker(FuzzedDataProvider& input)
{
    tvx::LiveTracker live;
    std::uint32_t tick = input.ConsumeIntegral<std::uint32_t>();
    live.start(tick);
    while (input.remaining_bytes() > 0) {
        tick += input.ConsumeIntegralInRange<std::uint32_t>(0, 3'600'000);
        switch (input.ConsumeIntegralInRange(0, 4)) {
        case 0: live.suspend(tick); break;
        case 1: live.resume(tick); break;
        case 2: live.failedReading(); break;
        case 3: live.checkStall(tick, input.ConsumeIntegralInRange(1, 600)); break;
        default: {
            const tvx::LiveReading reading{input.ConsumeIntegralInRange(1, 250),
                                           input.ConsumeIntegralInRange<std::int64_t>(0, 1LL << 40),
                                           input.ConsumeBool() ? std::optional<std::int64_t>(input.ConsumeIntegralInRange<std::int64_t>(0, 1LL << 50))
                                                               : std::nullopt};
            live.validReading(tick, {2025, 1, 1, 0, 0, 0}, reading, input.ConsumeBool(),
                              static_cast<tvx::RateWindow>(input.ConsumeIntegralInRange(0, 3)));
        }
        }
        for (const auto& rates : live.figures().rates)
            if (rates.level && !std::isfinite(*rates.level))
                std::abort();
        if (live.keptReadings() > 2 * 3'600'001)
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    if (input.ConsumeBool())
        history(input);
    else
        tracker(input);
    return 0;
}
