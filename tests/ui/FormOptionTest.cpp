// What only the Qt options window has; the rest is tests/windows/OptionsWindowTest.cpp.
#include "FormOption.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "support/GameScreen.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"

#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace tvx::ui {
namespace {

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
