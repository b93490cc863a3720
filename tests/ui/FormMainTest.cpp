// What only the Qt front end has: the program's start, the main window's own parts, its graph frame and the
// compact window's painting; what both front ends share is in tests/windows.
#include "AppStart.h"
#include "FormCompact.h"
#include "FormDirectX.h"
#include "FormMain.h"
#include "GraphFrame.h"
#include "GraphPicture.h"
#include "StartGuard.h"
#include "base/Utf8Path.h"

#include "config/ConfigFile.h"
#include "graph/GraphLayout.h"
#include "graph/clsGraphBuffer.h"
#include "meter/Meter.h"
#include "view/LiveView.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/GraphFrameParts.h"
#include "support/ReadFile.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"
#include "support/WindowDriver.h"

#include <QAction>
#include <QCheckBox>
#include <QFrame>
#include <QPushButton>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTimer>
#include <QApplication>
#include <QDialog>
#include <QEnterEvent>
#include <QImage>
#include <QToolButton>
#include <QTest>

#include <gtest/gtest.h>

#include <set>

namespace tvx {
namespace {

TEST(StartGuard, RefusesASecondInstanceAndTheTemporaryFolder)
{
    test::TempFolder home;
    test::TempFolder other;
    test::ScriptedPrompter prompter;
    const std::pair<std::string, std::string> noTemp{"", ""};

    auto first = app::guardStart(home.path(), home.path(), noTemp, prompter);
    ASSERT_TRUE(first);
    EXPECT_FALSE(app::guardStart(home.path(), home.path(), noTemp, prompter));
    ASSERT_EQ(prompter.shown.size(), 1u);
    EXPECT_EQ(prompter.shown[0].text, "既にプログラムは起動しています。");
    EXPECT_EQ(prompter.shown[0].title, "起動エラー");
    EXPECT_TRUE(app::guardStart(other.path(), other.path(), noTemp, prompter)) << "another home is another meter";
    first.reset();
    EXPECT_TRUE(app::guardStart(home.path(), home.path(), noTemp, prompter)) << "free again once the first ended";

    prompter.shown.clear();
    const std::string temp = pathUtf8(home.path().parent_path());
    EXPECT_FALSE(app::guardStart(home.path(), home.path() / "Tallivex", {temp, ""}, prompter));
    ASSERT_EQ(prompter.shown.size(), 1u);
    EXPECT_EQ(prompter.shown[0].text.substr(0, prompter.shown[0].text.find("\r\n")), "テンポラリフォルダでは実行できません。");
}

TEST(StartUp, TheDebugLogTellsTheRunInOrder)
{
    test::TempFolder home;
    test::TempFolder program;
    test::FakeMachine machine;
    test::ScriptedPrompter prompter;
    test::MarkingCodec codec;
    Settings settings = defaultSettings(pathUtf8(home.path()));
    settings.SaveFolder = pathUtf8(home.path());
    DebugLog log(home.path(), machine.clock);
    ConfigFile config(settings, home.path(), prompter, codec, &log);
    const app::LibraryCheck check{{{"present.so", "x"}, {"missing.so", "warning"}},
                                  [](const std::string& name) { return name == "present.so"; }};
    prompter.answers = {true, true}; // a first start: full screen, confirmed
    app::startUp(log, programTitle("MapleStory"), program.path(), check, prompter, config, "ja_JP.UTF-8");
    settings.StartDelay = 0;
    {
        const auto host = test::makeMainWindowHost(settings, log, machine);
        host->load();
        host->close();
    }
    machine.events.clear();
    app::unload(log, EnvironmentFacts{}, machine);

    const std::string text = test::readAll(log.path());
    const std::string lines[] = {
        "Starting Program  Tallivex  for MapleStory    Ver.2.20\r\n",
        "Execute Folder : " + pathUtf8(program.path()) + "\r\n",
        "System File of missing.so is Not Find ",
        "Result of System File Check : A missing item ",
        "Reading ConfigFile ･･･ End ",
        "Log AutoStart ･･･ ",
        "Program StartUp Complete ",
        "Closing Program ･･･ ",
        "End of the Program ",
        "OperatingInformation",
    };
    std::size_t at = 0;
    for (const std::string& line : lines) {
        const std::size_t found = text.find(line, at);
        ASSERT_NE(found, std::string::npos) << line << "\n" << text;
        at = found;
    }
    EXPECT_LACKS(text, "System File of present.so");
    EXPECT_EQ(machine.events, std::vector<std::string>{"wait 500"}) << "half a second of events before the end";
}

// Button events as a test script gives them; start can be made to fail.
class ScriptedMouse : public MouseButtonSource {
public:
    StartResult result = StartResult::Started;
    Handler handler;
    int stops = 0;

