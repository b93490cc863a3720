#include "SoundFactory.h"
#include "Win32Ports.h"

#include <windows.h>

namespace tvx::platform {

namespace {

class Win32Sound final : public Sound {
public:
    void systemBeep() override { MessageBeep(MB_OK); }
    void beep(std::int32_t frequencyHz, std::int32_t durationMs) override
    {
        if (frequencyHz <= 0 || durationMs <= 0)
            return;
        Beep(static_cast<DWORD>(frequencyHz), static_cast<DWORD>(durationMs));
    }
};

} // namespace

std::unique_ptr<Sound> makeWin32Sound()
{
    return std::make_unique<Win32Sound>();
}

std::unique_ptr<Sound> makeSound()
{
    return makeWin32Sound();
}

} // namespace tvx::platform
