#include "view/GraphFrameView.h"

#include "config/Settings.h"
#include "graph/clsGraphBuffer.h"
#include "meter/MeterState.h"
#include "shell/DebugLog.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

// Five pixels a byte: wide enough to tell the labels apart, easy to reckon.
std::int32_t measure(std::string_view text)
{
    return static_cast<std::int32_t>(text.size()) * 5;
}

std::pair<std::int32_t, std::int32_t> centre(const PixelRect& rect)
{
    return {rect.left + rect.width / 2, rect.top + rect.height / 2};
}

class GraphFrameViewTest : public testing::Test {
protected:
    GraphFrameViewTest()
    {
        settings.MoneyScan = true;
        controls.runEnabled = true;
        view.setGraphBuffer(&buffer);
        view.setGraphView(graphView);
        view.setSettings(settings);
        view.setMeterControls(&controls);
        view.setDebugLog(&log);
        view.setChanged([this] { ++changes; });
        view.setFrameSize(476, 224);
    }

    void clickOn(GraphLabel which)
    {
        const auto [x, y] = centre(view.label(which).rect);
        view.clickAt(x, y);
    }

    std::string logText() const { return test::readAll(log.path()); }

    test::FakeClock clock;
    test::TempFolder home;
    DebugLog log{home.path(), clock};
    clsGraphBuffer buffer{clock};
    Settings settings;
    GraphView graphView;
    MeterControls controls;
    GraphFrameView view{measure};
    int changes = 0;
};

TEST_F(GraphFrameViewTest, LaysOutPictureLabelsAndGridForTheFrame)
{
    view.GraphFrameDisplay();
    EXPECT_EQ(view.picGraph(), (PixelRect{38, 6, 400, 200}));
    EXPECT_EQ(view.label(GraphLabel::El1).rect, (PixelRect{0, 50, 36, 12}));
    EXPECT_EQ(view.label(GraphLabel::Ml2).rect, (PixelRect{440, 100, 36, 12}));
    EXPECT_EQ(view.label(GraphLabel::Mt).rect.top, 192);
    EXPECT_EQ(view.grid().linGraphY[8].y1, 199);
    EXPECT_EQ(view.grid().linGraphX[4].x1, 399);
    // The time ends are centred on the picture's edges, its title a little right of its
    // middle, the labels fitted to their text and standing on the frame's bottom.
    EXPECT_EQ(view.label(GraphLabel::Tl0).rect.width, measure("現在") + 2);
    const std::pair<GraphLabel, int> centres[] = {{GraphLabel::Tl0, 438}, {GraphLabel::Tl1, 38}, {GraphLabel::Tt, 242}};
    for (const auto& [which, centre] : centres) {
        const PixelRect& rect = view.label(which).rect;
        EXPECT_NEAR(rect.left + rect.width / 2.0, centre, 1) << view.label(which).text;
        EXPECT_EQ(rect.top + rect.height, 224) << view.label(which).text;
    }
    EXPECT_EQ(view.label(GraphLabel::Ml0).toolTip, " 縦軸を一時的に拡大 ");
    EXPECT_EQ(view.label(GraphLabel::Ml0).align, TextAlign::Left);
    EXPECT_EQ(view.label(GraphLabel::El0).align, TextAlign::Right);
    EXPECT_GT(changes, 0);
    EXPECT_TRUE(logText().empty()) << logText();
}

TEST_F(GraphFrameViewTest, WideScalesKeepEveryDigitInsideTheFrame)
{
    for (int i = 0; i < 4; ++i)
        buffer.AddGraphData(Currency::fromDouble(150000.0), Currency::fromDouble(150000.0), 3, settings.GraphTimeScale);
    view.GraphFrameDisplay();
    for (std::size_t i = 0; i < 4; ++i) {
        for (const GraphLabel which : {static_cast<GraphLabel>(i), static_cast<GraphLabel>(4 + i)}) {
            const GraphLabelView& label = view.label(which);
            EXPECT_GE(label.rect.width, measure(label.text) + 2) << label.text;
            EXPECT_GE(label.rect.left, 0) << label.text;
            EXPECT_LE(label.rect.left + label.rect.width, 476) << label.text;
        }
    }
    // The experience column keeps six characters; the money column is not cut.
    EXPECT_EQ(view.label(GraphLabel::El0).text, "00,000");
    EXPECT_EQ(view.label(GraphLabel::Ml0).text, "100,000");
    EXPECT_EQ(view.label(GraphLabel::Ml0).rect.left + view.label(GraphLabel::Ml0).rect.width, 476);
    EXPECT_GT(view.label(GraphLabel::Ml0).rect.width, GraphFrameView::kScaleLabelWidth);
    EXPECT_EQ(view.label(GraphLabel::Ml3).rect.width, GraphFrameView::kScaleLabelWidth) << "short texts keep the column";
}

