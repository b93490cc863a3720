// What only the Qt number dialog has; the rest is tests/windows/NumberDialogTest.cpp.
#include "FormInputCheck.h"
#include "support/WindowDriver.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

namespace tvx::ui {
namespace {

// Every question reuses one dialog; Qt tells the keypad's Enter from Return, and it must
// press the focused button too.
TEST(QtPrompterNumber, AsksThroughOneReusedDialogAndTheKeypadEnterPressesTheFocusedButton)
{
    const std::unique_ptr<test::Desktop> desktop = test::makeDesktop();
    test::WindowDriver& dialog = desktop->numberDialog();
    std::vector<const QWidget*> seen;
    for (const bool keypad : {true, false}) {
        double answer = 0;
        desktop->play({[&] {
                           QWidget* shown = QApplication::activeModalWidget();
                           if (!dialog.isOpen() || shown == nullptr)
                               return false;
                           seen.push_back(shown);
                           dialog.setText("txtInput", "250");
                           if (keypad)
                               QTest::keyClick(shown->findChild<QWidget*>(QStringLiteral("cmdCancel")), Qt::Key_Enter);
                           else
                               dialog.click("cmdEnter");
                           return true;
                       }},
                      [&] { answer = desktop->prompter().askNumber("1", "300", 10, "1", "prompt", "title"); });
        EXPECT_EQ(answer, keypad ? FormInputCheck::kCancelled : 250);
    }
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0], seen[1]);
}

} // namespace
} // namespace tvx::ui
