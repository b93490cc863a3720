// What the core asks of the machine here: CP932 text as Windows converts it, and beeps.
#include "SoundFactory.h"
#include "TextCodecFactory.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(TextCodec, UnmappableCharactersBecomeQuestionMarksAndBadBytesAreRefused)
{
    const auto codec = platform::makeTextCodec();
    // Wave dash and minus are the code points Windows gives 0x8160 and 0x817C.
    EXPECT_EQ(codec->toCp932("～－ｱｍ"), "\x81\x60\x81\x7C\xB1\x82\x8D");
    EXPECT_EQ(codec->fromCp932("\x81\x60\x81\x7C\xB1\x82\x8D"), "～－ｱｍ");
    EXPECT_EQ(codec->toCp932("a한b😀c"), "a?b?c");
    EXPECT_EQ(codec->toCp932("a\xFF" "b"), "a?b");
    EXPECT_EQ(codec->fromCp932("\x85\x40"), std::nullopt); // unassigned row
    EXPECT_EQ(codec->fromCp932("ab\x82"), std::nullopt);   // lead byte cut off
    // Longer than one conversion buffer.
    const std::string long_(1000, 'x');
    EXPECT_EQ(codec->fromCp932(codec->toCp932(long_ + "給与" + long_)), long_ + "給与" + long_);
}

// Every capture beep choice plays, or stays silent without a sound device or display (as on CI), and returns.
TEST(SoundTest, EveryBeepChoiceReturnsWithOrWithoutADevice)
{
    const auto sound = platform::makeSound();
    ASSERT_NE(sound, nullptr);
    sound->systemBeep();
    for (const auto& [hz, ms] : {std::pair{500, 75}, {2000, 75}, {500, 200}, {2000, 200}, {0, 75}, {500, -1}})
        sound->beep(hz, ms);
}

} // namespace
} // namespace tvx
