// The Qt graph frame draws what its GraphFrameView holds and passes clicks on to it; what
// the view decides is tests/core/view/GraphFrameViewTest.cpp.
#include "GraphFrame.h"
#include "GraphPicture.h"

#include "config/Settings.h"
#include "graph/clsGraphBuffer.h"
#include "meter/MeterState.h"
#include "shell/DebugLog.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

#include <QImage>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include <set>

namespace tvx::ui {
namespace {

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

    std::string logText() const { return test::readAll(log.path()); }

    test::FakeClock clock;
    test::TempFolder home;
    DebugLog log{home.path(), clock};
    clsGraphBuffer buffer{clock};
    Settings settings;
    GraphView view;
    MeterControls controls;
    GraphFrame frame;
};

TEST_F(GraphFrameTest, EveryLabelShowsTheViewsTextAndAClickOnThePictureRefreshesIt)
{
    frame.GraphFrameDisplay();
    EXPECT_EQ(logText(), "");
    const PixelRect& picture = frame.view().picGraph();
    EXPECT_EQ(frame.picGraph()->geometry(), QRect(picture.left, picture.top, picture.width, picture.height));
    EXPECT_EQ(frame.picGraph()->grid().linGraphY[8].y1, 199);
    for (const GraphLabelView& shown : frame.view().labels()) {
        const auto* label = frame.findChild<QLabel*>(QString::fromUtf8(shown.name.data(), static_cast<int>(shown.name.size())));
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
    EXPECT_EQ(view.timeShift, -89);
    frame.resize(60, 20);
    frame.GraphFrameDisplay();
    EXPECT_HOLDS(logText(), "Error Trap : GraphDataDisplay 2 : CODE9  Subscript out of range");
    EXPECT_HOLDS(logText(), "Error Trap : GraphFrameDisplay : CODE");
}

} // namespace
} // namespace tvx::ui
