#include "graph/GraphScale.h"

#include "base/Language.h"
#include "graph/StepTrap.h"
#include "measurement/RecordFormat.h"
#include "base/Errors.h"

#include <algorithm>
#include <limits>

namespace tvx {
namespace {

constexpr std::array<std::int64_t, 37> kSteps = {
    10,    20,    40,    60,    80,    100,   200,   400,   600,   800,   1000,  2000,  3000,
    4000,  5000,  6000,  7000,  8000,  9000,  10000, 15000, 20000, 25000, 30000, 35000, 40000,
    45000, 50000, 55000, 60000, 65000, 70000, 75000, 80000, 85000, 90000, 95000};

constexpr std::int64_t kTopScale = 100000;

std::int32_t toInt32(std::int64_t value)
{
    if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<std::int32_t>(value);
}

} // namespace

Currency ScaleStep(Currency amount)
{
    for (const std::int64_t step : kSteps) {
        if (amount < Currency::fromInt(step))
            return Currency::fromInt(step);
    }
    if (amount > Currency::fromInt(kTopScale))
        return Currency::fromInt(kTopScale);
    return Currency(); // 95000 to 100000 has never had a scale of its own
}

std::array<Currency, 4> scaleMarks(Currency scale)
{
    // In tenths, so that a quarter of a small scale keeps its half (7.5 of 10); the
    // scale times ten is rounded to a whole number, half to even.
    constexpr std::int64_t perTenth = Currency::kScale / 10;
    std::int64_t tenths = scale.raw() / perTenth;
    const std::int64_t rest = scale.raw() % perTenth;
    if (2 * rest > perTenth || (2 * rest == perTenth && tenths % 2 != 0))
        ++tenths;
    else if (2 * rest < -perTenth || (2 * rest == -perTenth && tenths % 2 != 0))
        --tenths;
    auto fromTenths = [](std::int64_t t) { return Currency::fromRaw(t * perTenth); };
    return {scale, fromTenths(tenths / 4 * 3), fromTenths(tenths / 2), fromTenths(tenths / 4)};
}

std::string expScaleLabel(Currency value)
{
    const std::string text = "     " + formatNumber(value, 0, false);
    return text.substr(text.size() - 6);
}

std::string moneyScaleLabel(Currency value)
{
    return formatNumber(value, 0, false);
}

std::string timeAxisTitle(std::int32_t captureInterval, std::int32_t timeScale)
{
    const std::int32_t minutes = toInt32(std::int64_t{captureInterval} * timeScale);
    return trFormat("経過時間(%1分間隔)", {std::to_string(minutes / 4)});
}

std::string timeAxisTitleSeconds(std::int32_t captureSeconds, std::int32_t timeScale)
{
    const std::int32_t seconds = toInt32(std::int64_t{captureSeconds} * timeScale) / 4;
    if (seconds % 60 == 0)
        return trFormat("経過時間(%1分間隔)", {std::to_string(seconds / 60)});
    return trFormat("経過時間(%1秒間隔)", {std::to_string(seconds)});
}

GraphScaleTexts graphScaleTexts(Currency maxRateE, Currency maxRateM, float zoom, std::int32_t captureInterval,
                                std::int32_t timeScale, StepTrap& trap, std::int32_t captureSeconds)
{
    GraphScaleTexts texts;
    // Minutes that do not fit leave the title at 0, as the failed step leaves them.
    if (!trap.run([&] {
            texts.lblGraph_Tt = captureSeconds > 0 ? timeAxisTitleSeconds(captureSeconds, timeScale)
                                                   : timeAxisTitle(captureInterval, timeScale);
        }))
        texts.lblGraph_Tt = timeAxisTitle(0, 0);
    trap.run([&] { texts.maxE = ScaleStep(Currency::fromDouble(maxRateE.toDouble() * zoom)); });
    trap.run([&] { texts.maxM = ScaleStep(Currency::fromDouble(maxRateM.toDouble() * zoom)); });
    trap.run([&] {
        const auto marks = scaleMarks(texts.maxE);
        std::transform(marks.begin(), marks.end(), texts.lblGraph_El.begin(), expScaleLabel);
    });
    trap.run([&] {
        const auto marks = scaleMarks(texts.maxM);
        std::transform(marks.begin(), marks.end(), texts.lblGraph_Ml.begin(), moneyScaleLabel);
    });
    return texts;
}

float zoomIn(float zoom)
{
    const auto next = static_cast<float>(static_cast<double>(zoom) + 0.1);
    return next > 2.0 ? kZoomMax : next;
}

float zoomOut(float zoom)
{
    const auto next = static_cast<float>(static_cast<double>(zoom) - 0.1);
    return next < 0.2 ? kZoomMin : next;
}

std::int32_t shiftToPast(std::int32_t shift, std::int32_t timeScale, std::int32_t bufferLength)
{
    std::int64_t next = std::int64_t{shift} + timeScale / 4;
    if (std::int64_t{timeScale} + next >= bufferLength)
        next = std::int64_t{bufferLength} - timeScale - 1;
    return toInt32(next);
}

std::int32_t shiftToPresent(std::int32_t shift, std::int32_t timeScale)
{
    const std::int64_t next = std::int64_t{shift} - timeScale / 4;
    return next < 0 ? 0 : toInt32(next);
}

} // namespace tvx