    StartResult start(Handler onBatch) override
    {
        if (result == StartResult::Started)
            handler = std::move(onBatch);
        return result;
    }
    void stop() override
    {
        ++stops;
        handler = nullptr;
    }
};

class FormMainTest : public testing::Test {
protected:
    FormMainTest()
    {
        settings.SaveFolder = pathUtf8(temp.path());
        settings.StartDelay = 0;
        window.attach(meter);
        window.setConfigFile(&config, {});
        window.setGestureSource(&mouse, &prompter);
    }

    // Loaded and shown at the size the window opens with.
    void loadAndShow()
    {
        window.FormMain_Load();
        window.show();
        window.resize(900, 560);
        QTest::qWait(20);
    }

    test::TempFolder temp;
    test::FakeMachine machine;
    test::MarkingCodec codec;
    test::ScriptedPrompter prompter;
    ScriptedMouse mouse;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    ConfigFile config{settings, temp.path(), prompter, codec, &log};
    ui::FormMain window{programTitle("MapleStory"), log, temp.path()};
    MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, window};
    Meter meter{settings, ports, log};
};

TEST_F(FormMainTest, TheCaptureTimerRunsWhileTheSessionDoes)
{
    machine.screens = {test::gameCapture({"50", "1000", "0"})};
    window.FormMain_Load();
    auto* timer = window.findChild<QTimer*>(QStringLiteral("timCaptureInterval"));
    EXPECT_TRUE(timer->isActive());
    window.action("menuStop")->trigger();
    EXPECT_FALSE(timer->isActive());
}

// The options apply without a restart: the debug switch shows the debug area and its
// recognition works, the level watch starts, and the graph reshapes the window.
TEST_F(FormMainTest, TheOptionsSwitchDebugModeTheLevelWatchAndTheGraphAtOnce)
{
    settings.AutoStart = false;
    settings.Graph = false;
    loadAndShow();
    auto* frmGraph = window.findChild<ui::GraphFrame*>();
    ASSERT_NE(frmGraph, nullptr);
    EXPECT_EQ(meter.state().graph, nullptr);
    window.action("menuOption")->trigger();
    auto* options = window.findChild<ui::FormOption*>();
    ASSERT_NE(options, nullptr);
    const auto box = [options](const char* name) { return options->findChild<QCheckBox*>(QLatin1String(name)); };
    auto* frmDebug = window.findChild<QFrame*>(QStringLiteral("frmDebug"));
    ASSERT_TRUE(box("chkDebugMode") && box("chkGraph") && frmDebug);

    box("chkDebugMode")->click();
    EXPECT_TRUE(frmDebug->isVisible());
    machine.screens = {test::gameCapture({"50", "1000", "0"})};
    meter.cycle().GetPictForClip(-1);
    window.findChild<QPushButton*>(QStringLiteral("cmdRecognize"))->click();
    EXPECT_TRUE(window.findChild<QLabel*>(QStringLiteral("lblElapse"))->text().endsWith(QStringLiteral("秒")));
    EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("lblCapture0"))->text(), QStringLiteral("50"));
    box("chkDebugMode")->click();
    EXPECT_FALSE(frmDebug->isVisible());

    auto* timDoHL = window.findChild<QTimer*>(QStringLiteral("timDoHLInterval"));
    EXPECT_FALSE(timDoHL->isActive());
    box("chkDoHLCheckExec")->click();
    EXPECT_TRUE(timDoHL->isActive());

    box("chkGraph")->click();
    QTest::qWait(20);
    EXPECT_TRUE(frmGraph->isVisible()) << "no resize needed";
    ASSERT_NE(meter.state().graph, nullptr) << "a graph switched on after the start gets its buffer";
    box("chkGraph")->click();
    QTest::qWait(20);
    EXPECT_FALSE(frmGraph->isVisible());
    EXPECT_EQ(window.width(), kPanelClientWidth) << "without the graph, the panel's width only";
    window.close();
}

