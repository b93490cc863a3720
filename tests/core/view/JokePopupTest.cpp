#include "view/JokePopup.h"

#include <gtest/gtest.h>


namespace tvx {
namespace {

TEST(JokePopupTest, OnlyAnAttemptOnTheLastLineLetsGoAndReopeningStartsOver)
{
    const auto script = JokePopup::script();
    JokePopup popup;
    EXPECT_TRUE(popup.attemptClose()) << "a popup that is not open holds nothing";

    popup.open();
    EXPECT_FALSE(popup.attemptClose());
    EXPECT_FALSE(popup.attemptClose());
    popup.open();
    for (std::size_t line = 0; line < script.size(); ++line) {
        ASSERT_TRUE(popup.isOpen()) << line;
        EXPECT_EQ(popup.line(), line);
        EXPECT_EQ(&popup.current(), &script[line]);
        EXPECT_EQ(popup.attemptClose(), line + 1 == script.size()) << line;
    }
    EXPECT_FALSE(popup.isOpen());
    EXPECT_TRUE(popup.attemptClose()) << "a late attempt on the closed popup";

    popup.open();
    EXPECT_TRUE(popup.isOpen());
    EXPECT_EQ(&popup.current(), &script.front());
}

} // namespace
} // namespace tvx
