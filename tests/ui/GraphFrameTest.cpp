#include "GraphFrame.h"
#include "GraphPicture.h"

#include "config/Settings.h"
#include "graph/clsGraphBuffer.h"
#include "meter/MeterState.h"
#include "shell/DebugLog.h"
#include "support/FakeClock.h"
#include "support/TempFolder.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QMouseEvent>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace tvx::ui {
namespace {

void click(QWidget* widget)
{
    const QPointF at = QRectF(widget->rect()).center();
    const QPointF global = widget->mapToGlobal(at);
    QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
    QApplication::sendEvent(widget, &release);
}

class GraphFrameTest : public ::testing::Test {
protected:
    GraphFrameTest()
    {
        settings.MoneyScan = true;
        controls.runEnabled = true;
        frame.resize(476, 224);
        frame.setGraphBuffer(&buffer);
        frame.setGraphView(view);
        frame.setSettings(settings);
        frame.setMeterControls(&controls);
        frame.setDebugLog(&log);
    }

    std::string logText() const
    {
        std::ifstream in(log.path(), std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

    QLabel* label(const char* name) const { return frame.findChild<QLabel*>(QString::fromLatin1(name)); }

    test::FakeClock clock;
    test::TempFolder home;
    DebugLog log{home.path(), clock};
    clsGraphBuffer buffer{clock};
    Settings settings;
    GraphView view;
    MeterControls controls;
    GraphFrame frame;
};

TEST_F(GraphFrameTest, HasItsNamedControlsAndLaysThemOut)
{
    EXPECT_EQ(frame.objectName(), QStringLiteral("frmGraph"));
    ASSERT_NE(frame.findChild<GraphPicture*>(QStringLiteral("picGraph")), nullptr);
    for (const char* name : {"lblGraph_El0", "lblGraph_El3", "lblGraph_Ml0", "lblGraph_Ml3", "lblGraph_Tt"})
        EXPECT_NE(label(name), nullptr) << name;
    EXPECT_EQ(label("lblGraph_Et")->text(), QStringLiteral(" k EXP"));
    // Before any data the scales already read as an empty graph's.
    for (const char* name : {"lblGraph_El0", "lblGraph_Ml3"})
        EXPECT_EQ(label(name)->text().indexOf(QStringLiteral("98,765")), -1) << name;
    EXPECT_EQ(label("lblGraph_Mt")->text(), QString::fromUtf8(" k ﾒﾙ"));
    EXPECT_EQ(label("lblGraph_Tl0")->text(), QString::fromUtf8("現在"));
    EXPECT_EQ(label("lblGraph_Tl1")->text(), QString::fromUtf8("思ひ出"));
    EXPECT_EQ(label("lblGraph_Ml0")->toolTip(), QString::fromUtf8(" 縦軸を一時的に拡大 "));
    EXPECT_EQ(label("lblGraph_Et")->toolTip(), QString::fromUtf8(" 縦軸を一時的に縮小 "));
    EXPECT_EQ(label("lblGraph_Tl1")->toolTip(), QString::fromUtf8(" 時間軸を一時的に過去にひとメモリ移動する "));

    frame.GraphFrameDisplay();
    EXPECT_EQ(frame.picGraph()->geometry(), QRect(38, 6, 400, 200));
    EXPECT_EQ(label("lblGraph_El1")->pos(), QPoint(0, 50));
    EXPECT_EQ(label("lblGraph_Ml2")->pos(), QPoint(440, 100));
    EXPECT_EQ(label("lblGraph_Mt")->pos(), QPoint(440, 192));
    EXPECT_EQ(frame.picGraph()->grid().linGraphY[8].y1, 199);
    EXPECT_EQ(label("lblGraph_Tt")->text(), QString::fromUtf8("経過時間(30分間隔)"));
    EXPECT_EQ(label("lblGraph_El0")->text(), QStringLiteral("    10"));
    EXPECT_TRUE(logText().empty()) << logText();
}

TEST_F(GraphFrameTest, LabelClicksMoveAndZoomTheViewAndLog)
{
    frame.GraphFrameDisplay();
    click(label("lblGraph_Tl1"));
    click(label("lblGraph_Tl1"));
    EXPECT_EQ(view.timeShift, 10);
    click(label("lblGraph_Tl0"));
    EXPECT_EQ(view.timeShift, 5);
    click(label("lblGraph_El0"));
    click(label("lblGraph_Ml0"));
    click(label("lblGraph_El1"));
    EXPECT_FLOAT_EQ(view.zoom, 1.2f);
    click(label("lblGraph_Mt"));
    EXPECT_FLOAT_EQ(view.zoom, 1.1f);
    click(frame.picGraph());

    const std::string text = logText();
    const auto at = [&](const char* line) { return text.find(line); };
    ASSERT_NE(at("Click : Graph Old View "), std::string::npos) << text;
    EXPECT_LT(at("Click : Graph Old View "), at("Click : Graph New View "));
    EXPECT_LT(at("Click : Graph New View "), at("Click : Graph Refresh "));
    EXPECT_EQ(text.find("Error Trap"), std::string::npos) << text;
}

TEST_F(GraphFrameTest, PaintsCurvesOfASmallHistoryAndTrapsWhatFails)
{
    for (const auto& [e, m] : {std::pair{120.0, -1.0}, {300.0, 40.0}, {250.0, 55.0}, {80.0, -1.0}})
        buffer.AddGraphData(Currency::fromDouble(e), Currency::fromDouble(m), 3, settings.GraphTimeScale);
    frame.GraphFrameDisplay();
    EXPECT_EQ(label("lblGraph_El0")->text(), QStringLiteral("   400"));
    EXPECT_FALSE(frame.picGraph()->curves().rateE.empty());
    EXPECT_FALSE(frame.picGraph()->curves().rateM.empty());

    const QImage image = frame.picGraph()->grab().toImage();
    bool blue = false;
    bool red = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            blue = blue || image.pixelColor(x, y) == QColor(Qt::blue);
            red = red || image.pixelColor(x, y) == QColor(Qt::red);
        }
    }
    EXPECT_TRUE(blue && red);

    // Both menus enabled: the graph is left as it stands.
    controls.stopEnabled = true;
    frame.GraphDataDisplay(0, 0.2f);
    EXPECT_EQ(label("lblGraph_El0")->text(), QStringLiteral("   400"));
    controls.stopEnabled = false;

    // A time scale longer than the buffer reads past it; the frame too small for a picture.
    settings.GraphTimeScale = 600;
    click(label("lblGraph_Tl1"));
    EXPECT_EQ(view.timeShift, -89);
    frame.resize(60, 20);
    frame.GraphFrameDisplay();
    const std::string text = logText();
    EXPECT_NE(text.find("Error Trap : GraphDataDisplay 2 : CODE9  Subscript out of range"), std::string::npos) << text;
    EXPECT_NE(text.find("Error Trap : GraphFrameDisplay : CODE"), std::string::npos) << text;
}

} // namespace
} // namespace tvx::ui
