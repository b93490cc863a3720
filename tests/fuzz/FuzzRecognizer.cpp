// The recogniser with settings and a small picture of any value from the input: settings only
// the file could hold are checked there; here nothing may crash or run unbounded.
#include "FuzzSupport.h"

namespace {

using namespace tvx;

Settings fuzzedSettings(FuzzedDataProvider& in)
{
    Settings s = defaultSettings("");
    for (std::size_t r = 0; r < kRegionCount; ++r) {
        // Mostly near the picture, sometimes anything at all.
        const auto near = [&in](std::int32_t high) {
            return in.ConsumeBool() ? in.ConsumeIntegral<std::int32_t>() : in.ConsumeIntegralInRange(-2, high);
        };
        s.CaptureRegion[r] = {near(70), near(70), near(80), near(40)};
        s.BinaryThreshold[r] = near(300);
        s.BinaryMask[r] = near(300);
        s.ReferenceSize[r].Width = near(12);
        for (std::string& pattern : s.PatternStrings[r])
            if (in.ConsumeBool())
                pattern = in.ConsumeRandomLengthString(64);
        // Read by shape, with shapes, gaps, tolerance and pitch of any value.
        if (in.ConsumeBool()) {
            RegionReading& reading = s.Reading[r];
            reading.Mode = ReadingMode::Shapes;
            reading.EndGap = near(20);
            reading.Tolerance = near(1000);
            reading.Pitch = near(2000);
            if (auto shapes = parseShapes(in.ConsumeRandomLengthString(256)))
                reading.Shapes = *std::move(shapes);
        }
    }
    return s;
}

CaptureBitmap fuzzedPicture(FuzzedDataProvider& in)
{
    Frame frame(in.ConsumeIntegralInRange(1, 64), in.ConsumeIntegralInRange(1, 64));
    for (std::uint8_t& byte : frame.bytes())
        byte = in.ConsumeIntegral<std::uint8_t>();
    return toCaptureBitmap(frame);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider in(data, size);
    const Settings settings = fuzzedSettings(in);
    const CaptureBitmap picture = fuzzedPicture(in);
    try {
        ScreenRecognizer recognizer(settings);
        fuzz::readEveryRegion(recognizer, picture);
    } catch (const RuntimeError&) {
        // Pixel buffers larger than a screen are refused.
    }
    return 0;
}
