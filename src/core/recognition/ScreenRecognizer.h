#pragma once

#include "config/Settings.h"
#include "base/Currency.h"
#include "recognition/CaptureFile.h"
#include "recognition/InkGrid.h"
#include "recognition/PixelLevels.h"
#include "recognition/Recognizer.h"

#include <array>
#include <cstdint>
#include <string>

namespace tvx {

// The pixel levels and column strings of the three regions, with the steps that turn a
// captured bitmap into recognised numbers: fill, binarise, recognise. A region read by
// shape is binarised whole instead of into column groups.
class ScreenRecognizer {
public:
    explicit ScreenRecognizer(const Settings& settings) : m_settings(&settings) { SecurePixels(); }

    void setSettings(const Settings& settings) { m_settings = &settings; }
    // Sizes the pixel levels to the present regions (all zero).
    void SecurePixels() { m_levels.SecurePixels(m_settings->CaptureRegion); }

    // May raise RuntimeError(SubscriptOutOfRange) for a region outside the bitmap.
    void fill(int region, const CaptureBitmap& bitmap);
    void binarize(int region);
    RecognitionResult recognize(int region, bool trace = false, CaptionSink* progress = nullptr) const;

    const std::string& ColumnString(int region) const { return m_columns[static_cast<std::size_t>(region)]; }
    const PixelLevels& levels() const { return m_levels; }

private:
    const Settings* m_settings;
    PixelLevels m_levels;
    std::array<std::string, kRegionCount> m_columns;
    std::array<InkGrid, kRegionCount> m_grids; // regions read by shape
};

// Recognised texts as numbers: an empty text is -1; a text too long for its type raises
// RuntimeError(Overflow).
std::int32_t levelFromText(const std::string& digits);
Currency amountFromText(const std::string& digits);

} // namespace tvx
