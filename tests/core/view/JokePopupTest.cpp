#include "view/JokePopup.h"

#include <gtest/gtest.h>

#include <set>

namespace tvx {
namespace {

TEST(JokePopupTest, TheScriptIsLongAndEveryAttemptChangesWhatIsShown)
{
    const auto script = JokePopup::script();
    ASSERT_GE(script.size(), 15u);
    std::set<std::string_view> messages;
    for (const JokeLine& line : script) {
        EXPECT_FALSE(line.caption.empty() || line.message.empty() || line.button.empty()) << line.message;
        EXPECT_TRUE(messages.insert(line.message).second) << "said twice: " << line.message;
    }
}

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
