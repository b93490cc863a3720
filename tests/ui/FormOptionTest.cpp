// What only the Qt number dialog and options window have; the rest is in tests/windows.
#include "FormInputCheck.h"
#include "FormOption.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "support/GameScreen.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"
#include "support/WindowDriver.h"

#include <QApplication>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace tvx::ui {
namespace {

// Every question reuses one dialog; Qt tells the keypad's Enter from Return, and it must press the focused button.
TEST(QtPrompterNumber, AsksThroughOneReusedDialogAndTheKeypadEnterPressesTheFocusedButton)
{
    const std::unique_ptr<test::Desktop> desktop = test::makeDesktop();
    test::WindowDriver& dialog = desktop->numberDialog();
    std::vector<const QWidget*> seen;
    for (const bool keypad : {true, false}) {
        double answer = 0;
        test::play({[&] {
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

// The pictures of the last capture widen the regions page; shown, the window takes them in
// and stays on the screen with its buttons, and no page scrolls.
TEST(FormOptionQtTest, TheFirstShowingFitsTheRegionsOnTheScreen)
{
    test::TempFolder home;
    test::ScriptedPrompter prompter;
    const auto codec = platform::makeTextCodec();
    Settings settings = defaultSettings(pathUtf8(home.path()));
    ConfigFile config(settings, home.path(), prompter, *codec);
    const CaptureBitmap capture = test::gameCapture({"137", "", ""});
    FormOption form(config, &capture);
    form.show();
    QTest::qWait(20);
    const QRect work = form.screen()->availableGeometry();
    EXPECT_TRUE(work.contains(form.geometry())) << form.geometry().width() << "x" << form.geometry().height();
    auto* tabs = form.findChild<QTabWidget*>(QStringLiteral("tabOption"));
    const auto* regions = qobject_cast<QScrollArea*>(tabs->widget(0));
    ASSERT_NE(regions, nullptr);
    if (regions->widget()->sizeHint().width() + 64 < work.width()) {
        EXPECT_FALSE(regions->horizontalScrollBar()->isVisible()) << "room enough on this screen";
    }
    for (const char* name : {"cmdSave", "cmdClose"}) {
        const QWidget* button = form.findChild<QPushButton*>(QLatin1String(name));
        EXPECT_TRUE(form.rect().contains(QRect(button->mapTo(&form, QPoint(0, 0)), button->size()))) << name;
    }
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        QTest::qWait(20);
        // Every page opens whole where the screen has room for the tallest of them.
        const auto* page = qobject_cast<QScrollArea*>(tabs->widget(tab));
        if (page->widget()->sizeHint().height() + 160 < work.height()) {
            EXPECT_FALSE(page->verticalScrollBar()->isVisible()) << "tab " << tab;
        }
    }
}

} // namespace
} // namespace tvx::ui
