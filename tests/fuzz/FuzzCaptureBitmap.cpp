// Any bytes as a capture file: parsed, then the three default regions filled, binarised
// and recognised as a reading would.
#include "FuzzSupport.h"
#include "recognition/CaptureFile.h"

#include <cmath>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tvx;
    // Headers that promise far more pixels (width, height and depth as the information header gives them) than the
    // input holds only make the reader fill memory (up to its limit); they would slow every run to a few a second.
    const auto i32 = [data](std::size_t at) {
        return static_cast<std::int32_t>(data[at] | (data[at + 1] << 8) | (data[at + 2] << 16) |
                                         (static_cast<std::uint32_t>(data[at + 3]) << 24));
    };
    if (size >= 30) {
        const double width = i32(18);
        const double height = i32(22);
        if ((data[28] | (data[29] << 8)) * width / 8 * std::abs(height) > 4e6)
            return 0;
    }
    CaptureBitmap bitmap;
    if (parseCaptureBitmap(std::span<const std::uint8_t>(data, size), bitmap) != CaptureLoadResult::Read)
        return 0;
    static const Settings settings = defaultSettings("");
    ScreenRecognizer recognizer(settings);
    fuzz::readEveryRegion(recognizer, bitmap);
    (void)toFrame(bitmap);
    return 0;
}
