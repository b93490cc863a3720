#include "recognition/Binarize.h"

#include "shell/Errors.h"

#include <limits>

namespace tvx {
namespace {

constexpr std::int32_t kBrightest = 1020;

std::int64_t scaledLevel(std::int32_t value)
{
    const std::int64_t scaled = 4 * std::int64_t{value};
    if (scaled > std::numeric_limits<std::int32_t>::max() || scaled < std::numeric_limits<std::int32_t>::min())
        throw RuntimeError(ErrorNumber::Overflow);
    return scaled;
}

} // namespace

void BinarizeRegion(const PixelLevels& levels, int region, const CaptureRegionRect& rect, std::int32_t threshold,
                    std::int32_t mask, std::string& columnString)
{
    static constexpr char kHex[] = "0123456789ABCDEF";
    const std::int64_t t = scaledLevel(threshold);
    const std::int64_t m = scaledLevel(mask);
    columnString.clear();
    if (rect.SizeX <= 0)
        return;
    levels.checkFits(region, rect);
    columnString.resize(4 * static_cast<std::size_t>(rect.SizeX));

    for (std::int32_t x = 0; x < rect.SizeX; ++x) {
        const std::int32_t* column = levels.column(region, x);
        std::int64_t value = 0;
        for (std::int32_t y = 0; y < rect.SizeY; ++y) {
            std::int64_t p = column[y];
            if (m < 0) {
                // no masking
            } else if (t < m) {
                if (p >= m)
                    p = 0;
            } else if (p <= m) {
                p = kBrightest;
            }
            if (p >= t) {
                if (y >= 31)
                    throw RuntimeError(ErrorNumber::Overflow);
                value += std::int64_t{1} << y;
                if (value > std::numeric_limits<std::int32_t>::max())
                    throw RuntimeError(ErrorNumber::Overflow);
            }
        }
        char* group = &columnString[4 * static_cast<std::size_t>(x)];
        group[0] = kHex[(value >> 12) & 0xF];
        group[1] = kHex[(value >> 8) & 0xF];
        group[2] = kHex[(value >> 4) & 0xF];
        group[3] = kHex[value & 0xF];
    }
}

} // namespace tvx
