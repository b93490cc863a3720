// The fast paths of binarisation and of the first digit search against a literal,
// pixel-by-pixel and template-by-template reading of the same rules, on random screens.
#include "recognition/Binarize.h"
#include "recognition/GlyphPainter.h"
#include "recognition/Recognizer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>

namespace tvx {
namespace {

std::string literalColumns(const PixelLevels& levels, int region, const CaptureRegionRect& rect, int threshold,
                           int mask)
{
    const long t = 4L * threshold;
    const long m = 4L * mask;
    std::string out;
    for (int x = 0; x < rect.SizeX; ++x) {
        long value = 0;
        for (int y = 0; y < rect.SizeY; ++y) {
            long p = levels.at(region, x, y);
            if (m < 0) {
            } else if (t < m) {
                if (p >= m)
                    p = 0;
            } else if (p <= m) {
                p = 1020;
            }
            if (p >= t)
                value += 1L << y;
        }
        char hex[16];
        std::snprintf(hex, sizeof hex, "0000%lX", value);
        out += std::string(hex).substr(std::string(hex).size() - 4);
    }
    return out;
}

// Each template's first occurrence, the smallest position kept, the lower digit on ties.
std::pair<std::size_t, int> literalFirstSearch(const std::string& s, const PatternSet& patterns)
{
    std::size_t best = s.size();
    int digit = 0;
    for (int d = 0; d <= 9; ++d) {
        const std::size_t found = s.find(patterns[static_cast<std::size_t>(d)]);
        if (found != std::string::npos && found + 1 < best) {
            best = found + 1;
            digit = d;
        }
    }
    return {best, digit};
}

TEST(ReferenceAgreement, RandomScreensBinariseAndReadAsTheRulesSay)
{
    std::mt19937 random(20261121);
    const Settings defaults = defaultSettings("");
    int numbersRead = 0;
    for (int round = 0; round < 200; ++round) {
        Settings settings = defaults;
        for (int r = 0; r < kRegionCount; ++r) {
            const auto i = static_cast<std::size_t>(r);
            settings.CaptureRegion[i].SizeY = 1 + static_cast<int>(random() % 20);
            if (round % 3 == 1) {
                settings.BinaryThreshold[i] = static_cast<int>(random() % 300);
                settings.BinaryMask[i] = static_cast<int>(random() % 300) - 60;
            }
        }
        Frame frame(560, 600);
        // Noise of a few levels over the regions, so that every masking band sees pixels.
        for (const CaptureRegionRect& rect : settings.CaptureRegion)
            for (int y = rect.StartY; y < rect.StartY + rect.SizeY; ++y)
                for (int x = rect.StartX; x < rect.StartX + rect.SizeX; ++x)
                    frame.setPixel(x, y, static_cast<std::uint8_t>(random() % 4 * 85),
                                   static_cast<std::uint8_t>(random() % 4 * 85),
                                   static_cast<std::uint8_t>(random() % 4 * 85));
        for (int r = 0; r < kRegionCount; ++r) {
            const auto i = static_cast<std::size_t>(r);
            const std::string digits = std::to_string(random() % 100000000);
            const InkColors colours = defaultInkColors(r);
            if (round % 2 == 0)
                paintRegionBackground(frame, settings.CaptureRegion[i], colours);
            paintColumns(frame, settings.CaptureRegion[i], static_cast<int>(random() % 12),
                         numberColumns(settings.PatternStrings[i], digits, random() % 4 != 0), colours);
        }
        const CaptureBitmap bitmap = toCaptureBitmap(frame);
        PixelLevels levels;
        levels.SecurePixels(settings.CaptureRegion);
        for (int r = 0; r < kRegionCount; ++r) {
            const auto i = static_cast<std::size_t>(r);
            const CaptureRegionRect& rect = settings.CaptureRegion[i];
            FillPixelLevels(levels, r, rect, bitmap);
            std::string columns;
            BinarizeRegion(levels, r, rect, settings.BinaryThreshold[i], settings.BinaryMask[i], columns);
            ASSERT_EQ(columns, literalColumns(levels, r, rect, settings.BinaryThreshold[i], settings.BinaryMask[i]))
                << "round " << round << " region " << r;

            const RecognitionResult result =
                RecognizeNumber(r, recognizerInput(settings, r, columns), true);
            const auto [best, digit] = literalFirstSearch(columns, settings.PatternStrings[i]);
            if (best == columns.size()) {
                EXPECT_EQ(result.caption, "NotFind");
            } else if (!result.digits.empty()) {
                EXPECT_EQ(result.digits.front(), '0' + digit) << columns;
                ++numbersRead;
            }
        }
    }
    // Clean default rounds must mostly read; a quiet failure of every reading is a fault too.
    EXPECT_GT(numbersRead, 100);
}

} // namespace
} // namespace tvx