TEST_F(FormMainTest, ABackgroundClickRefreshesTheWindow)
{
    settings.AutoStart = false;
    loadAndShow();
    auto* frmGraph = window.findChild<ui::GraphFrame*>();
    QTest::mouseClick(frmGraph, Qt::LeftButton, {}, QPoint(frmGraph->width() - 2, 2));
    EXPECT_LACKS(test::readAll(log.path()), "Click : Window Refresh ") << "the graph's own";
    QTest::mouseClick(window.centralWidget(), Qt::LeftButton, {}, QPoint(4, window.centralWidget()->height() - 3));
    EXPECT_HOLDS(test::readAll(log.path()), "Click : Window Refresh ");
    window.close();
}

TEST_F(FormMainTest, TheVersionWindowNamesTheVersionOnce)
{
    QString shown;
    bool isDefault = false;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr)
            return;
        for (const QLabel* label : dialog->findChildren<QLabel*>())
            shown += label->text() + QLatin1Char('|');
        const auto* ok = dialog->findChild<QPushButton*>(QStringLiteral("cmdOK"));
        isDefault = ok != nullptr && ok->isDefault();
        dialog->accept();
    });
    window.action("menuVersion")->trigger();
    EXPECT_EQ(shown, QStringLiteral("Tallivex  for MapleStory|バージョン Ver.2.20|"));
    EXPECT_TRUE(isDefault);
}

// The editor adds only what the box adds, yet always shows the box's text and caret:
// through a caret left at the new text, a clear, and the oldest lines let go.
TEST_F(FormMainTest, TheLogEditorFollowsTheBoxLineForLine)
{
    window.FormMain_Load();
    LogBox& box = meter.logBox();
    const auto check = [&](const std::string& step) {
        QString expected = QString::fromStdString(box.text());
        expected.remove(QLatin1Char('\r'));
        EXPECT_EQ(window.txtLog()->toPlainText(), expected) << step;
        QString before = QString::fromStdString(box.text().substr(0, box.caret()));
        before.remove(QLatin1Char('\r'));
        EXPECT_EQ(window.txtLog()->textCursor().position(), before.size()) << step;
    };
    box.clear();
    box.write("first\r\n");
    check("one line into a cleared box");
    box.write("half");
    box.write(" line\r\nレベル 50\r\n", false);
    check("a line in pieces, the caret at the new text");
    box.clear();
    box.write("after the clear\r\n");
    check("written after a clear");
    box.write("second\r\n");
    for (int i = 0; i < 600; ++i)
        box.write("line " + std::to_string(i) + "\r\n");
    check("past the line limit");
    EXPECT_TRUE(window.txtLog()->toPlainText().startsWith(QStringLiteral("line 88\n"))) << "the oldest lines went";
}

TEST_F(FormMainTest, GesturesLoadWithTheWindowAndReachTheMeterUntilTheClose)
{
    settings.Gesture = true;
    window.FormMain_Load();
    ASSERT_TRUE(window.formDirectX() && window.formDirectX()->loaded());

    for (MouseButton b : {MouseButton::Right, MouseButton::Left, MouseButton::Left, MouseButton::Left})
        mouse.handler({{b, true}, {b, false}});
    EXPECT_TRUE(settings.DoHLCheckExec);
    EXPECT_HOLDS(meter.logBox().text(), "マウスジェスチャ：自動撮影 監視開始");

    window.close();
    EXPECT_EQ(mouse.stops, 1);
}

TEST_F(FormMainTest, AMouseThatCannotBeOpenedIsReportedAndGesturesStayOff)
{
    const struct { MouseButtonSource::StartResult result; const char* message; } cases[] = {
        {MouseButtonSource::StartResult::NoInputSystem, "DirectInputオブジェクトが生成できません。"},
        {MouseButtonSource::StartResult::NoMouseDevice, "Mouse用DirectInputDeviceオブジェクトが生成できません。"},
    };
    for (const auto& c : cases) {
        settings.Gesture = true;
        prompter.shown.clear();
        mouse.result = c.result;
        ui::FormDirectX form(meter, mouse, log, prompter);
        EXPECT_FALSE(form.Form_Load());
        EXPECT_FALSE(form.loaded());
        ASSERT_EQ(prompter.shown.size(), 1u);
        EXPECT_EQ(prompter.shown[0].text, c.message);
    }
    mouse.result = MouseButtonSource::StartResult::NoMouseDevice;
    window.FormMain_Load();
    EXPECT_FALSE(settings.Gesture);
}

