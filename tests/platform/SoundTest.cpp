#include "SoundFactory.h"

#include <gtest/gtest.h>

namespace tvx::platform {
namespace {

// Every capture beep choice plays, or stays silent where there is no sound device or no
// display (as on CI), and returns.
TEST(SoundTest, EveryBeepChoiceReturnsWithOrWithoutADevice)
{
    const auto sound = makeSound();
    ASSERT_NE(sound, nullptr);
    sound->systemBeep();
    for (const auto& [hz, ms] : {std::pair{500, 75}, {2000, 75}, {500, 200}, {2000, 200}, {0, 75}, {500, -1}})
        sound->beep(hz, ms);
}

} // namespace
} // namespace tvx::platform
