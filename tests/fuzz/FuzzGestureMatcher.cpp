// Batches of mouse-button events at any times with any gesture time. The text never
// grows past its limit, holds only event letters, and a gesture clears it.
#include "FuzzSupport.h"
#include "meter/GestureMatcher.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tvx;
    FuzzedDataProvider in(data, size);
    GestureMatcher matcher;
    const std::int32_t gestureTime = in.ConsumeBool() ? in.ConsumeIntegral<std::int32_t>() : 500;
    std::uint32_t now = in.ConsumeIntegral<std::uint32_t>();
    while (in.remaining_bytes() > 0) {
        std::vector<MouseButtonEvent> batch(in.ConsumeIntegralInRange<std::size_t>(0, 12));
        for (MouseButtonEvent& event : batch) {
            event.button = in.ConsumeBool() ? MouseButton::Left : MouseButton::Right;
            event.pressed = in.ConsumeBool();
        }
        now += in.ConsumeIntegralInRange<std::uint32_t>(0, 1200);
        const Gesture gesture = matcher.feed(batch, now, gestureTime);
        const std::string& text = matcher.text();
        if (text.size() > GestureMatcher::kTextLength || text.size() % 2 != 0)
            std::abort();
        for (std::size_t i = 0; i < text.size(); i += 2)
            if ((text[i] != 'L' && text[i] != 'R') || (text[i + 1] != 'd' && text[i + 1] != 'u'))
                std::abort();
        if (gesture != Gesture::None && (!text.empty() || gestureMessage(gesture).empty()))
            std::abort();
    }
    return 0;
}
