#include "view/NumberInput.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

using Warning = NumberInput::Warning;

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
        NumberInput input;
        input.open("1200", "5", 100, "1", "値を入力してください", "");
        input.setText(c.text);
        EXPECT_EQ(input.confirm(), c.warning) << c.text;
        EXPECT_EQ(std::pair(input.done(), input.result()), std::pair(!c.warning, c.result)) << c.text;
    }
    NumberInput input;
    input.open("0", "10", 1, "1", "値を入力してください", "");
    input.setText("1x");
    EXPECT_EQ(std::tuple(input.decrement(), input.text()), std::tuple(invalid, "1x")) << "as 決定 and the other button do";
}

TEST(NumberInputTest, KeyFilterEnterNumericValueAndTheTextualCharacterCheck)
{
    using Key = NumberInput::Key;
    // Digits, E, minus, letters, commas and plus as typed into the window: NumberDialogTest.
    const std::pair<char32_t, Key> keys[] = {
        {U'.', Key::Pass},  {U'e', Key::Pass},    {U'\b', Key::Pass},       {U'\x7F', Key::Pass},      {U' ', Key::Drop},
        {U'１', Key::Drop}, {U'\x16', Key::Drop}, {U'\r', Key::FocusEnter}, {U'\n', Key::FocusEnter},
    };
    for (const auto& [typed, key] : keys)
        EXPECT_EQ(NumberInput::filterKey(typed), key) << static_cast<unsigned>(typed);

    // Enter in the field, on 決定 and on キャンセル is played through the windows (NumberDialogTest).
    EXPECT_EQ(NumberInput::enterAction(NumberInput::Focus::StepButton), NumberInput::EnterAction::FocusEnter);

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

} // namespace
} // namespace tvx
