#include "view/JokePopup.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

// The script line by line is played through the real windows (tests/windows/MainWindowTest);
// here what they never reach: a popup not open, and one opened again part way.
TEST(JokePopupTest, APopupNotOpenHoldsNothingAndReopeningStartsOver)
{
    JokePopup popup;
    EXPECT_TRUE(popup.attemptClose());
    popup.open();
    EXPECT_FALSE(popup.attemptClose());
    EXPECT_FALSE(popup.attemptClose());
    popup.open();
    EXPECT_EQ(popup.line(), 0u);
    EXPECT_EQ(&popup.current(), &JokePopup::script().front());
    for (std::size_t line = 0; line < JokePopup::script().size(); ++line)
        popup.attemptClose();
    EXPECT_FALSE(popup.isOpen());
    EXPECT_TRUE(popup.attemptClose()) << "a late attempt on the closed popup";
}

} // namespace
} // namespace tvx
