#include "view/NumberInput.h"
#include "view/Placement.h"

#include <gtest/gtest.h>


namespace tvx {
namespace {

using Warning = NumberInput::Warning;

NumberInput opened(const char* a, const char* b, double proposed = 0, const char* step = "1", const char* title = "")
{
    NumberInput input;
    input.open(a, b, proposed, step, "値を入力してください", title);
    return input;
}

TEST(NumberInputTest, OpensWithOrderedLimitsTheProposedValueAndTheDefaultTitle)
{
    const NumberInput input = opened("1200", "5", 100, "-5");
    EXPECT_EQ(input.lowerText(), "5");
    EXPECT_EQ(input.upperText(), "1200");
    EXPECT_EQ(input.step(), 5);
    EXPECT_EQ(input.text(), "100");
    EXPECT_EQ(input.prompt(), "値を入力してください");
    EXPECT_EQ(input.title(), "パラメータ入力");
    EXPECT_FALSE(input.done());
    EXPECT_EQ(input.result(), 19999);
    EXPECT_EQ(opened("5", "1200", 1, "1", "設定値入力").title(), "設定値入力");
    EXPECT_EQ(opened("0", "1", 0.25).text(), "0.25");
}

TEST(NumberInputTest, SteppingStaysWithinTheLimitsGivenInEitherOrder)
{
    struct Case { const char* a; const char* b; const char* step; const char* text; bool up; const char* expected; };
    const Case cases[] = {
        {"5", "1200", "1", "100", true, "101"},   {"1200", "5", "-5", "1198", true, "1200"},
        {"1200", "5", "1", "1200", true, "1200"}, {"5", "1200", "10", "7", false, "5"},
        {"-1", "255", "1", "0", false, "-1"},     {"0", "10", "0.5", "1E0", true, "1.5"},
        {"0", "10", "1", "", true, "1"},          {"0", "10", "1", " 4 ", false, "3"},
    };
    for (const Case& c : cases) {
        NumberInput input = opened(c.a, c.b, 0, c.step);
        input.setText(c.text);
        EXPECT_EQ(c.up ? input.increment() : input.decrement(), std::nullopt) << c.text;
        EXPECT_EQ(input.text(), c.expected) << c.a << " " << c.b << " " << c.text << (c.up ? " up" : " down");
        EXPECT_FALSE(input.done());
    }
}

TEST(NumberInputTest, ConfirmationChecksCharactersThenTheLimits)
{
    const Warning invalid{"無効文字が含まれています。", "入力チェック", false};
    const Warning below{"入力下限を超えています", "入力エラー", true};
    const Warning above{"入力上限を超えています", "入力エラー", true};
    struct Case { const char* text; std::optional<Warning> warning; double result; };
    const Case cases[] = {
        {"1E3", std::nullopt, 1000}, {" 7 ", std::nullopt, 7}, {"5", std::nullopt, 5}, {"1200", std::nullopt, 1200},
        {"4", below, 19999},         {"1201", above, 19999},   {"12３", invalid, 19999}, {"1+2", invalid, 19999},
        {"", below, 19999},          {"-", below, 19999},
    };
    for (const Case& c : cases) {
        NumberInput input = opened("1200", "5", 100);
        input.setText(c.text);
        EXPECT_EQ(input.confirm(), c.warning) << c.text;
        EXPECT_EQ(input.done(), !c.warning) << c.text;
        EXPECT_EQ(input.result(), c.result) << c.text;
    }
    // The stepping buttons refuse the same characters and leave the text alone.
    NumberInput input = opened("0", "10", 1);
    input.setText("1x");
    EXPECT_EQ(input.increment(), invalid);
    EXPECT_EQ(input.decrement(), invalid);
    EXPECT_EQ(input.text(), "1x");
}

TEST(NumberInputTest, CancelAnswersTheSentinelEvenAfterARefusedConfirmation)
{
    NumberInput input = opened("0", "100", 42);
    input.setText("101");
    EXPECT_NE(input.confirm(), std::nullopt);
    input.cancel();
    EXPECT_TRUE(input.done());
    EXPECT_EQ(input.result(), NumberInput::kCancelled);
    // The sentinel itself reads as a cancel: the caller cannot tell them apart.
    input = opened("0", "99999", 0);
    input.setText("19999");
    EXPECT_EQ(input.confirm(), std::nullopt);
    EXPECT_EQ(input.result(), NumberInput::kCancelled);
}

TEST(NumberInputTest, TheKeyFilterAndWhatEnterDoesWhereTheFocusIs)
{
    using Key = NumberInput::Key;
    const std::pair<char32_t, Key> keys[] = {
        {U'0', Key::Pass},  {U'9', Key::Pass},  {U'-', Key::Pass},       {U'.', Key::Pass},
        {U'E', Key::Pass},  {U'e', Key::Pass},  {U'\b', Key::Pass},      {U'\x7F', Key::Pass},
        {U'+', Key::Drop},  {U',', Key::Drop},  {U'a', Key::Drop},       {U' ', Key::Drop},
        {U'１', Key::Drop}, {U'\x16', Key::Drop}, {U'\r', Key::FocusEnter}, {U'\n', Key::FocusEnter},
    };
    for (const auto& [typed, key] : keys)
        EXPECT_EQ(NumberInput::filterKey(typed), key) << static_cast<unsigned>(typed);

    using Focus = NumberInput::Focus;
    using Action = NumberInput::EnterAction;
    EXPECT_EQ(NumberInput::enterAction(Focus::Input), Action::FocusEnter);
    EXPECT_EQ(NumberInput::enterAction(Focus::StepButton), Action::FocusEnter);
    EXPECT_EQ(NumberInput::enterAction(Focus::EnterButton), Action::Confirm);
    EXPECT_EQ(NumberInput::enterAction(Focus::CancelButton), Action::Cancel);
}

TEST(NumberInputTest, NumericValueAndTheTextualCharacterCheck)
{
    const std::pair<const char*, double> values[] = {
        {"1E3", 1000}, {" 1 2 ", 12}, {"12abc", 12}, {"", 0},     {"-", 0},      {"-.5", -0.5},
        {"1.2.3", 1.2}, {"e5", 0},    {"+7", 7},     {"3e", 3},   {"2E-1", 0.2}, {"1e400", 0},
    };
    for (const auto& [text, value] : values)
        EXPECT_DOUBLE_EQ(numericValue(text), value) << text;
    // Character codes compared as texts: 500 ("500") and 5 ("5") sort between "48" and "57".
    const std::pair<std::string, bool> checks[] = {
        {" 0123456789-.Ee", true}, {"+", false},   {":", false},    {"/", false},
        {"１", false},             {"\u01F4", true}, {"\x05", true}, {"\xFF", false},
    };
    for (const auto& [text, passes] : checks)
        EXPECT_EQ(passesCharacterCheck(text), passes) << text;

    const std::pair<double, const char*> formats[] = {
        {12, "12"}, {-1, "-1"}, {1.5, "1.5"}, {1e15, "1e+15"}, {0.1, "0.1"},
    };
    for (const auto& [value, text] : formats)
        EXPECT_EQ(formatInputNumber(value), text) << value;
}

TEST(PlacementTest, ADialogOpensOverItsOwnerAndInsideTheWorkArea)
{
    const ViewRect screen{0, 0, 1366, 728};
    struct Case { std::optional<ViewRect> owner; int width; int height; ViewRect expected; };
    const Case cases[] = {
        {ViewRect{100, 100, 400, 300}, 200, 100, {200, 200, 200, 100}},
        {std::nullopt, 366, 128, {500, 300, 366, 128}},
        {ViewRect{1200, 600, 300, 300}, 200, 100, {1166, 628, 200, 100}}, // pushed back inside
        {ViewRect{-500, -400, 300, 300}, 200, 100, {0, 0, 200, 100}},
        {ViewRect{0, 0, 800, 600}, 900, 900, {0, 0, 900, 728}},            // cut to the screen
    };
    for (const Case& c : cases)
        EXPECT_EQ(placeOver(c.owner, c.width, c.height, screen), c.expected) << c.width << "x" << c.height;
}

} // namespace
} // namespace tvx
