#include "graph/GraphPlot.h"

#include "graph/StepTrap.h"
#include "graph/clsGraphBuffer.h"
#include "base/Errors.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tvx {
namespace {

const Currency kNoValue = Currency::fromInt(-1);

using RateField = Currency (clsGraphFormat::*)() const;

class CurveWalker {
public:
    CurveWalker(const clsGraphBuffer& buffer, const GraphPlotInput& input, StepTrap& trap)
        : m_buffer(buffer), m_input(input), m_trap(trap)
    {
        m_width = input.scaleWidth;
        m_height = input.scaleHeight - 1;
        if (input.timeScale - 1 == 0)
            trap.fail(ErrorNumber::DivisionByZero);
        else
            m_dx = static_cast<float>(static_cast<double>(m_width) / (input.timeScale - 1));
        m_kE = pixelsPerUnit(input.maxE);
        m_kM = pixelsPerUnit(input.maxM);
    }

    // Rate curve: entries of -1 are bridged. When the first entry has no value the curve
    // stays invisible until its first real value.
    std::vector<GraphSegment> rateCurve(RateField field, float k, bool invisibleStart) const
    {
        std::vector<GraphSegment> segments;
        std::optional<GraphPoint> current;
        bool visible = true;
        if (const auto first = entry(0)) {
            const Currency rate = ((*first).*field)();
            current = point(0, rate, k);
            visible = !(invisibleStart && rate == kNoValue);
        }
        for (std::int32_t j = 1; j < m_input.timeScale; ++j) {
            const auto e = entry(j);
            if (!e || ((*e).*field)() == kNoValue)
                continue;
            const GraphPoint next = point(j, ((*e).*field)(), k);
            if (current && visible)
                segments.push_back({*current, next});
            current = next;
            visible = true;
        }
        return segments;
    }

    // Average curve: every entry is a value.
    std::vector<GraphSegment> averageCurve(RateField field, float k) const
    {
        std::vector<GraphSegment> segments;
        std::optional<GraphPoint> current;
        if (const auto first = entry(0))
            current = point(0, ((*first).*field)(), k);
        for (std::int32_t j = 1; j < m_input.timeScale; ++j) {
            const auto e = entry(j);
            if (!e)
                continue;
            const GraphPoint next = point(j, ((*e).*field)(), k);
            if (current)
                segments.push_back({*current, next});
            current = next;
        }
        return segments;
    }

    float kE() const { return m_kE; }
    float kM() const { return m_kM; }

private:
    float pixelsPerUnit(Currency scale) const
    {
        if (scale == Currency()) {
            m_trap.fail(ErrorNumber::DivisionByZero);
            return 0.0f;
        }
        return static_cast<float>(m_height / scale.toDouble());
    }

    std::optional<clsGraphFormat> entry(std::int32_t j) const
    {
        const std::int64_t position = std::int64_t{m_input.shift} + j;
        if (position < 0 || position >= m_buffer.BufferSize()) {
            m_trap.fail(ErrorNumber::SubscriptOutOfRange);
            return std::nullopt;
        }
        return m_buffer.Value(static_cast<std::int32_t>(position));
    }

    GraphPoint point(std::int32_t j, Currency rate, float k) const
    {
        return {m_width - static_cast<double>(m_dx) * j, plotY(rate, k, m_height, j == 0)};
    }

    const clsGraphBuffer& m_buffer;
    const GraphPlotInput& m_input;
    StepTrap& m_trap;
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    float m_dx = 0.0f;
    float m_kE = 0.0f;
    float m_kM = 0.0f;
};

} // namespace

GraphGrid graphGrid(std::int32_t scaleWidth, std::int32_t scaleHeight)
{
    const std::int32_t w = scaleWidth - 1;
    const std::int32_t h = scaleHeight - 1;
    GraphGrid grid;
    for (std::int32_t i = 1; i <= 7; ++i)
        grid.linGraphY[static_cast<std::size_t>(i)] = {0, h / 8 * i, w, h / 8 * i};
    grid.linGraphY[0] = {0, 0, w, 0};
    grid.linGraphY[8] = {0, h, w, h};
    for (std::int32_t i = 1; i <= 3; ++i)
        grid.linGraphX[static_cast<std::size_t>(i)] = {w / 4 * i, 0, w / 4 * i, h};
    grid.linGraphX[0] = {0, 0, 0, h};
    grid.linGraphX[4] = {w, 0, w, h};
    return grid;
}

double plotY(Currency rate, float pixelsPerUnit, std::int32_t height, bool firstPoint)
{
    const double y = height - rate.toDouble() * static_cast<double>(pixelsPerUnit);
    if (firstPoint)
        return y;
    // Upper bound first; a picture too small for a height has a negative limit.
    const double limit = 2.0 * height;
    return std::max(std::min(std::nearbyint(y), limit), -limit);
}

GraphCurves plotGraphCurves(const clsGraphBuffer& buffer, const GraphPlotInput& input, StepTrap& trap)
{
    const CurveWalker walker(buffer, input, trap);
    GraphCurves curves;
    if (input.maxE > Currency()) {
        curves.rateE = walker.rateCurve(&clsGraphFormat::RateE, walker.kE(), false);
        curves.rateAveE = walker.averageCurve(&clsGraphFormat::RateAveE, walker.kE());
    }
    if (input.maxM > Currency() && input.moneyScan) {
        curves.rateM = walker.rateCurve(&clsGraphFormat::RateM, walker.kM(), true);
        curves.rateAveM = walker.averageCurve(&clsGraphFormat::RateAveM, walker.kM());
    }
    return curves;
}

} // namespace tvx
