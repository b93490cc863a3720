// The number dialog and the prompter's questions in both front ends: keys and clicks reach
// the core's NumberInput, and the dialog shows what it answers.
#include "support/WindowDriver.h"

#include <gtest/gtest.h>

namespace tvx::test {
namespace {

using Key = WindowDriver::Key;
using Button = Desktop::Button;

class NumberDialogTest : public testing::Test {
protected:
    WindowDriver& dialog() { return host->numberDialog(); }

    // Asks with these limits while the steps play, from the moment the field has the focus.
    double ask(std::deque<PlayerStep> steps, const char* limitA = "300", const char* limitB = "1",
               double proposed = 10, const char* step = "1", const char* title = "設定値入力")
    {
        steps.push_front([this] { return dialog().isOpen() && dialog().focused("txtInput"); });
        double answer = 0;
        play(std::move(steps), [&] {
            answer = host->prompter().askNumber(limitA, limitB, proposed, step, "値を入力してください", title);
        });
        return answer;
    }

    std::unique_ptr<Desktop> host = makeDesktop();
};

TEST_F(NumberDialogTest, OpensOverTheAskerWithOrderedLimitsAndTheProposedValueSelected)
{
    struct Case { const char* a; const char* b; const char* title; std::string texts; };
    const Case cases[] = {
        {"300", "1", "設定値入力", "設定値入力|値を入力してください|最大：|300|最小：|1|10|決 定|キャンセル|"},
        {"5", "1200", "", "パラメータ入力|値を入力してください|最大：|1200|最小：|5|10|決 定|キャンセル|"},
    };
    for (const Case& c : cases) {
        std::string texts;
        WindowDriver::Box box;
        bool onEnterButton = false;
        const double answer = ask(
            {[&] {
                 texts = dialog().title() + "|";
                 for (const char* name :
                      {"lblmsg", "lblmax", "lblmaxv", "lblmin", "lblminV", "txtInput", "cmdEnter", "cmdCancel"})
                     texts += dialog().text(name) + "|";
                 box = dialog().frame();
                 dialog().type("txtInput", "25"); // replaces the selected proposal
                 dialog().press(Key::Enter);
                 return true;
             },
             [&] {
                 onEnterButton = dialog().focused("cmdEnter");
                 dialog().press(Key::Enter);
                 return true;
             }},
            c.a, c.b, 10, "1", c.title);
        EXPECT_EQ(texts, c.texts) << c.title;
        EXPECT_TRUE(onEnterButton) << "the first Enter moves to 決定";
        EXPECT_EQ(answer, 25) << c.title;
        // Over the window that asked, not in the middle of the screen.
        EXPECT_NEAR(box.centreX(), host->owner().centreX(), 4);
        EXPECT_NEAR(box.centreY(), host->owner().centreY(), 4);
    }
}

TEST_F(NumberDialogTest, ARefusedValueIsExplainedAndTheDialogStays)
{
    struct Case {
        const char* text;
        const char* button;
        const char* message;
        const char* boxTitle;
        bool backInField; // a value out of the limits puts the focus back for the next try
    };
    const Case cases[] = {
        {"500", "cmdEnter", "入力上限を超えています", "入力エラー", true},
        {"0", "cmdEnter", "入力下限を超えています", "入力エラー", true},
        {"12３", "cmdEnter", "無効文字が含まれています。", "入力チェック", false},
        // The stepping buttons refuse the same characters and leave the text.
        {"1x", "cmdInc", "無効文字が含まれています。", "入力チェック", false},
    };
    for (const Case& c : cases) {
        std::optional<std::string> message;
        std::string left;
        const double answer = ask({[&] {
                                       dialog().setText("txtInput", c.text);
                                       dialog().click(c.button);
                                       return true;
                                   },
                                   [&] { return (message = host->answerBox(c.boxTitle, Button::Ok)).has_value(); },
                                   [&] {
                                       // Waiting in vain for the focus times the script out.
                                       if (!dialog().isOpen() || (c.backInField && !dialog().focused("txtInput")))
                                           return false;
                                       left = dialog().text("txtInput");
                                       dialog().setText("txtInput", "42");
                                       dialog().click("cmdEnter");
                                       return true;
                                   }});
        EXPECT_EQ(message.value_or(""), c.message) << c.text;
        EXPECT_EQ(left, c.text);
        EXPECT_EQ(answer, 42) << c.text;
    }
}

// Typed through the key filter, then stepped within the limits given in either order.
TEST_F(NumberDialogTest, TheKeyFilterLetsNumbersThroughAndSteppingStaysWithinTheLimits)
{
    struct Case {
        const char* a;
        const char* b;
        const char* step;
        const char* typed;
        const char* button;
        int clicks;
        const char* shown;
        double answer;
    };
    const Case cases[] = {
        {"0", "99999", "1", "1a2E,+3 x", "", 0, "12E3", 12000},
        {"0", "99999", "1", "12E3\b-1", "", 0, "12E-1", 1.2}, // Backspace erases, it is not filtered out
        {"12", "5", "1", "11", "cmdInc", 3, "12", 12},
        {"12", "5", "1", "11", "cmdDec", 1, "10", 10},
        {"1200", "5", "-5", "1198", "cmdInc", 1, "1200", 1200},
        {"5", "1200", "10", "7", "cmdDec", 1, "5", 5},
    };
    for (const Case& c : cases) {
        std::string shown;
        const double answer = ask({act([&] {
                                       dialog().type("txtInput", c.typed);
                                       for (int i = 0; i < c.clicks; ++i)
                                           dialog().click(c.button);
                                   }),
                                   act([&] {
                                       shown = dialog().text("txtInput");
                                       dialog().click("cmdEnter");
                                   })},
                                  c.a, c.b, 0, c.step);
        EXPECT_EQ(shown, c.shown) << c.a << " " << c.b << " " << c.typed << " " << c.button;
        EXPECT_DOUBLE_EQ(answer, c.answer) << c.typed;
    }
}

TEST_F(NumberDialogTest, CancelCloseEscapeAndEnterOnCancelAnswerTheSentinel)
{
    const std::function<void(WindowDriver&)> ways[] = {
        [](WindowDriver& d) { d.click("cmdCancel"); },
        [](WindowDriver& d) { d.close(); },
        [](WindowDriver& d) { d.press(Key::Escape); },
        [](WindowDriver& d) {
            d.focus("cmdCancel");
            d.press(Key::Enter);
        },
    };
    for (const auto& leave : ways) {
        EXPECT_EQ(ask({[&] {
                  leave(dialog());
                  return true;
              }}),
                  Prompter::kCancelled);
        EXPECT_FALSE(dialog().isOpen());
    }
}

TEST_F(NumberDialogTest, QuestionsShowTheirTitleAndTextAndAnswerByTheButton)
{
    struct Case { Button button; bool yesNo; bool expected; };
    const Case cases[] = {
        {Button::Yes, true, true}, {Button::No, true, false}, {Button::Ok, false, true}, {Button::Cancel, false, false}};
    for (const Case& c : cases) {
        std::optional<std::string> text;
        bool answer = !c.expected;
        play({[&] { return (text = host->answerBox("検査領域追従選択", c.button)).has_value(); }}, [&] {
            Prompter& prompter = host->prompter();
            answer = c.yesNo ? prompter.askYesNo("一行目\r\n二行目", "検査領域追従選択")
                             : prompter.askOkCancel("一行目\r\n二行目", "検査領域追従選択");
        });
        EXPECT_EQ(answer, c.expected) << static_cast<int>(c.button);
        EXPECT_EQ(text.value_or(""), "一行目\n二行目") << static_cast<int>(c.button);
    }
}

} // namespace
} // namespace tvx::test
