#include "recognition/Binarize.h"

#include "base/Errors.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tvx {
namespace {

std::int64_t scaledLevel(std::int32_t value)
{
    const std::int64_t scaled = 4 * std::int64_t{value};
    if (scaled > std::numeric_limits<std::int32_t>::max() || scaled < std::numeric_limits<std::int32_t>::min())
        throw RuntimeError(ErrorNumber::Overflow);
    return scaled;
}

constexpr std::int64_t kBrightest = 1020;
constexpr std::int64_t kEnd = kBrightest + 1;

} // namespace

InkRule inkRule(std::int32_t threshold, std::int32_t mask)
{
    const auto band = [](std::int64_t low, std::int64_t high, bool outside) {
        const auto clamp = [](std::int64_t v) { return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, 0, kEnd)); };
        return InkRule{clamp(low), clamp(high), outside ? 1u : 0u};
    };
    const std::int64_t t = scaledLevel(threshold);
    const std::int64_t m = scaledLevel(mask);
    if (m < 0)
        return band(t, kEnd, false);
    if (t < m) // levels from the mask up become 0, which is ink only for a threshold of 0 or less
        return t <= 0 ? band(t, kEnd, false) : band(t, m, false);
    // levels up to the mask become 1020
    if (t <= kBrightest)
        return band(m + 1, t, true);
    return band(std::max(t, m + 1), kEnd, false);
}

void BinarizeRegion(const PixelLevels& levels, int region, const CaptureRegionRect& rect, std::int32_t threshold,
                    std::int32_t mask, std::string& columnString)
{
    static constexpr char kHex[] = "0123456789ABCDEF";
    const InkRule rule = inkRule(threshold, mask);
    columnString.clear();
    if (rect.SizeX <= 0)
        return;
    levels.checkFits(region, rect);

    // Row by row into one mask per column, a chunk of columns at a time. The mask is a
    // signed 32-bit number, so ink in a 32nd row does not fit; rows from 16 on never reach
    // the four hex digits anyway.
    columnString.resize(4 * static_cast<std::size_t>(rect.SizeX));
    constexpr std::int32_t kChunk = 256;
    std::array<std::uint32_t, kChunk> masks;
    for (std::int32_t first = 0; first < rect.SizeX; first += kChunk) {
        const std::int32_t count = std::min(kChunk, rect.SizeX - first);
        masks.fill(0);
        for (std::int32_t y = 0; y < rect.SizeY; ++y) {
            const std::int32_t* row = levels.row(region, y) + first;
            if (y >= 31) {
                for (std::int32_t x = 0; x < count; ++x)
                    if (rule.isInk(row[x]))
                        throw RuntimeError(ErrorNumber::Overflow);
                continue;
            }
            for (std::int32_t x = 0; x < count; ++x)
                masks[static_cast<std::size_t>(x)] |= rule.isInk(row[x]) << y;
        }
        char* group = columnString.data() + 4 * static_cast<std::size_t>(first);
        for (std::int32_t x = 0; x < count; ++x) {
            const std::uint32_t value = masks[static_cast<std::size_t>(x)];
            *group++ = kHex[(value >> 12) & 0xF];
            *group++ = kHex[(value >> 8) & 0xF];
            *group++ = kHex[(value >> 4) & 0xF];
            *group++ = kHex[value & 0xF];
        }
    }
}

} // namespace tvx
