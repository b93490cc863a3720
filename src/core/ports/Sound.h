#pragma once

#include <cstdint>

namespace tvx {

// Port: the two sounds the meter makes.
class Sound {
public:
    virtual ~Sound() = default;
    virtual void systemBeep() = 0;
    virtual void beep(std::int32_t frequencyHz, std::int32_t durationMs) = 0;
};

} // namespace tvx
