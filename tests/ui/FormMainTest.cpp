#include "FormMain.h"
#include "base/Utf8Path.h"

#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/TempFolder.h"

#include <QAction>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTimer>

#include <gtest/gtest.h>

namespace tvx {
namespace {

class FormMainTest : public testing::Test {
protected:
    FormMainTest()
    {
        settings.SaveFolder = pathUtf8(temp.path());
        settings.StartDelay = 0;
        window.attach(meter);
    }

    QString labelText(const char* name) const
    {
        return window.findChild<QLabel*>(QString::fromLatin1(name))->text();
    }

    test::TempFolder temp;
    test::FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    ui::FormMain window{programTitle("MapleStory"), log, temp.path()};
    MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, window};
    Meter meter{settings, ports, log};
};

TEST_F(FormMainTest, MenusCarryTheirCaptions)
{
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tallivex  for MapleStory    Ver.2.20"));
    const std::pair<const char*, const char*> items[] = {
        {"menuPatternSave", "パターン保存"}, {"menuEnd", "終了"}, {"menuOption", "設定"}, {"menuRun", "開始"},
        {"menuStop", "停止"}, {"menuTimeLeft", "あと何時間？"}, {"menuPrtScr", "プリントスクリーン"},
        {"menuReadMe", "よんで！"}, {"menuVersion", "バージョン情報..."},
    };
    for (const auto& [name, caption] : items) {
        ASSERT_NE(window.action(name), nullptr) << name;
        EXPECT_EQ(window.action(name)->text(), QString::fromUtf8(caption)) << name;
    }
    EXPECT_FALSE(window.action("menuRun")->isEnabled());
}

TEST_F(FormMainTest, AutoStartRunsTheSessionUntilStop)
{
    machine.screens = {test::gameCapture({"50", "1000", "0"})};
    window.FormMain_Load();
    EXPECT_FALSE(window.action("menuRun")->isEnabled());
    EXPECT_EQ(window.action("menuRun")->text(), QStringLiteral("ロギング"));
    EXPECT_TRUE(window.action("menuStop")->isEnabled());
    EXPECT_TRUE(window.findChild<QTimer*>(QStringLiteral("timCaptureInterval"))->isActive());
    EXPECT_TRUE(window.txtLog()->toPlainText().startsWith(QStringLiteral(" 月日 時刻")));

    meter.cycle().runCycle();
    EXPECT_EQ(labelText("lblStartLv"), QStringLiteral("50"));
    EXPECT_EQ(labelText("lblStartExpPS"), QStringLiteral("0.14％"));

    window.action("menuStop")->trigger();
    EXPECT_TRUE(window.action("menuRun")->isEnabled());
    EXPECT_EQ(window.action("menuRun")->text(), QStringLiteral("開始"));
    EXPECT_FALSE(window.findChild<QTimer*>(QStringLiteral("timCaptureInterval"))->isActive());
    EXPECT_TRUE(window.txtLog()->toPlainText().contains(QStringLiteral("    開始  Lv:  50")));

    window.close();
    EXPECT_TRUE(window.txtLog()->toPlainText().endsWith(QStringLiteral("        終了しています・・・\n")));
}

} // namespace
} // namespace tvx
