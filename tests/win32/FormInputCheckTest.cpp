#include "DialogScript.h"
#include "FormInputCheck.h"
#include "Win32Prompter.h"

#include <gtest/gtest.h>

namespace tvx::win32ui {
namespace {

using test::DialogScript;
using test::pressKey;
using test::shownWindow;
using test::staticTexts;
using test::textOf;
using test::typeInto;

constexpr wchar_t kTitle[] = L"設定値入力";

// A plain top-level window that asks the questions, away from the screen's centre.
class OwnerWindow {
public:
    OwnerWindow()
    {
        m_window = CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 40, 420, 300, nullptr,
                                   nullptr, GetModuleHandleW(nullptr), nullptr);
        SetForegroundWindow(m_window);
        SetActiveWindow(m_window);
        test::pump(50);
    }
    ~OwnerWindow() { DestroyWindow(m_window); }
    HWND handle() const { return m_window; }

private:
    HWND m_window;
};

HWND control(int id)
{
    return GetDlgItem(shownWindow(kTitle), id);
}

class FormInputCheckTest : public testing::Test {
protected:
    double ask(std::deque<std::function<bool()>> steps, const char* lower = "1", const char* upper = "300",
               double proposed = 10)
    {
        DialogScript script(std::move(steps));
        const double answer = m_prompter.askNumber(upper, lower, proposed, "1", "値を入力してください", "設定値入力");
        EXPECT_TRUE(script.finished()) << "the dialog closed before the script ended";
        EXPECT_FALSE(script.timedOut());
        return answer;
    }

    OwnerWindow m_owner;
    Win32Prompter m_prompter{m_owner.handle()};
};

bool dialogShown()
{
    return shownWindow(kTitle) != nullptr && GetFocus() == control(FormInputCheck::txtInput);
}

TEST_F(FormInputCheckTest, TypingANumberAndPressingEnterTwiceReturnsIt)
{
    RECT dialog{};
    std::wstring texts;
    DWORD selection = 0;
    bool onEnterButton = false;
    const double answer = ask({
        dialogShown,
        [&] {
            GetWindowRect(shownWindow(kTitle), &dialog);
            for (const int id : {FormInputCheck::lblmsg, FormInputCheck::lblmax, FormInputCheck::lblmaxv,
                                 FormInputCheck::lblmin, FormInputCheck::lblminV, FormInputCheck::txtInput,
                                 FormInputCheck::cmdEnter, FormInputCheck::cmdCancel})
                texts += textOf(control(id)) + L"|";
            selection = static_cast<DWORD>(SendMessageW(control(FormInputCheck::txtInput), EM_GETSEL, 0, 0));
            typeInto(control(FormInputCheck::txtInput), L"2x5,0");
            pressKey(VK_RETURN);
            return true;
        },
        [&] {
            onEnterButton = GetFocus() == control(FormInputCheck::cmdEnter);
            pressKey(VK_RETURN);
            return true;
        },
    });
    EXPECT_EQ(answer, 250);
    EXPECT_TRUE(onEnterButton) << "the first Enter moves to 決定";
    EXPECT_EQ(texts, L"値を入力してください|最大：|300|最小：|1|10|決 定|キャンセル|");
    EXPECT_EQ(selection, MAKELONG(0, 2)) << "the proposed value is selected";
    // Over the window that asked, not in the middle of the screen.
    RECT owner{};
    GetWindowRect(m_owner.handle(), &owner);
    EXPECT_NEAR((dialog.left + dialog.right) / 2, (owner.left + owner.right) / 2, 2);
    EXPECT_NEAR((dialog.top + dialog.bottom) / 2, (owner.top + owner.bottom) / 2, 2);
}

TEST_F(FormInputCheckTest, AValueOutsideTheLimitsIsRefusedWithTheMessageAndTheDialogStays)
{
    std::wstring message;
    bool backInField = false;
    const double answer = ask({
        dialogShown,
        [] {
            typeInto(control(FormInputCheck::txtInput), L"500");
            // Posted: the message box's own loop must run outside this step.
            PostMessageW(control(FormInputCheck::cmdEnter), BM_CLICK, 0, 0);
            return true;
        },
        [&] {
            const HWND box = shownWindow(L"入力エラー");
            if (!box)
                return false;
            message = staticTexts(box);
            PostMessageW(box, WM_COMMAND, IDOK, 0);
            return true;
        },
        [&] {
            if (shownWindow(L"入力エラー") || !shownWindow(kTitle))
                return false;
            backInField = GetFocus() == control(FormInputCheck::txtInput);
            typeInto(control(FormInputCheck::txtInput), L"42");
            pressKey(VK_RETURN);
            return true;
        },
        [] {
            pressKey(VK_RETURN);
            return true;
        },
    });
    EXPECT_EQ(message, L"入力上限を超えています\n");
    EXPECT_TRUE(backInField);
    EXPECT_EQ(answer, 42);
}

TEST_F(FormInputCheckTest, StepButtonsStayWithinTheLimits)
{
    std::wstring afterSteps;
    const double answer = ask(
        {
            dialogShown,
            [&] {
                for (int i = 0; i < 3; ++i)
                    SendMessageW(control(FormInputCheck::cmdInc), BM_CLICK, 0, 0);
                afterSteps = textOf(control(FormInputCheck::txtInput));
                SendMessageW(control(FormInputCheck::cmdDec), BM_CLICK, 0, 0);
                SendMessageW(control(FormInputCheck::cmdEnter), BM_CLICK, 0, 0);
                return true;
            },
        },
        "5", "12", 11);
    EXPECT_EQ(afterSteps, L"12");
    EXPECT_EQ(answer, 11);
}

TEST_F(FormInputCheckTest, EscapeCancelAndTheCloseBoxAnswerTheSentinel)
{
    const std::function<void()> ways[] = {
        [] { pressKey(VK_ESCAPE); },
        [] { SendMessageW(control(FormInputCheck::cmdCancel), BM_CLICK, 0, 0); },
        [] { PostMessageW(shownWindow(kTitle), WM_CLOSE, 0, 0); },
    };
    for (const auto& leave : ways)
        EXPECT_EQ(ask({dialogShown,
                       [&] {
                           leave();
                           return true;
                       }}),
                  19999);
}

TEST(Win32PrompterTest, QuestionsShowTheirTitleAndTextAndAnswerByTheButton)
{
    Win32Prompter prompter;
    struct Case {
        UINT button;
        bool yesNo;
        bool expected;
    };
    const Case cases[] = {{IDYES, true, true}, {IDNO, true, false}, {IDOK, false, true}, {IDCANCEL, false, false}};
    for (const Case& c : cases) {
        std::wstring text;
        DialogScript script({[&] {
            const HWND box = shownWindow(L"検査領域追従選択");
            if (!box)
                return false;
            text = staticTexts(box);
            PostMessageW(box, WM_COMMAND, c.button, 0);
            return true;
        }});
        const std::string question = "一行目\r\n二行目";
        const bool answer = c.yesNo ? prompter.askYesNo(question, "検査領域追従選択")
                                    : prompter.askOkCancel(question, "検査領域追従選択");
        EXPECT_EQ(answer, c.expected) << c.button;
        EXPECT_NE(text.find(L"一行目\r\n二行目"), std::wstring::npos) << c.button;
    }
}

} // namespace
} // namespace tvx::win32ui
