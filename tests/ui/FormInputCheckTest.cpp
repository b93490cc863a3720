// What only the Qt number dialog has; the rest is tests/windows/NumberDialogTest.cpp.
#include "FormInputCheck.h"
#include "QtPrompter.h"
#include "QtWindowDriver.h"

#include <QApplication>

#include <gtest/gtest.h>

namespace tvx::ui {
namespace {

TEST(QtPrompterNumber, AsksThroughOneReusedDialog)
{
    QWidget owner;
    owner.show();
    QtPrompter prompter(&owner);
    std::vector<const FormInputCheck*> seen;
    for (const char* typed : {"250", "3"}) {
        test::playWhile({[&] {
                             auto* dialog = qobject_cast<FormInputCheck*>(QApplication::activeModalWidget());
                             if (dialog == nullptr)
                                 return false;
                             seen.push_back(dialog);
                             test::QtWindowDriver driver([dialog] { return dialog; });
                             driver.setText("txtInput", typed);
                             driver.click("cmdEnter");
                             return true;
                         }},
                        [&] { EXPECT_EQ(prompter.askNumber("1", "300", 10, "1", "prompt", "title"), std::stod(typed)); });
    }
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0], seen[1]);
}

// Qt tells the keypad's Enter from Return, and Backspace must erase, not be filtered out.
TEST(QtPrompterNumber, BackspaceErasesAndTheKeypadEnterPressesTheFocusedButton)
{
    QWidget owner;
    owner.show();
    QtPrompter prompter(&owner);
    std::string shown;
    test::playWhile({[&] {
                         auto* dialog = qobject_cast<FormInputCheck*>(QApplication::activeModalWidget());
                         if (dialog == nullptr)
                             return false;
                         test::QtWindowDriver driver([dialog] { return dialog; });
                         driver.type("txtInput", "12E3");
                         QTest::keyClick(driver.control("txtInput"), Qt::Key_Backspace);
                         driver.type("txtInput", "-1");
                         shown = driver.text("txtInput");
                         QTest::keyClick(driver.control("cmdCancel"), Qt::Key_Enter);
                         return true;
                     }},
                    [&] { EXPECT_EQ(prompter.askNumber("0", "99999", 10, "1", "prompt", "title"), FormInputCheck::kCancelled); });
    EXPECT_EQ(shown, "12E-1");
}

} // namespace
} // namespace tvx::ui
