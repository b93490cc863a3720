#include "view/GraphFrameView.h"

#include "base/Language.h"
#include "config/Settings.h"
#include "graph/GraphLayout.h"
#include "graph/GraphScale.h"
#include "graph/StepTrap.h"
#include "graph/clsGraphBuffer.h"
#include "meter/MeterState.h"
#include "shell/DebugLog.h"

#include <algorithm>
#include <cctype>

namespace tvx {
namespace {

constexpr std::string_view kZoomIn = N_(" 縦軸を一時的に拡大 ");
constexpr std::string_view kZoomOut = N_(" 縦軸を一時的に縮小 ");

struct LabelDesign {
    std::string_view name;
    std::string_view text; // at design time; words are Japanese, shown through tr()
    std::string_view toolTip;
    TextAlign align;
};

constexpr std::array<LabelDesign, kGraphLabelCount> kDesign{{
    {"lblGraph_El0", "98,765", kZoomIn, TextAlign::Right},
    {"lblGraph_El1", "98,765", {}, TextAlign::Right},
    {"lblGraph_El2", "98,765", {}, TextAlign::Right},
    {"lblGraph_El3", "98,765", {}, TextAlign::Right},
    {"lblGraph_Ml0", "98,765", kZoomIn, TextAlign::Left},
    {"lblGraph_Ml1", "98,765", {}, TextAlign::Left},
    {"lblGraph_Ml2", "98,765", {}, TextAlign::Left},
    {"lblGraph_Ml3", "98,765", {}, TextAlign::Left},
    {"lblGraph_Et", " k EXP", kZoomOut, TextAlign::Left},
    {"lblGraph_Mt", N_(" k ﾒﾙ"), kZoomOut, TextAlign::Left},
    {"lblGraph_Tt", {}, {}, TextAlign::Left}, // the time axis's title, made by the scale
    {"lblGraph_Tl0", N_("現在"), N_(" 時間軸を一時的に現在にひとメモリ移動する "), TextAlign::Left},
    {"lblGraph_Tl1", N_("思ひ出"), N_(" 時間軸を一時的に過去にひとメモリ移動する "), TextAlign::Left},
}};

GraphLabel scaleLabel(bool experience, std::size_t index)
{
    return static_cast<GraphLabel>((experience ? 0 : 4) + index);
}

TwipSize twips(const PixelRect& rect)
{
    return {rect.width * kTwipsPerPixel, rect.height * kTwipsPerPixel};
}

} // namespace

GraphFrameView::GraphFrameView(MeasureText measure) : m_measure(std::move(measure))
{
    for (std::size_t i = 0; i < kGraphLabelCount; ++i) {
        const LabelDesign& design = kDesign[i];
        m_labels[i] = GraphLabelView{design.name, std::string(tr(design.text)), tr(design.toolTip), design.align,
                                     PixelRect{0, 0, kScaleLabelWidth, kLabelHeight}};
    }
    // Six-minute steps: a 6-minute interval on the default time scale.
    at(GraphLabel::Tt).text = timeAxisTitle(6, 4);
    fitLabels();
}

void GraphFrameView::retranslate()
{
    for (std::size_t i = 0; i < kGraphLabelCount; ++i) {
        const LabelDesign& design = kDesign[i];
        m_labels[i].toolTip = tr(design.toolTip);
        if (!design.text.empty() && !std::isdigit(static_cast<unsigned char>(design.text.front())))
            m_labels[i].text = tr(design.text);
    }
    // Only the time axis's title has words; the scales keep their numbers.
    if (m_settings != nullptr) {
        StepTrap trap;
        at(GraphLabel::Tt).text = graphScaleTexts(Currency(), Currency(), 1.0f, m_settings->CaptureInterval,
                                                  m_settings->GraphTimeScale, trap, m_intervalSeconds)
                                      .lblGraph_Tt;
    } else {
        at(GraphLabel::Tt).text = timeAxisTitle(6, 4);
    }
    fitLabels();
    if (graphOn())
        GraphFrameDisplay();
    else
        notify();
}

void GraphFrameView::fitLabels()
{
    for (GraphLabel fitted : {GraphLabel::Et, GraphLabel::Mt, GraphLabel::Tt, GraphLabel::Tl0, GraphLabel::Tl1})
        fitToText(fitted);
}

void GraphFrameView::fitToText(GraphLabel which)
{
    GraphLabelView& label = at(which);
    label.rect.width = (m_measure ? m_measure(label.text) : 0) + 2;
    label.rect.height = kLabelHeight;
}

bool GraphFrameView::graphOn() const
{
    return m_settings != nullptr && m_settings->Graph;
}

void GraphFrameView::setSettings(const Settings& settings)
{
    m_settings = &settings;
    StepTrap trap;
    showScaleTexts(Currency(), Currency(), 1.0f, trap);
    trap.report(m_log, "GraphDataDisplay");
    notify();
}

void GraphFrameView::setFrameSize(std::int32_t width, std::int32_t height)
{
    m_frameWidth = width;
    m_frameHeight = height;
}

void GraphFrameView::GraphFrameDisplay()
{
    if (!graphOn())
        return;
    StepTrap trap;
    const GraphFrameInput input{m_frameWidth,
                                m_frameHeight,
                                twips(m_picture),
                                twips(label(GraphLabel::Tt).rect),
                                twips(label(GraphLabel::Tl0).rect),
                                twips(label(GraphLabel::Tl1).rect)};
    const GraphFrameLayout layout = graphFrameLayout(input, trap);
    const auto px = twipsToPixels;
    if (const auto& pic = layout.picGraph)
        m_picture = PixelRect{px(pic->left), px(pic->top), px(pic->width), px(pic->height)};
    const auto place = [&](GraphLabel which, std::int32_t left, std::int32_t top) {
        at(which).rect.left = px(left);
        at(which).rect.top = px(top);
    };
    for (std::size_t i = 0; i < 4; ++i) {
        place(scaleLabel(true, i), layout.scaleLeftE, layout.scaleTop[i]);
        place(scaleLabel(false, i), layout.scaleLeftM, layout.scaleTop[i]);
    }
    place(GraphLabel::Et, layout.scaleLeftE, layout.axisTitleTop);
    place(GraphLabel::Mt, layout.scaleLeftM, layout.axisTitleTop);
    place(GraphLabel::Tt, layout.lblGraph_TtLeft, layout.timeLabelTop);
    place(GraphLabel::Tl0, layout.lblGraph_Tl0Left, layout.timeLabelTop);
    place(GraphLabel::Tl1, layout.lblGraph_Tl1Left, layout.timeLabelTop);
    m_grid = graphGrid(m_picture.width, m_picture.height);
    trap.report(m_log, "GraphFrameDisplay");
    redraw();
    notify();
}

GraphScaleTexts GraphFrameView::showScaleTexts(const Currency& maxE, const Currency& maxM, float zoom, StepTrap& trap)
{
    const GraphScaleTexts texts =
        graphScaleTexts(maxE, maxM, zoom, m_settings->CaptureInterval, m_settings->GraphTimeScale, trap,
                        m_intervalSeconds);
    at(GraphLabel::Tt).text = texts.lblGraph_Tt;
    fitToText(GraphLabel::Tt);
    for (std::size_t i = 0; i < 4; ++i) {
        at(scaleLabel(true, i)).text = texts.lblGraph_El[i];
        at(scaleLabel(false, i)).text = texts.lblGraph_Ml[i];
    }
    return texts;
}

void GraphFrameView::GraphDataDisplay(std::int32_t shift, float zoom)
{
    if (!graphOn())
        return;
    if (m_controls != nullptr && m_controls->runEnabled == m_controls->stopEnabled)
        return;
    StepTrap trap;
    const Currency maxE = m_buffer != nullptr ? m_buffer->MaxValueRateE() : Currency();
    const Currency maxM = m_buffer != nullptr ? m_buffer->MaxValueRateM() : Currency();
    const GraphScaleTexts texts = showScaleTexts(maxE, maxM, zoom, trap);
    fitScaleLabels();
    trap.report(m_log, "GraphDataDisplay");

    m_curves = GraphCurves();
    if (m_buffer != nullptr) {
        const GraphPlotInput input{m_picture.width, m_picture.height, m_settings->GraphTimeScale, shift,
                                   texts.maxE,      texts.maxM,       m_settings->MoneyScan};
        m_curves = plotGraphCurves(*m_buffer, input, trap);
    }
    trap.report(m_log, "GraphDataDisplay 2");
    notify();
}

void GraphFrameView::fitScaleLabels()
{
    // The money scale is not cut ("100,000"): a text wider than its column reaches toward
    // the picture rather than losing digits at the frame's edge.
    for (std::size_t i = 0; i < 4; ++i) {
        for (const bool experience : {true, false}) {
            GraphLabelView& label = at(scaleLabel(experience, i));
            label.rect.width = std::max(kScaleLabelWidth, (m_measure ? m_measure(label.text) : 0) + 2);
            if (!experience)
                label.rect.left = m_frameWidth - label.rect.width;
        }
    }
}

void GraphFrameView::redraw()
{
    GraphDataDisplay(m_view->timeShift, m_view->zoom);
}

void GraphFrameView::zoomBy(bool in)
{
    m_view->zoom = in ? zoomIn(m_view->zoom) : zoomOut(m_view->zoom);
    redraw();
}

void GraphFrameView::moveTime(bool toPast)
{
    writeLog(toPast ? "Click : Graph Old View " : "Click : Graph New View ");
    if (m_settings == nullptr)
        return;
    const std::int32_t timeScale = m_settings->GraphTimeScale;
    const std::int32_t length = m_buffer != nullptr ? m_buffer->BufferSize() : clsGraphBuffer::kDefaultSize;
    StepTrap trap;
    trap.run([&] {
        m_view->timeShift =
            toPast ? shiftToPast(m_view->timeShift, timeScale, length) : shiftToPresent(m_view->timeShift, timeScale);
    });
    trap.report(m_log, "lblGraph_Tl_Click");
    redraw();
}

void GraphFrameView::click(GraphLabel which)
{
    switch (which) {
    case GraphLabel::El0:
    case GraphLabel::Ml0: zoomBy(true); break;
    case GraphLabel::Et:
    case GraphLabel::Mt: zoomBy(false); break;
    case GraphLabel::Tl0: moveTime(false); break;
    case GraphLabel::Tl1: moveTime(true); break;
    default: break; // the inner scale labels and the time-axis title do nothing
    }
}

void GraphFrameView::picGraph_Click()
{
    writeLog("Click : Graph Refresh ");
    if (graphOn())
        redraw();
}

void GraphFrameView::clickAt(std::int32_t x, std::int32_t y)
{
    // Labels lie over the picture's edges; they take the click first.
    for (std::size_t i = 0; i < kGraphLabelCount; ++i) {
        if (m_labels[i].rect.contains(x, y))
            return click(static_cast<GraphLabel>(i));
    }
    if (m_picture.contains(x, y))
        picGraph_Click();
}

void GraphFrameView::writeLog(std::string_view text)
{
    if (m_log == nullptr)
        return;
    try {
        m_log->WriteDebugLog(text);
    } catch (const RuntimeError&) {
        // A log that cannot be written must not stop the click.
    }
}

void GraphFrameView::notify()
{
    if (m_changed)
        m_changed();
}

} // namespace tvx