// The compact window paints its state mark and its close cross itself: the mark in the
// state's colour, the cross on red only while the mouse is over it.
TEST(FormCompactQtTest, TheMarkTakesTheStatesColourAndTheCloseCrossReddensUnderTheMouse)
{
    Settings settings = defaultSettings("");
    ui::FormCompact compact(settings, {});
    LiveView view;
    view.stateText = "記録中";
    view.stateColour = 0x30A050;
    view.levelText = "Lv 50  12.00％";
    compact.showView(view);
    compact.show();
    auto* mark = compact.findChild<QLabel*>(QStringLiteral("shpState"));
    ASSERT_NE(mark, nullptr);
    const QImage shown = mark->grab().toImage();
    EXPECT_EQ(shown.pixelColor(shown.width() / 2, shown.height() / 2), QColor(0x30, 0xA0, 0x50));

    auto* close = compact.findChild<QToolButton*>(QStringLiteral("cmdClose"));
    ASSERT_NE(close, nullptr);
    const auto corner = [close] { return close->grab().toImage().pixelColor(0, 0); };
    const QColor away = corner();
    close->setAttribute(Qt::WA_UnderMouse, true);
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QApplication::sendEvent(close, &enter);
    EXPECT_EQ(corner(), QColor(0xA0, 0x30, 0x30));
    close->setAttribute(Qt::WA_UnderMouse, false);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(close, &leave);
    EXPECT_EQ(corner(), away);
}

// The graph frame draws what its GraphFrameView holds and passes clicks on to it; what the view decides is
// GraphFrameViewTest's.
class GraphFrameTest : public ::testing::Test, protected test::GraphFrameParts {
protected:
    GraphFrameTest()
    {
        frame.resize(476, 224);
        giveTo(frame);
    }

    ui::GraphFrame frame;
};

TEST_F(GraphFrameTest, EveryLabelShowsTheViewsTextAndAClickOnThePictureRefreshesIt)
{
    frame.GraphFrameDisplay();
    EXPECT_EQ(logText(), "");
    const PixelRect& picture = frame.view().picGraph();
    EXPECT_EQ(frame.picGraph()->geometry(), QRect(picture.left, picture.top, picture.width, picture.height));
    EXPECT_EQ(frame.picGraph()->grid().linGraphY[8].y1, 199);
    for (const GraphLabelView& shown : frame.view().labels()) {
        const auto* label = frame.findChild<QLabel*>(QString::fromUtf8(QByteArrayView(shown.name)));
        ASSERT_NE(label, nullptr) << shown.name;
        EXPECT_EQ(label->text().toStdString(), shown.text) << shown.name;
        EXPECT_EQ(label->toolTip().toStdString(), shown.toolTip) << shown.name;
    }

    QTest::mouseClick(frame.picGraph(), Qt::LeftButton);
    EXPECT_HOLDS(logText(), "Click : Graph Refresh ");
    EXPECT_LACKS(logText(), "Error Trap");
}

TEST_F(GraphFrameTest, PaintsCurvesOfASmallHistoryAndTrapsWhatFails)
{
    for (const auto& [e, m] : {std::pair{120.0, -1.0}, {300.0, 40.0}, {250.0, 55.0}, {80.0, -1.0}})
        buffer.AddGraphData(Currency::fromDouble(e), Currency::fromDouble(m), 3, settings.GraphTimeScale);
    frame.GraphFrameDisplay();
    EXPECT_FALSE(frame.picGraph()->curves().rateE.empty() || frame.picGraph()->curves().rateM.empty());
    const QImage image = frame.picGraph()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const auto* pixels = reinterpret_cast<const QRgb*>(image.constBits());
    const std::set<QRgb> drawn(pixels, pixels + image.width() * image.height());
    EXPECT_TRUE(drawn.contains(qRgb(0, 0, 255)) && drawn.contains(qRgb(255, 0, 0))) << "blue and red curves";

    // A time scale longer than the buffer reads past it; the frame too small for a picture.
    settings.GraphTimeScale = 600;
    QTest::mouseClick(frame.label(GraphLabel::Tl1), Qt::LeftButton);
    EXPECT_EQ(graphView.timeShift, -89);
    frame.resize(60, 20);
    frame.GraphFrameDisplay();
    EXPECT_HOLDS(logText(), "Error Trap : GraphDataDisplay 2 : CODE9  Subscript out of range");
    EXPECT_HOLDS(logText(), "Error Trap : GraphFrameDisplay : CODE");
}

} // namespace
} // namespace tvx
