#include "recognition/ScreenRecognizer.h"

#include "recognition/Binarize.h"
#include "recognition/ShapeReader.h"
#include "base/Errors.h"

#include <charconv>

namespace tvx {

void ScreenRecognizer::fill(int region, const CaptureBitmap& bitmap)
{
    FillPixelLevels(m_levels, region, m_settings->CaptureRegion.at(static_cast<std::size_t>(region)), bitmap);
}

void ScreenRecognizer::binarize(int region)
{
    const auto r = static_cast<std::size_t>(region);
    if (m_settings->Reading.at(r).Mode == ReadingMode::Shapes) {
        m_columns.at(r).clear();
        m_grids.at(r) = binarizeGrid(regionLevels(m_levels, region, m_settings->CaptureRegion[r]),
                                     m_settings->BinaryThreshold[r], m_settings->BinaryMask[r]);
        return;
    }
    BinarizeRegion(m_levels, region, m_settings->CaptureRegion.at(r), m_settings->BinaryThreshold.at(r),
                   m_settings->BinaryMask.at(r), m_columns.at(r));
}

RecognitionResult ScreenRecognizer::recognize(int region, bool trace, CaptionSink* progress) const
{
    const auto r = static_cast<std::size_t>(region);
    if (m_settings->Reading.at(r).Mode == ReadingMode::Shapes)
        return shapeRecognition(region, m_grids.at(r), m_settings->Reading[r], trace);
    const auto& columns = m_columns.at(r);
    return RecognizeNumber(region, recognizerInput(*m_settings, region, columns), trace, progress);
}

std::int32_t levelFromText(const std::string& digits)
{
    if (digits.empty())
        return -1;
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::result_out_of_range)
        throw RuntimeError(ErrorNumber::Overflow);
    if (error != std::errc{} || end != digits.data() + digits.size())
        throw RuntimeError(ErrorNumber::TypeMismatch);
    return value;
}

Currency amountFromText(const std::string& digits)
{
    if (digits.empty())
        return Currency::fromInt(-1);
    const auto amount = Currency::parse(digits);
    if (!amount)
        throw RuntimeError(ErrorNumber::TypeMismatch);
    return *amount;
}

} // namespace tvx
