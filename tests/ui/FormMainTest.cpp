#include "FormMain.h"

#include "config/Settings.h"

#include <QPlainTextEdit>

#include <gtest/gtest.h>

TEST(FormMain, ShowsTheProgramTitleAndAnEmptyLogBox)
{
    tvx::ui::FormMain window(tvx::programTitle("MapleStory"));
    window.show();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tallivex  for MapleStory    Ver.2.20"));
    ASSERT_NE(window.findChild<QPlainTextEdit*>(QStringLiteral("txtLog")), nullptr);
    EXPECT_TRUE(window.txtLog()->toPlainText().isEmpty());
}