TEST_F(GraphFrameViewTest, ClicksFindTheirLabelOrThePicture)
{
    view.GraphFrameDisplay();
    clickOn(GraphLabel::Tl1);
    clickOn(GraphLabel::Tl1);
    EXPECT_EQ(graphView.timeShift, 10);
    clickOn(GraphLabel::Tl0);
    EXPECT_EQ(graphView.timeShift, 5);
    clickOn(GraphLabel::El0);
    clickOn(GraphLabel::Ml0);
    clickOn(GraphLabel::El1); // inner scale labels do nothing
    clickOn(GraphLabel::Tt);
    EXPECT_FLOAT_EQ(graphView.zoom, 1.2f);
    clickOn(GraphLabel::Et);
    EXPECT_FLOAT_EQ(graphView.zoom, 1.1f);
    const auto [x, y] = centre(view.picGraph());
    view.clickAt(x, y);
    view.clickAt(470, 2); // between the labels: nothing
    const std::string text = logText();
    const auto at = [&](const char* line) { return text.find(line); };
    ASSERT_NE(at("Click : Graph Old View "), std::string::npos) << text;
    EXPECT_LT(at("Click : Graph Old View "), at("Click : Graph New View "));
    EXPECT_LT(at("Click : Graph New View "), at("Click : Graph Refresh "));
    EXPECT_EQ(text.find("Click : Graph Refresh ", at("Click : Graph Refresh ") + 1), std::string::npos);
}

TEST_F(GraphFrameViewTest, CurvesFollowTheBufferAndFailingStepsAreLogged)
{
    for (const auto& [e, m] : {std::pair{120.0, -1.0}, {300.0, 40.0}, {250.0, 55.0}, {80.0, -1.0}})
        buffer.AddGraphData(Currency::fromDouble(e), Currency::fromDouble(m), 3, settings.GraphTimeScale);
    view.GraphFrameDisplay();
    EXPECT_EQ(view.label(GraphLabel::El0).text, "   400");
    EXPECT_FALSE(view.curves().rateE.empty());
    EXPECT_FALSE(view.curves().rateM.empty());

    // Both menus enabled: the graph is left as it stands.
    controls.stopEnabled = true;
    view.GraphDataDisplay(0, 0.2f);
    EXPECT_EQ(view.label(GraphLabel::El0).text, "   400");
    controls.stopEnabled = false;

    // Too small for a picture: it keeps its place, the rest is still laid out.
    view.setFrameSize(60, 20);
    view.GraphFrameDisplay();
    EXPECT_EQ(view.picGraph(), (PixelRect{38, 6, 400, 200}));
    EXPECT_EQ(view.label(GraphLabel::Ml0).rect.left, 24);
    EXPECT_NE(logText().find("Error Trap : GraphFrameDisplay : CODE"), std::string::npos) << logText();

    settings.Graph = false;
    view.setFrameSize(476, 224);
    view.GraphFrameDisplay();
    EXPECT_EQ(view.label(GraphLabel::Ml0).rect.left, 24) << "nothing moves with the graph off";
}

TEST(GraphFrameViewBlank, WithoutSettingsItNeitherDrawsNorLogs)
{
    GraphFrameView view(measure);
    view.setFrameSize(476, 224);
    view.GraphFrameDisplay();
    view.clickAt(5, 5);
    EXPECT_FALSE(view.graphOn());
    EXPECT_EQ(view.label(GraphLabel::El0).text, "98,765");
    EXPECT_EQ(view.picGraph(), PixelRect{});
}

} // namespace
} // namespace tvx
