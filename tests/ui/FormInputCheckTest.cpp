#include "FormInputCheck.h"
#include "QtPrompter.h"

#include "support/ScriptedPrompter.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

namespace tvx::ui {
namespace {

class FormInputCheckTest : public testing::Test {
protected:
    template <typename T>
    T* child(const char* name)
    {
        auto* widget = m_dialog.findChild<T*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    // Opens the dialog without its modal loop, as InputCheck would.
    void open(const char* a, const char* b, double proposed, const char* step = "1", const char* title = "")
    {
        m_dialog.prepare(QLatin1String(a), QLatin1String(b), proposed, QLatin1String(step),
                         QStringLiteral("値を入力してください"), QString::fromUtf8(title));
        m_dialog.show();
        QApplication::setActiveWindow(&m_dialog);
        m_prompter.shown.clear();
    }

    QLineEdit* input() { return child<QLineEdit>("txtInput"); }
    void click(const char* name) { QTest::mouseClick(child<QAbstractButton>(name), Qt::LeftButton); }
    std::string lastMessage() const { return m_prompter.shown.empty() ? "" : m_prompter.shown.back().text; }

    test::ScriptedPrompter m_prompter;
    FormInputCheck m_dialog{&m_prompter};
};

TEST_F(FormInputCheckTest, OpensWithOrderedLimitsTheValueSelectedAndTheDefaultTitle)
{
    open("1200", "5", 100);
    EXPECT_EQ(child<QLabel>("lblminV")->text(), QStringLiteral("5"));
    EXPECT_EQ(child<QLabel>("lblmaxv")->text(), QStringLiteral("1200"));
    EXPECT_EQ(child<QLabel>("lblmax")->text(), QStringLiteral("最大："));
    EXPECT_EQ(child<QLabel>("lblmin")->text(), QStringLiteral("最小："));
    EXPECT_EQ(child<QLabel>("lblmsg")->text(), QStringLiteral("値を入力してください"));
    EXPECT_EQ(child<QPushButton>("cmdEnter")->text(), QStringLiteral("決 定"));
    EXPECT_EQ(m_dialog.windowTitle(), QStringLiteral("パラメータ入力"));
    EXPECT_EQ(input()->text(), QStringLiteral("100"));
    EXPECT_EQ(input()->selectedText(), QStringLiteral("100"));
    open("5", "1200", 1, "1", "設定値入力");
    EXPECT_EQ(m_dialog.windowTitle(), QStringLiteral("設定値入力"));
}

TEST_F(FormInputCheckTest, TheKeyFilterLetsNumbersThroughAndTheSecondEnterConfirms)
{
    open("0", "99999", 100);
    QTest::keyClicks(input(), QStringLiteral("1a2E,+3 x"));
    EXPECT_EQ(input()->text(), QStringLiteral("12E3"));
    QTest::keyClick(input(), Qt::Key_Backspace);
    QTest::keyClicks(input(), QStringLiteral("-1"));
    EXPECT_EQ(input()->text(), QStringLiteral("12E-1"));
    QTest::keyClick(input(), Qt::Key_Return);
    EXPECT_FALSE(m_dialog.isDone());
    EXPECT_TRUE(child<QPushButton>("cmdEnter")->hasFocus());
    QTest::keyClick(child<QPushButton>("cmdEnter"), Qt::Key_Return);
    EXPECT_TRUE(m_dialog.isDone());
    EXPECT_DOUBLE_EQ(m_dialog.result(), 1.2);

    // Enter on キャンセル cancels; a refused value keeps the dialog open with the focus back.
    open("0", "10", 5);
    QTest::keyClick(child<QPushButton>("cmdCancel"), Qt::Key_Enter);
    EXPECT_TRUE(m_dialog.isDone());
    EXPECT_EQ(m_dialog.result(), 19999);
    open("0", "10", 5);
    QTest::keyClicks(input(), QStringLiteral("11"));
    QTest::keyClick(input(), Qt::Key_Return);
    QTest::keyClick(child<QPushButton>("cmdEnter"), Qt::Key_Return);
    EXPECT_EQ(lastMessage(), "入力上限を超えています");
    EXPECT_FALSE(m_dialog.isDone());
    EXPECT_TRUE(input()->hasFocus());
}

TEST_F(FormInputCheckTest, SteppingStaysWithinTheLimitsGivenInEitherOrder)
{
    struct Case {
        const char* a;
        const char* b;
        const char* step;
        const char* text;
        const char* button;
        const char* expected;
    };
    // The stepping rules are the core's; here each button reaches them.
    const Case cases[] = {
        {"1200", "5", "-5", "1198", "cmdInc", "1200"},
        {"5", "1200", "10", "7", "cmdDec", "5"},
    };
    for (const Case& c : cases) {
        open(c.a, c.b, 0, c.step);
        input()->setText(QLatin1String(c.text));
        click(c.button);
        EXPECT_EQ(input()->text(), QLatin1String(c.expected)) << c.a << " " << c.b << " " << c.text << " " << c.button;
        EXPECT_FALSE(m_dialog.isDone());
    }
}

TEST_F(FormInputCheckTest, ConfirmationChecksCharactersAndLimits)
{
    struct Case {
        const char* text;
        double result; // 19999: not confirmed
        std::string message;
        std::string title;
    };
    // The checks are the core's; here an answer, and each kind of refusal, reach the player.
    const Case cases[] = {
        {"1E3", 1000, "", ""},
        {"4", 19999, "入力下限を超えています", "入力エラー"},
        {"12３", 19999, "無効文字が含まれています。", "入力チェック"},
    };
    for (const Case& c : cases) {
        open("1200", "5", 100);
        input()->setText(QString::fromUtf8(c.text));
        click("cmdEnter");
        EXPECT_EQ(lastMessage(), c.message) << c.text;
        if (!c.message.empty()) {
            EXPECT_EQ(m_prompter.shown.back().title, c.title) << c.text;
        }
        EXPECT_EQ(m_dialog.isDone(), c.result != 19999) << c.text;
        EXPECT_EQ(m_dialog.isVisible(), c.result == 19999) << c.text;
        if (m_dialog.isDone()) {
            EXPECT_DOUBLE_EQ(m_dialog.result(), c.result) << c.text;
        }
    }
    // The stepping buttons refuse the same characters.
    open("0", "10", 1);
    input()->setText(QStringLiteral("1x"));
    click("cmdInc");
    EXPECT_EQ(lastMessage(), "無効文字が含まれています。");
    EXPECT_EQ(input()->text(), QStringLiteral("1x"));
}

TEST_F(FormInputCheckTest, CancelCloseAndEscapeAllAnswerTheSentinel)
{
    const std::function<void()> ways[] = {
        [this] { click("cmdCancel"); },
        [this] { m_dialog.close(); },
        [this] { QTest::keyClick(input(), Qt::Key_Escape); },
    };
    for (const auto& leave : ways) {
        open("0", "100", 42);
        leave();
        EXPECT_TRUE(m_dialog.isDone());
        EXPECT_FALSE(m_dialog.isVisible());
        EXPECT_EQ(m_dialog.result(), 19999);
    }
}

TEST(QtPrompterNumber, AsksThroughOneReusedModalDialogOverTheWindowThatAsked)
{
    QWidget owner;
    owner.setGeometry(40, 30, 500, 400);
    owner.show();
    QApplication::setActiveWindow(&owner);
    QtPrompter prompter;
    FormInputCheck* seen = nullptr;
    for (const char* typed : {"250", "3"}) {
        QTimer::singleShot(0, [&seen, &owner, typed] {
            auto* dialog = qobject_cast<FormInputCheck*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            if (seen) {
                EXPECT_EQ(dialog, seen);
            }
            seen = dialog;
            EXPECT_LE((dialog->frameGeometry().center() - owner.frameGeometry().center()).manhattanLength(), 4);
            dialog->findChild<QLineEdit*>(QStringLiteral("txtInput"))->setText(QLatin1String(typed));
            dialog->findChild<QPushButton*>(QStringLiteral("cmdEnter"))->click();
        });
        QApplication::setActiveWindow(&owner); // the window that asks
        EXPECT_EQ(prompter.askNumber("1", "300", 10, "1", "prompt", "title"), std::stod(typed));
    }
}

} // namespace
} // namespace tvx::ui
